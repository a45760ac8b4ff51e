// benchmarks/portability/locks.cpp: the shared/exclusive lock beside pthread_rwlock, and the
// guarded list.
#include <benchmark/benchmark.h>
#include <pthread.h>

#include "benchmarks/portability/rows.h"
#include "portability/Linklist.h"
#include "portability/selock.h"
#include "tests/support/attached.h"

namespace {

using namespace orbbench;

class OurLock {
 public:
  void shared() { vxSO_SELockSharedWaitForExclusive(lock_.get(), 1); }
  void leave_shared() { vxSO_SELockRelease(lock_.get()); }
  void exclusive() { vxSO_SELockExclusive(lock_.get(), 1); }
  void leave_exclusive() { vxSO_SELockRelease(lock_.get()); }

 private:
  orbtest::Attached attached_;
  orbtest::Lock lock_;
};

class PthreadLock {
 public:
  void shared() { pthread_rwlock_rdlock(&lock_); }
  void leave_shared() { pthread_rwlock_unlock(&lock_); }
  void exclusive() { pthread_rwlock_wrlock(&lock_); }
  void leave_exclusive() { pthread_rwlock_unlock(&lock_); }

 private:
  pthread_rwlock_t lock_ = PTHREAD_RWLOCK_INITIALIZER;
};

void our_shared(benchmark::State& state) {
  goal(state, "goal_ratio_pthread_rwlock", 6.5);
  goal(state, "goal_ratio_Boost", 1.5);
  goal(state, "stretch_ratio_pthread_rwlock", 1.5);
  shared_pair<OurLock>(state);
}
BENCHMARK(our_shared)->Name("selock/shared/ours");
BENCHMARK(shared_pair<PthreadLock>)->Name("selock/shared/pthread_rwlock");

void our_exclusive(benchmark::State& state) {
  goal(state, "goal_ratio_pthread_rwlock", 4.5);
  goal(state, "goal_ratio_Boost", 1.5);
  goal(state, "stretch_ratio_pthread_rwlock", 1.5);
  exclusive_pair<OurLock>(state);
}
BENCHMARK(our_exclusive)->Name("selock/exclusive/ours");
BENCHMARK(exclusive_pair<PthreadLock>)->Name("selock/exclusive/pthread_rwlock");

void our_three_deep(benchmark::State& state) {
  goal(state, "goal_ratio_WinPR_critical_section", 6);
  goal(state, "stretch_ratio_WinPR_critical_section", 2);
  exclusive_three_deep<OurLock>(state);
}
BENCHMARK(our_three_deep)->Name("selock/exclusive_3_deep/ours");

// A thread's entries into one lock of two threads.
struct OurParty {
  static inline _vxSELock_t* lock = nullptr;
  orbtest::AttachedThread attached;
  void operator()() const {
    vxSO_SELockExclusive(lock, 1);
    vxSO_SELockRelease(lock);
  }
};

struct PthreadParty {
  static inline PthreadLock lock;
  void operator()() const {
    lock.exclusive();
    lock.leave_exclusive();
  }
};

constexpr int kBatches = 20;

void our_contended(benchmark::State& state) {
  goal(state, "goal_ns", 1000);
  vxSO_ProcessAttach();
  vxSO_SELockCreate(&OurParty::lock);
  two_threads<OurParty>(state);
  vxSO_Release(OurParty::lock);
  vxSO_ProcessDetach();
}
BENCHMARK(our_contended)
    ->Name("selock/exclusive_2_threads/ours")
    ->Iterations(kBatches)
    ->UseManualTime();
BENCHMARK(two_threads<PthreadParty>)
    ->Name("selock/exclusive_2_threads/pthread_rwlock")
    ->Iterations(kBatches)
    ->UseManualTime();

void our_list(benchmark::State& state) {
  struct Item {
    void* next;
    void* previous;
  };
  goal(state, "goal_ratio_Boost", 5);
  goal(state, "goal_ratio_WinPR_queue", 0.25);
  const orbtest::Attached attached;
  _vxSLL2_t* list = nullptr;
  vxSLL2_Create(&list);
  Item item{};
  for (auto _ : state) {
    vxSLL2_XInsertTail(list, &item);
    benchmark::DoNotOptimize(vxSLL2_XRemoveHead(list));
  }
  vxSLL2_Release(list);
}
BENCHMARK(our_list)->Name("list/insert_remove/ours");

}  // namespace
