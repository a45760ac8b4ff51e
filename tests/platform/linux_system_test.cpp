// tests/platform/linux_system_test.cpp: names, identification and memory of machines of every kind.
#include "platform/linux_system.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/linux_text.h"
#include "tests/support/machine_roots.h"

namespace {

using namespace quillon_com::orb::platform;
using orbtest::TempDir;
using namespace std::string_literals;

using Build = void (*)(const TempDir&);

struct MachineCase {
  const char* name;
  Build build;
  const char *node, *machine, *release, *domain;
  uint64_t total_memory, free_memory;  // bytes
  const char *os_name, *version_id, *debian_version;
  int chassis_type;
};

class Machine : public testing::TestWithParam<MachineCase> {};

TEST_P(Machine, Identification) {
  const MachineCase& expected = GetParam();
  TempDir root;
  expected.build(root);
  const LinuxSystem system(root.path());
  KernelNames names;
  EXPECT_TRUE(system.kernel_names(&names));
  EXPECT_EQ(expected.node, names.node);
  EXPECT_EQ(expected.machine, names.machine);
  EXPECT_EQ(expected.release, names.release);
  std::string text;
  EXPECT_TRUE(system.host_name(&text));
  EXPECT_EQ(expected.node, text);
  text = "old";
  EXPECT_TRUE(system.kernel_domain(&text));
  EXPECT_EQ(expected.domain, text);
  EXPECT_TRUE(system.domain_name(&text));
  EXPECT_EQ(expected.domain, text);
  ReleaseTexts release;
  EXPECT_TRUE(system.release_texts(&release));
  EXPECT_EQ(expected.os_name, release.fields["NAME"]);
  EXPECT_EQ(expected.version_id, release.fields["VERSION_ID"]);
  EXPECT_EQ(expected.debian_version, release.debian_version);
  EXPECT_EQ(expected.chassis_type, release.chassis_type);
  EXPECT_EQ("", release.legacy_name);
}

TEST(BootTime, OfTheKernelsStatistics) {
  struct Row {
    const char *name, *statistics;
    std::optional<time_t> boot;
  };
  for (const Row& row : {Row{"stated", "cpu  1 2\nbtime 1700000000\n", 1700000000},
                         Row{"not stated", "cpu  1 2\n", std::nullopt},
                         Row{"the last moment", "btime 9223372036854775807\n", INT64_MAX},
                         Row{"beyond it", "btime 9223372036854775808\n", std::nullopt},
                         Row{"no file", nullptr, std::nullopt}}) {
    TempDir root;
    if (row.statistics != nullptr) root.write("/proc/stat", row.statistics);
    time_t boot = -7;
    EXPECT_EQ(row.boot.has_value(), LinuxSystem(root.path()).boot_time(&boot)) << row.name;
    EXPECT_EQ(row.boot.value_or(-7), boot) << row.name;
  }
}

TEST(BootTime, BehindTheLinesOfManyInterrupts) {
  TempDir root;
  root.write("/proc/stat", "intr 1" + std::string(300000, '0') + "\nbtime 1700000000\n");
  time_t boot = 0;
  EXPECT_TRUE(LinuxSystem(root.path()).boot_time(&boot));
  EXPECT_EQ(1700000000, boot);
}

TEST(BootTime, OfTheRunningMachineIsTheKernels) {
  std::string statistics;
  ASSERT_TRUE(host().file_bytes("/proc/stat", size_t{4} << 20, &statistics));
  const auto stated = boot_seconds(statistics);
  ASSERT_TRUE(stated);
  time_t boot = 0;
  EXPECT_TRUE(host().boot_time(&boot));
  EXPECT_NEAR(static_cast<double>(*stated), static_cast<double>(boot), 1);
}

TEST_P(Machine, Memory) {
  TempDir root;
  GetParam().build(root);
  const LinuxSystem system(root.path());
  uint64_t total = 0;
  EXPECT_TRUE(system.total_memory(&total));
  EXPECT_EQ(GetParam().total_memory, total);
  uint64_t pages = 0;
  uint64_t page_size = 0;
  EXPECT_TRUE(system.free_memory(&pages, &page_size));
  EXPECT_EQ(GetParam().free_memory, pages * page_size);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, Machine,
    testing::Values(
        MachineCase{"Laptop", orbtest::x86_laptop, "notebook", "x86_64", "6.1.0-18-amd64", "",
                    16642998272, 8321499136, "Debian GNU/Linux", "12", "12.5", 10},
        MachineCase{"VirtualMachine", orbtest::x86_virtual_machine, "vm", "x86_64", "6.18.44", "",
                    25274793984, 24576000000, "Fedora", "40", "", 0},
        MachineCase{"ArmServer", orbtest::arm_server, "graviton", "aarch64", "5.15.0-1056-aws",
                    "corp.example", 133693440000, 102400000000, "Ubuntu", "22.04", "", 23},
        MachineCase{"RaspberryPi", orbtest::raspberry_pi, "pi", "aarch64", "6.6.20+rpt-rpi-v8", "",
                    3977736192, 1048576, "Debian GNU/Linux", "12", "", 0},
        MachineCase{"ContainerCountsItsLimit", orbtest::container, "0a1b2c3d4e5f", "x86_64",
                    "6.1.0-18-amd64", "", 1073740800, 536869888, "Alpine Linux", "3.19.1", "", 0},
        MachineCase{"Mainframe", orbtest::mainframe, "z14", "s390x", "5.14.21-150400.24-default",
                    "", 8443133952, 4096000000, "SLES", "15.4", "", 0}),
    [](const auto& row) { return row.param.name; });

// What a machine that tells nothing answers: false everywhere, results as they were.
void expect_nothing_is_told(const LinuxSystem& system) {
  std::string text = "old";
  KernelNames names{"a", "b", "c"};
  uint64_t number = 77;
  uint64_t other = 78;
  int count = 79;
  EXPECT_FALSE(system.host_name(&text));
  EXPECT_FALSE(system.kernel_domain(&text));
  EXPECT_FALSE(system.domain_name(&text));
  EXPECT_FALSE(system.official_host_name("localhost", &text));
  EXPECT_FALSE(system.hardware_model(&text));
  EXPECT_EQ("old", text);
  EXPECT_FALSE(system.kernel_names(&names));
  EXPECT_EQ("a", names.node);
  EXPECT_FALSE(system.total_memory(&number));
  EXPECT_FALSE(system.free_memory(&number, &other));
  EXPECT_FALSE(system.processor_count(&count));
  EXPECT_EQ(77u, number);
  EXPECT_EQ(78u, other);
  EXPECT_EQ(79, count);
  ReleaseTexts release;
  EXPECT_TRUE(system.release_texts(&release));
  EXPECT_TRUE(release.fields.empty());
  EXPECT_EQ("", release.legacy_name);
  EXPECT_EQ("", release.debian_version);
  EXPECT_EQ(0, release.chassis_type);
  ProcessorTexts processor;
  EXPECT_TRUE(system.processor_texts(&processor));
  EXPECT_EQ("", processor.architecture);
  EXPECT_EQ("", processor.model);
  EXPECT_EQ(std::nullopt, processor.clock_hz);
  EXPECT_EQ(Chassis::unknown, system.chassis());
  EXPECT_TRUE(system.volumes().empty());
  SessionEntry entry;
  EXPECT_FALSE(system.next_session_entry(&entry));
}

TEST(NothingTold, NoFolder) { expect_nothing_is_told(LinuxSystem("/nowhere/at-all")); }

TEST(NothingTold, EmptyFolder) {
  TempDir root;
  expect_nothing_is_told(LinuxSystem(root.path()));
}

TEST(NothingTold, EveryFileEmpty) {
  TempDir root;
  orbtest::every_file_holds(root, "");
  expect_nothing_is_told(LinuxSystem(root.path()));
}

TEST(NothingTold, EveryFileIsALineEnd) {
  TempDir root;
  orbtest::every_file_holds(root, "\n");
  expect_nothing_is_told(LinuxSystem(root.path()));
}

TEST(NothingTold, EveryFileIsAMegabyteOfZeroBytes) {
  TempDir root;
  orbtest::every_file_holds(root, std::string(1 << 20, '\0'));
  expect_nothing_is_told(LinuxSystem(root.path()));
}

TEST(NothingTold, EveryFileIsAFolder) {
  TempDir root;
  orbtest::every_file_holds(root, "");
  for (const char* folder : {"/proc/meminfo", "/proc/cpuinfo", "/proc/self/mountinfo",
                             "/etc/os-release", "/usr/lib/os-release"}) {
    ASSERT_EQ(0, remove(root.path(folder).c_str()));
    root.make_dir(folder);
  }
  expect_nothing_is_told(LinuxSystem(root.path()));
}

// Text that says nothing a rule reads, and is no name either: only the figures stay unknown.
TEST(Garbage, OfAMegabyteIsReadInPart) {
  for (const std::string& part : {"x"s, "\xFF"s, "=:=\"\\\n"s, "0x, - / 9"s}) {
    TempDir root;
    std::string bytes;
    while (bytes.size() < 1 << 20) bytes += part;
    orbtest::every_file_holds(root, bytes);
    const LinuxSystem system(root.path());
    uint64_t number = 0;
    int count = 0;
    EXPECT_FALSE(system.total_memory(&number));
    EXPECT_FALSE(system.free_memory(&number, &number));
    EXPECT_FALSE(system.processor_count(&count));
    EXPECT_TRUE(system.volumes().empty());
    SessionEntry entry;
    EXPECT_FALSE(system.next_session_entry(&entry));
    ProcessorTexts processor;
    EXPECT_TRUE(system.processor_texts(&processor));
    EXPECT_EQ(std::nullopt, processor.clock_hz);
    EXPECT_LE(processor.model.size(), 65536u);
    ReleaseTexts release;
    EXPECT_TRUE(system.release_texts(&release));
    EXPECT_TRUE(release.fields.empty());
    EXPECT_EQ(0, release.chassis_type);
    EXPECT_LE(release.debian_version.size(), 65536u);
  }
}

struct ReleaseCase {
  const char* name;
  std::vector<std::pair<const char*, const char*>> files;
  const char *field_name, *legacy_name;
};

class Release : public testing::TestWithParam<ReleaseCase> {};

TEST_P(Release, NameOfTheSystem) {
  TempDir root;
  for (const auto& [path, text] : GetParam().files) root.write(path, text);
  ReleaseTexts texts;
  EXPECT_TRUE(LinuxSystem(root.path()).release_texts(&texts));
  EXPECT_EQ(GetParam().field_name, texts.fields["NAME"]);
  EXPECT_EQ(GetParam().legacy_name, texts.legacy_name);
}

INSTANTIATE_TEST_SUITE_P(
    Files, Release,
    testing::Values(
        ReleaseCase{"EtcBeforeUsrLib",
                    {{"/etc/os-release", "NAME=a\n"}, {"/usr/lib/os-release", "NAME=b\n"}},
                    "a",
                    ""},
        ReleaseCase{"UsrLibAlone", {{"/usr/lib/os-release", "NAME=b\n"}}, "b", ""},
        ReleaseCase{"UsrLibWhereEtcIsEmpty",
                    {{"/etc/os-release", ""}, {"/usr/lib/os-release", "NAME=b\n"}},
                    "b",
                    ""},
        ReleaseCase{"OlderFilesAreNotReadBesideAName",
                    {{"/etc/os-release", "NAME=a\n"}, {"/etc/lsb-release", "DISTRIB_ID=Mint\n"}},
                    "a",
                    ""},
        ReleaseCase{"OlderFilesNameWhereTheFieldIsMissing",
                    {{"/etc/os-release", "ID=a\n"}, {"/etc/lsb-release", "DISTRIB_ID=Mint\n"}},
                    "",
                    "Mint"},
        ReleaseCase{"OlderFilesNameWhereTheFieldIsEmpty",
                    {{"/etc/os-release", "NAME=\n"}, {"/etc/lsb-release", "DISTRIB_ID=Mint\n"}},
                    "",
                    "Mint"},
        ReleaseCase{"LsbRelease",
                    {{"/etc/lsb-release", "DISTRIB_ID=Mint\nDISTRIB_RELEASE=21\n"},
                     {"/etc/redhat-release", "Red release 8\n"}},
                    "",
                    "Mint"},
        ReleaseCase{"RedHatRelease",
                    {{"/etc/redhat-release", "CentOS Linux release 7.9.2009 (Core)\n"},
                     {"/etc/SuSE-release", "SUSE\n"}},
                    "",
                    "CentOS Linux"},
        ReleaseCase{"SuseRelease",
                    {{"/etc/SuSE-release", "SUSE Linux Enterprise Server 11 (x86_64)\nV = 11\n"}},
                    "",
                    "SUSE Linux Enterprise Server 11 (x86_64)"},
        ReleaseCase{"RedHatWithoutReleaseWord",
                    {{"/etc/redhat-release", "Red\n"}, {"/etc/SuSE-release", "SUSE\n"}},
                    "",
                    "SUSE"}),
    [](const auto& row) { return row.param.name; });

TEST(ReleaseTextsOfAMac, AreNotTold) {
  for (const char* list : {"SystemVersion.plist", "SystemVersionCompat.plist"}) {
    TempDir root;
    orbtest::x86_laptop(root);
    root.write("/System/Library/CoreServices/"s + list, "");
    ReleaseTexts texts;
    texts.debian_version = "old";
    EXPECT_FALSE(LinuxSystem(root.path()).release_texts(&texts)) << list;
    EXPECT_EQ("old", texts.debian_version);
  }
}

TEST(Release, ChassisNumberBeyondAByteIsUnknown) {
  TempDir root;
  root.write("/sys/class/dmi/id/chassis_type", "256\n");
  ReleaseTexts texts;
  EXPECT_TRUE(LinuxSystem(root.path()).release_texts(&texts));
  EXPECT_EQ(0, texts.chassis_type);
}

TEST(Files, AreThoseBelowTheRoot) {
  TempDir root;
  root.write("/etc/thing", "inside");
  const LinuxSystem system(root.path());
  std::string bytes;
  uint64_t size = 0;
  EXPECT_TRUE(system.file_bytes("/etc/thing", 3, &bytes));
  EXPECT_EQ("ins", bytes);
  EXPECT_TRUE(system.file_size("/etc/thing", &size));
  EXPECT_EQ(6u, size);
  EXPECT_FALSE(system.file_bytes("/etc/passwd", 3, &bytes));
}

TEST(Mac, IsNeverAskedThroughGestalt) {
  int32_t response = 5;
  EXPECT_FALSE(host().gestalt(0x70636C6B, &response));
  EXPECT_EQ(5, response);
}

TEST(PropertyList, IsRead) {
  std::vector<std::optional<std::string>> texts;
  EXPECT_TRUE(
      host().property_list_texts("<dict><key>k</key><string>v</string></dict>", {"k"}, &texts));
  EXPECT_EQ("v", texts.at(0));
}

struct NameCase {
  const char* name;
  const char* asked;
  const char* official;
  std::vector<const char*> aliases;
  const char* known;
};

class KnownName : public testing::TestWithParam<NameCase> {};

TEST_P(KnownName, OfTheHost) {
  std::vector<char*> aliases;
  for (const char* alias : GetParam().aliases) aliases.push_back(const_cast<char*>(alias));
  aliases.push_back(nullptr);
  EXPECT_EQ(GetParam().known, known_name(GetParam().asked, GetParam().official, aliases.data()));
}

INSTANTIATE_TEST_SUITE_P(
    Hosts, KnownName,
    testing::Values(
        NameCase{"Official", "box", "box.example", {"box"}, "box.example"},
        NameCase{"OfficialOfAnotherName", "box", "other.example", {"box.x"}, "other.example"},
        NameCase{"LocalhostWithAlias", "box", "localhost", {"box", "box.example"}, "box.example"},
        NameCase{
            "LocalhostWithDomain", "box", "localhost.localdomain", {"box.a", "box.b"}, "box.a"},
        NameCase{"LocalhostWithoutFullAlias", "box", "localhost", {"box", "boxer.example"}, "box"},
        NameCase{"LocalhostWithoutAlias", "box", "localhost", {}, "box"},
        NameCase{"AliasInOtherCase", "box", "LOCALHOST", {"Box.Example"}, "Box.Example"},
        NameCase{"HostIsCalledLocalhost",
                 "localhost",
                 "localhost.localdomain",
                 {},
                 "localhost.localdomain"}),
    [](const auto& row) { return row.param.name; });

TEST(KnownName, AliasesMayBeNull) { EXPECT_EQ("box", known_name("box", "localhost", nullptr)); }

}  // namespace
