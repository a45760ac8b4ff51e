// tests/portability/filehandle_test.cpp: Windows-style files over POSIX descriptors.
#include "portability/filehandle.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <string>

#include "tests/portability/handle_scope.h"
#include "tests/support/faults.h"
#include "tests/support/temp_dir.h"

namespace {

constexpr uint32_t kRead = 0x80000000, kWrite = 0x40000000, kBoth = 0xC0000000;
constexpr uint32_t kCreateNew = 1, kCreateAlways = 2, kOpenExisting = 3, kOpenAlways = 4;
constexpr uint32_t kRemoveAtClose = 0x4000000;

static_assert(offsetof(_voxFileRecord_t, deleteOnClose) == 4 &&
              offsetof(_voxFileRecord_t, endOfFile) == 8 &&
              offsetof(_voxFileRecord_t, path) == 12 && sizeof(_voxFileRecord_t::path) == 260);

_voxHandleObject_t* open_file(const std::string& path, uint32_t access, uint32_t disposition,
                              uint32_t flags = 0) {
  return voxCreateFileAW(path.c_str(), access, 0, nullptr, disposition, flags, nullptr);
}

_voxFileRecord_t* record_of(const _voxHandleObject_t* handle) {
  return static_cast<_voxFileRecord_t*>(handle->payload);
}

int open_descriptors() {
  int count = 0;
  for (int descriptor = 0; descriptor < 1024; ++descriptor)
    count += fcntl(descriptor, F_GETFD) != -1 ? 1 : 0;
  return count;
}

class FileHandle : public testing::Test {
 protected:
  void SetUp() override {
    nErrno = 0;
    descriptors_ = open_descriptors();
  }
  void TearDown() override { EXPECT_EQ(descriptors_, open_descriptors()) << "none stays open"; }

  orbtest::TempDir folder_;
  int descriptors_ = 0;
};

TEST_F(FileHandle, RecordsAreFilled) {
  const std::string path = folder_.write("file", "");
  _voxHandleObject_t* handle = open_file(path, kRead, kOpenExisting);
  ASSERT_NE(nullptr, handle);
  EXPECT_EQ(uint32_t{HANDLE_TYPE_FILE}, handle->kind);
  EXPECT_EQ(1, handle->references);
  EXPECT_EQ(0, handle->signalled);
  EXPECT_EQ(0, pthread_mutex_trylock(&handle->guard));
  pthread_mutex_unlock(&handle->guard);
  EXPECT_NE(-1, fcntl(record_of(handle)->descriptor, F_GETFD));
  EXPECT_EQ(0, record_of(handle)->deleteOnClose);
  EXPECT_EQ(0, record_of(handle)->endOfFile);
  EXPECT_EQ(path, record_of(handle)->path);
  EXPECT_EQ(1, voxCloseHandle(handle));
  EXPECT_EQ(0, nErrno);
}

struct RefusedCase {
  const char* name;
  uint32_t access, disposition, flags;
};

TEST_F(FileHandle, RefusedArgumentsStore22) {
  const RefusedCase cases[] = {
      {"access 0", 0, kOpenAlways, 0},
      {"access with another bit", kRead | 1, kOpenAlways, 0},
      {"access all (0x10000000)", 0x10000000, kOpenAlways, 0},
      {"disposition 0", kRead, 0, 0},
      {"disposition 5, truncate existing", kBoth, 5, 0},
      {"flags 1", kRead, kOpenAlways, 1},
      {"normal and remove together", kRead, kOpenAlways, kRemoveAtClose | 0x80},
  };
  const std::string path = folder_.path("never");
  for (const RefusedCase& each : cases) {
    nErrno = 0;
    EXPECT_EQ(nullptr, open_file(path, each.access, each.disposition, each.flags)) << each.name;
    EXPECT_EQ(22, nErrno) << each.name;
    EXPECT_FALSE(std::filesystem::exists(path)) << each.name;
  }
  nErrno = 0;
  EXPECT_EQ(nullptr, voxCreateFileAW(nullptr, kRead, 0, nullptr, kOpenAlways, 0, nullptr));
  EXPECT_EQ(22, nErrno);
}

struct OpenCase {
  const char* name;
  uint32_t disposition;
  bool exists;
  int error;         // errno, 0 when it opens
  const char* left;  // in the file after the open
};

TEST_F(FileHandle, DispositionsFollowTheTable) {
  const OpenCase cases[] = {
      {"create new makes a file", kCreateNew, false, 0, ""},
      {"create new refuses an existing file", kCreateNew, true, EEXIST, "old"},
      {"create always makes a file", kCreateAlways, false, 0, ""},
      {"create always empties a file", kCreateAlways, true, 0, ""},
      {"open existing needs a file", kOpenExisting, false, ENOENT, nullptr},
      {"open existing keeps a file", kOpenExisting, true, 0, "old"},
      {"open always makes a file", kOpenAlways, false, 0, ""},
      {"open always keeps a file", kOpenAlways, true, 0, "old"},
  };
  for (const OpenCase& each : cases) {
    SCOPED_TRACE(each.name);
    const std::string path = folder_.path("file");
    std::filesystem::remove(path);
    if (each.exists) folder_.write("file", "old");
    errno = 0;
    _voxHandleObject_t* handle = open_file(path, kBoth, each.disposition, 0x80);
    EXPECT_EQ(each.error, handle == nullptr ? errno : 0);
    EXPECT_EQ(each.error == 0, handle != nullptr);
    EXPECT_EQ(1, voxCloseHandle(handle));
    EXPECT_EQ(each.left != nullptr, std::filesystem::exists(path));
    if (each.left != nullptr) {
      EXPECT_EQ(strlen(each.left), std::filesystem::file_size(path));
    }
  }
  EXPECT_EQ(0, nErrno);
}

TEST_F(FileHandle, MissingFileIsCode38) {
  EXPECT_EQ(nullptr, open_file(folder_.path("missing"), kRead, kOpenExisting));
  EXPECT_EQ(38, voxGetLastError());
}

TEST_F(FileHandle, AccessDecidesWhatIsAllowed) {
  const struct {
    const char* name;
    uint32_t access;
    int reads, writes, flags;
  } cases[] = {{"read", kRead, 1, 0, O_RDONLY},
               {"write", kWrite, 0, 1, O_WRONLY},
               {"both", kBoth, 1, 1, O_RDWR}};
  const std::string path = folder_.write("file", "text");
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    _voxHandleObject_t* handle = open_file(path, each.access, kOpenExisting);
    ASSERT_NE(nullptr, handle);
    char byte = 'x';
    uint32_t count = 77;
    EXPECT_EQ(each.flags, fcntl(record_of(handle)->descriptor, F_GETFL) & O_ACCMODE);
    EXPECT_EQ(each.reads, voxReadFile(handle, &byte, 1, &count, nullptr));
    EXPECT_EQ(each.reads == 1 ? 1u : 77u, count) << "a failed read stores nothing";
    EXPECT_EQ(each.writes, voxWriteFile(handle, &byte, 1, &count, nullptr));
    EXPECT_EQ(1, voxCloseHandle(handle));
  }
  EXPECT_EQ(0, nErrno);
}

