// portability/selockparts.h: what the lock and its notification list share.
#pragma once

#include "portability/forks.h"
#include "portability/selock.h"

namespace quillon_com::orb::portability {

// One try at vxSL_Get that does not even wait for the mutex of voxInterlockedExchange.
bool try_to_take(long* word);

// Locks the mutex of voxInterlockedExchange when `*word` is 0; otherwise false, and it is not
// locked. Not for a forking thread.
bool begin_brief(const long* word);

// Stores `value` in `*word` and gives that mutex up.
void end_brief(long* word, long value);

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

// The spin word, held for a scope; every one is held already while a thread forks.
class SpinHold {
 public:
  explicit SpinHold(_vxSELock_t* lock) : word_(forking_here() ? nullptr : &lock->spin) {
    vxSL_Get(word_);
  }
  ~SpinHold() { vxSL_Release(word_); }
  SpinHold(const SpinHold&) = delete;
  SpinHold& operator=(const SpinHold&) = delete;

 private:
  long* word_;
};

// The same for a few changes of the record: the word is taken and given back within one hold of the
// mutex of voxInterlockedExchange instead of two, so that nobody ever sees it taken. What waits,
// wakes, calls back or exchanges a word must not happen in such a scope before lengthen().
class BriefSpinHold {
 public:
  explicit BriefSpinHold(_vxSELock_t* lock)
      : word_(forking_here() ? nullptr : &lock->spin),
        brief_(word_ != nullptr && begin_brief(word_)) {
    if (!brief_) vxSL_Get(word_);
  }
  ~BriefSpinHold() { release(); }
  BriefSpinHold(const BriefSpinHold&) = delete;
  BriefSpinHold& operator=(const BriefSpinHold&) = delete;

  // Takes the word for all to see.
  void lengthen() {
    if (brief_) end_brief(word_, 1);
    brief_ = false;
  }
  void release() {
    if (brief_)
      end_brief(word_, 0);
    else
      vxSL_Release(word_);
    word_ = nullptr;
    brief_ = false;
  }

 private:
  long* word_;  // null when there is nothing to give back
  bool brief_;
};

// The next four expect the spin word held.

// Whether the thread whose event is `me` would have to wait for an exclusive hold.
bool busy_for(const _vxSELock_t* lock, intptr_t me);

// Adds an exclusive hold of `me`; a new owner's entry is recorded as `transition`.
void grant_exclusive(_vxSELock_t* lock, intptr_t me, Transition transition);

// Tells the notifications that the lock is free, newest first, until one is done with.
void notify_free(_vxSELock_t* lock);

}  // namespace quillon_com::orb::portability
