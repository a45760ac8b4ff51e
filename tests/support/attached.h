// tests/support/attached.h: scopes in which threads may take shared/exclusive locks, and a lock.
#pragma once

#include "portability/selock.h"
#include "portability/threads.h"

namespace orbtest {

// The calling thread's event, for a scope.
class AttachedThread {
 public:
  AttachedThread() { vxSO_ThreadAttach(); }
  ~AttachedThread() { vxSO_ThreadDetach(); }
  AttachedThread(const AttachedThread&) = delete;
  AttachedThread& operator=(const AttachedThread&) = delete;
};

// The slot and the calling thread's event, for a scope. The end of any thread of ours takes the
// slot away: no two scopes may rely on the same one.
class Attached {
 public:
  Attached() {
    vxSO_ProcessAttach();
    vxSO_ThreadAttach();
  }
  ~Attached() {
    vxSO_ThreadDetach();
    vxSO_ProcessDetach();
  }
  Attached(const Attached&) = delete;
  Attached& operator=(const Attached&) = delete;
};

// A lock, for a scope.
class Lock {
 public:
  Lock() { vxSO_SELockCreate(&lock_); }
  ~Lock() { vxSO_Release(lock_); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
  _vxSELock_t* get() const { return lock_; }
  _vxSELock_t* operator->() const { return lock_; }

 private:
  _vxSELock_t* lock_ = nullptr;
};

}  // namespace orbtest
