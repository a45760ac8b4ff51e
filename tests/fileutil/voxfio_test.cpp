// tests/fileutil/voxfio_test.cpp: the small file object and the folder test.
#include "fileutil/voxfio.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/faults.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/scoped_error_word.h"
#include "tests/support/scoped_file_user.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using orbtest::Failing;
using orbtest::MemoryFaults;

constexpr uint32_t kRead = 0x80000000, kWrite = 0x40000000, kBoth = 0xC0000000;
constexpr uint32_t kCreateNew = 1, kCreateAlways = 2, kOpenExisting = 3;
constexpr uint32_t kRemoveAtClose = 0x4000000;
constexpr uint32_t kFailed = 0x80000008;

static_assert(offsetof(_vxFile_t, operations) == 0);
static_assert(offsetof(_vxFile_t, handle) == sizeof(void*) &&
              sizeof(_vxFile_t) == 2 * sizeof(void*));
static_assert(offsetof(_vxFileOperations_t, close) == 0);
static_assert(offsetof(_vxFileOperations_t, read) == sizeof(void*));
static_assert(offsetof(_vxFileOperations_t, write) == 2 * sizeof(void*));
static_assert(offsetof(_vxFileOperations_t, size) == 3 * sizeof(void*));

class SmallFile : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(descriptors_, orbtest::open_descriptors()); }

  // Null when it cannot be opened.
  static _vxFile_t* open(const std::string& path, uint32_t access, uint32_t disposition,
                         uint32_t flags = 0) {
    _vxFile_t* file = nullptr;
    const uint32_t status = vxCreateFile(path.c_str(), access, 0, disposition, flags, &file);
    EXPECT_EQ(file != nullptr ? 0 : kFailed, status);
    return file;
  }

  orbtest::TempDir folder_;
  orbtest::ScopedErrorWord word_;
  std::set<std::string> descriptors_ = orbtest::open_descriptors();
};

TEST_F(SmallFile, TheTableHoldsTheFunctions) {
  _vxFile_t* file = open(folder_.path("file"), kBoth, kCreateNew);
  ASSERT_NE(nullptr, file);
  EXPECT_EQ(&vxCloseFile, file->operations->close);
  EXPECT_EQ(&vxReadFile, file->operations->read);
  EXPECT_EQ(&vxWriteFile, file->operations->write);
  EXPECT_EQ(&vxGetFileSize, file->operations->size);
  EXPECT_EQ(uint32_t{HANDLE_TYPE_FILE}, file->handle->kind);
  EXPECT_EQ(0u, file->operations->close(file));
}

TEST_F(SmallFile, EachObjectHasATableOfItsOwn) {
  _vxFile_t* first = open(folder_.path("file"), kBoth, kCreateNew);
  _vxFile_t* second = open(folder_.path("file"), kRead, kOpenExisting);
  EXPECT_NE(first->operations, second->operations);
  EXPECT_EQ(0u, vxCloseFile(first));
  uint64_t size = 7;
  EXPECT_EQ(0u, second->operations->size(second, &size)) << "outlives the other's";
  EXPECT_EQ(0u, size);
  EXPECT_EQ(0u, vxCloseFile(second));
}

TEST_F(SmallFile, WritesThroughTheTableAndReadsThroughTheFunctions) {
  char buffer[8] = "";
  unsigned count = 0;
  uint64_t size = 0;
  _vxFile_t* file = open(folder_.path("file"), kBoth, kCreateNew, 0x80);
  EXPECT_EQ(0u, file->operations->write(file, "abcdef", 6, &count));
  EXPECT_EQ(6u, count);
  EXPECT_EQ(0u, vxGetFileSize(file, &size));
  EXPECT_EQ(6u, size);
  EXPECT_EQ(0, voxSetFilePointer(file->handle, 0, nullptr, 0));
  EXPECT_EQ(0u, vxReadFile(file, buffer, 4, &count));
  EXPECT_EQ(4u, count);
  EXPECT_STREQ("abcd", buffer);
  EXPECT_EQ(0u, file->operations->read(file, buffer, 4, &count)) << "fewer bytes are a success";
  EXPECT_EQ(2u, count);
  EXPECT_EQ(0u, vxCloseFile(file));
}

