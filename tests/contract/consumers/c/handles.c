// tests/contract/consumers/c/handles.c: events, mutexes, waits, interlocked words and both error
// words.
#include "portability/handles.h"

#include <errno.h>
#include <stddef.h>

#include "../expect.h"
#include "areas.h"

static void use_events(void) {
  _voxHandleObject_t* event = voxCreateEvent(NULL, 1, 0, NULL);
  EXPECT(event != NULL && event->kind == HANDLE_TYPE_EVENT && event->signalled == 0);
  EXPECT(voxWaitForSingleObject(event, 0) == WAIT_TIMEOUT);
  EXPECT(voxSetEvent(event) == 1);
  EXPECT(voxWaitForSingleObject(event, INFINITE) == WAIT_OBJECT_0);
  EXPECT(voxResetEvent(event) == 1);
  EXPECT(voxWaitForSingleObject(event, 1) == WAIT_TIMEOUT);

  void* both[2] = {voxCreateEvent(NULL, 1, 1, ""), event};
  EXPECT(voxWaitForMultipleObjects(2, both, 0, 100) == WAIT_OBJECT_0);
  EXPECT(voxWaitForMultipleObjects(2, both, 1, 100) == WAIT_FAILED);
  EXPECT(voxCloseHandle(both[0]) == 1);
  EXPECT(voxCloseHandle(event) == 1);
}

static void use_mutexes(void) {
  _voxHandleObject_t* mutex = voxCreateMutex(NULL, 1, NULL);
  EXPECT(mutex != NULL && mutex->kind == HANDLE_TYPE_MUTEX);
  EXPECT(voxReleaseMutex(mutex) == 1);
  EXPECT(voxWaitForSingleObject(mutex, INFINITE) == WAIT_OBJECT_0);
  EXPECT(voxReleaseMutex(mutex) == 1);
  EXPECT(voxCloseHandle(mutex) == 1);
  EXPECT(voxOpenMutex(0, 0, "named") == NULL);
}

static void use_error_words(void) {
  nErrno = 0;
  EXPECT(voxCreateEvent(NULL, 0, 0, NULL) == NULL);
  EXPECT(nErrno == 22);
  nErrno = 0;
  EXPECT(voxWaitForSingleObject(NULL, 0) == WAIT_FAILED);
  EXPECT(nErrno == kErrInvalid);
  EXPECT(voxSetEvent(NULL) == 0);
  EXPECT(voxResetEvent(NULL) == 0);
  EXPECT(voxReleaseMutex(NULL) == 0);
  EXPECT(voxCloseHandle(NULL) == 1);
  errno = EACCES;
  EXPECT(voxGetLastError() == 5);
  errno = 0;
  EXPECT(voxGetLastError() == 0);
}

static void use_interlocked(void) {
  long word = 41;
  EXPECT(voxInterlockedIncrement(&word) == 42);
  EXPECT(voxInterlockedDecrement(&word) == 41);
  EXPECT(voxInterlockedExchange(&word, -1) == 41);
  EXPECT(word == -1);
}

void use_handles(void) {
  use_events();
  use_mutexes();
  use_error_words();
  use_interlocked();
}
