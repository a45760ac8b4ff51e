// tests/portability/errorwords_test.cpp: the process-wide error word and the codes of errno.
#include "portability/errorwords.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "portability/handles.h"
#include "tests/support/scoped_error_word.h"

namespace {

constexpr int64_t kUnmapped = static_cast<int64_t>(0xFFFFFFFF80000008u);

struct CodeRow {
  const char* name;
  int number;
  int64_t code;
};

const CodeRow kCodes[] = {
    {"no error", 0, 0},        {"ENOENT", ENOENT, 38},    {"EIO", EIO, 38},
    {"ENXIO", ENXIO, 38},      {"ENOLCK", ENOLCK, 38},    {"ESRCH", ESRCH, 126},
    {"EINTR", EINTR, 126},     {"EBADF", EBADF, 126},     {"ENODEV", ENODEV, 126},
    {"E2BIG", E2BIG, 259},     {"ENOMEM", ENOMEM, 259},   {"ENFILE", ENFILE, 259},
    {"EMFILE", EMFILE, 259},   {"EFBIG", EFBIG, 259},     {"ENOSPC", ENOSPC, 259},
    {"EMLINK", EMLINK, 259},   {"EDEADLK", EDEADLK, 997}, {"EBUSY", EBUSY, 997},
    {"ETXTBSY", ETXTBSY, 997}, {"EAGAIN", EAGAIN, 997},   {"EACCES", EACCES, 5},
    {"EINVAL", EINVAL, 1010},  {"ENOTTY", ENOTTY, 1010},  {"EROFS", EROFS, 19},
};

TEST(LastError, FollowsTheNamesOfErrno) {
  for (const CodeRow& row : kCodes) {
    errno = row.number;
    EXPECT_EQ(voxGetLastError(), row.code) << row.name;
    EXPECT_EQ(errno, row.number) << row.name << " is left alone";
  }
}

TEST(LastError, EveryOtherErrnoIsTheSignExtendedUnmappedCode) {
  std::set<int> mapped;
  for (const CodeRow& row : kCodes) mapped.insert(row.number);
  for (int number = -200; number <= 300; ++number) {
    if (mapped.count(number) != 0) continue;
    errno = number;
    EXPECT_EQ(voxGetLastError(), kUnmapped) << number;
  }
  for (int number : {EPERM, EEXIST, ENOTDIR, EPIPE, ETIMEDOUT, INT32_MAX, INT32_MIN}) {
    errno = number;
    EXPECT_EQ(voxGetLastError(), kUnmapped) << number;
  }
}

TEST(LastError, TellsAFailedSystemCall) {
  ASSERT_EQ(open("/nonexistent/file", O_RDONLY), -1);
  EXPECT_EQ(voxGetLastError(), 38);
}

TEST(LastError, IsNotTouchedByAFailureThatOnlyStoresTheErrorWord) {
  orbtest::ScopedErrorWord word;
  errno = EACCES;
  EXPECT_EQ(voxSetEvent(nullptr), 0);
  EXPECT_EQ(word.stored(), 22);
  EXPECT_EQ(voxGetLastError(), 5);
}

TEST(LastError, BelongsToTheCallingThread) {
  errno = EACCES;
  int64_t other = -1;
  std::thread([&other] {
    errno = EROFS;
    other = voxGetLastError();
  }).join();
  EXPECT_EQ(other, 19);
  errno = EACCES;
  EXPECT_EQ(voxGetLastError(), 5);
}

TEST(ErrorWord, NumbersAreTheSameOnEverySystem) {
  EXPECT_EQ(kErrNoMemory, 12);
  EXPECT_EQ(kErrBusy, 16);
  EXPECT_EQ(kErrInvalid, 22);
  EXPECT_EQ(kErrAgain, 35);
  EXPECT_EQ(sizeof nErrno, 8u);
}

TEST(ErrorWord, IsSharedByAllThreadsAndNotClearedBySuccess) {
  orbtest::ScopedErrorWord word;
  std::thread([] { voxSetEvent(nullptr); }).join();
  EXPECT_EQ(word.stored(), 22);
  void* event = voxCreateEvent(nullptr, 1, 1, nullptr);
  EXPECT_EQ(voxSetEvent(event), 1);
  EXPECT_EQ(voxCloseHandle(event), 1);
  EXPECT_EQ(word.stored(), 22);
}

}  // namespace
