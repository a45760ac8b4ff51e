// portability/interlocked.cpp: increment, decrement and exchange under their two mutexes.
#include <pthread.h>

#include "portability/handles.h"

namespace {

pthread_mutex_t MutexInterlockedLong = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t MutexInterlockedExchange = PTHREAD_MUTEX_INITIALIZER;

// Adds `step`, wrapping; the mutex orders the two accesses, which are atomic because the result of
// the caller is read outside it and exchange knows another mutex.
long add(long* p, unsigned long step) {
  pthread_mutex_lock(&MutexInterlockedLong);
  const auto before = static_cast<unsigned long>(__atomic_load_n(p, __ATOMIC_RELAXED));
  __atomic_store_n(p, static_cast<long>(before + step), __ATOMIC_RELAXED);
  pthread_mutex_unlock(&MutexInterlockedLong);
  return __atomic_load_n(p, __ATOMIC_RELAXED);
}

}  // namespace

long voxInterlockedIncrement(long* p) { return add(p, 1); }

long voxInterlockedDecrement(long* p) { return add(p, ~0ul); }

long voxInterlockedExchange(long* p, long value) {
  pthread_mutex_lock(&MutexInterlockedExchange);
  const long before = __atomic_exchange_n(p, value, __ATOMIC_ACQ_REL);
  pthread_mutex_unlock(&MutexInterlockedExchange);
  return before;
}