TEST_F(SmallFile, QuirkTheEndOfTheFileIsAFailure) {
  char byte = '#';
  unsigned count = 7;
  _vxFile_t* file = open(folder_.write("file", ""), kRead, kOpenExisting);
  EXPECT_EQ(kFailed, vxReadFile(file, &byte, 1, &count));
  EXPECT_EQ(0u, count);
  EXPECT_EQ('#', byte);
  EXPECT_EQ(0u, vxCloseFile(file));
}

TEST_F(SmallFile, QuirkACountOf0IsAFailureToRead) {
  char byte = '#';
  unsigned count = 7;
  _vxFile_t* file = open(folder_.write("file", "text"), kRead, kOpenExisting);
  EXPECT_EQ(kFailed, vxReadFile(file, &byte, 0, &count));
  EXPECT_EQ(0u, count);
  EXPECT_EQ(0u, vxReadFile(file, &byte, 1, &count)) << "and nothing is lost";
  EXPECT_EQ('t', byte);
  EXPECT_EQ(0u, vxCloseFile(file));
}

TEST_F(SmallFile, FailuresStoreNoCount) {
  const std::string path = folder_.write("file", "text");
  char byte = '#';
  unsigned count = 7;
  _vxFile_t* reading = open(path, kRead, kOpenExisting);
  _vxFile_t* writing = open(path, kWrite, kOpenExisting);
  EXPECT_EQ(kFailed, vxWriteFile(reading, &byte, 1, &count)) << "not opened for writing";
  EXPECT_EQ(kFailed, vxReadFile(writing, &byte, 1, &count)) << "not opened for reading";
  EXPECT_EQ(kFailed, vxReadFile(reading, &byte, -1, &count)) << "a negative count";
  EXPECT_EQ(kFailed, vxWriteFile(writing, &byte, -1, &count));
  EXPECT_EQ(kFailed, vxReadFile(nullptr, &byte, 1, &count)) << "no object";
  EXPECT_EQ(kFailed, vxWriteFile(nullptr, &byte, 1, &count));
  EXPECT_EQ(7u, count);
  EXPECT_EQ('#', byte);
  EXPECT_EQ(0u, vxCloseFile(reading));
  EXPECT_EQ(0u, vxCloseFile(writing));
  EXPECT_EQ(4u, fs::file_size(path));
}

TEST_F(SmallFile, CountsHave32BitsAndMayBeNull) {
  unsigned words[2] = {7, 7};
  char byte = 0;
  _vxFile_t* file = open(folder_.path("file"), kBoth, kCreateNew);
  EXPECT_EQ(0u, vxWriteFile(file, "ab", 2, words));
  EXPECT_EQ(0u, vxWriteFile(file, "c", 1, nullptr));
  voxSetFilePointer(file->handle, 0, nullptr, 0);
  EXPECT_EQ(0u, vxReadFile(file, &byte, 1, words));
  EXPECT_EQ(1u, words[0]);
  EXPECT_EQ(7u, words[1]) << "nothing behind the count is written";
  EXPECT_EQ(0u, vxReadFile(file, &byte, 1, nullptr));
  EXPECT_EQ('b', byte);
  EXPECT_EQ(0u, vxCloseFile(file));
}

TEST_F(SmallFile, WritingNothingIsASuccess) {
  unsigned count = 7;
  _vxFile_t* file = open(folder_.path("file"), kWrite, kCreateNew);
  EXPECT_EQ(0u, vxWriteFile(file, "", 0, &count));
  EXPECT_EQ(0u, count);
  EXPECT_EQ(0u, vxCloseFile(file));
}

struct CreateCase {
  const char* name;
  const char* file;
  uint32_t access, disposition, flags;
  int64_t stored;  // in nErrno
};

TEST_F(SmallFile, WhatCannotBeOpenedGivesNull) {
  folder_.write("file", "");
  const CreateCase cases[] = {
      {"a missing file", "missing", kRead, kOpenExisting, 0, word_.kUntouched},
      {"create new on an existing file", "file", kWrite, kCreateNew, 0, word_.kUntouched},
      {"a folder opened for writing", "", kWrite, kOpenExisting, 0, word_.kUntouched},
      {"access 0", "file", 0, kOpenExisting, 0, 22},
      {"disposition 5", "file", kBoth, 5, 0, 22},
      {"an unknown flag", "file", kRead, kOpenExisting, 1, 22},
  };
  for (const CreateCase& each : cases) {
    word_.clear();
    _vxFile_t stays{};
    _vxFile_t* file = &stays;
    EXPECT_EQ(kFailed, vxCreateFile(folder_.path(each.file).c_str(), each.access, 0,
                                    each.disposition, each.flags, &file))
        << each.name;
    EXPECT_EQ(nullptr, file) << each.name;
    EXPECT_EQ(each.stored, word_.stored()) << each.name;
  }
}

