// tests/portability/tls_test.cpp: the 512 thread-local slots.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <thread>
#include <vector>

#include "portability/threads.h"
#include "tests/support/callfaults.h"
#include "tests/support/scoped_error_word.h"

namespace {

using orbtest::CallFaults;
using orbtest::Failing;
using orbtest::ScopedErrorWord;

constexpr int64_t kUntouched = ScopedErrorWord::kUntouched;

// Every test begins and ends with no slot in use.
class Tls : public testing::Test {
 protected:
  void SetUp() override { release_all(); }
  void TearDown() override { release_all(); }

  static void release_all() {
    ScopedErrorWord word;
    for (uint32_t slot = 0; slot < kTlsSlots; ++slot) voxTlsFree(slot);
  }
};

TEST_F(Tls, HandsOutTheLowestFreeSlot) {
  EXPECT_EQ(voxTlsAlloc(), 0);
  EXPECT_EQ(voxTlsAlloc(), 1);
  EXPECT_EQ(voxTlsAlloc(), 2);
  EXPECT_EQ(voxTlsFree(1), 1);
  EXPECT_EQ(voxTlsAlloc(), 1);
  EXPECT_EQ(voxTlsAlloc(), 3);
}

TEST_F(Tls, TheTablesTellKeyAndOwner) {
  EXPECT_EQ(pTlsKeyTable[0], nullptr);
  EXPECT_EQ(nTlsOwnerTable[0], 0);
  ASSERT_EQ(voxTlsAlloc(), 0);
  ASSERT_NE(pTlsKeyTable[0], nullptr);
  EXPECT_EQ(nTlsOwnerTable[0], getpid());
  int value = 0;
  EXPECT_EQ(voxTlsSetValue(0, &value), 1);
  EXPECT_EQ(pthread_getspecific(*pTlsKeyTable[0]), &value);
  EXPECT_EQ(voxTlsFree(0), 1);
  EXPECT_EQ(pTlsKeyTable[0], nullptr);
  EXPECT_EQ(nTlsOwnerTable[0], 0);
}

TEST_F(Tls, The513thSlotIsRefused) {
  ScopedErrorWord word;
  for (int64_t slot = 0; slot < 512; ++slot) ASSERT_EQ(voxTlsAlloc(), slot);
  EXPECT_EQ(word.stored(), kUntouched);
  EXPECT_EQ(voxTlsAlloc(), -1);
  EXPECT_EQ(word.stored(), 35);
  EXPECT_EQ(voxTlsFree(511), 1);
  EXPECT_EQ(voxTlsAlloc(), 511);
}

TEST_F(Tls, SlotsOutsideTheTableOrFreeStoreTwentyTwo) {
  ASSERT_EQ(voxTlsAlloc(), 0);
  for (uint32_t slot : {1u, 511u, 512u, 0x80000000u, 0xFFFFFFFFu}) {
    ScopedErrorWord word;
    EXPECT_EQ(voxTlsGetValue(slot), nullptr) << slot;
    EXPECT_EQ(word.stored(), 22) << slot;
    word.clear();
    EXPECT_EQ(voxTlsSetValue(slot, nullptr), 0) << slot;
    EXPECT_EQ(word.stored(), 22) << slot;
    word.clear();
    EXPECT_EQ(voxTlsFree(slot), 0) << slot;
    EXPECT_EQ(word.stored(), 22) << slot;
  }
}

TEST_F(Tls, EveryThreadHasItsOwnValue) {
  const auto slot = static_cast<uint32_t>(voxTlsAlloc());
  int mine = 0;
  int others = 0;
  void* first_seen = &mine;
  void* then_seen = nullptr;
  EXPECT_EQ(voxTlsSetValue(slot, &mine), 1);
  std::thread([&] {
    first_seen = voxTlsGetValue(slot);
    voxTlsSetValue(slot, &others);
    then_seen = voxTlsGetValue(slot);
  }).join();
  EXPECT_EQ(first_seen, nullptr);
  EXPECT_EQ(then_seen, &others);
  EXPECT_EQ(voxTlsGetValue(slot), &mine);
}

TEST_F(Tls, ASlotTakenAgainHasNoValue) {
  int value = 0;
  ASSERT_EQ(voxTlsAlloc(), 0);
  EXPECT_EQ(voxTlsSetValue(0, &value), 1);
  EXPECT_EQ(voxTlsFree(0), 1);
  ASSERT_EQ(voxTlsAlloc(), 0);
  EXPECT_EQ(voxTlsGetValue(0), nullptr);
}

TEST_F(Tls, WithoutMemoryStoresTwelveAndTakesNoSlot) {
  const size_t requests = orbtest::for_each_memory_fault([](size_t nth, Failing failing) {
    ScopedErrorWord word;
    orbtest::MemoryFaults faults(nth, failing);
    const int64_t slot = voxTlsAlloc();
    const bool failed = faults.failures() != 0;
    EXPECT_EQ(slot, failed ? -1 : 0);
    EXPECT_EQ(word.stored(), failed ? 12 : kUntouched);
    EXPECT_EQ(pTlsKeyTable[0] == nullptr, failed);
    if (!failed) voxTlsFree(0);
    return faults.failures();
  });
  EXPECT_EQ(requests, 1u);
}

TEST_F(Tls, WithoutAKeyTakesNoSlotAndStoresNothing) {
  ScopedErrorWord word;
  CallFaults faults("pthread_key_create", EAGAIN);
  EXPECT_EQ(voxTlsAlloc(), -1);
  EXPECT_EQ(word.stored(), kUntouched);
  EXPECT_EQ(pTlsKeyTable[0], nullptr);
  EXPECT_EQ(nTlsOwnerTable[0], 0);
  EXPECT_EQ(voxTlsAlloc(), 0);
}

TEST_F(Tls, AKeyThatCannotBeDeletedFreesTheSlotAllTheSame) {
  ScopedErrorWord word;
  ASSERT_EQ(voxTlsAlloc(), 0);
  const pthread_key_t key = *pTlsKeyTable[0];
  {
    CallFaults faults("pthread_key_delete", EINVAL);
    EXPECT_EQ(voxTlsFree(0), 0);
    EXPECT_EQ(faults.failures(), 1u);
  }
  EXPECT_EQ(word.stored(), kUntouched);
  EXPECT_EQ(pTlsKeyTable[0], nullptr);
  EXPECT_EQ(nTlsOwnerTable[0], 0);
  EXPECT_EQ(voxTlsAlloc(), 0);
  pthread_key_delete(key);
}

TEST_F(Tls, AValueThatCannotBeStoredGivesZero) {
  ScopedErrorWord word;
  ASSERT_EQ(voxTlsAlloc(), 0);
  CallFaults faults("pthread_setspecific", ENOMEM);
  EXPECT_EQ(voxTlsSetValue(0, &word), 0);
  EXPECT_EQ(word.stored(), kUntouched);
  EXPECT_EQ(voxTlsGetValue(0), nullptr);
}

// What a forked child does; its exit status tells the first expectation that failed.
int child_of_a_slot_owner(int* value) {
  if (voxTlsGetValue(0) != value) return 1;     // the slot came along
  if (nTlsOwnerTable[0] == getpid()) return 2;  // and is its parent's
  if (voxTlsAlloc() != 1) return 3;             // new ones follow
  if (nTlsOwnerTable[1] != getpid()) return 4;  // and are the child's
  void* thread = voxBeginThread(
      nullptr, 0, [](void* argument) { return argument; }, nullptr, 0, nullptr);
  if (voxWaitForSingleObject(thread, INFINITE) != WAIT_OBJECT_0) return 5;
  if (voxCloseHandle(thread) != 1) return 6;
  if (pTlsKeyTable[1] != nullptr) return 7;  // a thread's end releases the child's
  if (pTlsKeyTable[0] == nullptr) return 8;  // and keeps the parent's
  return 0;
}

TEST_F(Tls, AChildKeepsItsParentsSlotsAndOwnsItsOwn) {
  int value = 0;
  ASSERT_EQ(voxTlsAlloc(), 0);
  ASSERT_EQ(voxTlsSetValue(0, &value), 1);
  const pid_t child = fork();
  if (child == 0) _exit(child_of_a_slot_owner(&value));
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(Tls, SeveralThreadsNeverGetTheSameSlot) {
  constexpr int kThreads = 4;
  std::atomic<int> holders[kTlsSlots] = {};
  std::atomic<bool> shared{false};
  std::vector<std::thread> threads;
  for (int n = 0; n < kThreads; ++n) {
    threads.emplace_back([&] {
      for (int round = 0; round < 5000; ++round) {
        const auto slot = static_cast<uint32_t>(voxTlsAlloc());
        if (slot >= kTlsSlots || ++holders[slot] != 1) shared = true;
        int value = 0;
        if (voxTlsGetValue(slot) != nullptr) shared = true;
        voxTlsSetValue(slot, &value);
        if (voxTlsGetValue(slot) != &value) shared = true;
        --holders[slot];
        voxTlsFree(slot);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_FALSE(shared);
}

}  // namespace
