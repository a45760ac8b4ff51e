// tests/torture/attached.h: what rows of locks and lists set up.
#pragma once

#include <atomic>
#include <string_view>
#include <thread>

#include "tests/support/attached.h"
#include "tests/support/torture.h"

namespace orbtest {

// Holds `lock` exclusively in another thread, which gives it up when the tortured call sleeps for
// it. A call that failed on the way may keep the caller from its sleep; once it is queued the lock
// is given up then, and not before: where locking fails, nothing but this order keeps the two
// threads apart.
class OtherHolder {
 public:
  OtherHolder(_vxSELock_t* lock, const Trial& trial)
      : thread_([this, lock, &trial] {
          vxSO_ThreadAttach();
          vxSO_SELockExclusive(lock, 1);
          holds_ = true;
          while (!over_ && !(trial.failed() && is_queued(*lock)) &&
                 std::string_view(trial.trace().last()) != "pthread_cond_wait") {
            std::this_thread::yield();
          }
          vxSO_SELockRelease(lock);
          vxSO_ThreadDetach();
        }) {
    while (!holds_) std::this_thread::yield();
  }
  ~OtherHolder() {
    over_ = true;
    thread_.join();
  }
  OtherHolder(const OtherHolder&) = delete;
  OtherHolder& operator=(const OtherHolder&) = delete;

 private:
  // Whether a thread is in a queue of `lock` and has let go of the spin word.
  static bool is_queued(const _vxSELock_t& lock) {
    return (__atomic_load_n(&lock.exclusiveWaiters, __ATOMIC_ACQUIRE) != nullptr ||
            __atomic_load_n(&lock.sharedWaiters, __ATOMIC_ACQUIRE) != nullptr) &&
           __atomic_load_n(&lock.spin, __ATOMIC_ACQUIRE) == 0;
  }

  std::atomic<bool> holds_{false};
  std::atomic<bool> over_{false};
  std::thread thread_;
};

// What functions give that only take locks which cannot fail: the same whatever fails.
inline std::vector<Fault> indifferent(const char* answer) {
  return {{"pthread_mutex_lock", answer}, {"pthread_mutex_unlock", answer}};
}

}  // namespace orbtest
