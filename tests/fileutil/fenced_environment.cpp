// tests/fileutil/fenced_environment.cpp: the tests of tree removal run where the rest of the
// machine is read-only, so that a removal gone wrong fails its test and nothing else; elsewhere
// they are skipped.
#include <gtest/gtest.h>

#include "tests/support/fence.h"

namespace {

class Fenced : public testing::Environment {
 public:
  void SetUp() override {
    if (!orbtest::fence_machine_off())
      GTEST_SKIP() << "needs root, to make the machine read-only meanwhile";
  }
};

const testing::Environment* const fenced = testing::AddGlobalTestEnvironment(new Fenced);

}  // namespace
