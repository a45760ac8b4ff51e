// portability/interlocked.cpp: increment, decrement and exchange under their two mutexes.
#include "portability/forks.h"
#include "portability/handles.h"
#include "portability/selockparts.h"

namespace quillon_com::orb::portability {
namespace {

ProcessMutex MutexInterlockedLong;
ProcessMutex MutexInterlockedExchange;

// Words are read and written atomically, because a step's result is read outside its mutex and
// exchange knows another one; the mutexes give the order.

// Adds `step`, wrapping.
long add(long* p, unsigned long step) {
  {
    const Hold hold(MutexInterlockedLong);
    const auto before = static_cast<unsigned long>(__atomic_load_n(p, __ATOMIC_RELAXED));
    __atomic_store_n(p, static_cast<long>(before + step), __ATOMIC_RELAXED);
  }
  return __atomic_load_n(p, __ATOMIC_RELAXED);
}

// The exchange, whose mutex is held.
long exchange(long* p, long value) {
  const long before = __atomic_load_n(p, __ATOMIC_RELAXED);
  __atomic_store_n(p, value, __ATOMIC_RELAXED);
  return before;
}

}  // namespace

bool try_to_take(long* word) {
  if (MutexInterlockedExchange.try_lock() != 0) return false;
  const bool taken = exchange(word, 1) == 0;
  MutexInterlockedExchange.unlock();
  return taken;
}

bool begin_brief(const long* word) {
  if (MutexInterlockedExchange.lock() != 0) return false;
  if (__atomic_load_n(word, __ATOMIC_RELAXED) == 0) [[likely]]
    return true;
  MutexInterlockedExchange.unlock_locked();
  return false;
}

void end_brief(long* word, long value) {
  __atomic_store_n(word, value, __ATOMIC_RELAXED);
  MutexInterlockedExchange.unlock_locked();
}

}  // namespace quillon_com::orb::portability

using namespace quillon_com::orb::portability;

long voxInterlockedIncrement(long* p) { return add(p, 1); }

long voxInterlockedDecrement(long* p) { return add(p, ~0ul); }

long voxInterlockedExchange(long* p, long value) {
  const Hold hold(MutexInterlockedExchange);
  return exchange(p, value);
}
