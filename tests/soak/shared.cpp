// tests/soak/shared.cpp: the objects that all threads use, and the events of the threads.
#include "portability/threads.h"
#include "tests/soak/soak.h"

namespace soak {

void Worker::attach() {
  if (vxSO_GetThread() != -1) return;
  voxCloseHandle(reinterpret_cast<void*>(event_));
  expect(vxSO_ThreadAttach() == 1, "a thread gets its event");
  event_ = vxSO_GetThread();
}

void Worker::detach() {
  if (vxSO_GetThread() == -1)
    voxCloseHandle(reinterpret_cast<void*>(event_));
  else
    vxSO_ThreadDetach();
  event_ = -1;
}

Shared& shared() {
  static Shared all;
  return all;
}

bool make_shared_objects() {
  Shared& all = shared();
  all.mutex = voxCreateMutex(nullptr, 0, nullptr);
  bool made = all.mutex != nullptr;
  for (_voxHandleObject_t*& event : all.events) {
    event = voxCreateEvent(nullptr, 1, 0, nullptr);
    made = made && event != nullptr;
  }
  vxSLL_Create(&all.stack);
  vxSLL2_Create(&all.queue);
  return made && vxSO_ProcessAttach() != -1 && vxSO_SELockCreate(&all.lock) == 0 &&
         all.stack != nullptr && all.queue != nullptr;
}

bool shared_objects_hold(const char** rule) {
  const Shared& all = shared();
  const struct {
    bool holds;
    const char* rule;
  } rules[] = {
      {all.behind_mutex == all.mutex_entries, "a mutex lets one thread in at a time"},
      {all.interlocked == all.additions, "no interlocked addition is lost"},
      {all.spin == 0 && all.behind_spin == all.spin_entries, "a spin word lets one thread in"},
      {all.behind_lock == all.lock_entries, "an exclusive hold is alone"},
      {all.lock->count == 0 && all.lock->owner == -1 && all.lock->spin == 0,
       "a lock that nobody holds is free"},
      {all.lock->exclusiveWaiters == nullptr && all.lock->sharedWaiters == nullptr,
       "nobody waits for a free lock"},
      {vxSLL_IsEmpty(all.stack) != 0, "as many items leave the stack as enter it"},
      {vxSLL2_IsEmpty(all.queue) != 0, "as many items leave the queue as enter it"},
  };
  for (const auto& each : rules) {
    if (each.holds) continue;
    *rule = each.rule;
    return false;
  }
  return true;
}

}  // namespace soak
