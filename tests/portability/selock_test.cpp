// tests/portability/selock_test.cpp: entries, release, downgrade and hand-over of the lock.
#include "portability/selock.h"

#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>

#include "portability/Linklist.h"
#include "tests/portability/attached.h"
#include "tests/portability/call_script.h"
#include "tests/support/faults.h"

namespace {

static_assert(offsetof(_vxSELock_t, spin) == 0 && offsetof(_vxSELock_t, owner) == 8 &&
              offsetof(_vxSELock_t, count) == 16 && offsetof(_vxSELock_t, sharedWaiters) == 24 &&
              offsetof(_vxSELock_t, exclusiveWaiters) == 32 &&
              offsetof(_vxSELock_t, notifyList) == 40 && offsetof(_vxSELock_t, processId) == 48 &&
              offsetof(_vxSELock_t, lastTransition) == 56 && sizeof(_vxSELock_t) == 64);

// A queue's record as a blocked thread lays it on its stack.
struct Node {
  void* next;
  intptr_t event;
  int64_t process;
  int64_t waiting;
};

class SELock : public orbtest::LockTest {
 protected:
  void SetUp() override {
    LockTest::SetUp();
    me_ = vxSO_GetThread();
  }
  void wait_for_exclusive_waiter_other_than(const void* head) {
    wait_until([&] { return lock_->exclusiveWaiters != head; });
  }
  void wait_for_shared_waiter_other_than(const void* head) {
    wait_until([&] { return lock_->sharedWaiters != head; });
  }
  void held_exclusively_by(intptr_t owner) {
    lock_->owner = owner;
    lock_->count = 1;
  }
  void expect_free() {
    EXPECT_EQ(0, lock_->spin);
    EXPECT_EQ(-1, lock_->owner);
    EXPECT_EQ(0u, lock_->count);
  }

