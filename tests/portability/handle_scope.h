// tests/portability/handle_scope.h: what the tests of handles and threads share.
#pragma once

#include <chrono>
#include <memory>
#include <thread>

#include "portability/handles.h"

namespace orbtest {

struct CloseHandle {
  void operator()(_voxHandleObject_t* handle) const { voxCloseHandle(handle); }
};

// A handle that is closed behind its scope.
using Handle = std::unique_ptr<_voxHandleObject_t, CloseHandle>;

inline Handle make_event(bool set = false) {
  return Handle(voxCreateEvent(nullptr, 1, set ? 1 : 0, nullptr));
}

inline Handle make_mutex(bool owned = false) {
  return Handle(voxCreateMutex(nullptr, owned ? 1 : 0, nullptr));
}

// What a mutex looks like to a thread that does not hold it.
inline bool is_locked(pthread_mutex_t* mutex) {
  bool locked = false;
  std::thread([&] {
    locked = pthread_mutex_trylock(mutex) != 0;
    if (!locked) pthread_mutex_unlock(mutex);
  }).join();
  return locked;
}

// The whole milliseconds that `work` takes.
template <class Work>
int64_t milliseconds_of(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               start)
      .count();
}

}  // namespace orbtest
