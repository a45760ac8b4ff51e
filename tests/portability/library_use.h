// tests/portability/library_use.h: uses of everything that takes a process-wide lock.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "fileutil/dirent.h"
#include "fileutil/guid.h"
#include "fileutil/timestamp.h"
#include "platform/system.h"
#include "portability/dynlib.h"
#include "portability/handles.h"
#include "portability/selock.h"
#include "portability/signals.h"
#include "portability/threads.h"
#include "session/collect.h"
#include "tests/portability/attached.h"
#include "tests/portability/handle_scope.h"
#include "tests/portability/plugin_hook.h"
#include "tests/support/callfaults.h"

namespace orbtest {

inline void use_interlocked() {
  long word = 41;
  EXPECT_EQ(42, voxInterlockedIncrement(&word));
  EXPECT_EQ(41, voxInterlockedDecrement(&word));
  EXPECT_EQ(41, voxInterlockedExchange(&word, 0));
  vxSL_Get(&word);
  EXPECT_EQ(1, word);
  vxSL_Release(&word);
  EXPECT_EQ(0, word);
}

inline void use_slots() {
  const int64_t slot = voxTlsAlloc();
  ASSERT_LE(0, slot);
  EXPECT_EQ(getpid(), nTlsOwnerTable[slot]);
  EXPECT_EQ(1, voxTlsSetValue(static_cast<uint32_t>(slot), pTlsKeyTable));
  EXPECT_EQ(1, voxTlsFree(static_cast<uint32_t>(slot)));
}

inline void use_libraries() {
  char* message = nullptr;
  void* library = voxLoadLibrary(kPlainPlugin, &message);
  ASSERT_NE(nullptr, library);
  EXPECT_NE(nullptr, voxGetProcAddress(library, "loadString", &message));
  EXPECT_EQ(1, voxDisableThreadLibraryCalls(library));
  EXPECT_EQ(1, voxFreeLibrary(library));
  wchar_t* wide = nullptr;
  EXPECT_EQ(nullptr, voxLoadLibraryW(L"/no such library", &wide));
  EXPECT_NE(L'\0', *wide);
}

inline void use_searches() {
  FindDataDirEnt found{};
  const int search = voxFindFirstDirEnt("/*", &found);
  EXPECT_LE(1, search);
  EXPECT_EQ(1, voxFindCloseDirEnt(search));
}

inline void use_stamps() { EXPECT_EQ(19u, quillon_com::orb::voxcomn_get_time_stamp_ansi().size()); }

// By a clock set back, which asks for what all GUIDs share.
inline void use_guids() {
  const StoppedClock past(1, 0);
  voxGuid guid{};
  EXPECT_EQ(&guid, voxCoCreateGuid(&guid));
  EXPECT_EQ(1, guid.bytes[6] >> 4);
}

inline void use_users() {
  FILE* const nowhere = std::fopen("/dev/null", "we");
  ASSERT_NE(nullptr, nowhere);
  std::string users;
  quillon_com::orb::session::collect_all_users(quillon_com::orb::platform::host(), nowhere, &users);
  EXPECT_GE(128U, users.size());
  std::fclose(nowhere);
}

inline void use_log() { EXPECT_TRUE(quillon_com::orb::LogInSystemLog(7, "a forked child")); }

inline void use_locks() {
  _vxSELock_t* lock = nullptr;
  ASSERT_EQ(0u, vxSO_SELockCreate(&lock));
  EXPECT_EQ(1, vxSO_SELockExclusive(lock, 1));
  EXPECT_EQ(1, vxSO_SELockRelease(lock));
  vxSO_Release(lock);
}

inline void use_threads() {
  Handle thread(voxBeginThread(
      nullptr, 0, [](void* argument) { return argument; }, nullptr, 0, nullptr));
  ASSERT_NE(reinterpret_cast<_voxHandleObject_t*>(intptr_t{-1}), thread.get());
  EXPECT_EQ(uint64_t{WAIT_OBJECT_0}, voxWaitForSingleObject(thread.get(), INFINITE));
}

inline void use_everything() {
  use_interlocked();
  use_slots();
  use_libraries();
  use_searches();
  use_stamps();
  use_guids();
  use_users();
  use_log();
  use_locks();
  use_threads();
}

// Tests of one lock and of threads that may take it.
class ForkOfLocks : public LockTest {
 protected:
  void expect_free() {
    EXPECT_EQ(0, lock_->spin);
    EXPECT_EQ(0u, lock_->count);
    EXPECT_EQ(1, vxSO_SELockExclusive(lock_, 1));
    EXPECT_EQ(1, vxSO_SELockRelease(lock_));
  }
};

}  // namespace orbtest