  intptr_t me_ = -1;
};

TEST_F(SELock, CreatedLockIsFree) {
  expect_free();
  EXPECT_EQ(nullptr, lock_->sharedWaiters);
  EXPECT_EQ(nullptr, lock_->exclusiveWaiters);
  EXPECT_EQ(nullptr, lock_->notifyList);
  EXPECT_EQ(0, lock_->processId);
  EXPECT_EQ(1, lock_->lastTransition);
}

TEST_F(SELock, CreationWithoutMemoryStoresNull) {
  auto* out = lock_;
  uint32_t result = 0;
  {
    orbtest::MemoryFaults faults(1);
    result = vxSO_SELockCreate(&out);
  }
  EXPECT_EQ(0x80000008u, result);
  EXPECT_EQ(nullptr, out);
  EXPECT_EQ(0x80000008u, vxSO_SELockCreate(nullptr));
}

TEST_F(SELock, NullLockGivesZero) {
  vxSO_Release(nullptr);
  EXPECT_EQ(0, vxSO_SELockExclusive(nullptr, 1));
  EXPECT_EQ(0, vxSO_SELockSharedStarveExclusive(nullptr, 1));
  EXPECT_EQ(0, vxSO_SELockSharedWaitForExclusive(nullptr, 1));
  EXPECT_EQ(0, vxSO_SELock(nullptr, 0, 1));
  EXPECT_EQ(0, vxSO_SELock(nullptr, 1, 1));
  EXPECT_EQ(0, vxSO_SELockExclusiveToShared(nullptr));
  EXPECT_EQ(0, vxSO_SELockRelease(nullptr));
}

TEST_F(SELock, ExclusiveEntryRecordsOwnerProcessAndTransition) {
  EXPECT_EQ(1, vxSO_SELockExclusive(lock_, 0));
  EXPECT_EQ(me_, lock_->owner);
  EXPECT_EQ(1u, lock_->count);
  EXPECT_EQ(getpid(), lock_->processId);
  EXPECT_EQ(2, lock_->lastTransition);
  EXPECT_EQ(0, lock_->spin);
}

TEST_F(SELock, OwnerEnteringThreeTimesReleasesThreeTimes) {
  for (int depth = 0; depth < 3; ++depth) ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
  EXPECT_EQ(3u, lock_->count);
  vxSO_SELockRelease(lock_);
  vxSO_SELockRelease(lock_);
  EXPECT_EQ(me_, lock_->owner);
  EXPECT_EQ(2, lock_->lastTransition);
  vxSO_SELockRelease(lock_);
  expect_free();
  EXPECT_EQ(4, lock_->lastTransition);
}

TEST_F(SELock, OwnerMayEnterShared) {
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
  Node writer{nullptr, me_, 0, 1};
  lock_->exclusiveWaiters = &writer;
  EXPECT_EQ(1, vxSO_SELockSharedStarveExclusive(lock_, 0));
  EXPECT_EQ(1, vxSO_SELockSharedWaitForExclusive(lock_, 0));
  EXPECT_EQ(3u, lock_->count);
  EXPECT_EQ(me_, lock_->owner);
}

using Entry = int (*)(_vxSELock_t*, int);

int by_choice_exclusive(_vxSELock_t* lock, int wait) { return vxSO_SELock(lock, 7, wait); }
int by_choice_shared(_vxSELock_t* lock, int wait) { return vxSO_SELock(lock, 0, wait); }

struct EntryCase {
  const char* name;
  Entry entry;
  bool owned_by_other;  // else shared holds alone
  uint64_t count;       // before
  bool writer_queued;   // before
  int result;           // without waiting
};

TEST_F(SELock, EntryWithoutWaitingFollowsTheTable) {
  const EntryCase cases[] = {
      {"exclusive enters a free lock", vxSO_SELockExclusive, false, 0, false, 1},
      {"exclusive enters a free lock past queued writers", vxSO_SELockExclusive, false, 0, true, 1},
      {"exclusive is kept out by shared holds", vxSO_SELockExclusive, false, 2, false, 0},
      {"exclusive is kept out by another owner", vxSO_SELockExclusive, true, 1, false, 0},
      {"starving shared enters a free lock", vxSO_SELockSharedStarveExclusive, false, 0, false, 1},
      {"starving shared joins shared holds", vxSO_SELockSharedStarveExclusive, false, 2, false, 1},
      {"starving shared passes a queued writer", vxSO_SELockSharedStarveExclusive, false, 2, true,
       1},
      {"starving shared is kept out by an owner", vxSO_SELockSharedStarveExclusive, true, 1, false,
       0},
      {"yielding shared enters a free lock", vxSO_SELockSharedWaitForExclusive, false, 0, true, 1},
      {"yielding shared joins shared holds", vxSO_SELockSharedWaitForExclusive, false, 2, false, 1},
      {"yielding shared waits behind a writer", vxSO_SELockSharedWaitForExclusive, false, 2, true,
       0},
      {"yielding shared is kept out by an owner", vxSO_SELockSharedWaitForExclusive, true, 1, false,
       0},
      {"any non-zero choice is exclusive", by_choice_exclusive, false, 2, false, 0},
      {"choice 0 is shared", by_choice_shared, false, 2, false, 1},
      {"choice 0 yields to a writer", by_choice_shared, false, 2, true, 0},
  };
  const orbtest::OtherEvent other;
  for (const EntryCase& each : cases) {
    SCOPED_TRACE(each.name);
    Node writer{nullptr, other.number(), 0, 1};
    lock_->owner = each.owned_by_other ? other.number() : -1;
    lock_->count = each.count;
    lock_->exclusiveWaiters = each.writer_queued ? &writer : nullptr;
    lock_->sharedWaiters = nullptr;
    EXPECT_EQ(each.result, each.entry(lock_, 0));
    EXPECT_EQ(each.count + static_cast<uint64_t>(each.result), lock_->count);
    EXPECT_EQ(nullptr, lock_->sharedWaiters) << "nothing is queued";
    EXPECT_EQ(each.writer_queued ? &writer : nullptr, lock_->exclusiveWaiters);
    EXPECT_EQ(0, lock_->spin);
  }
}

TEST_F(SELock, SharedEntryRecordsNothingButItsHold) {
  ASSERT_EQ(1, vxSO_SELockSharedWaitForExclusive(lock_, 1));
  ASSERT_EQ(1, vxSO_SELockSharedStarveExclusive(lock_, 1));
  EXPECT_EQ(2u, lock_->count);
  EXPECT_EQ(-1, lock_->owner);
  EXPECT_EQ(0, lock_->processId);
  EXPECT_EQ(1, lock_->lastTransition);
}

TEST_F(SELock, ReleaseHandsOverToTheHeadWriterBeforeReaders) {
  const orbtest::OtherEvent first, last, reader;
  Node older{nullptr, first.number(), 111, 1};
  Node newer{&older, last.number(), 222, 1};
  Node shared{nullptr, reader.number(), 333, 1};
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
  lock_->exclusiveWaiters = &newer;
  lock_->sharedWaiters = &shared;
  vxSO_SELockRelease(lock_);
  EXPECT_EQ(last.number(), lock_->owner);
  EXPECT_EQ(1u, lock_->count);
  EXPECT_EQ(5, lock_->lastTransition);
  EXPECT_EQ(222, lock_->processId);
  EXPECT_EQ(0, newer.waiting);
  EXPECT_TRUE(last.is_set());
  EXPECT_EQ(&older, lock_->exclusiveWaiters);
  EXPECT_EQ(1, older.waiting);
  EXPECT_FALSE(first.is_set());
  EXPECT_EQ(&shared, lock_->sharedWaiters);
  EXPECT_FALSE(reader.is_set());
}

TEST_F(SELock, ReleaseLetsAllReadersIn) {
  const orbtest::OtherEvent one, two;
  Node first{nullptr, one.number(), 1, 1};
  Node second{&first, two.number(), 2, 1};
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
  lock_->sharedWaiters = &second;
  vxSO_SELockRelease(lock_);
  EXPECT_EQ(2u, lock_->count);
  EXPECT_EQ(-1, lock_->owner);
  EXPECT_EQ(4, lock_->lastTransition);
  EXPECT_EQ(nullptr, lock_->sharedWaiters);
  EXPECT_EQ(0, first.waiting);
  EXPECT_EQ(0, second.waiting);
  EXPECT_TRUE(one.is_set());
  EXPECT_TRUE(two.is_set());
}

TEST_F(SELock, ReleaseOfOneHoldOfSeveralWakesNobody) {
  const orbtest::OtherEvent other;
  Node writer{nullptr, other.number(), 1, 1};
  lock_->count = 2;
  lock_->exclusiveWaiters = &writer;
  vxSO_SELockRelease(lock_);
  EXPECT_EQ(1u, lock_->count);
  EXPECT_EQ(1, writer.waiting);
  EXPECT_FALSE(other.is_set());
  EXPECT_EQ(1, lock_->lastTransition);
}

TEST_F(SELock, QuirkReleasingAFreeLockWrapsItsCount) {
  vxSO_SELockRelease(lock_);
  EXPECT_EQ(UINT64_MAX, lock_->count);
  EXPECT_EQ(1, lock_->lastTransition);
}

TEST_F(SELock, DowngradeKeepsTheHoldsAndLetsReadersIn) {
  const orbtest::OtherEvent reader, writer;
  Node shared{nullptr, reader.number(), 1, 1};
  Node exclusive{nullptr, writer.number(), 2, 1};
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
  lock_->sharedWaiters = &shared;
  lock_->exclusiveWaiters = &exclusive;
  vxSO_SELockExclusiveToShared(lock_);
  EXPECT_EQ(3u, lock_->count);
  EXPECT_EQ(-1, lock_->owner);
  EXPECT_EQ(3, lock_->lastTransition);
  EXPECT_EQ(0, shared.waiting);
  EXPECT_TRUE(reader.is_set());
  EXPECT_EQ(nullptr, lock_->sharedWaiters);
  EXPECT_EQ(&exclusive, lock_->exclusiveWaiters);
  EXPECT_FALSE(writer.is_set());
}

TEST_F(SELock, BlockedThreadQueuesItsEventAndIsGranted) {
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
  std::atomic<intptr_t> event{0};
  int result = 0;
  intptr_t owner = 0;
  uint64_t left_signalled = 0;
  std::thread writer = orbtest::attached([&] {
    event = vxSO_GetThread();
    result = vxSO_SELockExclusive(lock_, 1);
    owner = lock_->owner;
    left_signalled = voxWaitForSingleObject(reinterpret_cast<void*>(vxSO_GetThread()), 0);
    vxSO_SELockRelease(lock_);
  });
  wait_for_exclusive_waiter_other_than(nullptr);
  vxSL_Get(&lock_->spin);
  const Node queued = *static_cast<Node*>(lock_->exclusiveWaiters);
  vxSL_Release(&lock_->spin);
  EXPECT_EQ(event, queued.event);
  EXPECT_EQ(getpid(), queued.process);
  EXPECT_EQ(1, queued.waiting);
  vxSO_SELockRelease(lock_);
  writer.join();
  EXPECT_EQ(1, result);
  EXPECT_EQ(event, owner);
  EXPECT_EQ(uint64_t{WAIT_TIMEOUT}, left_signalled) << "the event is reset after the grant";
  expect_free();
}

TEST_F(SELock, EventSetByAnotherIsNoGrant) {
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
  std::atomic<bool> entered{false};
  std::thread writer = orbtest::attached([&] {
    voxSetEvent(reinterpret_cast<void*>(vxSO_GetThread()));
    vxSO_SELockExclusive(lock_, 1);
    entered = true;
    vxSO_SELockRelease(lock_);
  });
  wait_for_exclusive_waiter_other_than(nullptr);
  for (int turn = 0; turn < 1000; ++turn) std::this_thread::yield();
  EXPECT_FALSE(entered);
  vxSO_SELockRelease(lock_);
  writer.join();
  expect_free();
}

TEST_F(SELock, WritersQueuedAThenBAreGrantedBThenA) {
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
  std::string order;  // guarded by the lock
  const auto enter = [&](char name) {
    return orbtest::attached([&, name] {
      vxSO_SELockExclusive(lock_, 1);
      order += name;
      vxSO_SELockRelease(lock_);
    });
  };
  std::thread a = enter('A');
  wait_for_exclusive_waiter_other_than(nullptr);
  vxSL_Get(&lock_->spin);
  const void* head = lock_->exclusiveWaiters;
  vxSL_Release(&lock_->spin);
  std::thread b = enter('B');
  wait_for_exclusive_waiter_other_than(head);
  vxSO_SELockRelease(lock_);
  a.join();
  b.join();
  EXPECT_EQ("BA", order);
}

TEST_F(SELock, ThirdReaderQueuesBehindAWriterUnlessItStarvesIt) {
  ASSERT_EQ(1, vxSO_SELock(lock_, 0, 1));
  ASSERT_EQ(1, vxSO_SELock(lock_, 0, 1));
  std::atomic<int> entered{0};
  std::thread writer = orbtest::attached([&] {
    vxSO_SELockExclusive(lock_, 1);
    ++entered;
    vxSO_SELockRelease(lock_);
  });
  wait_for_exclusive_waiter_other_than(nullptr);
  std::thread reader = orbtest::attached([&] {
    vxSO_SELockSharedWaitForExclusive(lock_, 1);
    ++entered;
    vxSO_SELockRelease(lock_);
  });
  wait_for_shared_waiter_other_than(nullptr);
  EXPECT_EQ(1, vxSO_SELockSharedStarveExclusive(lock_, 0));
  EXPECT_EQ(0, entered);
  for (int hold = 0; hold < 3; ++hold) vxSO_SELockRelease(lock_);
  writer.join();
  reader.join();
  EXPECT_EQ(2, entered);
  expect_free();
}

TEST_F(SELock, ThreadWithoutEventIsTakenForTheOwnerWhereThereIsNone) {
  lock_->count = 2;
  int result = 0;
  std::thread([&] { result = vxSO_SELockExclusive(lock_, 0); }).join();
  EXPECT_EQ(1, result);
  EXPECT_EQ(3u, lock_->count);
  EXPECT_EQ(-1, lock_->owner);
  EXPECT_EQ(2, lock_->lastTransition);
}

TEST_F(SELock, ThreadWithoutEventDoesNotWait) {
  const orbtest::OtherEvent other;
  held_exclusively_by(other.number());
  int result = 1;
  std::thread([&] { result = vxSO_SELockExclusive(lock_, 1); }).join();
  EXPECT_EQ(0, result);
  EXPECT_EQ(nullptr, lock_->exclusiveWaiters);
}

}  // namespace
