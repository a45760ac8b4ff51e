// tests/stress/selock_stress_test.cpp: threads in all modes of the lock at once.
#include <atomic>
#include <vector>

#include "portability/selock.h"
#include "tests/portability/attached.h"
#include "tests/support/stress.h"

namespace {

class SELockStress : public orbtest::AttachedTest {};

int32_t is_done(void*, uint32_t, void*, void*) { return 0; }

// One round of thread `each`, in one of the modes; `written` is guarded by the lock.
void enter_somehow(_vxSELock_t* lock, int mode, int64_t* written, std::atomic<int64_t>* writes,
                   void* self) {
  switch (mode) {
    case 0:
      vxSO_SELockExclusive(lock, 1);
      vxSO_SELockExclusive(lock, 1);
      break;
    case 1:
    case 2:
      if (mode == 1)
        vxSO_SELockSharedStarveExclusive(lock, 1);
      else
        vxSO_SELockSharedWaitForExclusive(lock, 1);
      EXPECT_LE(0, *written);
      vxSO_SELockRelease(lock);
      return;
    case 3:
      if (vxSO_SELockExclusiveNotify(lock, is_done, self, self) == 0) {
        vxSO_SELockExclusiveUnnotify(lock, is_done, self, self);
        return;
      }
      break;
    default:
      vxSO_SELockExclusive(lock, 1);
  }
  ++*written;
  ++*writes;
  if (mode == 0) vxSO_SELockRelease(lock);
  if (mode == 4) {
    const int64_t mine = *written;
    vxSO_SELockExclusiveToShared(lock);
    EXPECT_EQ(mine, *written) << "no writer enters between";
  }
  vxSO_SELockRelease(lock);
}

TEST_F(SELockStress, EightThreadsInAllModesKeepTheLock) {
  _vxSELock_t* lock = nullptr;
  ASSERT_EQ(0u, vxSO_SELockCreate(&lock));
  constexpr int kThreads = 8;
  const long rounds = orbtest::stress_rounds() / kThreads;
  int64_t written = 0;
  std::atomic<int64_t> writes{0};
  std::vector<std::thread> threads;
  for (int each = 0; each < kThreads; ++each) {
    threads.push_back(orbtest::attached([&, each] {
      char self = 0;
      for (long round = 0; round < rounds; ++round)
        enter_somehow(lock, static_cast<int>((each + round) % 5), &written, &writes, &self);
    }));
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(writes, written);
  EXPECT_EQ(0, lock->spin);
  EXPECT_EQ(-1, lock->owner);
  EXPECT_EQ(0u, lock->count);
  EXPECT_EQ(nullptr, lock->exclusiveWaiters);
  EXPECT_EQ(nullptr, lock->sharedWaiters);
  vxSO_Release(lock);
}

}  // namespace

// A registration that was withdrawn stays allocated by the interface's own rules.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:add_notification\n"; }
