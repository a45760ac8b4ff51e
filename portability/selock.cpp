// portability/selock.cpp: the shared/exclusive lock's entries, release and hand-over.
#include "portability/selock.h"

#include <sched.h>

#include <cstdlib>

#include "portability/Linklist.h"
#include "portability/handleparts.h"
#include "portability/selockparts.h"
#include "portability/threads.h"

namespace quillon_com::orb::portability {
namespace {

constexpr intptr_t kNobody = -1;
// About what it costs to wake a sleeper: two threads that have both gone to sleep once, because one
// lost its processor, find back to hand-overs without a sleep.
constexpr int kSpinsBeforeSleep = 20'000;
// Behind these the processor is offered to others now and then: with more threads than processors
// it is one of them that is to grant.
constexpr int kSpinsBeforeYields = 2'000;
constexpr int kSpinsPerYield = 256;

// A blocked thread's place in a queue; lives on its stack while it waits.
struct Waiter {
  Waiter* next;
  intptr_t event;
  int64_t process;
  int64_t waiting;  // 1 while queued; cleared by the thread that grants
};

bool is_waiting(const Waiter& waiter) {
  return __atomic_load_n(&waiter.waiting, __ATOMIC_ACQUIRE) != 0;
}

// Wakes a waiter that has been granted the lock; its record is gone from then on.
void wake(Waiter* waiter) {
  void* event = reinterpret_cast<void*>(waiter->event);
  __atomic_store_n(&waiter->waiting, int64_t{0}, __ATOMIC_RELEASE);
  voxSetEvent(event);
}

// Consumes an event that its setter is about to let go of; false when it has not yet.
bool reset_at_once(_voxHandleObject_t* event) {
  if (pthread_mutex_trylock(&event->guard) != 0) return false;
  set_signalled(&event->signalled, 0);
  pthread_mutex_unlock(&event->guard);
  return true;
}

// Sleeps until granted. The granter sets the event after it cleared the flag, and the event is
// consumed only when both have happened: the granter is done with it then. A hand-over mostly comes
// within the time that going to sleep takes, so both words are watched first.
void sleep_until_granted(const Waiter& waiter) {
  auto* event = reinterpret_cast<_voxHandleObject_t*>(waiter.event);
  for (int spin = 0; spin < kSpinsBeforeSleep; ++spin) {
    if (!is_waiting(waiter) && is_signalled(event) && reset_at_once(event)) return;
    if (spin >= kSpinsBeforeYields && spin % kSpinsPerYield == 0) sched_yield();
  }
  do {
    voxWaitForSingleObject(event, INFINITE);
  } while (is_waiting(waiter) || !is_signalled(event));
  voxResetEvent(event);
}

// A waiter in one of its lock's queues.
struct Place {
  _vxSELock_t* lock;
  void** queue;
  Waiter waiter;
};

// Takes a waiter out of its queue, whose lock's spin word is held; false when it is not there.
bool leave_queue(const Place& place) {
  void* previous = vxLL_XGetStart(place.queue);
  void* next = vxLL_XGetNext(previous);
  for (; next != nullptr && next != &place.waiter; next = vxLL_XGetNext(next)) previous = next;
  vxLL_XRemove(previous, next);
  return next != nullptr;
}

// What a thread that is cancelled in its sleep does: it leaves the queue or, when it was granted
// the lock meanwhile, gives it up.
void withdraw(void* argument) {
  const auto* place = static_cast<Place*>(argument);
  bool queued = false;
  {
    const SpinHold hold(place->lock);
    queued = leave_queue(*place);
  }
  if (!queued) vxSO_SELockRelease(place->lock);
}

// Queues the caller and sleeps until the lock is handed to it, or gives up at once.
int block(_vxSELock_t* lock, void** queue, intptr_t me, int wait, BriefSpinHold& hold) {
  if (wait == 0 || me == kNobody) return 0;
  auto* event = reinterpret_cast<_voxHandleObject_t*>(me);
  if (is_signalled(event)) {  // set by somebody else: no grant yet
    hold.lengthen();
    voxResetEvent(event);
  }
  Place place{lock, queue, {nullptr, me, process_id(), 1}};
  vxLL_XInsertHead(queue, &place.waiter);
  hold.release();
  pthread_cleanup_push(withdraw, &place);
  sleep_until_granted(place.waiter);
  pthread_cleanup_pop(0);
  return 1;
}

void admit_shared_waiters(_vxSELock_t* lock) {
  while (auto* waiter = static_cast<Waiter*>(vxLL_XRemoveHead(&lock->sharedWaiters))) {
    ++lock->count;
    wake(waiter);
  }
}

void hand_over(_vxSELock_t* lock, Waiter* waiter) {
  lock->count = 1;
  lock->owner = waiter->event;
  lock->lastTransition = kHandedOver;
  lock->processId = waiter->process;
  wake(waiter);
}

// Whether anybody is to hear that the lock has become free.
bool is_awaited(const _vxSELock_t* lock) {
  return lock->exclusiveWaiters != nullptr || lock->sharedWaiters != nullptr ||
         lock->notifyList != nullptr;
}

// Gives the free lock to whom it is due.
void pass_on(_vxSELock_t* lock) {
  if (auto* waiter = static_cast<Waiter*>(vxLL_XRemoveHead(&lock->exclusiveWaiters)))
    hand_over(lock, waiter);
  else if (lock->sharedWaiters == nullptr)
    notify_free(lock);
  else
    admit_shared_waiters(lock);
}

}  // namespace

bool busy_for(const _vxSELock_t* lock, intptr_t me) {
  return lock->count != 0 && lock->owner != me;
}

void grant_exclusive(_vxSELock_t* lock, intptr_t me, Transition transition) {
  ++lock->count;
  if (lock->owner == kNobody) {
    lock->owner = me;
    lock->lastTransition = transition;
  }
  lock->processId = process_id();
}

}  // namespace quillon_com::orb::portability

