// tests/system/fulldisk_test.cpp: files on a disk of four pages, and on one without room for names.
#include <sys/stat.h>

#include <array>
#include <cstring>
#include <string>

#include "fileutil/filetree.h"
#include "fileutil/voxfio.h"
#include "portability/filehandle.h"
#include "tests/support/scoped_error_word.h"
#include "tests/support/temp_dir.h"
#include "tests/system/surroundings.h"

namespace {

using orbtest::ScopedErrorWord;

constexpr uint32_t kReadAndWrite = 0xC0000000;
constexpr uint32_t kCreateAlways = 2;
constexpr uint32_t kCreateNew = 1;
constexpr unsigned kFailure = 0x80000008;
constexpr int64_t kNoRoom = 259;   // of the last error
constexpr uint32_t kDisk = 16384;  // bytes

void* create(const std::string& path, uint32_t disposition = kCreateNew) {
  return voxCreateFileAW(path.c_str(), kReadAndWrite, 0, nullptr, disposition, 0, nullptr);
}

class FullDisk : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.path(name); }
  // Takes all of the disk.
  void fill() const { write_all(path("filler"), 2 * kDisk); }
  std::function<bool()> small() const {
    return [this] { return orbtest::cover(folder_.path(), "size=16k"); };
  }
  // Room for the names that are there and for one more.
  std::function<bool()> nameless() const {
    return [this] { return orbtest::cover(folder_.path(), "nr_inodes=2"); };
  }

  static void write_all(const std::string& path, uint32_t size) {
    void* const file = create(path, kCreateAlways);
    ASSERT_NE(nullptr, file);
    const std::string bytes(size, 'x');
    uint32_t count = 0;
    while (voxWriteFile(file, bytes.data(), size, &count, nullptr) == 1) {
    }
    EXPECT_EQ(1, voxCloseHandle(file));
  }

 private:
  orbtest::TempDir folder_;
};

TEST_F(FullDisk, AWriteGivesWhatFitsAndThenFails) {
  EXPECT_IN(small(), [this] {
    void* const file = create(path("file"));
    ASSERT_NE(nullptr, file);
    const std::string bytes(2 * kDisk, 'x');
    uint32_t count = 4711;
    const ScopedErrorWord word;
    EXPECT_EQ(1, voxWriteFile(file, bytes.data(), 2 * kDisk, &count, nullptr));
    EXPECT_EQ(kDisk, count);
    count = 4711;
    EXPECT_EQ(0, voxWriteFile(file, bytes.data(), 1, &count, nullptr));
    EXPECT_EQ(kNoRoom, voxGetLastError());
    EXPECT_EQ(4711U, count);
    EXPECT_EQ(ScopedErrorWord::kUntouched, nErrno);
    EXPECT_EQ(kDisk, voxGetFileSize(file, nullptr));
    EXPECT_EQ(0, voxSetFilePointer(file, 0, nullptr, 0));
    EXPECT_EQ(1, voxSetEndOfFile(file)) << "what is cut off makes room";
    EXPECT_EQ(1, voxWriteFile(file, bytes.data(), 1, &count, nullptr));
    EXPECT_EQ(1, voxCloseHandle(file));
  });
}

TEST_F(FullDisk, AFileObjectFailsToWrite) {
  EXPECT_IN(small(), [this] {
    fill();
    _vxFile_t* file = nullptr;
    ASSERT_EQ(0U, vxCreateFile(path("file").c_str(), kReadAndWrite, 0, kCreateNew, 0, &file));
    unsigned count = 4711;
    EXPECT_EQ(kFailure, vxWriteFile(file, "x", 1, &count));
    uint64_t size = 4711;
    EXPECT_EQ(0U, vxGetFileSize(file, &size));
    EXPECT_EQ(0U, size);
    EXPECT_EQ(0U, vxCloseFile(file));
  });
}

TEST_F(FullDisk, HasNoFreeSpaceAndIsStillRead) {
  EXPECT_IN(small(), [this] {
    fill();
    uint64_t space = 4711;
    EXPECT_EQ(0U, voxcomn_get_disk_free_spaceA(path("filler").c_str(), &space));
    EXPECT_EQ(0U, space);
    EXPECT_EQ(0U, voxcomn_get_file_sizeA(path("filler").c_str(), &space));
    EXPECT_EQ(kDisk, space);
    EXPECT_EQ(1, voxMoveFile(path("filler").c_str(), path("moved").c_str()));
    EXPECT_FALSE(voxcomn_copy_file(path("moved").c_str(), path("copy").c_str(), 0));
    EXPECT_EQ(0U, voxcomn_get_file_sizeA(path("copy").c_str(), &space)) << "what was made stays";
  });
}

TEST_F(FullDisk, WithoutRoomForNamesNothingIsMade) {
  EXPECT_IN(nameless(), [this] {
    void* const only = create(path("only"));
    ASSERT_NE(nullptr, only);
    EXPECT_EQ(1, voxCloseHandle(only));
    const ScopedErrorWord word;
    EXPECT_EQ(nullptr, create(path("second")));
    EXPECT_EQ(kNoRoom, voxGetLastError());
    EXPECT_EQ(ScopedErrorWord::kUntouched, nErrno);
    auto* file = reinterpret_cast<_vxFile_t*>(this);
    EXPECT_EQ(kFailure,
              vxCreateFile(path("second").c_str(), kReadAndWrite, 0, kCreateNew, 0, &file));
    EXPECT_EQ(nullptr, file);
    std::array<char, 300> name{"old"};
    EXPECT_EQ(0U, voxGetTempFileName(path("").c_str(), "ab", 7, name.data()));
    EXPECT_STREQ("old", name.data());
    voxcomn_MakeRecursiveDirectoryA(path("a/b/").c_str());
    EXPECT_FALSE(vxFolderExists(path("a").c_str()));
    EXPECT_FALSE(voxcomn_copy_file(path("only").c_str(), path("second").c_str(), 1));
    EXPECT_EQ(1, voxMoveFile(path("only").c_str(), path("second").c_str()));
  });
}

}  // namespace