TEST_F(SmallFile, NullArgumentsFail) {
  _vxFile_t stays{};
  _vxFile_t* file = &stays;
  EXPECT_EQ(kFailed, vxCreateFile(nullptr, kRead, 0, kOpenExisting, 0, &file));
  EXPECT_EQ(nullptr, file);
  EXPECT_EQ(kFailed, vxCreateFile(folder_.path("a").c_str(), kWrite, 0, kCreateNew, 0, nullptr));
  EXPECT_FALSE(fs::exists(folder_.path("a"))) << "nothing is opened";
  uint64_t size = 7;
  EXPECT_EQ(kFailed, vxGetFileSize(nullptr, &size));
  EXPECT_EQ(7u, size);
  EXPECT_EQ(0u, vxCloseFile(nullptr)) << "there is nothing to close";
}

TEST_F(SmallFile, ShareModesAreIgnored) {
  _vxFile_t* file = nullptr;
  for (const uint32_t share : {0u, 1u, 0xFFFFFFFFu}) {
    ASSERT_EQ(0u,
              vxCreateFile(folder_.path("file").c_str(), kWrite, share, kCreateAlways, 0, &file));
    EXPECT_EQ(0u, vxCloseFile(file));
  }
}

TEST_F(SmallFile, ClosingRemovesAFileThatIsToGo) {
  const std::string path = folder_.path("file");
  _vxFile_t* file = open(path, kWrite, kCreateNew, kRemoveAtClose);
  EXPECT_TRUE(fs::exists(path));
  EXPECT_EQ(0u, vxCloseFile(file));
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(SmallFile, AFailingCloseIsTold) {
  _vxFile_t* file = open(folder_.path("file"), kWrite, kCreateNew);
  // Keeps what a failing close leaves allocated.
  static _voxHandleObject_t* kept = nullptr;
  kept = file->handle;
  close(static_cast<_voxFileRecord_t*>(kept->payload)->descriptor);
  EXPECT_EQ(kFailed, vxCloseFile(file)) << "the descriptor is gone";
}

struct SizeCase {
  const char* name;
  int64_t size;
  uint32_t status;
};

TEST_F(SmallFile, SizesHave64Bits) {
  const SizeCase cases[] = {
      {"empty", 0, 0},
      {"one byte", 1, 0},
      {"two below 4 GiB", 4294967294, 0},
      {"Quirk: 4294967295 bytes fail", 4294967295, kFailed},
      {"4 GiB", 4294967296, 0},
      {"8 GiB less one", 8589934591, 0},
  };
  for (const SizeCase& each : cases) {
    _vxFile_t* file = open(folder_.path("file"), kWrite, kCreateAlways);
    ASSERT_NE(nullptr, file);
    ASSERT_EQ(0, truncate(folder_.path("file").c_str(), each.size)) << each.name;
    uint64_t size = 7;
    EXPECT_EQ(each.status, vxGetFileSize(file, &size)) << each.name;
    EXPECT_EQ(static_cast<uint64_t>(each.size), size) << each.name;
    EXPECT_EQ(kFailed, vxGetFileSize(file, nullptr)) << each.name;
    EXPECT_EQ(0u, vxCloseFile(file));
  }
}

TEST_F(SmallFile, ASizeThatCannotBeHadIsAllOnes) {
  _vxFile_t* file = open(folder_.path("file"), kWrite, kCreateNew);
  auto* record = static_cast<_voxFileRecord_t*>(file->handle->payload);
  const int descriptor = record->descriptor;
  record->descriptor = -1;
  uint64_t size = 7;
  EXPECT_EQ(kFailed, vxGetFileSize(file, &size));
  EXPECT_EQ(UINT64_MAX, size);
  record->descriptor = descriptor;
  EXPECT_EQ(0u, vxCloseFile(file));
}

TEST_F(SmallFile, WithoutMemoryNothingIsOpened) {
  const std::string path = folder_.path("file");
  const size_t requests = orbtest::for_each_memory_fault([&](size_t nth, Failing failing) {
    _vxFile_t* file = nullptr;
    uint32_t status = 0;
    size_t failures = 0;
    {
      MemoryFaults faults(nth, failing);
      status = vxCreateFile(path.c_str(), kWrite, 0, kCreateAlways, kRemoveAtClose, &file);
      failures = faults.failures();
    }
    EXPECT_EQ(failures == 0 ? 0 : kFailed, status) << nth;
    EXPECT_EQ(failures == 0, file != nullptr) << nth;
    vxCloseFile(file);
    EXPECT_EQ(descriptors_, orbtest::open_descriptors()) << nth;
    return failures;
  });
  EXPECT_EQ(5u, requests);  // object, table, handle, file record, path to remove
}

// Folders.

struct FolderCase {
  const char* name;
  std::string path;
  bool exists;
};

TEST_F(SmallFile, FolderExistsTellsFolders) {
  folder_.write("file", "");
  const std::string folder = folder_.make_dir("folder");
  const std::string backslashed = folder_.make_dir("folder\\");
  fs::create_symlink("folder", folder_.path("link"));
  fs::create_symlink("file", folder_.path("file_link"));
  fs::create_symlink("missing", folder_.path("dangling"));
  folder_.make_dir("one\\");
  const FolderCase cases[] = {
      {"a folder", folder, true},
      {"a slash at the end is left, and is no harm", folder + "/", true},
      {"a link to a folder", folder_.path("link"), true},
      {"the root", "/", true},
      {"a file", folder_.path("file"), false},
      {"a link to a file", folder_.path("file_link"), false},
      {"nothing", folder_.path("missing"), false},
      {"a dangling link", folder_.path("dangling"), false},
      {"an empty text", "", false},
      {"Quirk: one backslash at the end is taken off", folder + "\\", true},
      {"Quirk: only one backslash is taken off", folder_.path("one") + "\\\\", true},
      {"Quirk: a folder whose name ends with one is not found so", folder_.path("one") + "\\",
       false},
      {"Quirk: a backslash behind a file", folder_.path("file") + "\\", false},
      {"Quirk: a backslash alone leaves an empty text", "\\", false},
      {"Quirk: a backslash behind the root", "/\\", true},
  };
  for (const FolderCase& each : cases)
    EXPECT_EQ(each.exists, vxFolderExists(each.path.c_str())) << each.name;
  EXPECT_EQ(word_.kUntouched, word_.stored());
}

TEST_F(SmallFile, FolderExistsLooksAt259Bytes) {
  std::string path = fs::canonical(folder_.path()).string() + "/" + std::string(180, 'a');
  path += "/" + std::string(259 - path.size() - 1, 'b');
  ASSERT_EQ(259u, path.size());
  fs::create_directories(path);
  EXPECT_TRUE(vxFolderExists(path.c_str()));
  EXPECT_TRUE(vxFolderExists((path + "more").c_str())) << "what follows is cut";
  EXPECT_TRUE(vxFolderExists((path + std::string(100000, '/')).c_str()));
  fs::remove(path);
  fs::create_directories(path.substr(0, 258));
  EXPECT_TRUE(vxFolderExists((path.substr(0, 258) + "\\more").c_str()))
      << "the backslash is looked for at the end of what is left";
}

TEST_F(SmallFile, FolderExistsNeedsTheRightToLook) {
  const std::string inner = folder_.make_dir("shut/inner");
  ASSERT_EQ(0, chmod(folder_.path().c_str(), 0755));
  ASSERT_EQ(0, chmod(folder_.path("shut").c_str(), 0600));
  {
    const orbtest::ScopedFileUser other;
    EXPECT_TRUE(vxFolderExists(folder_.path("shut").c_str()));
    EXPECT_FALSE(vxFolderExists(inner.c_str()));
  }
  ASSERT_EQ(0, chmod(folder_.path("shut").c_str(), 0700));
}

TEST(SmallFileDeathTest, ANullFolderIsAFailedAssertion) {
  EXPECT_DEATH(vxFolderExists(nullptr),
               "\\.\\./source/voxfio:190: vxFolderExists: Assertion `lpszFolder' failed");
}

}  // namespace
