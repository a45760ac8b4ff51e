// tests/darwin/darwin_assertion_test.cpp: the report of a failed assertion on a scripted Mac.
#include <gtest/gtest.h>

#include "platform/assertion.h"

namespace {

TEST(MacAssertionDeathTest, TheReportNamesExpressionFunctionSourceAndLine) {
  EXPECT_DEATH(
      quillon_com::orb::platform::report_assertion("release", "handles.c", 321, "pHandle != 0"),
      "\\(pHandle != 0\\), function release, file handles.c, line 321");
}

}  // namespace
