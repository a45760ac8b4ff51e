// tests/system/readonlydisk_test.cpp: files on a disk that can only be read. Copies, folders and
// trees there: tests/fileutil/treemounts_test.cpp.
#include <array>
#include <string>

#include "fileutil/dirent.h"
#include "fileutil/filetree.h"
#include "fileutil/paths.h"
#include "fileutil/voxfio.h"
#include "portability/filehandle.h"
#include "tests/support/mount_namespace.h"
#include "tests/support/scoped_error_word.h"
#include "tests/support/temp_dir.h"
#include "tests/system/surroundings.h"

namespace {

using orbtest::ScopedErrorWord;

constexpr uint32_t kRead = 0x80000000;
constexpr uint32_t kWrite = 0x40000000;
constexpr uint32_t kDeleteOnClose = 0x4000000;
constexpr unsigned kFailure = 0x80000008;
constexpr int64_t kReadOnly = 19;  // of the last error

class ReadOnlyDisk : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.path(name); }
  std::function<bool()> shut() const {
    return [this] {
      if (!orbtest::cover(folder_.path())) return false;
      orbtest::write_file(path("file"), "text");
      return mount("none", folder_.path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    };
  }
  void* open_file(const char* name, uint32_t access, uint32_t disposition,
                  uint32_t flags = 0) const {
    return voxCreateFileAW(path(name).c_str(), access, 0, nullptr, disposition, flags, nullptr);
  }

 private:
  orbtest::TempDir folder_;
};

TEST_F(ReadOnlyDisk, OpensNothingForWriting) {
  EXPECT_IN(shut(), [this] {
    const ScopedErrorWord word;
    for (const uint32_t access : {kWrite, kRead | kWrite}) {
      for (const uint32_t disposition : {2U, 3U, 4U}) {
        EXPECT_EQ(nullptr, open_file("file", access, disposition)) << access << " " << disposition;
        EXPECT_EQ(kReadOnly, voxGetLastError()) << access << " " << disposition;
      }
      EXPECT_EQ(nullptr, open_file("fresh", access, 1));
      EXPECT_EQ(kReadOnly, voxGetLastError());
    }
    EXPECT_EQ(ScopedErrorWord::kUntouched, nErrno);
    auto* file = reinterpret_cast<_vxFile_t*>(this);
    EXPECT_EQ(kFailure, vxCreateFile(path("file").c_str(), kWrite, 0, 3, 0, &file));
    EXPECT_EQ(nullptr, file);
  });
}

TEST_F(ReadOnlyDisk, IsReadAndSearched) {
  EXPECT_IN(shut(), [this] {
    void* const file = open_file("file", kRead, 4);
    ASSERT_NE(nullptr, file) << "made only where it is missing";
    std::array<char, 8> text{};
    uint32_t count = 0;
    EXPECT_EQ(1, voxReadFile(file, text.data(), text.size(), &count, nullptr));
    EXPECT_STREQ("text", text.data());
    EXPECT_EQ(0, voxSetEndOfFile(file));
    EXPECT_EQ(0, voxWriteFile(file, "x", 1, &count, nullptr));
    EXPECT_EQ(1, voxCloseHandle(file));
    FindDataDirEnt found{};
    const int search = voxFindFirstDirEnt(path("f*").c_str(), &found);
    EXPECT_LE(1, search);
    EXPECT_STREQ("file", found.name);
    EXPECT_EQ(1, voxFindCloseDirEnt(search));
    std::string reached;
    EXPECT_TRUE(FileNameResolver(path("file")).GetAbsolutePath(reached));
  });
}

TEST_F(ReadOnlyDisk, AFileToBeRemovedStaysAndItsCloseFails) {
  EXPECT_IN(shut(), [this] {
    void* const file = open_file("file", kRead, 3, kDeleteOnClose);
    ASSERT_NE(nullptr, file);
    EXPECT_EQ(0, voxCloseHandle(file));
    EXPECT_EQ(kReadOnly, voxGetLastError());
    uint64_t size = 0;
    EXPECT_EQ(0U, voxcomn_get_file_sizeA(path("file").c_str(), &size));
    EXPECT_EQ(4U, size);
  });
}

TEST_F(ReadOnlyDisk, NamesStayAsTheyAre) {
  EXPECT_IN(shut(), [this] {
    EXPECT_EQ(0, voxMoveFile(path("file").c_str(), path("moved").c_str()));
    EXPECT_EQ(kReadOnly, voxGetLastError());
    std::array<char, 300> name{"old"};
    EXPECT_EQ(0U, voxGetTempFileName(path("").c_str(), "ab", 7, name.data()));
    EXPECT_STREQ("old", name.data());
    EXPECT_FALSE(voxcomn_copy_file(path("file").c_str(), path("copy").c_str(), 0));
    EXPECT_TRUE(vxFolderExists(path("").c_str()));
  });
}

}  // namespace
