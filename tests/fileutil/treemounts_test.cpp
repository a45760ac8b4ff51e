// tests/fileutil/treemounts_test.cpp: copies, removals and free space on file systems of the test's
// own: small, full, read-only.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/statvfs.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "fileutil/filetree.h"
#include "tests/support/mount_namespace.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

// Lines that the body prints in a name space where a memory file system of `kilobytes` covers the
// folder.
std::optional<std::string> on_small_disk(const std::string& folder, const std::string& kilobytes,
                                         const std::function<void()>& body) {
  return orbtest::in_mount_namespace([&] {
    const std::string options = "size=" + kilobytes + "k";
    if (mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) != 0) return false;
    body();
    return true;
  });
}

bool make_read_only(const std::string& folder) {
  return mount("none", folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

TEST(SmallDisk, QuirkTenFreeBlocksOf4096BytesAre40960000) {
  const orbtest::TempDir folder;
  const auto written = on_small_disk(folder.path(), "40", [&] {
    uint64_t space = 7;
    const uint32_t status = voxcomn_get_disk_free_spaceA(folder.path().c_str(), &space);
    std::printf("%u %llu\n", status, static_cast<unsigned long long>(space));
    orbtest::write_file(folder.path("file"), std::string(3 * 4096, 'x'));
    voxcomn_get_disk_free_spaceA(folder.path("file").c_str(), &space);
    std::printf("%llu\n", static_cast<unsigned long long>(space));
    struct statvfs answer {};
    statvfs(folder.path().c_str(), &answer);
    std::printf("%d\n", space == answer.f_bavail * answer.f_frsize * 1000);
  });
  if (!written) GTEST_SKIP() << "needs root and a mount name space";
  EXPECT_EQ("0 40960000\n28672000\n1\n", *written);
}

TEST(SmallDisk, ACopyOntoAFullDiskFailsAndStays) {
  const orbtest::TempDir folder;
  const auto written = on_small_disk(folder.path(), "400", [&] {
    orbtest::write_file(folder.path("source"), std::string(300 * 1024, 'x'));
    std::printf("%d\n",
                voxcomn_copy_file(folder.path("source").c_str(), folder.path("file").c_str(), 0));
    const auto size = fs::file_size(folder.path("file"));
    std::printf("%d %d\n", size > 0, size < 300 * 1024);
    fs::remove(folder.path("file"));
    orbtest::write_file(folder.path("source"), std::string(100 * 1024, 'x'));
    std::printf("%d\n",
                voxcomn_copy_file(folder.path("source").c_str(), folder.path("file").c_str(), 0));
  });
  if (!written) GTEST_SKIP() << "needs root and a mount name space";
  EXPECT_EQ("0\n1 1\n1\n", *written);
}

TEST(ReadOnlyDisk, NothingIsMadeOrRemoved) {
  const orbtest::TempDir folder;
  const auto written = on_small_disk(folder.path(), "400", [&] {
    folder.write("tree/in/file", "old");
    folder.write("source", "new");
    const auto copy = [&](const char* to) {
      return voxcomn_copy_file(folder.path("source").c_str(), folder.path(to).c_str(), 1);
    };
    std::printf("%d\n", make_read_only(folder.path()));
    std::printf("%d %d\n", copy("fresh"), copy("tree/in/file"));
    voxcomn_MakeRecursiveDirectoryA(folder.path("chain/").c_str());
    voxcomn_deltree(folder.path("tree").c_str());
    std::printf("%d %d\n", fs::exists(folder.path("chain")),
                fs::exists(folder.path("tree/in/file")));
  });
  if (!written) GTEST_SKIP() << "needs root and a mount name space";
  EXPECT_EQ("1\n0 0\n0 1\n", *written);
}

TEST(MountedTree, AMountPointIsEmptiedAndStays) {
  const orbtest::TempDir folder;
  const auto written = on_small_disk(folder.path(), "400", [&] {
    folder.make_dir("tree/mounted");
    folder.write("tree/file", "");
    if (mount("none", folder.path("tree/mounted").c_str(), "tmpfs", 0, nullptr) != 0) return;
    folder.write("tree/mounted/in/file", "");
    voxcomn_deltree(folder.path("tree").c_str());
    std::printf("%d %d %d\n", fs::exists(folder.path("tree/file")),
                fs::exists(folder.path("tree/mounted")),
                fs::exists(folder.path("tree/mounted/in")));
  });
  if (!written) GTEST_SKIP() << "needs root and a mount name space";
  EXPECT_EQ("0 1 0\n", *written);
}

}  // namespace
