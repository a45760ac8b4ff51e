// portability/waits.cpp: the wait on one handle and the polling wait on several.
#include <sys/time.h>

#include <cerrno>

#include "portability/handleparts.h"
#include "portability/handles.h"

namespace quillon_com::orb::portability {
namespace {

constexpr long kNanosecondsPerSecond = 1'000'000'000;
constexpr uint64_t kTurn = 10;  // ms

bool waitable(const _voxHandleObject_t* handle) {
  return handle != nullptr && handle != no_handle() && handle->kind >= HANDLE_TYPE_EVENT &&
         handle->kind <= HANDLE_TYPE_MUTEX;
}

// `milliseconds` from now on the wall clock; false when the clock cannot be read.
bool deadline_after(uint64_t milliseconds, timespec* deadline) {
  timeval now{};
  if (gettimeofday(&now, nullptr) != 0) return false;
  deadline->tv_sec = now.tv_sec + static_cast<time_t>(milliseconds / 1000);
  deadline->tv_nsec =
      static_cast<long>(now.tv_usec) * 1000 + static_cast<long>(milliseconds % 1000) * 1'000'000;
  if (deadline->tv_nsec > kNanosecondsPerSecond) {  // strictly: see the header
    deadline->tv_nsec -= kNanosecondsPerSecond;
    ++deadline->tv_sec;
  }
  return true;
}

OwnerMutex* owner_of(const _voxHandleObject_t* mutex) {
  return static_cast<OwnerMutex*>(mutex->payload);
}

// Whether a wait need not sleep; the guard is held. A mutex that somebody set while it is owned is
// not free: locking it here would keep the guard from the one that is to release it.
bool is_ready(const _voxHandleObject_t* handle) {
  return is_signalled(handle) &&
         (handle->kind != HANDLE_TYPE_MUTEX || owner_of(handle)->holder == nullptr);
}

void unlock_guard(void* guard) { pthread_mutex_unlock(static_cast<pthread_mutex_t*>(guard)); }

// Sleeps until a wake-up counts; the guard is held on entry and return, and given back when the
// thread is cancelled meanwhile. 0 or the failed call's code.
int sleep_until_woken(_voxHandleObject_t* handle, const timespec* deadline) {
  int code = 0;
  pthread_cleanup_push(unlock_guard, &handle->guard);
  do {
    code = deadline == nullptr
               ? pthread_cond_wait(&handle->condition, &handle->guard)
               : pthread_cond_timedwait(&handle->condition, &handle->guard, deadline);
  } while (code == 0 && handle->kind == HANDLE_TYPE_MUTEX && !is_ready(handle));
  pthread_cleanup_pop(0);
  return code;
}

// Takes a signalled mutex; true for other kinds, which stay as they are.
bool take(_voxHandleObject_t* handle) {
  if (handle->kind != HANDLE_TYPE_MUTEX) return true;
  if (!lock_owner(owner_of(handle))) [[unlikely]]
    return false;
  set_signalled(&handle->signalled, 0);
  return true;
}

uint64_t leave(_voxHandleObject_t* handle, uint64_t result) {
  return pthread_mutex_unlock(&handle->guard) == 0 ? result : uint64_t{WAIT_FAILED};
}

uint64_t take_and_leave(_voxHandleObject_t* handle) {
  return leave(handle, take(handle) ? WAIT_OBJECT_0 : WAIT_FAILED);
}

// The wait for a handle that is not ready; its guard is held, and given up unless the clock cannot
// be read. Apart from the wait for a ready one, which would pay for its registers.
[[gnu::noinline]] uint64_t wait_and_leave(_voxHandleObject_t* handle, uint64_t milliseconds) {
  if (milliseconds == 0) return leave(handle, WAIT_TIMEOUT);
  timespec deadline{};
  const bool endless = milliseconds == INFINITE;
  if (!endless && !deadline_after(milliseconds, &deadline)) return WAIT_FAILED;
  const int code = sleep_until_woken(handle, endless ? nullptr : &deadline);
  if (code == 0) return take_and_leave(handle);
  pthread_mutex_unlock(&handle->guard);
  return code == ETIMEDOUT ? WAIT_TIMEOUT : WAIT_FAILED;
}

// Handles in the cyclic order of their turns, and the one whose turn is next.
struct Round {
  void* const* handles;
  uint64_t count;
  uint64_t index;

  void advance() { index = index + 1 == count ? 0 : index + 1; }
};

// What a wait gives whose single wait on the handle at `index` gave `result`, not WAIT_TIMEOUT:
// what is no success is passed on.
uint64_t outcome(uint64_t result, uint64_t index) {
  return result == WAIT_OBJECT_0 ? WAIT_OBJECT_0 + index : result;
}

// Whether one of the next `turns` turns would end the wait if nothing changed but the clock, found
// without sleeping; `given` is then what the wait gives. A handle that cannot be waited on is left
// to its turn.
bool look_ahead(Round round, uint64_t turns, uint64_t* given) {
  const uint64_t reached = turns < round.count ? turns : round.count;
  for (uint64_t seen = 0; seen < reached; ++seen, round.advance()) {
    auto* handle = static_cast<_voxHandleObject_t*>(round.handles[round.index]);
    if (!waitable(handle)) return false;
    if (!is_signalled(handle)) continue;
    const uint64_t result = voxWaitForSingleObject(handle, 0);
    if (result == WAIT_TIMEOUT) continue;
    *given = outcome(result, round.index);
    return true;
  }
  return false;
}

}  // namespace
}  // namespace quillon_com::orb::portability

using namespace quillon_com::orb::portability;

uint64_t voxWaitForSingleObject(void* handle, uint64_t milliseconds) {
  auto* waited = static_cast<_voxHandleObject_t*>(handle);
  if (!waitable(waited)) [[unlikely]] {
    store_error(kErrInvalid);
    return WAIT_FAILED;
  }
  if (pthread_mutex_lock(&waited->guard) != 0) [[unlikely]]
    return WAIT_FAILED;
  if (!is_ready(waited)) [[unlikely]]
    return wait_and_leave(waited, milliseconds);
  return take_and_leave(waited);
}

uint64_t voxWaitForMultipleObjects(uint64_t count, const void* handles, int waitAll,
                                   uint64_t milliseconds) {
  if (waitAll != 0) return WAIT_FAILED;
  if (milliseconds == 0) return WAIT_TIMEOUT;
  if (handles == nullptr || count == 0) {
    store_error(kErrInvalid);
    return WAIT_FAILED;
  }
  Round round{static_cast<void* const*>(handles), count, 0};
  for (uint64_t elapsed = 0; elapsed < milliseconds; elapsed += kTurn, round.advance()) {
    const uint64_t left = milliseconds - elapsed;
    uint64_t given = 0;
    if (look_ahead(round, left / kTurn + (left % kTurn != 0 ? 1 : 0), &given)) return given;
    const uint64_t result = voxWaitForSingleObject(round.handles[round.index], kTurn);
    if (result != WAIT_TIMEOUT) return outcome(result, round.index);
  }
  return WAIT_TIMEOUT;
}
