// tests/fileutil/softwareid_test.cpp: the identifier of this software and the room that it takes.
#include <gtest/gtest.h>

#include <string>

#include "fileutil/machine.h"

namespace {

using quillon_com::orb::software_id;
using quillon_com::orb::Version;

struct IdCase {
  const char* name;
  Version version;
  std::string id;
};

class SoftwareId : public testing::TestWithParam<IdCase> {};

TEST_P(SoftwareId, IsMadeOfTheVersion) {
  char id[32];
  software_id(GetParam().version, id, sizeof id);
  EXPECT_EQ(GetParam().id, id);
  wchar_t wide[32];
  software_id(GetParam().version, wide, 32);
  EXPECT_EQ(std::wstring(GetParam().id.begin(), GetParam().id.end()), wide);
}

INSTANTIATE_TEST_SUITE_P(Versions, SoftwareId,
                         testing::Values(IdCase{"ThreeDigits", {1, 2, 3}, "HUBAGENT1230MACX"},
                                         IdCase{"Zeros", {0, 0, 0}, "HUBAGENT0000MACX"},
                                         IdCase{"Nines", {9, 8, 9}, "HUBAGENT9890MACX"}),
                         [](const auto& test) { return test.param.name; });

TEST(SoftwareIds, OfTheLibrarysOwnVersion) {
  const std::string version = ORB_PROJECT_VERSION;  // "1.0.0"
  ASSERT_EQ(5u, version.size());
  const std::string expected =
      std::string("HUBAGENT") + version[0] + version[2] + version[4] + "0MACX";
  char id[20];
  voxcomn_get_agent_softwareid(id, sizeof id);
  EXPECT_EQ(expected, id);
  wchar_t wide[20];
  voxcomn_get_agent_softwareid_W(wide, 20);
  EXPECT_EQ(std::wstring(expected.begin(), expected.end()), wide);
}

TEST(SoftwareIds, ASizeOf16WritesNothing) {
  for (const unsigned size : {0u, 1u, 15u, 16u}) {
    std::string narrow(20, '#');
    voxcomn_get_agent_softwareid(narrow.data(), size);
    EXPECT_EQ(std::string(20, '#'), narrow) << size;
    std::wstring wide(20, L'#');
    voxcomn_get_agent_softwareid_W(wide.data(), size);
    EXPECT_EQ(std::wstring(20, L'#'), wide) << size;
  }
}

TEST(SoftwareIds, QuirkTheNarrowFormEndsOneByteBeforeItsSize) {
  std::string id(20, '#');
  software_id({1, 2, 3}, id.data(), 17);
  EXPECT_EQ("HUBAGENT1230MACX####", id) << "not terminated";
  software_id({1, 2, 3}, id.data(), 18);
  EXPECT_EQ(std::string("HUBAGENT1230MACX\0###", 20), id);
  software_id({1, 2, 3}, id.data(), 20);
  EXPECT_EQ(std::string("HUBAGENT1230MACX\0\0\0#", 20), id);
}

TEST(SoftwareIds, TheWideFormIsTerminatedAndNoMore) {
  for (const unsigned size : {17u, 20u}) {
    std::wstring id(20, L'#');
    software_id({1, 2, 3}, id.data(), size);
    EXPECT_EQ(std::wstring(L"HUBAGENT1230MACX\0###", 20), id) << size;
  }
}

TEST(SoftwareIds, NullIsLeftAlone) {
  voxcomn_get_agent_softwareid(nullptr, 17);
  voxcomn_get_agent_softwareid_W(nullptr, 17);
}

}  // namespace
