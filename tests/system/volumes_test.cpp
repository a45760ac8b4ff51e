// tests/system/volumes_test.cpp: the machine's volumes, with mounts beside them that do not count.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "platform/system.h"
#include "tests/support/mount_namespace.h"

namespace {

using namespace orbtest;
using quillon_com::orb::platform::host;
using quillon_com::orb::platform::Volume;

std::string mount_points() {
  std::string text;
  for (const Volume& volume : host().volumes()) text += volume.mount_point + "\n";
  return text;
}

// The points listed after `change` was made to the mounts, all of it below a fresh "/mnt".
std::optional<std::string> points_with(bool (*change)()) {
  return in_mount_namespace([change] {
    if (!cover_folder("/mnt") || !change()) return false;
    std::fputs(mount_points().c_str(), stdout);
    return true;
  });
}

bool mount_at(const char* point, const char* source, const char* type, unsigned long flags = 0,
              const char* options = nullptr) {
  mkdir(point, 0755);
  return mount(source, point, type, flags, options) == 0;
}

struct MountCase {
  const char* name;
  bool (*change)();
};

class UncountedMount : public testing::TestWithParam<MountCase> {};

TEST_P(UncountedMount, LeavesTheVolumesAsTheyWere) {
  const auto before = points_with([] { return true; });
  const auto after = points_with(GetParam().change);
  if (!before || !after) GTEST_SKIP() << "needs root, its own mounts and this kind of mount";
  EXPECT_NE("", *before);
  EXPECT_EQ(*before, *after);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, UncountedMount,
    testing::Values(
        MountCase{"MemoryFileSystem", [] { return mount_at("/mnt/t", "none", "tmpfs"); }},
        MountCase{"SourceThatNamesAHost",
                  [] { return mount_at("/mnt/t", "server:/export", "tmpfs"); }},
        MountCase{"BindOfAFolder", [] { return mount_at("/mnt/b", "/etc", nullptr, MS_BIND); }},
        MountCase{"BindOfTheWholeRoot", [] { return mount_at("/mnt/b", "/", nullptr, MS_BIND); }},
        MountCase{"BindOfAFile",
                  [] {
                    close(open("/mnt/f", O_CREAT | O_RDWR | O_CLOEXEC, 0600));
                    return mount("/etc/passwd", "/mnt/f", nullptr, MS_BIND, nullptr) == 0;
                  }},
        MountCase{"PointWithBlanks",
                  [] { return mount_at("/mnt/with a blank", "/etc", nullptr, MS_BIND); }},
        MountCase{"OverlayOverTheRoot",
                  [] {
                    mkdir("/mnt/upper", 0755);
                    mkdir("/mnt/work", 0755);
                    return mount_at("/mnt/o", "overlay", "overlay", 0,
                                    "lowerdir=/,upperdir=/mnt/upper,workdir=/mnt/work");
                  }}),
    [](const auto& row) { return row.param.name; });

TEST(RootVolume, IsListedOnce) {
  const std::string points = "\n" + mount_points();
  const size_t first = points.find("\n/\n");
  ASSERT_NE(std::string::npos, first);
  EXPECT_EQ(std::string::npos, points.find("\n/\n", first + 1));
}

}  // namespace
