// portability/interlocked.cpp: increment, decrement and exchange under their two mutexes.
#include "portability/forks.h"
#include "portability/handles.h"

using quillon_com::orb::portability::Hold;
using quillon_com::orb::portability::ProcessMutex;

namespace {

ProcessMutex MutexInterlockedLong;
ProcessMutex MutexInterlockedExchange;

// Adds `step`, wrapping; the mutex orders the two accesses, which are atomic because the result of
// the caller is read outside it and exchange knows another mutex.
long add(long* p, unsigned long step) {
  {
    const Hold hold(MutexInterlockedLong);
    const auto before = static_cast<unsigned long>(__atomic_load_n(p, __ATOMIC_RELAXED));
    __atomic_store_n(p, static_cast<long>(before + step), __ATOMIC_RELAXED);
  }
  return __atomic_load_n(p, __ATOMIC_RELAXED);
}

}  // namespace

long voxInterlockedIncrement(long* p) { return add(p, 1); }

long voxInterlockedDecrement(long* p) { return add(p, ~0ul); }

long voxInterlockedExchange(long* p, long value) {
  const Hold hold(MutexInterlockedExchange);
  return __atomic_exchange_n(p, value, __ATOMIC_ACQ_REL);
}
