// portability/selockparts.h: what the lock and its notification list share.
#pragma once

#include "portability/forks.h"
#include "portability/selock.h"

namespace quillon_com::orb::portability {

enum Transition : int64_t {
  kCreated = 1,
  kExclusive = 2,
  kDowngraded = 3,
  kFreed = 4,
  kHandedOver = 5,
  kExclusiveByNotify = 6,
};

// A lock as vxSO_SELockCreate makes it: every one is in a list that forks walk.
struct LockRecord {
  _vxSELock_t lock;
  LockRecord* next;  // guarded by the list's flag, as the next two
  LockRecord* previous;
  bool taken;  // its spin word, by the forking thread
};

void enlist(LockRecord* record);
void unlist(LockRecord* record);

// While it lives, the calling thread runs the notifications of `lock`, whose spin word it holds.
class Notifying {
 public:
  explicit Notifying(const _vxSELock_t* lock);
  ~Notifying();
  Notifying(const Notifying&) = delete;
  Notifying& operator=(const Notifying&) = delete;

  static bool is_running(const _vxSELock_t* lock);  // in the calling thread

 private:
  const _vxSELock_t* lock_;
  const Notifying* outer_;
};

// The spin word, held for a scope.
class SpinHold {
 public:
  explicit SpinHold(_vxSELock_t* lock) : lock_(forking_here() ? nullptr : lock) {
    if (lock_ != nullptr) vxSL_Get(&lock->spin);
  }
  ~SpinHold() { release(); }
  SpinHold(const SpinHold&) = delete;
  SpinHold& operator=(const SpinHold&) = delete;
  void release() {
    if (lock_ != nullptr) vxSL_Release(&lock_->spin);
    lock_ = nullptr;
  }

 private:
  _vxSELock_t* lock_;
};

// The next four expect the spin word held.

// Whether the thread whose event is `me` would have to wait for an exclusive hold.
bool busy_for(const _vxSELock_t* lock, intptr_t me);

// Adds an exclusive hold of `me`; a new owner's entry is recorded as `transition`.
void grant_exclusive(_vxSELock_t* lock, intptr_t me, Transition transition);

// Tells the notifications that the lock is free, newest first, until one is done with.
void notify_free(_vxSELock_t* lock);

}  // namespace quillon_com::orb::portability
