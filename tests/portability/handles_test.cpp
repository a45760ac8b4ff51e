// tests/portability/handles_test.cpp: records, events, closing.
#include "portability/handles.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <thread>

#include "tests/portability/handle_scope.h"
#include "tests/support/callfaults.h"
#include "tests/support/scoped_error_word.h"

namespace {

using orbtest::CallFaults;
using orbtest::Failing;
using orbtest::Handle;
using orbtest::is_locked;
using orbtest::make_event;
using orbtest::make_mutex;
using orbtest::ScopedErrorWord;

constexpr int64_t kUntouched = ScopedErrorWord::kUntouched;

TEST(HandleRecord, HasItsFieldsInTheirOrder) {
  using Record = _voxHandleObject_t;
  EXPECT_EQ(offsetof(Record, payload), 0u);
  EXPECT_EQ(offsetof(Record, kind), 8u);
  EXPECT_EQ(offsetof(Record, references), 16u);
  EXPECT_EQ(offsetof(Record, signalled), 24u);
  EXPECT_LT(offsetof(Record, signalled), offsetof(Record, condition));
  EXPECT_LT(offsetof(Record, condition), offsetof(Record, guard));
  EXPECT_LT(offsetof(Record, guard), offsetof(Record, threadLink));
  EXPECT_EQ(sizeof(Record::kind), 4u);
  EXPECT_EQ(sizeof(Record::references), 8u);
  EXPECT_EQ(sizeof(Record::signalled), 4u);
}

TEST(HandleRecord, KindsAndWaitResultsHaveTheirNumbers) {
  EXPECT_EQ(HANDLE_TYPE_FILE, 0);
  EXPECT_EQ(HANDLE_TYPE_EVENT, 1);
  EXPECT_EQ(HANDLE_TYPE_THREAD, 2);
  EXPECT_EQ(HANDLE_TYPE_MUTEX, 3);
  EXPECT_EQ(WAIT_FAILED, 0);
  EXPECT_EQ(WAIT_ABANDONED, 1);
  EXPECT_EQ(WAIT_OBJECT_0, 2);
  EXPECT_EQ(WAIT_TIMEOUT, 3);
  EXPECT_EQ(INFINITE, 4294967295u);
}

struct CreateRow {
  const char* name;
  int manual;
  int initial;
  const char* text;
  bool made;
  int32_t signalled;
};

TEST(CreateEvent, TakesManualResetEventsWithoutNamesOnly) {
  const CreateRow rows[] = {
      {"unset", 1, 0, nullptr, true, 0},
      {"set", 1, 1, nullptr, true, 1},
      {"an empty name is none", 1, 0, "", true, 0},
      {"only an initial state of 1 sets", 1, 2, nullptr, true, 0},
      {"a negative initial state does not set", 1, -1, nullptr, true, 0},
      {"automatic reset is refused", 0, 0, nullptr, false, 0},
      {"manual reset must be 1", 2, 0, nullptr, false, 0},
      {"manual reset of -1 is refused", -1, 0, nullptr, false, 0},
      {"a name is refused", 1, 0, "e", false, 0},
      {"a blank is a name", 1, 0, " ", false, 0},
      {"both refused", 0, 1, "e", false, 0},
  };
  for (const CreateRow& row : rows) {
    ScopedErrorWord word;
    int attributes = 5;
    Handle event(voxCreateEvent(&attributes, row.manual, row.initial, row.text));
    EXPECT_EQ(event != nullptr, row.made) << row.name;
    EXPECT_EQ(word.stored(), row.made ? kUntouched : 22) << row.name;
    EXPECT_EQ(attributes, 5) << row.name;
    if (event == nullptr) continue;
    EXPECT_EQ(event->payload, nullptr) << row.name;
    EXPECT_EQ(event->kind, 1u) << row.name;
    EXPECT_EQ(event->references, 1) << row.name;
    EXPECT_EQ(event->signalled, row.signalled) << row.name;
    EXPECT_EQ(event->threadLink, nullptr) << row.name;
  }
}

TEST(CreateEvent, WithoutMemoryStoresTwelve) {
  const size_t requests = orbtest::for_each_memory_fault([](size_t nth, Failing failing) {
    ScopedErrorWord word;
    orbtest::MemoryFaults faults(nth, failing);
    Handle event = make_event(true);
    const bool failed = faults.failures() != 0;
    EXPECT_EQ(event == nullptr, failed);
    EXPECT_EQ(word.stored(), failed ? 12 : kUntouched);
    return faults.failures();
  });
  EXPECT_EQ(requests, 1u);
}

struct FaultRow {
  const char* name;
  const char* function;
  size_t nth;
  int64_t stored;
};

TEST(CreateEvent, GivesNullWhenASystemCallFails) {
  const FaultRow rows[] = {
      {"no condition", "pthread_cond_init", 1, kUntouched},
      {"no guard", "pthread_mutex_init", 1, kUntouched},
      {"not set: no lock", "pthread_mutex_lock", 1, 16},
      {"not set: no broadcast", "pthread_cond_broadcast", 1, 16},
      {"not set: no unlock", "pthread_mutex_unlock", 1, 16},
  };
  for (const FaultRow& row : rows) {
    for (Failing failing : {Failing::once, Failing::onwards}) {
      ScopedErrorWord word;
      CallFaults faults(row.function, ENOMEM, row.nth, failing);
      EXPECT_EQ(voxCreateEvent(nullptr, 1, 1, nullptr), nullptr) << row.name;
      EXPECT_GE(faults.failures(), 1u) << row.name;
      EXPECT_EQ(word.stored(), row.stored) << row.name;
    }
  }
}

TEST(SetEvent, StaysSetUntilItIsReset) {
  Handle event = make_event();
  EXPECT_EQ(voxSetEvent(event.get()), 1);
  EXPECT_EQ(voxSetEvent(event.get()), 1);
  for (int wait = 0; wait < 3; ++wait) {
    EXPECT_EQ(voxWaitForSingleObject(event.get(), 0), uint64_t{WAIT_OBJECT_0});
  }
  EXPECT_EQ(event->signalled, 1);
  EXPECT_EQ(voxResetEvent(event.get()), 1);
  EXPECT_EQ(event->signalled, 0);
  EXPECT_EQ(voxWaitForSingleObject(event.get(), 0), uint64_t{WAIT_TIMEOUT});
  EXPECT_EQ(voxResetEvent(event.get()), 1);
}

TEST(SetEvent, QuirkRefusesNullAndThe32BitAllOnesValue) {
  for (void* refused : {static_cast<void*>(nullptr), reinterpret_cast<void*>(0xFFFFFFFFul)}) {
    ScopedErrorWord word;
    EXPECT_EQ(voxSetEvent(refused), 0);
    EXPECT_EQ(word.stored(), 22);
  }
  ScopedErrorWord word;
  EXPECT_EQ(voxResetEvent(nullptr), 0);
  EXPECT_EQ(word.stored(), 22);
}

TEST(SetEvent, QuirkSetsAndResetsAnyKind) {
  Handle mutex = make_mutex();
  EXPECT_EQ(voxResetEvent(mutex.get()), 1);
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 0), uint64_t{WAIT_TIMEOUT});
  EXPECT_EQ(voxSetEvent(mutex.get()), 1);
  EXPECT_EQ(voxWaitForSingleObject(mutex.get(), 0), uint64_t{WAIT_OBJECT_0});
  EXPECT_EQ(voxReleaseMutex(mutex.get()), 1);
}

