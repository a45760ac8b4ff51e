// portability/selock.h: a shared/exclusive lock with recursion, downgrade and notification.
//
// The lock is free, shared (count holders, no owner) or exclusive (one owner, count its depth). A
// thread is known by its event (portability/threads.h): call vxSO_ProcessAttach once and
// vxSO_ThreadAttach in every thread that takes a lock. A thread that must wait sleeps on its event,
// and who releases the lock hands it over before waking it. Waiters are served last come, first
// served; exclusive ones before shared ones.
//
// A null lock does nothing and gives 0. Entry functions return 1 when the lock is held and 0 when
// it is not: `wait` was 0, or the thread has no event to sleep on. No error words. Every function
// may be called from any thread. A thread that is cancelled while it waits for a lock leaves its
// queue; while it runs notifications it is not cancelled.
//
// A forked child finds every lock's fields whole and its queues empty; a hold of a thread that it
// does not have is never given up. A word that such a thread took with vxSL_Get stays taken.
#pragma once

#include <stdint.h>

#include "platform/export.h"

ORB_EXTERN_C_BEGIN

// The lock, allocated with malloc; every field is guarded by `spin`.
typedef struct _vxSELock_t {
  long spin;               // 0 free, 1 taken
  intptr_t owner;          // the exclusive owner's event; -1 when there is none
  uint64_t count;          // shared holds, or the depth of the exclusive one
  void* sharedWaiters;     // vxLL list, last come first
  void* exclusiveWaiters;  // vxLL list, last come first
  void* notifyList;        // vxLL list of those to be told
  int64_t processId;       // of the last exclusive acquirer
  int64_t lastTransition;  // 1 created, 2 exclusive, 3 downgraded, 4 freed, 5 handed over, 6
                           // exclusive through the notify entry; for diagnosis only
} _vxSELock_t;

// What a notification calls: `message` is 0x1100 when the lock has become free, 0x1102 when the
// record is being withdrawn; `reserved` is 0. A result of 0 says that the record is done with. It
// runs while the lock's spin word is held and must not call into the same lock.
typedef int32_t (*vxSELockCallback)(void* context, uint32_t message, void* parameter,
                                    void* reserved);

// Makes a free lock and stores it in `*out`, to be given back to vxSO_Release. Returns 0, or
// 0x80000008 without memory (null in `*out`) and for a null `out`.
ORB_EXPORT uint32_t vxSO_SELockCreate(_vxSELock_t** out);

// Frees the lock, without a look at holders and waiters: nobody may use it any more.
ORB_EXPORT void vxSO_Release(_vxSELock_t* lock);

// Exclusive entry; the owner may enter again, and leaves as many times.
ORB_EXPORT int vxSO_SELockExclusive(_vxSELock_t* lock, int wait);

// Shared entry, also for the exclusive owner. The first ignores queued exclusive waiters, the
// second waits behind them.
ORB_EXPORT int vxSO_SELockSharedStarveExclusive(_vxSELock_t* lock, int wait);
ORB_EXPORT int vxSO_SELockSharedWaitForExclusive(_vxSELock_t* lock, int wait);

// vxSO_SELockExclusive when `exclusive` is not 0, else vxSO_SELockSharedWaitForExclusive.
ORB_EXPORT int vxSO_SELock(_vxSELock_t* lock, int exclusive, int wait);

// Turns the owner's holds into shared ones and lets all shared waiters in. Returns 1. Who calls is
// not looked at.
ORB_EXPORT int vxSO_SELockExclusiveToShared(_vxSELock_t* lock);

// Gives up one hold of either kind; with the last one the lock goes to an exclusive waiter, else to
// all shared ones, else the notifications are called, newest first, until one is done with.
// Returns 1. Quirk: releasing a lock that nobody holds wraps its count to all ones.
ORB_EXPORT int vxSO_SELockRelease(_vxSELock_t* lock);

// Exclusive entry that never waits: when the lock is busy, `callback` is registered to be told,
// with `context` and `parameter`, that it has become free, and the result is 0; whoever is told has
// to enter anew. A null callback is done with what it is told. Ends the process when there is no
// memory for the registration.
ORB_EXPORT int vxSO_SELockExclusiveNotify(_vxSELock_t* lock, vxSELockCallback callback,
                                          void* context, void* parameter);

// Withdraws such a registration: calls every one of the same three arguments with 0x1102 until one
// returns 0, drops that and returns 1; 0 when none did.
// Quirk: the dropped record's memory is not reclaimed.
ORB_EXPORT int vxSO_SELockExclusiveUnnotify(_vxSELock_t* lock, vxSELockCallback callback,
                                            void* context, void* parameter);

// A spin lock on one word, 0 when free, 1 when taken; null does nothing. It is not recursive and
// knows no owner: vxSL_Release frees it, whoever calls. vxSL_Get spins 4000 tries, then backs off
// in four steps of 100 tries, sleeping 0, 10 ms, 100 ms and 1 s before each. Quirk: from try 4400
// on it spins again without sleep.
ORB_EXPORT void vxSL_Get(long* word);
ORB_EXPORT void vxSL_Release(long* word);

ORB_EXTERN_C_END
