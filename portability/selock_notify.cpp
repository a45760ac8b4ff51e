// portability/selock_notify.cpp: the entry that registers a callback instead of waiting.
#include <cstdlib>

#include "portability/Linklist.h"
#include "portability/cancellation.h"
#include "portability/selock.h"
#include "portability/selockparts.h"
#include "portability/threads.h"

namespace quillon_com::orb::portability {
namespace {

constexpr uint32_t kLockIsFree = 0x1100;
constexpr uint32_t kWithdrawn = 0x1102;

struct Notification {
  Notification* next;
  vxSELockCallback callback;
  void* context;
  void* parameter;
};

// True when the callback says that the record is done with.
bool tell(const Notification& notification, uint32_t message) {
  return notification.callback == nullptr ||
         notification.callback(notification.context, message, notification.parameter, nullptr) == 0;
}

void add_notification(_vxSELock_t* lock, vxSELockCallback callback, void* context,
                      void* parameter) {
  auto* notification = static_cast<Notification*>(malloc(sizeof(Notification)));
  if (notification == nullptr) abort();
  *notification = {nullptr, callback, context, parameter};
  vxLL_XInsertHead(&lock->notifyList, notification);
}

// Unlinks the first record that `done` accepts and returns it; null when none is.
template <class Done>
Notification* drop_first(_vxSELock_t* lock, Done done) {
  const Notifying notifying(lock);
  const CancellationShield shield;
  void* previous = vxLL_XGetStart(&lock->notifyList);
  for (;;) {
    auto* notification = static_cast<Notification*>(vxLL_XGetNext(previous));
    if (notification == nullptr) return nullptr;
    if (done(*notification)) {
      vxLL_XRemove(previous, notification);
      return notification;
    }
    previous = notification;
  }
}

}  // namespace

void notify_free(_vxSELock_t* lock) {
  free(drop_first(lock, [](const Notification& each) { return tell(each, kLockIsFree); }));
}

}  // namespace quillon_com::orb::portability

using namespace quillon_com::orb::portability;

int vxSO_SELockExclusiveNotify(_vxSELock_t* lock, vxSELockCallback callback, void* context,
                               void* parameter) {
  if (lock == nullptr) return 0;
  const intptr_t me = vxSO_GetThread();
  SpinHold hold(lock);
  if (busy_for(lock, me)) {
    add_notification(lock, callback, context, parameter);
    return 0;
  }
  grant_exclusive(lock, me, kExclusiveByNotify);
  return 1;
}

int vxSO_SELockExclusiveUnnotify(_vxSELock_t* lock, vxSELockCallback callback, void* context,
                                 void* parameter) {
  if (lock == nullptr) return 0;
  SpinHold hold(lock);
  // The dropped record stays allocated: see the header.
  return drop_first(lock,
                    [&](const Notification& each) {
                      return each.callback == callback && each.context == context &&
                             each.parameter == parameter && tell(each, kWithdrawn);
                    }) != nullptr
             ? 1
             : 0;
}
