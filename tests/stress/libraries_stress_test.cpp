// tests/stress/libraries_stress_test.cpp: libraries that several threads load and release.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "portability/dynlib.h"
#include "tests/portability/plugin_hook.h"
#include "tests/support/stress.h"

namespace {

using orbtest::kPlainPlugin;

TEST(LibraryStress, ThreadsLoadAndReleaseTogether) {
  const long rounds = orbtest::stress_rounds() / 4;
  std::vector<std::thread> threads;
  for (int each = 0; each < 4; ++each) {
    threads.emplace_back([rounds] {
      for (long round = 0; round < rounds; ++round) {
        void* library = voxLoadLibrary(kPlainPlugin, nullptr);
        ASSERT_NE(nullptr, library);
        ASSERT_EQ(1, voxDisableThreadLibraryCalls(library));
        ASSERT_NE(nullptr, voxGetProcAddress(library, "plain_number", nullptr));
        ASSERT_EQ(nullptr, voxGetProcAddress(library, "no_such_symbol", nullptr));
        ASSERT_EQ(1, voxFreeLibrary(library));
      }
    });
  }
  for (auto& thread : threads) thread.join();
}

TEST(LibraryStress, ALastingLoadIsCountedByAll) {
  const long rounds = orbtest::stress_rounds();
  void* lasting = voxLoadLibrary(kPlainPlugin, nullptr);
  ASSERT_NE(nullptr, lasting);
  std::vector<std::thread> threads;
  for (int each = 0; each < 4; ++each) {
    threads.emplace_back([rounds, lasting] {
      for (long round = 0; round < rounds; ++round) {
        ASSERT_EQ(lasting, voxLoadLibrary(kPlainPlugin, nullptr));
        ASSERT_EQ(1, voxFreeLibrary(lasting));
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(1, pDynamicLibraryList[0]->references);
  EXPECT_EQ(1, voxFreeLibrary(lasting));
  EXPECT_EQ(0, voxFreeLibrary(lasting));
}

}  // namespace