using namespace quillon_com::orb::portability;

uint32_t vxSO_SELockCreate(_vxSELock_t** out) {
  constexpr uint32_t kFailed = 0x80000008u;
  if (out == nullptr) return kFailed;
  *out = nullptr;
  auto* record = static_cast<LockRecord*>(calloc(1, sizeof(LockRecord)));
  if (record == nullptr) return kFailed;
  record->lock.owner = kNobody;
  record->lock.lastTransition = kCreated;
  enlist(record);
  *out = &record->lock;
  return 0;
}

void vxSO_Release(_vxSELock_t* lock) {
  if (lock == nullptr) return;
  auto* record = reinterpret_cast<LockRecord*>(lock);
  unlist(record);
  free(record);
}

int vxSO_SELockExclusive(_vxSELock_t* lock, int wait) {
  if (lock == nullptr) return 0;
  const intptr_t me = vxSO_GetThread();
  BriefSpinHold hold(lock);
  if (busy_for(lock, me)) return block(lock, &lock->exclusiveWaiters, me, wait, hold);
  grant_exclusive(lock, me, kExclusive);
  return 1;
}

int vxSO_SELockSharedStarveExclusive(_vxSELock_t* lock, int wait) {
  if (lock == nullptr) return 0;
  const intptr_t me = vxSO_GetThread();
  BriefSpinHold hold(lock);
  if (lock->owner != me && lock->owner != kNobody)
    return block(lock, &lock->sharedWaiters, me, wait, hold);
  ++lock->count;
  return 1;
}

int vxSO_SELockSharedWaitForExclusive(_vxSELock_t* lock, int wait) {
  if (lock == nullptr) return 0;
  const intptr_t me = vxSO_GetThread();
  BriefSpinHold hold(lock);
  const bool open = lock->count == 0 || lock->owner == me ||
                    (lock->owner == kNobody && lock->exclusiveWaiters == nullptr);
  if (!open) return block(lock, &lock->sharedWaiters, me, wait, hold);
  ++lock->count;
  return 1;
}

int vxSO_SELock(_vxSELock_t* lock, int exclusive, int wait) {
  return exclusive != 0 ? vxSO_SELockExclusive(lock, wait)
                        : vxSO_SELockSharedWaitForExclusive(lock, wait);
}

int vxSO_SELockExclusiveToShared(_vxSELock_t* lock) {
  if (lock == nullptr) return 0;
  BriefSpinHold hold(lock);
  lock->owner = kNobody;
  lock->lastTransition = kDowngraded;
  if (lock->sharedWaiters == nullptr) return 1;
  hold.lengthen();
  admit_shared_waiters(lock);
  return 1;
}

int vxSO_SELockRelease(_vxSELock_t* lock) {
  if (lock == nullptr) return 0;
  BriefSpinHold hold(lock);
  if (--lock->count != 0) return 1;
  lock->owner = kNobody;
  lock->lastTransition = kFreed;
  if (!is_awaited(lock)) return 1;
  hold.lengthen();
  pass_on(lock);
  return 1;
}