struct ChangeFaultRow {
  const char* name;
  int (*change)(void*);
  const char* function;
  bool guard_left_locked;
};

TEST(SetEvent, AndResetGiveZeroWhenASystemCallFails) {
  const ChangeFaultRow rows[] = {
      {"set: no lock", voxSetEvent, "pthread_mutex_lock", false},
      {"set: no broadcast", voxSetEvent, "pthread_cond_broadcast", false},
      {"set: no unlock", voxSetEvent, "pthread_mutex_unlock", true},
      {"reset: no lock", voxResetEvent, "pthread_mutex_lock", false},
      {"reset: no unlock", voxResetEvent, "pthread_mutex_unlock", true},
  };
  for (const ChangeFaultRow& row : rows) {
    ScopedErrorWord word;
    Handle event = make_event(true);
    {
      CallFaults faults(row.function, EINVAL);
      EXPECT_EQ(row.change(event.get()), 0) << row.name;
      EXPECT_EQ(faults.failures(), 1u) << row.name;
    }
    EXPECT_EQ(word.stored(), kUntouched) << row.name;
    EXPECT_EQ(is_locked(&event->guard), row.guard_left_locked) << row.name;
    if (row.guard_left_locked) pthread_mutex_unlock(&event->guard);
  }
}

TEST(CloseHandle, OfNullAndOfAllOnesDoesNothing) {
  ScopedErrorWord word;
  EXPECT_EQ(voxCloseHandle(nullptr), 1);
  EXPECT_EQ(voxCloseHandle(reinterpret_cast<void*>(intptr_t{-1})), 1);
  EXPECT_EQ(word.stored(), kUntouched);
}

TEST(CloseHandle, DestroysWithTheLastReferenceOnly) {
  void* event = voxCreateEvent(nullptr, 1, 1, nullptr);
  static_cast<_voxHandleObject_t*>(event)->references = 2;
  EXPECT_EQ(voxCloseHandle(event), 1);
  EXPECT_EQ(static_cast<_voxHandleObject_t*>(event)->references, 1);
  EXPECT_EQ(voxWaitForSingleObject(event, 0), uint64_t{WAIT_OBJECT_0});
  EXPECT_EQ(voxCloseHandle(event), 1);
}

TEST(CloseHandle, OfAnUnknownKindGivesZeroAndKeepsTheRecord) {
  ScopedErrorWord word;
  _voxHandleObject_t* handle = make_event().release();
  handle->kind = 4;
  EXPECT_EQ(voxCloseHandle(handle), 0);
  EXPECT_EQ(word.stored(), kUntouched);
  handle->kind = HANDLE_TYPE_EVENT;
  handle->references = 1;
  EXPECT_EQ(voxCloseHandle(handle), 1);
}

TEST(CloseHandle, OfAThreadThatNeverBeganFreesIt) {
  for (const bool ended : {false, true}) {
    ScopedErrorWord word;
    _voxHandleObject_t* handle = make_event(ended).release();
    handle->kind = HANDLE_TYPE_THREAD;
    EXPECT_EQ(voxCloseHandle(handle), 1) << ended;
    EXPECT_EQ(word.stored(), kUntouched) << ended;
  }
}

TEST(CloseHandle, OfAnOwnedMutexIsNoFailure) {
  Handle mutex = make_mutex(true);
  EXPECT_EQ(voxCloseHandle(mutex.release()), 1);
}

TEST(CloseHandle, GivesZeroWhenTheGuardFails) {
  for (const char* function : {"pthread_mutex_lock", "pthread_mutex_unlock"}) {
    _voxHandleObject_t* event = make_event().release();
    {
      CallFaults faults(function, EINVAL);
      EXPECT_EQ(voxCloseHandle(event), 0) << function;
      EXPECT_EQ(faults.failures(), 1u);
    }
    if (is_locked(&event->guard)) pthread_mutex_unlock(&event->guard);
    event->references = 1;
    EXPECT_EQ(voxCloseHandle(event), 1) << function << ": the record was kept";
  }
}

}  // namespace