TEST_F(FileHandle, NewFilesHaveMode0660LessTheUmask) {
  const mode_t before = umask(0);
  _voxHandleObject_t* handle = open_file(folder_.path("file"), kWrite, kCreateNew);
  umask(before);
  struct stat status {};
  ASSERT_EQ(0, fstat(record_of(handle)->descriptor, &status));
  EXPECT_EQ(0660u, status.st_mode & 07777);
  EXPECT_EQ(1, voxCloseHandle(handle));
}

TEST_F(FileHandle, OnlyTheRemoveFlagRemovesAtClose) {
  for (const uint32_t flags : {0u, 0x80u, kRemoveAtClose}) {
    const std::string path = folder_.path("file");
    _voxHandleObject_t* handle = open_file(path, kWrite, kOpenAlways, flags);
    ASSERT_NE(nullptr, handle);
    EXPECT_EQ(flags == kRemoveAtClose ? 1 : 0, record_of(handle)->deleteOnClose);
    EXPECT_EQ(1, voxCloseHandle(handle));
    EXPECT_EQ(flags != kRemoveAtClose, std::filesystem::exists(path)) << flags;
  }
}

TEST_F(FileHandle, PathOf260BytesAndMoreFillsTheFieldAndIsRemovedWhole) {
  std::string deep = folder_.path();
  while (deep.size() < 190) deep += "/" + std::string(60, 'd');
  std::filesystem::create_directories(deep);
  const std::string cut = (deep + "/" + std::string(200, 'f')).substr(0, 260);
  const std::string path = deep + "/" + std::string(200, 'f');
  ASSERT_TRUE(std::ofstream(cut).put('x').good());
  _voxHandleObject_t* handle = open_file(path, kWrite, kCreateNew, kRemoveAtClose);
  ASSERT_NE(nullptr, handle);
  EXPECT_EQ(path.substr(0, 260), std::string(record_of(handle)->path, 260));
  EXPECT_EQ(1, voxCloseHandle(handle));
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_TRUE(std::filesystem::exists(cut)) << "no other file is removed";
}

