// tests/contract/consumers/cxx/portability.cpp: threads, handles, lists, files and the signal loop.
#include <signal.h>

#include <cstdarg>

#include "../expect.h"
#include "areas.h"
#include "portability/Linklist.h"
#include "portability/dynlib.h"
#include "portability/errorwords.h"
#include "portability/filehandle.h"
#include "portability/handles.h"
#include "portability/selock.h"
#include "portability/signals.h"
#include "portability/threads.h"

namespace {

namespace orb = quillon_com::orb;

void use_handles() {
  _voxHandleObject_t* event = voxCreateEvent(nullptr, 1, 0, nullptr);
  auto set = [](void* argument) -> void* {
    voxSetEvent(argument);
    return nullptr;
  };
  _voxHandleObject_t* thread = voxBeginThread(nullptr, 0, set, event, 0, nullptr);
  EXPECT(voxWaitForSingleObject(event, INFINITE) == WAIT_OBJECT_0);
  EXPECT(voxWaitForSingleObject(thread, INFINITE) == WAIT_OBJECT_0);
  EXPECT(voxCloseHandle(thread) == 1);
  EXPECT(voxCloseHandle(event) == 1);
  nErrno = 0;
  EXPECT(voxCreateFileAW(nullptr, 0, 0, nullptr, 0, 0, nullptr) == nullptr);
  EXPECT(nErrno == kErrInvalid);
  nErrno = 0;
  EXPECT(voxLoadLibrary(nullptr, nullptr) == nullptr);
  EXPECT(nErrno == kErrInvalid);
}

void use_lists() {
  void* item[2] = {};
  _vxSLL_t list;
  EXPECT(vxSLL_Init(&list) == 0);
  vxSLL_XInsertHead(&list, item);
  EXPECT(vxSLL_XRemoveHead(&list) == item);
  vxSLL_Uninit(&list);
  _vxSELock_t* lock = nullptr;
  EXPECT(vxSO_SELockCreate(&lock) == 0);
  EXPECT(vxSO_SELock(lock, 1, 0) == 1);
  EXPECT(vxSO_SELockRelease(lock) == 1);
  vxSO_Release(lock);
}

// A null format writes nothing.
bool log_nothing(int count, ...) {
  va_list arguments;
  va_start(arguments, count);
  const bool done = orb::vLogInSystemLog(3, nullptr, arguments) &&
                    orb::vLogInSystemLog(3, "tag", nullptr, arguments);
  va_end(arguments);
  return done;
}

int calls = 0;

// One signal with a callback, then one without: the loop ends.
void use_signal_loop() {
  sigset_t before;
  sigprocmask(SIG_SETMASK, nullptr, &before);
  orb::SignalHandler handler;
  EXPECT(handler.addSignalToBlock(SIGUSR1) == 0);
  EXPECT(handler.addSignalToBlock(SIGUSR2) == 0);
  EXPECT(handler.registerOnSignalCallback(SIGUSR1, [] {
    ++calls;
    raise(SIGUSR2);
  }) == 0);
  raise(SIGUSR1);
  handler();
  EXPECT(calls == 1);
  EXPECT(handler.unblockSignal(SIGUSR1) == 0);
  sigprocmask(SIG_SETMASK, &before, nullptr);

  EXPECT(log_nothing(0));
}

}  // namespace

void use_portability() {
  use_handles();
  use_lists();
  use_signal_loop();
}
