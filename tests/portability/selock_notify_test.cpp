// tests/portability/selock_notify_test.cpp: the lock's entry that registers instead of waiting.
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include "portability/selock.h"
#include "tests/portability/attached.h"
#include "tests/support/faults.h"

namespace {

// A notify record as the lock lays it on the heap.
struct Record {
  Record* next;
  vxSELockCallback callback;
  void* context;
  void* parameter;
};

std::vector<std::string> told;  // what the callbacks below were called with

// Writes "NAME MESSAGE PARAMETER" and answers with the parameter's number.
int32_t note(void* context, uint32_t message, void* parameter, void* reserved) {
  const auto answer = *static_cast<int32_t*>(parameter);
  told.push_back(std::string(static_cast<const char*>(context)) + " " + std::to_string(message) +
                 " " + std::to_string(answer) + (reserved == nullptr ? "" : " reserved"));
  return answer;
}

int32_t note_too(void* context, uint32_t message, void* parameter, void* reserved) {
  return note(context, message, parameter, reserved);
}

using Told = std::vector<std::string>;

class SELockNotify : public orbtest::LockTest {
 protected:
  void SetUp() override {
    LockTest::SetUp();
    told.clear();
  }
  void TearDown() override {
    for (Record* record = records(); record != nullptr;) {
      Record* next = record->next;
      free(record);
      record = next;
    }
    LockTest::TearDown();
  }
  Record* records() { return static_cast<Record*>(lock_->notifyList); }
  void owned_by_other() {
    lock_->owner = other_.number();
    lock_->count = 1;
  }
  // Registers with the busy lock, to answer `*answer`.
  void add(const char* name, int32_t* answer) {
    ASSERT_EQ(0, vxSO_SELockExclusiveNotify(lock_, note, const_cast<char*>(name), answer));
  }

