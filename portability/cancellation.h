// portability/cancellation.h: keeps a thread from being cancelled while it holds what others need.
#pragma once

#include <pthread.h>

namespace quillon_com::orb::portability {

// While it lives, the calling thread is not cancelled; a request to do so stays pending. Where the
// system does not unwind a cancelled thread's scopes its locks stay taken, and others would wait
// for them without an end.
class CancellationShield {
 public:
  CancellationShield() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }
  ~CancellationShield() {
    int shielded = 0;
    pthread_setcancelstate(before_, &shielded);
  }
  CancellationShield(const CancellationShield&) = delete;
  CancellationShield& operator=(const CancellationShield&) = delete;

 private:
  int before_ = PTHREAD_CANCEL_ENABLE;
};

}  // namespace quillon_com::orb::portability
