// tests/sysprops/osinfo_release_test.cpp: the operating-system record from release files.
#include <gtest/gtest.h>

#include <string>

#include "sysprops/collect.h"
#include "tests/support/command_text.h"
#include "tests/support/fake_system.h"

namespace quillon_com::orb::sysprops {
namespace {

using orbtest::FakeSystem;

OSInformation old_record() {
  OSInformation record;
  record.osType = record.osPlatform = record.osVersion = record.osCsdVersion = L"old";
  record.osBuildNum = record.osOemId = record.platformId = record.osBitMode = L"old";
  return record;
}

TEST(ReleaseFiles, FillTheRecord) {
  FakeSystem system;
  system.release = platform::ReleaseTexts{
      {{"NAME", "Debian GNU/Linux"}, {"ID", "debian"}, {"VERSION_ID", "12"}}, "", "12.5", 23};
  system.kernel = platform::KernelNames{"node", "aarch64", "6.1.0-18-arm64"};
  OSInformation record = old_record();
  EXPECT_TRUE(collect_os(system, record));
  EXPECT_EQ(L"LINUX", record.platformId);
  EXPECT_EQ(L"Linux", record.osType);
  EXPECT_EQ(L"Debian GNU/Linux", record.osOemId);
  EXPECT_EQ(L"12.5", record.osVersion);
  EXPECT_EQ(L"old", record.osCsdVersion);
  EXPECT_EQ(L"6.1.0-18-arm64", record.osBuildNum);
  EXPECT_EQ(L"Server", record.osPlatform);
  EXPECT_EQ(L"1", record.osBitMode);
  EXPECT_TRUE(system.commands_run.empty());
}

TEST(ReleaseFiles, PatchLevelIsWritten) {
  FakeSystem system;
  system.release =
      platform::ReleaseTexts{{{"NAME", "Alpine"}, {"VERSION_ID", "3.19.1"}}, "", "", 0};
  OSInformation record = old_record();
  EXPECT_TRUE(collect_os(system, record));
  EXPECT_EQ(L"3.19.1", record.osVersion);
  EXPECT_EQ(L"1", record.osCsdVersion);
}

TEST(ReleaseFiles, ThatTellNothingGiveTheKernel) {
  FakeSystem system;
  system.release.emplace();
  system.kernel = platform::KernelNames{"node", "i686", "5.10"};
  OSInformation record;
  EXPECT_TRUE(collect_os(system, record));
  EXPECT_EQ(L"LINUX", record.platformId);
  EXPECT_EQ(L"Unknown", record.osOemId);
  EXPECT_EQ(L"5.10", record.osVersion);
  EXPECT_EQ(L"N/A", record.osCsdVersion);
  EXPECT_EQ(L"5.10", record.osBuildNum);
  EXPECT_EQ(L"Workstation", record.osPlatform);
  EXPECT_EQ(L"0", record.osBitMode);
}

TEST(ReleaseFiles, WithoutAKernelLeaveWhatItWouldTell) {
  FakeSystem system;
  system.release.emplace();
  OSInformation record;
  EXPECT_TRUE(collect_os(system, record));
  EXPECT_EQ(L"Unknown", record.osOemId);
  EXPECT_EQ(L"N/A", record.osVersion);
  EXPECT_EQ(L"N/A", record.osBuildNum);
  EXPECT_EQ(L"-1", record.osBitMode);
}

TEST(OsOfThisMachine, AgreesWithItsReleaseFileAndUname) {
  OSInformation record;
  ASSERT_TRUE(ISysProps().GetOSInformation(record));
  EXPECT_EQ(orbtest::command_text("uname -r"), record.osBuildNum);
  EXPECT_EQ(orbtest::command_text(". /etc/os-release; echo \"$NAME\""), record.osOemId);
  EXPECT_EQ(0u, record.osVersion.find(orbtest::command_text(". /etc/os-release; "
                                                            "echo \"$VERSION_ID\"")))
      << "the version does not continue VERSION_ID";
  EXPECT_EQ(orbtest::command_text("getconf LONG_BIT") == L"64" ? L"1" : L"0", record.osBitMode);
}

}  // namespace
}  // namespace quillon_com::orb::sysprops