  orbtest::OtherEvent other_;
  int32_t done_ = 0;
  int32_t more_ = 5;
};

TEST_F(SELockNotify, NullLockGivesZero) {
  EXPECT_EQ(0, vxSO_SELockExclusiveNotify(nullptr, note, nullptr, &done_));
  EXPECT_EQ(0, vxSO_SELockExclusiveUnnotify(nullptr, note, nullptr, &done_));
  EXPECT_TRUE(told.empty());
}

TEST_F(SELockNotify, FreeLockIsEnteredWithTransition6) {
  EXPECT_EQ(1, vxSO_SELockExclusiveNotify(lock_, note, nullptr, &done_));
  EXPECT_EQ(vxSO_GetThread(), lock_->owner);
  EXPECT_EQ(1u, lock_->count);
  EXPECT_EQ(6, lock_->lastTransition);
  EXPECT_EQ(getpid(), lock_->processId);
  EXPECT_EQ(nullptr, lock_->notifyList);
}

TEST_F(SELockNotify, OwnerEntersDeeperAndKeepsTheTransition) {
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
  EXPECT_EQ(1, vxSO_SELockExclusiveNotify(lock_, note, nullptr, &done_));
  EXPECT_EQ(2u, lock_->count);
  EXPECT_EQ(2, lock_->lastTransition);
}

TEST_F(SELockNotify, BusyLockStoresTheRecordAtTheHead) {
  char context = 0;
  owned_by_other();
  EXPECT_EQ(0, vxSO_SELockExclusiveNotify(lock_, note, &context, &more_));
  EXPECT_EQ(0, vxSO_SELockExclusiveNotify(lock_, note_too, &context, &done_));
  Record* newer = records();
  ASSERT_NE(nullptr, newer);
  EXPECT_EQ(&note_too, newer->callback);
  EXPECT_EQ(&done_, newer->parameter);
  ASSERT_NE(nullptr, newer->next);
  EXPECT_EQ(&note, newer->next->callback);
  EXPECT_EQ(&context, newer->next->context);
  EXPECT_EQ(&more_, newer->next->parameter);
  EXPECT_EQ(nullptr, newer->next->next);
  EXPECT_EQ(1u, lock_->count);
  EXPECT_EQ(0, lock_->spin);
  EXPECT_TRUE(told.empty());
}

TEST_F(SELockNotify, SharedHoldsKeepItOut) {
  ASSERT_EQ(1, vxSO_SELock(lock_, 0, 1));
  add("reader", &done_);
  EXPECT_EQ(1u, lock_->count);
}

TEST_F(SELockNotify, FinalReleaseTellsNewestFirstUntilOneIsDone) {
  owned_by_other();
  add("oldest", &done_);
  add("middle", &done_);
  add("newest", &more_);
  vxSO_SELockRelease(lock_);
  EXPECT_EQ((Told{"newest 4352 5", "middle 4352 0"}), told);
  EXPECT_EQ(0u, lock_->count) << "the lock stays free";
  EXPECT_EQ(-1, lock_->owner);
  owned_by_other();
  told.clear();
  vxSO_SELockRelease(lock_);
  EXPECT_EQ((Told{"newest 4352 5", "oldest 4352 0"}), told);
  owned_by_other();
  told.clear();
  vxSO_SELockRelease(lock_);
  EXPECT_EQ((Told{"newest 4352 5"}), told) << "who is done is not called again";
}

TEST_F(SELockNotify, ReleaseThatGrantsTellsNobody) {
  struct {
    void* next;
    intptr_t event;
    int64_t process, waiting;
  } waiter{nullptr, other_.number(), 1, 1};
  owned_by_other();
  add("told", &more_);
  lock_->exclusiveWaiters = &waiter;
  vxSO_SELockRelease(lock_);
  EXPECT_EQ(5, lock_->lastTransition);
  lock_->sharedWaiters = &waiter;
  vxSO_SELockRelease(lock_);
  EXPECT_EQ(1u, lock_->count);
  lock_->count = 2;
  vxSO_SELockRelease(lock_);
  EXPECT_TRUE(told.empty());
}

TEST_F(SELockNotify, WithdrawalOfAnUnknownTripleGivesZero) {
  char name[] = "known", stranger[] = "stranger";
  owned_by_other();
  add(name, &done_);
  EXPECT_EQ(0, vxSO_SELockExclusiveUnnotify(lock_, note_too, records()->context, &done_));
  EXPECT_EQ(0, vxSO_SELockExclusiveUnnotify(lock_, note, stranger, &done_));
  EXPECT_EQ(0, vxSO_SELockExclusiveUnnotify(lock_, note, name, &more_));
  EXPECT_TRUE(told.empty());
  EXPECT_NE(nullptr, records());
}

TEST_F(SELockNotify, QuirkWithdrawnRecordStaysAllocated) {
  char name[] = "gone", older[] = "older";
  owned_by_other();
  add(older, &done_);
  add(name, &done_);
  Record* record = records();
  EXPECT_EQ(1, vxSO_SELockExclusiveUnnotify(lock_, note, name, &done_));
  EXPECT_EQ((Told{"gone 4354 0"}), told);
  ASSERT_NE(nullptr, records());
  EXPECT_EQ(older, records()->context);
  EXPECT_EQ(name, record->context) << "unlinked, not freed";
  free(record);
  EXPECT_EQ(0, vxSO_SELockExclusiveUnnotify(lock_, note, name, &done_));
}

// Answers 1 the first time and 0 from then on.
int32_t note_reluctantly(void*, uint32_t message, void* parameter, void*) {
  told.push_back(std::to_string(message));
  return --*static_cast<int32_t*>(parameter);
}

TEST_F(SELockNotify, WithdrawalPassesARecordThatIsNotDone) {
  int32_t answers = 2;
  char name[] = "twice";
  owned_by_other();
  for (int twin = 0; twin < 2; ++twin)
    ASSERT_EQ(0, vxSO_SELockExclusiveNotify(lock_, note_reluctantly, name, &answers));
  Record* newer = records();
  Record* older = newer->next;
  EXPECT_EQ(1, vxSO_SELockExclusiveUnnotify(lock_, note_reluctantly, name, &answers));
  EXPECT_EQ((Told{"4354", "4354"}), told);
  EXPECT_EQ(newer, records());
  EXPECT_EQ(nullptr, newer->next);
  free(older);
  answers = 9;
  EXPECT_EQ(0, vxSO_SELockExclusiveUnnotify(lock_, note_reluctantly, name, &answers));
  EXPECT_EQ(newer, records()) << "still registered";
}

int32_t note_the_spin_word(void* lock, uint32_t message, void*, void*) {
  told.push_back(std::to_string(message) + " " +
                 std::to_string(static_cast<_vxSELock_t*>(lock)->spin));
  return message == 0x1102 ? 1 : 0;
}

TEST_F(SELockNotify, CallbacksRunUnderTheSpinWord) {
  owned_by_other();
  ASSERT_EQ(0, vxSO_SELockExclusiveNotify(lock_, note_the_spin_word, lock_, nullptr));
  EXPECT_EQ(0, vxSO_SELockExclusiveUnnotify(lock_, note_the_spin_word, lock_, nullptr));
  EXPECT_EQ(1, vxSO_SELockRelease(lock_));
  EXPECT_EQ((Told{"4354 1", "4352 1"}), told);
  EXPECT_EQ(0, lock_->spin);
  EXPECT_EQ(nullptr, records());
}

TEST_F(SELockNotify, NullCallbackIsDoneWithWhatItIsTold) {
  char name[] = "nobody", older[] = "older";
  owned_by_other();
  add(older, &done_);
  ASSERT_EQ(0, vxSO_SELockExclusiveNotify(lock_, nullptr, name, &more_));
  vxSO_SELockRelease(lock_);
  EXPECT_TRUE(told.empty()) << "one is done with the message";
  ASSERT_NE(nullptr, records());
  EXPECT_EQ(older, records()->context);
  owned_by_other();
  ASSERT_EQ(0, vxSO_SELockExclusiveNotify(lock_, nullptr, name, &more_));
  Record* withdrawn = records();
  EXPECT_EQ(1, vxSO_SELockExclusiveUnnotify(lock_, nullptr, name, &more_));
  EXPECT_EQ(older, records()->context);
  free(withdrawn);
}

TEST_F(SELockNotify, RegistrationWithoutMemoryAborts) {
  owned_by_other();
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        orbtest::MemoryFaults faults(1);
        vxSO_SELockExclusiveNotify(lock_, note, nullptr, &done_);
      },
      testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
