// portability/threadevents.cpp: one event per thread in one thread-local slot.
#include "portability/handleparts.h"
#include "portability/threads.h"

int64_t vxSO_tls_index = 0xFFFFFFFF;

using namespace quillon_com::orb::portability;

namespace {

constexpr intptr_t kNoEvent = -1;

// The slot's number as the thread-local functions take it.
uint32_t slot() {
  return static_cast<uint32_t>(__atomic_load_n(&vxSO_tls_index, __ATOMIC_RELAXED));
}

int store(intptr_t event) { return voxTlsSetValue(slot(), reinterpret_cast<void*>(event)); }

}  // namespace

int64_t vxSO_ProcessAttach() {
  const int64_t index = voxTlsAlloc();
  __atomic_store_n(&vxSO_tls_index, index, __ATOMIC_RELAXED);
  return index;
}

int vxSO_ProcessDetach() {
  const int freed = voxTlsFree(slot());
  __atomic_store_n(&vxSO_tls_index, int64_t{-1}, __ATOMIC_RELAXED);
  return freed;
}

intptr_t vxSO_ThreadAttach() {
  const intptr_t had = vxSO_GetThread();
  if (had != kNoEvent) return had;
  _voxHandleObject_t* event = voxCreateEvent(nullptr, 1, 0, nullptr);
  const int stored = store(reinterpret_cast<intptr_t>(event));
  if (stored == 0 && event != nullptr) destroy_handle(event);
  return stored;
}

int vxSO_ThreadDetach() {
  voxCloseHandle(reinterpret_cast<void*>(vxSO_GetThread()));
  return store(kNoEvent);
}

int vxSO_ThreadAttachX() { return store(kNoEvent); }

void vxSO_ThreadDetachX() {}

intptr_t vxSO_GetThread() {
  const intptr_t event = vxSO_DbgGetThread();
  return event == 0 ? kNoEvent : event;
}

intptr_t vxSO_DbgGetThread() { return reinterpret_cast<intptr_t>(voxTlsGetValue(slot())); }