TEST_F(FileHandle, PathOf259BytesIsTerminated) {
  std::string path = folder_.path();
  std::string name = "/" + std::string(120, 'a');
  std::filesystem::create_directories(path + name);
  path += name + "/";
  path += std::string(259 - path.size(), 'b');
  _voxHandleObject_t* handle = open_file(path, kWrite, kCreateNew);
  ASSERT_NE(nullptr, handle);
  EXPECT_EQ(path, record_of(handle)->path);
  EXPECT_EQ(1, voxCloseHandle(handle));
}

TEST_F(FileHandle, OpenWithoutMemoryClosesTheDescriptor) {
  const std::string path = folder_.write("file", "");
  const size_t requests = orbtest::for_each_memory_fault([&](size_t nth, orbtest::Failing failing) {
    _voxHandleObject_t* handle = nullptr;
    size_t failures = 0;
    nErrno = 0;
    {
      orbtest::MemoryFaults faults(nth, failing);
      handle =
          voxCreateFileAW(path.c_str(), kRead, 0, nullptr, kOpenAlways, kRemoveAtClose, nullptr);
      failures = faults.failures();
    }
    EXPECT_EQ(failures == 0, handle != nullptr) << nth;
    EXPECT_EQ(failures == 0 ? 0 : 12, nErrno) << nth;
    EXPECT_EQ(descriptors_ + (handle != nullptr ? 1 : 0), open_descriptors()) << nth;
    voxCloseHandle(handle);
    return failures;
  });
  EXPECT_EQ(3u, requests);  // handle, file record, path to remove
}

TEST_F(FileHandle, ReadsAndWritesOnce) {
  char buffer[16] = "";
  uint32_t words[2] = {7, 7};
  _voxHandleObject_t* handle = open_file(folder_.path("file"), kBoth, kCreateNew);
  EXPECT_EQ(1, voxWriteFile(handle, "abcdef", 6, words, nullptr));
  EXPECT_EQ(6u, words[0]);
  EXPECT_EQ(7u, words[1]) << "counts have 32 bits";
  EXPECT_EQ(0, voxSetFilePointer(handle, 0, nullptr, 0));
  EXPECT_EQ(1, voxReadFile(handle, buffer, sizeof buffer, words, nullptr));
  EXPECT_EQ(6u, words[0]);
  EXPECT_EQ(7u, words[1]);
  EXPECT_STREQ("abcdef", buffer);
  EXPECT_EQ(0, record_of(handle)->endOfFile);
  EXPECT_EQ(1, voxReadFile(handle, buffer, sizeof buffer, words, nullptr));
  EXPECT_EQ(0u, words[0]);
  EXPECT_EQ(1, record_of(handle)->endOfFile);
  EXPECT_EQ(1, voxWriteFile(handle, "", 0, words, nullptr));
  EXPECT_EQ(1, voxCloseHandle(handle));
}

TEST_F(FileHandle, CountsNeedNotBeAskedFor) {
  char buffer[4] = "";
  _voxHandleObject_t* handle = open_file(folder_.path("file"), kBoth, kCreateNew);
  EXPECT_EQ(1, voxWriteFile(handle, "abc", 3, nullptr, nullptr));
  EXPECT_EQ(0, voxSetFilePointer(handle, 0, nullptr, 0));
  EXPECT_EQ(1, voxReadFile(handle, buffer, sizeof buffer, nullptr, nullptr));
  EXPECT_STREQ("abc", buffer);
  EXPECT_EQ(1, voxCloseHandle(handle));
}

TEST_F(FileHandle, HandlesWithoutFileRecordStore22) {
  char byte = 0;
  uint32_t count = 7;
  const orbtest::Handle event = orbtest::make_event();
  const orbtest::Handle mutex = orbtest::make_mutex();
  const struct {
    const char* name;
    void* handle;
  } cases[] = {{"null", nullptr},
               {"all ones", reinterpret_cast<void*>(intptr_t{-1})},
               {"an event, which has no payload", event.get()},
               {"a mutex, whose payload is no file record", mutex.get()}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    nErrno = 0;
    EXPECT_EQ(0, voxReadFile(each.handle, &byte, 1, &count, nullptr));
    EXPECT_EQ(22, nErrno);
    nErrno = 0;
    EXPECT_EQ(0, voxWriteFile(each.handle, &byte, 1, &count, nullptr));
    EXPECT_EQ(22, nErrno);
    nErrno = 0;
    EXPECT_EQ(-1, voxGetFileSize(each.handle, &count));
    EXPECT_EQ(22, nErrno);
    nErrno = 0;
    EXPECT_EQ(0, voxSetEndOfFile(each.handle));
    EXPECT_EQ(22, nErrno);
  }
  EXPECT_EQ(7u, count);
}

