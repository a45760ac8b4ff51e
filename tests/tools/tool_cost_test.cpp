// tests/tools/tool_cost_test.cpp: the memory that the built tool takes.
#include <gtest/gtest.h>

#include "tests/support/peak_memory.h"

namespace {

TEST(ToolCost, ReportTakesSixMebibytesAtMost) {
  if (ORB_SANITIZED) GTEST_SKIP() << "sanitizers take memory of their own";
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {ORBPROPS_TOOL}, {ORBPROPS_TOOL, "--json"}, {ORBPROPS_TOOL, "get", "OSVersion"}}) {
    const long peak = orbtest::peak_resident_kib(words);
    if (peak == 0) GTEST_SKIP() << "processes cannot be traced here";
    EXPECT_LE(peak, 6 * 1024) << words.back();
  }
}

}  // namespace
