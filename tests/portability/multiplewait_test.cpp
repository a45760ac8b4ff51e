// tests/portability/multiplewait_test.cpp: the wait on several handles.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

#include "tests/portability/handle_scope.h"
#include "tests/support/callfaults.h"
#include "tests/support/scoped_error_word.h"

namespace {

using orbtest::CallFaults;
using orbtest::Handle;
using orbtest::make_event;
using orbtest::make_mutex;
using orbtest::milliseconds_of;
using orbtest::ScopedErrorWord;

constexpr int64_t kUntouched = ScopedErrorWord::kUntouched;
constexpr uint64_t kFailed = WAIT_FAILED;
constexpr uint64_t kTimeout = WAIT_TIMEOUT;

struct AnyRow {
  const char* name;
  std::vector<int> set;  // 1 set, 0 not
  int all;
  uint64_t milliseconds;
  uint64_t result;
  size_t turns;  // timed sleeps
};

TEST(MultipleWait, VisitsInCyclicOrderOneTurnEach) {
  const AnyRow rows[] = {
      {"waiting for all is refused", {1, 1}, 1, 100, kFailed, 0},
      {"any value but 0 waits for all", {1, 1}, -1, 100, kFailed, 0},
      {"waiting for all is refused without time too", {1}, 1, 0, kFailed, 0},
      {"the third is set", {0, 0, 1}, 0, 1000, 4, 0},
      {"the first of two set wins", {0, 1, 1}, 0, 1000, 3, 0},
      {"one handle, set", {1}, 0, 10, 2, 0},
      {"no time looks at nothing", {1, 1}, 0, 0, kTimeout, 0},
      {"25 ms are three turns", {0, 0, 0}, 0, 25, kTimeout, 3},
      {"30 ms are three turns", {0, 0, 0}, 0, 30, kTimeout, 3},
      {"31 ms are four turns, one handle twice", {0, 0, 0}, 0, 31, kTimeout, 4},
      {"1 ms is a turn", {0}, 0, 1, kTimeout, 1},
      {"the last turn reaches its handle", {0, 0, 1}, 0, 21, 4, 0},
      {"a set handle whose turn never comes is not found", {0, 0, 1}, 0, 20, kTimeout, 2},
      {"without an end", {0, 1}, 0, INFINITE, 3, 0},
      {"beyond 32 bits", {0, 1}, 0, UINT64_MAX, 3, 0},
  };
  for (const AnyRow& row : rows) {
    ScopedErrorWord word;
    std::vector<Handle> owned;
    std::vector<void*> handles;
    for (int set : row.set) {
      owned.push_back(make_event(set != 0));
      handles.push_back(owned.back().get());
    }
    CallFaults sleeps("pthread_cond_timedwait", EINVAL, 0);
    EXPECT_EQ(voxWaitForMultipleObjects(handles.size(), handles.data(), row.all, row.milliseconds),
              row.result)
        << row.name;
    EXPECT_EQ(sleeps.calls(), row.turns) << row.name;
    EXPECT_EQ(word.stored(), kUntouched) << row.name;
  }
}

TEST(MultipleWait, TakesArraysOfEitherHandleType) {
  Handle unset = make_event();
  Handle set = make_event(true);
  _voxHandleObject_t* typed[] = {unset.get(), set.get()};
  EXPECT_EQ(voxWaitForMultipleObjects(2, typed, 0, 1000), 3u);
}

TEST(MultipleWait, QuirkTurnsAreCountedNotTime) {
  Handle event = make_event();
  void* handles[] = {event.get()};
  const int64_t took =
      milliseconds_of([&] { EXPECT_EQ(voxWaitForMultipleObjects(1, handles, 0, 25), kTimeout); });
  EXPECT_GE(took, 29);
}

TEST(MultipleWait, QuirkTheSecondHandlesResultIsTheTimeOutsNumber) {
  Handle unset = make_event();
  Handle set = make_event(true);
  void* handles[] = {unset.get(), set.get()};
  CallFaults sleeps("pthread_cond_timedwait", EINVAL, 0);
  EXPECT_EQ(voxWaitForMultipleObjects(2, handles, 0, 1000), kTimeout);
  EXPECT_EQ(sleeps.calls(), 0u) << "found, not timed out";
}

TEST(MultipleWait, FailsAtTheTurnOfAHandleThatCannotBeWaitedOn) {
  Handle unset = make_event();
  Handle set = make_event(true);
  struct Row {
    const char* name;
    void* first;
    void* second;
    void* third;
    uint64_t milliseconds;
    uint64_t result;
    int64_t stored;
  };
  const Row rows[] = {
      {"null first", nullptr, set.get(), set.get(), 1000, kFailed, 22},
      {"null behind an unset one", unset.get(), nullptr, set.get(), 1000, kFailed, 22},
      {"a set one before null wins", unset.get(), set.get(), nullptr, 1000, 3, kUntouched},
      {"null whose turn never comes", unset.get(), unset.get(), nullptr, 20, kTimeout, kUntouched},
  };
  for (const Row& row : rows) {
    ScopedErrorWord word;
    void* handles[] = {row.first, row.second, row.third};
    EXPECT_EQ(voxWaitForMultipleObjects(3, handles, 0, row.milliseconds), row.result) << row.name;
    EXPECT_EQ(word.stored(), row.stored) << row.name;
  }
}

TEST(MultipleWait, OnNothingFails) {
  Handle event = make_event(true);
  void* handles[] = {event.get()};
  ScopedErrorWord word;
  EXPECT_EQ(voxWaitForMultipleObjects(0, handles, 0, 10), kFailed);
  EXPECT_EQ(word.stored(), 22);
  word.clear();
  EXPECT_EQ(voxWaitForMultipleObjects(1, nullptr, 0, 10), kFailed);
  EXPECT_EQ(word.stored(), 22);
  word.clear();
  EXPECT_EQ(voxWaitForMultipleObjects(0, nullptr, 0, 0), kTimeout);
  EXPECT_EQ(word.stored(), kUntouched);
}

TEST(MultipleWait, FailsWithTheSingleWait) {
  Handle event = make_event();
  void* handles[] = {event.get()};
  CallFaults faults("pthread_cond_timedwait", EINVAL, 2);
  EXPECT_EQ(voxWaitForMultipleObjects(1, handles, 0, 1000), kFailed);
  EXPECT_EQ(faults.calls(), 2u);
}

TEST(MultipleWait, PassesByAMutexThatWasSetWhileItIsOwned) {
  Handle mutex = make_mutex(true);
  EXPECT_EQ(voxSetEvent(mutex.get()), 1);
  Handle event = make_event();
  void* handles[] = {mutex.get(), event.get()};
  EXPECT_EQ(voxWaitForMultipleObjects(2, handles, 0, 20), kTimeout);
  EXPECT_EQ(voxSetEvent(event.get()), 1);
  EXPECT_EQ(voxWaitForMultipleObjects(2, handles, 0, 20), 3u);
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
}

TEST(MultipleWait, TakesAMutexThatItFinds) {
  Handle unset = make_event();
  Handle mutex = make_mutex();
  void* handles[] = {unset.get(), mutex.get()};
  EXPECT_EQ(voxWaitForMultipleObjects(2, handles, 0, 1000), 3u);
  EXPECT_EQ(mutex->signalled, 0);
  EXPECT_EQ(voxWaitForMultipleObjects(2, handles, 0, 20), kTimeout) << "taken";
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
}

TEST(MultipleWait, FindsTheLastOfManyThatIsSetMeanwhile) {
  constexpr size_t kCount = 1000;
  std::vector<Handle> owned;
  std::vector<void*> handles;
  for (size_t n = 0; n < kCount; ++n) {
    owned.push_back(make_event());
    handles.push_back(owned.back().get());
  }
  std::thread setter([&] { voxSetEvent(handles.back()); });
  EXPECT_EQ(voxWaitForMultipleObjects(kCount, handles.data(), 0, INFINITE), kCount + 1);
  setter.join();
}

}  // namespace
