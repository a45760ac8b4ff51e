// fileutil/hold.h: a mutex held for a scope.
#pragma once

#include <pthread.h>

namespace quillon_com::orb {

// Holds a mutex that outlives this object and is of the plain kind, so that locking it cannot fail.
// Statically initialised mutexes of this kind serve until the process has ended, its static
// destructors included.
class Hold {
 public:
  explicit Hold(pthread_mutex_t& held) : mutex_(held) { pthread_mutex_lock(&mutex_); }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;
  ~Hold() { pthread_mutex_unlock(&mutex_); }

 private:
  pthread_mutex_t& mutex_;
};

}  // namespace quillon_com::orb
