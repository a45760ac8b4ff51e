// tests/portability/fileclose_test.cpp: what closing does to a file and to its record.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "portability/filehandle.h"
#include "tests/support/scoped_error_word.h"
#include "tests/support/temp_dir.h"

namespace {

using orbtest::ScopedErrorWord;

constexpr uint32_t kBoth = 0xC0000000, kOpenAlways = 4;
constexpr uint32_t kNormal = 0x80, kRemoveAtClose = 0x4000000;

_voxHandleObject_t* open_file(const std::string& path, uint32_t flags) {
  return voxCreateFileAW(path.c_str(), kBoth, 0, nullptr, kOpenAlways, flags, nullptr);
}

_voxFileRecord_t* record_of(const _voxHandleObject_t* handle) {
  return static_cast<_voxFileRecord_t*>(handle->payload);
}

TEST(FileClose, ThatFailsKeepsTheRecordAndTheFile) {
  const orbtest::TempDir folder;
  _voxHandleObject_t* handle = open_file(folder.path("file"), kRemoveAtClose);
  const int descriptor = record_of(handle)->descriptor;
  record_of(handle)->descriptor = -1;
  ScopedErrorWord word;
  EXPECT_EQ(voxCloseHandle(handle), 0);
  EXPECT_EQ(voxGetLastError(), 126) << "EBADF";
  EXPECT_EQ(word.stored(), ScopedErrorWord::kUntouched);
  EXPECT_EQ(handle->references, 0);
  EXPECT_EQ(record_of(handle)->deleteOnClose, 1);
  EXPECT_TRUE(std::filesystem::exists(folder.path("file")));
  record_of(handle)->descriptor = descriptor;
  handle->references = 1;
  EXPECT_EQ(voxCloseHandle(handle), 1);
  EXPECT_FALSE(std::filesystem::exists(folder.path("file")));
}

TEST(FileClose, WhoseRemovalFailsKeepsTheRecordOfAClosedFile) {
  const orbtest::TempDir folder;
  _voxHandleObject_t* handle = open_file(folder.path("file"), kRemoveAtClose);
  const int descriptor = record_of(handle)->descriptor;
  std::filesystem::remove(folder.path("file"));
  ScopedErrorWord word;
  EXPECT_EQ(voxCloseHandle(handle), 0);
  EXPECT_EQ(voxGetLastError(), 38) << "ENOENT";
  EXPECT_EQ(word.stored(), ScopedErrorWord::kUntouched);
  EXPECT_EQ(record_of(handle)->descriptor, descriptor);
  EXPECT_EQ(fcntl(descriptor, F_GETFD), -1) << "closed before the removal";
  record_of(handle)->descriptor = open(folder.write("file", "").c_str(), O_RDONLY);
  handle->references = 1;
  EXPECT_EQ(voxCloseHandle(handle), 1);
  EXPECT_FALSE(std::filesystem::exists(folder.path("file")));
}

TEST(FileClose, RemovesWhatTheRecordMarksThen) {
  const struct {
    const char* name;
    uint32_t flags;
    int32_t mark;
    bool stays;
  } cases[] = {{"marked after the open", kNormal, 1, false},
               {"no longer marked", kRemoveAtClose, 0, true},
               {"only 1 is a mark", kNormal, 2, true}};
  const orbtest::TempDir folder;
  for (const auto& each : cases) {
    _voxHandleObject_t* handle = open_file(folder.path("file"), each.flags);
    record_of(handle)->deleteOnClose = each.mark;
    EXPECT_EQ(voxCloseHandle(handle), 1) << each.name;
    EXPECT_EQ(std::filesystem::exists(folder.path("file")), each.stays) << each.name;
  }
}

TEST(FileClose, NeverRemovesByAPathThatTheFieldDoesNotHold) {
  const orbtest::TempDir folder;
  const std::string part(120, 'd');
  const std::string path = folder.make_dir(part + "/" + part) + "/" + std::string(100, 'f');
  _voxHandleObject_t* handle = open_file(path, kNormal);
  record_of(handle)->deleteOnClose = 1;
  EXPECT_EQ(voxCloseHandle(handle), 0);
  EXPECT_EQ(errno, ENAMETOOLONG);
  EXPECT_TRUE(std::filesystem::exists(path));
  record_of(handle)->deleteOnClose = 0;
  record_of(handle)->descriptor = open(path.c_str(), O_RDONLY);
  handle->references = 1;
  EXPECT_EQ(voxCloseHandle(handle), 1);
}

TEST(FileClose, OfAHandleWithoutRecordGivesZeroAndKeepsTheHandle) {
  _voxHandleObject_t* handle = voxCreateEvent(nullptr, 1, 0, nullptr);
  handle->kind = HANDLE_TYPE_FILE;
  EXPECT_EQ(voxCloseHandle(handle), 0);
  handle->kind = HANDLE_TYPE_EVENT;
  handle->references = 1;
  EXPECT_EQ(voxCloseHandle(handle), 1);
}

TEST(FileClose, WithAReferenceLeftKeepsTheFileOpen) {
  const orbtest::TempDir folder;
  _voxHandleObject_t* handle = open_file(folder.path("file"), kRemoveAtClose);
  handle->references = 2;
  EXPECT_EQ(voxCloseHandle(handle), 1);
  uint32_t count = 0;
  EXPECT_EQ(voxWriteFile(handle, "x", 1, &count, nullptr), 1);
  EXPECT_TRUE(std::filesystem::exists(folder.path("file")));
  EXPECT_EQ(voxCloseHandle(handle), 1);
  EXPECT_FALSE(std::filesystem::exists(folder.path("file")));
}

}  // namespace
