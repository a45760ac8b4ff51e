// tests/portability/firstuse_test.cpp: exported data as loaded, and what the first call of a
// process does to it; each test has a process of its own.
#include <gtest/gtest.h>

#include <cstdlib>

#include "portability/dynlib.h"
#include "portability/handles.h"
#include "portability/signals.h"
#include "portability/threads.h"
#include "tests/portability/plugin_hook.h"

namespace {

// Runs `check` in a process that has used nothing yet.
#define EXPECT_AT_FIRST(check)                                            \
  do {                                                                    \
    GTEST_FLAG_SET(death_test_style, "threadsafe");                       \
    EXPECT_EXIT(exit((check)() ? 0 : 1), testing::ExitedWithCode(0), ""); \
  } while (false)

bool data_is_as_stated() {
  for (size_t slot = 0; slot < kTlsSlots; ++slot)
    if (pTlsKeyTable[slot] != nullptr || nTlsOwnerTable[slot] != 0) return false;
  for (const auto* entry : pDynamicLibraryList)
    if (entry != nullptr) return false;
  return nErrno == 0 && vxSO_tls_index == 0xFFFFFFFF && bSigTermReceived == 0 &&
         bDummyThreadSignalled == 1;
}

TEST(FirstUse, FindsTheDataAsLoaded) { EXPECT_AT_FIRST(data_is_as_stated); }

bool first_slot_clears_the_tables() {
  static pthread_key_t stranger;
  for (size_t slot = 0; slot < kTlsSlots; ++slot) {
    pTlsKeyTable[slot] = &stranger;
    nTlsOwnerTable[slot] = 1;
  }
  if (voxTlsAlloc() != 0) return false;
  for (size_t slot = 1; slot < kTlsSlots; ++slot)
    if (pTlsKeyTable[slot] != nullptr || nTlsOwnerTable[slot] != 0) return false;
  pTlsKeyTable[1] = &stranger;  // the second call leaves it alone
  return voxTlsAlloc() == 2;
}

TEST(FirstUse, OfASlotClearsBothTables) { EXPECT_AT_FIRST(first_slot_clears_the_tables); }

bool first_load_clears_the_table() {
  static _voxDynamicLibrary_t stranger = {};
  for (auto& entry : pDynamicLibraryList) entry = &stranger;
  void* library = voxLoadLibrary(orbtest::kPlainPlugin, nullptr);
  if (library == nullptr || pDynamicLibraryList[0]->library != library) return false;
  for (size_t place = 1; place < kDynamicLibraries; ++place)
    if (pDynamicLibraryList[place] != nullptr) return false;
  pDynamicLibraryList[1] = &stranger;  // the second call leaves it alone
  return voxLoadLibrary(orbtest::kHookedPlugin, nullptr) == pDynamicLibraryList[2]->library;
}

TEST(FirstUse, OfALibraryClearsTheTable) { EXPECT_AT_FIRST(first_load_clears_the_table); }

}  // namespace