TEST_F(FileHandle, PointerMovesByMethod) {
  int32_t high = 7;
  _voxHandleObject_t* handle = open_file(folder_.write("file", "0123456789"), kRead, kOpenExisting);
  EXPECT_EQ(4, voxSetFilePointer(handle, 4, &high, 0));
  EXPECT_EQ(6, voxSetFilePointer(handle, 2, &high, 1));
  EXPECT_EQ(7, voxSetFilePointer(handle, -3, &high, 2));
  EXPECT_EQ(int64_t{5} << 32, voxSetFilePointer(handle, int64_t{5} << 32, &high, 0));
  EXPECT_EQ(-1, voxSetFilePointer(handle, -1, &high, 0));
  EXPECT_EQ(EINVAL, errno);
  EXPECT_EQ(-1, voxSetFilePointer(handle, 0, &high, 99));
  EXPECT_EQ(7, high) << "never written";
  EXPECT_EQ(1, voxCloseHandle(handle));
}

TEST_F(FileHandle, EndIsSetAtThePosition) {
  const struct {
    const char* name;
    int64_t position;
    int result;
    int64_t size;  // afterwards; 10 before
  } cases[] = {{"cut", 4, 1, 4},
               {"extended", 100, 1, 100},
               {"QuirkPositionIsCutTo32Bits", (int64_t{1} << 32) + 5, 1, 5},
               {"QuirkFrom2GiBOnItIsNegative", int64_t{1} << 31, 0, 10}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    _voxHandleObject_t* handle =
        open_file(folder_.write("file", "0123456789"), kBoth, kOpenExisting);
    ASSERT_EQ(each.position, voxSetFilePointer(handle, each.position, nullptr, 0));
    EXPECT_EQ(each.result, voxSetEndOfFile(handle));
    EXPECT_EQ(each.size, voxGetFileSize(handle, nullptr));
    EXPECT_EQ(1, voxCloseHandle(handle));
  }
}

TEST_F(FileHandle, EndCannotBeSetOnAReadOnlyFileOrAPipe) {
  _voxHandleObject_t* handle = open_file(folder_.write("file", "text"), kRead, kOpenExisting);
  EXPECT_EQ(0, voxSetEndOfFile(handle));
  EXPECT_EQ(1, voxCloseHandle(handle));
  ASSERT_EQ(0, mkfifo(folder_.path("pipe").c_str(), 0600));
  handle = open_file(folder_.path("pipe"), kBoth, kOpenExisting);
  EXPECT_EQ(0, voxSetEndOfFile(handle));
  EXPECT_EQ(1, voxCloseHandle(handle));
}

TEST_F(FileHandle, QuirkHighPartIsTheSizeDividedBy65535) {
  const struct {
    int64_t size;
    uint32_t high;
  } cases[] = {{0, 0},
               {65534, 0},
               {65535, 1},
               {65536, 1},
               {131069, 1},
               {131070, 2},
               {int64_t{6} << 32, 393222}};  // 2^32 = 65537 * 65535 + 1
  for (const auto& each : cases) {
    const std::string path = folder_.write("file", "");
    std::filesystem::resize_file(path, static_cast<uintmax_t>(each.size));
    _voxHandleObject_t* handle = open_file(path, kRead, kOpenExisting);
    uint32_t high = 99;
    EXPECT_EQ(each.size, voxGetFileSize(handle, &high));
    EXPECT_EQ(each.high, high) << each.size;
    EXPECT_EQ(1, voxCloseHandle(handle));
  }
}

TEST_F(FileHandle, FailuresOfTheSystemGiveTheirNeutralValue) {
  _voxHandleObject_t* handle = open_file(folder_.write("file", "text"), kBoth, kOpenExisting);
  const int descriptor = record_of(handle)->descriptor;
  record_of(handle)->descriptor = -1;  // as a closed one
  char byte = 0;
  uint32_t word = 7;
  EXPECT_EQ(0, voxReadFile(handle, &byte, 1, &word, nullptr));
  EXPECT_EQ(0, voxWriteFile(handle, &byte, 1, &word, nullptr));
  EXPECT_EQ(-1, voxGetFileSize(handle, &word));
  EXPECT_EQ(-1, voxSetFilePointer(handle, 0, nullptr, 0));
  EXPECT_EQ(0, voxSetEndOfFile(handle));
  EXPECT_EQ(7u, word);
  EXPECT_EQ(126, voxGetLastError()) << "EBADF";
  EXPECT_EQ(0, nErrno);
  record_of(handle)->descriptor = descriptor;
  EXPECT_EQ(1, voxCloseHandle(handle));
}

}  // namespace
