// tests/contract/consumers/c/threads.c: threads behind handles, thread-local slots and the threads'
// events.
#include "portability/threads.h"

#include <stddef.h>

#include "../expect.h"
#include "areas.h"

static void* count_up(void* word) {
  voxInterlockedIncrement(word);
  return NULL;
}

void use_threads(void) {
  long word = 0;
  uint32_t identifier = 99;
  _voxHandleObject_t* first = voxBeginThread(NULL, 0, count_up, &word, 0, &identifier);
  _voxHandleObject_t* second = voxCreateThread(NULL, 0, count_up, &word, 0, NULL);
  EXPECT((intptr_t)first != -1 && second != NULL);
  EXPECT(identifier == 0);
  set_pthread_sched_param(first);
  EXPECT(voxWaitForSingleObject(first, INFINITE) == WAIT_OBJECT_0);
  EXPECT(voxWaitForSingleObject(second, INFINITE) == WAIT_OBJECT_0);
  EXPECT(word == 2);
  EXPECT(voxCloseHandle(first) == 1);
  EXPECT(voxCloseHandle(second) == 1);
}

void use_slots(void) {
  const int64_t slot = voxTlsAlloc();
  EXPECT(slot >= 0 && slot < kTlsSlots);
  EXPECT(pTlsKeyTable[slot] != NULL && nTlsOwnerTable[slot] != 0);
  EXPECT(voxTlsGetValue((uint32_t)slot) == NULL);
  int value = 7;
  EXPECT(voxTlsSetValue((uint32_t)slot, &value) == 1);
  EXPECT(voxTlsGetValue((uint32_t)slot) == &value);
  EXPECT(voxTlsFree((uint32_t)slot) == 1);
  EXPECT(pTlsKeyTable[slot] == NULL && nTlsOwnerTable[slot] == 0);
  nErrno = 0;
  EXPECT(voxTlsFree(kTlsSlots) == 0);
  EXPECT(nErrno == kErrInvalid);

  EXPECT(vxSO_GetThread() == -1);
  const int64_t index = vxSO_ProcessAttach();
  EXPECT(index >= 0 && vxSO_tls_index == index);
  EXPECT(vxSO_DbgGetThread() == 0);
  EXPECT(vxSO_ThreadAttach() == 1);
  const intptr_t event = vxSO_GetThread();
  EXPECT(event != -1 && vxSO_DbgGetThread() == event);
  EXPECT(vxSO_ThreadAttach() == event);
  EXPECT(vxSO_ThreadDetach() == 1);
  EXPECT(vxSO_GetThread() == -1);
  EXPECT(vxSO_ThreadAttachX() == 1);
  vxSO_ThreadDetachX();
  EXPECT(vxSO_ProcessDetach() == 1);
  EXPECT((uint32_t)vxSO_tls_index == 0xFFFFFFFFu);
}
