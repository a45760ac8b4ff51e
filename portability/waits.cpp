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
  return handle != nullptr && handle->kind >= HANDLE_TYPE_EVENT &&
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

// Sleeps until a wake-up counts; the guard is held on entry and return. 0 or the failed call's
// code.
int sleep_until_woken(_voxHandleObject_t* handle, const timespec* deadline) {
  int code = 0;
  do {
    code = deadline == nullptr
               ? pthread_cond_wait(&handle->condition, &handle->guard)
               : pthread_cond_timedwait(&handle->condition, &handle->guard, deadline);
  } while (code == 0 && handle->kind == HANDLE_TYPE_MUTEX && !is_signalled(handle));
  return code;
}

// Takes a signalled mutex; true for other kinds, which stay as they are.
bool take(_voxHandleObject_t* handle) {
  if (handle->kind != HANDLE_TYPE_MUTEX) return true;
  if (pthread_mutex_lock(static_cast<pthread_mutex_t*>(handle->payload)) != 0) return false;
  set_signalled(&handle->signalled, 0);
  return true;
}

uint64_t leave(_voxHandleObject_t* handle, uint64_t result) {
  return pthread_mutex_unlock(&handle->guard) == 0 ? result : uint64_t{WAIT_FAILED};
}

}  // namespace
}  // namespace quillon_com::orb::portability

using namespace quillon_com::orb::portability;

uint64_t voxWaitForSingleObject(void* handle, uint64_t milliseconds) {
  auto* waited = static_cast<_voxHandleObject_t*>(handle);
  if (!waitable(waited)) {
    store_error(kErrInvalid);
    return WAIT_FAILED;
  }
  if (pthread_mutex_lock(&waited->guard) != 0) return WAIT_FAILED;
  if (!is_signalled(waited)) {
    if (milliseconds == 0) return leave(waited, WAIT_TIMEOUT);
    timespec deadline{};
    const bool endless = milliseconds == INFINITE;
    if (!endless && !deadline_after(milliseconds, &deadline)) return WAIT_FAILED;
    const int code = sleep_until_woken(waited, endless ? nullptr : &deadline);
    if (code != 0) {
      pthread_mutex_unlock(&waited->guard);
      return code == ETIMEDOUT ? WAIT_TIMEOUT : WAIT_FAILED;
    }
  }
  return leave(waited, take(waited) ? WAIT_OBJECT_0 : WAIT_FAILED);
}

uint64_t voxWaitForMultipleObjects(uint64_t count, const void* handles, int waitAll,
                                   uint64_t milliseconds) {
  if (waitAll != 0) return WAIT_FAILED;
  if (milliseconds == 0) return WAIT_TIMEOUT;
  if (handles == nullptr || count == 0) {
    store_error(kErrInvalid);
    return WAIT_FAILED;
  }
  const auto* list = static_cast<void* const*>(handles);
  uint64_t index = 0;
  for (uint64_t elapsed = 0; elapsed < milliseconds; elapsed += kTurn) {
    const uint64_t result = voxWaitForSingleObject(list[index], kTurn);
    if (result == WAIT_OBJECT_0) return WAIT_OBJECT_0 + index;
    if (result != WAIT_TIMEOUT) return result == WAIT_ABANDONED ? WAIT_ABANDONED : WAIT_FAILED;
    if (++index == count) index = 0;
  }
  return WAIT_TIMEOUT;
}
