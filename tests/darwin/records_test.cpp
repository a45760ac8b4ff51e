// tests/darwin/records_test.cpp: the whole property records of scripted Macs.
#include <net/if.h>
#include <sys/sysctl.h>

#include "sysprops/collect.h"
#include "tests/darwin/scripted_machine.h"
#include "tests/darwin/scripted_macos.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/scoped_local_ip.h"

namespace orbtest {
namespace {

using namespace quillon_com::orb::sysprops;

constexpr std::pair kCount{CTL_HW, HW_NCPU};
constexpr std::pair kMemory{CTL_HW, HW_MEMSIZE};
constexpr std::pair kDomain{CTL_KERN, KERN_NISDOMAINNAME};
constexpr uint32_t kClock = 0x70636c6b;      // 'pclk'
constexpr uint32_t kSystem = 0x73797361;     // 'sysa'
constexpr uint32_t kProcessor = 0x63707574;  // 'cput'
constexpr int32_t kX86 = 0x69787878;         // 'ixxx'
constexpr int32_t kArm = 0x61726d20;         // 'arm '
constexpr uint64_t kGibibyte = 1 << 30;

class MacRecords : public MacTest {
 protected:
  ScriptedMachine machine;
};

struct ProcessorRow {
  const char* name;
  std::optional<int32_t> count;
  std::map<uint32_t, int32_t> gestalts;
  std::optional<std::string> model;
  bool ok;
  const wchar_t *number, *speed, *type, *portable;
};

TEST_F(MacRecords, Processor) {
  const ProcessorRow rows[] = {
      {"IntelLaptop",
       8,
       {{kClock, -1894967296}, {kSystem, 10}, {kProcessor, kX86}},  // 2,400,000,000
       "MacBookPro15,1",
       true,
       L"8",
       L"2400 MHz",
       L"Intel X86",
       L"1"},
      {"DesktopJustBelowAMegahertz",
       12,
       {{kClock, -1894967297}, {kSystem, 10}, {kProcessor, 1}},
       "iMac19,1",
       true,
       L"12",
       L"2399 MHz",
       L"Intel 68010",
       L"0"},
      {"AppleSiliconWithUnknownCodes",
       10,
       {{kSystem, 20}, {kProcessor, kArm}},
       "Mac14,2",
       false,
       L"10",
       L"0 MHz",
       L"",
       L"before"},
      {"NothingAnsweredGivesNoNames",
       8,
       {},
       "MacBookAir10,1",
       false,
       L"8",
       L"0 MHz",
       L"",
       L"before"},
      {"QuirkAnUnansweredModelIsCodeZero",
       8,
       {{kClock, 2000000000}},
       "MacBookAir10,1",
       true,
       L"8",
       L"2000 MHz",
       L"68000",
       L"1"},
      {"QuirkAnUnansweredArchitectureSeesTheClock",
       8,
       {{kClock, 10}, {kProcessor, kX86}},
       "Mac14,2",
       true,
       L"8",
       L"0 MHz",
       L"Intel X86",
       L"0"},
      {"ArchitectureAlone",
       8,
       {{kClock, 2000000000}, {kSystem, 2}, {kProcessor, kArm}},
       "PowerBook6,8",
       true,
       L"8",
       L"2000 MHz",
       L"PowerPC",
       L"1"},
      {"NothingButGestalt",
       std::nullopt,
       {{kClock, 2000000000}, {kSystem, 10}, {kProcessor, kX86}},
       std::nullopt,
       true,
       L"N/A",
       L"2000 MHz",
       L"Intel X86",
       L"-1"},
  };
  for (const ProcessorRow& row : rows) {
    mac() = Mac();
    if (row.count) mac().kernel_values[kCount] = bytes_of(*row.count);
    mac().gestalts = row.gestalts;
    if (row.model) mac().named_values["hw.model"] = *row.model + '\0';
    CPUInformation record;
    record.isPortable = L"before";
    EXPECT_EQ(row.ok, collect_cpu(machine, record)) << row.name;
    EXPECT_EQ(row.number, record.numOfCPU) << row.name;
    EXPECT_EQ(row.speed, record.cpuSpeed) << row.name;
    EXPECT_EQ(row.type, record.cpuType) << row.name;
    EXPECT_EQ(row.portable, record.isPortable) << row.name;
    EXPECT_EQ(L"N/A", record.cpuSerialNumber) << row.name;
  }
}

TEST_F(MacRecords, Memory) {
  struct Row {
    const char* name;
    std::optional<uint64_t> total;
    std::optional<uint32_t> pages;
    std::optional<uint64_t> page_size;
    bool ok;
    const wchar_t *total_text, *free_text;
  };
  const Row rows[] = {
      // 61035 x 16384 = 999,997,440 lies between one and two twentieths of 858,993,459.
      {"AppleSilicon", 16 * kGibibyte, 61035, 16384, true, L"17179869184", L"858993459"},
      {"BelowTheFirstStep", 16 * kGibibyte, 122070, 4096, true, L"17179869184", L"499998720"},
      // 2^28 x 4096 = 1 TiB; a twentieth of 1.5 TiB is 82,463,372,083, of which it holds 13.
      {"MoreThan32Bits", 1536 * kGibibyte, 268435456, 4096, true, L"1649267441664",
       L"1072023837079"},
      {"NoStatistics", 16 * kGibibyte, std::nullopt, 16384, false, L"17179869184", L"N/A"},
      {"NoPageSize", 16 * kGibibyte, 61035, std::nullopt, false, L"17179869184", L"N/A"},
      {"Nothing", std::nullopt, std::nullopt, std::nullopt, false, L"N/A", L"N/A"},
  };
  for (const Row& row : rows) {
    mac() = Mac();
    if (row.total) mac().kernel_values[kMemory] = bytes_of(*row.total);
    mac().free_pages = row.pages;
    mac().page_size = row.page_size;
    MemoryInformation record;
    EXPECT_EQ(row.ok, collect_memory(machine, record)) << row.name;
    EXPECT_EQ(row.total_text, record.totalPhysicalMemory) << row.name;
    EXPECT_EQ(row.free_text, record.freeMemory) << row.name;
  }
}

TEST_F(MacRecords, Volumes) {
  // The container's volumes, a device file system, a network share and an automatic mount.
  mac().mounts = {std::vector<struct statfs>{
      mounted_volume("/", MNT_LOCAL | MNT_ROOTFS, 4096, 1000000, 300000),
      mounted_volume("/dev", MNT_LOCAL | MNT_DONTBROWSE, 512, 373, 0),
      mounted_volume("/System/Volumes/Data", MNT_LOCAL, 4096, 1000000, 300000),
      mounted_volume("/Volumes/share", 0, 4096, 1000000, 300000),
      mounted_volume("/System/Volumes/Data/home", MNT_LOCAL, 1024, 0, 0),
      mounted_volume("/Volumes/odd", MNT_LOCAL, 0, 1000000, 300000),
  }};
  DiskInformation record;
  EXPECT_TRUE(collect_disk(machine, record));
  EXPECT_EQ(L"3", record.numFileSystems);
  EXPECT_EQ(L"7812.68", record.totalDiskSpace);  // 3906.25 + 0.182 + 3906.25
  EXPECT_EQ(L"1953.17", record.freeDiskSpace);   // 2343.75, five twentieths of the total
  using Texts = std::pair<std::wstring, std::wstring>;
  ASSERT_EQ(3u, record.fileSystems.size());
  EXPECT_EQ(Texts(L"3906.25", L"976.56"), record.fileSystems[L"/"]);
  EXPECT_EQ(Texts(L"0.18", L"0.00"), record.fileSystems[L"/dev"]);
  EXPECT_EQ(Texts(L"3906.25", L"976.56"), record.fileSystems[L"/System/Volumes/Data"]);
}

class MacNetworks : public MacRecords {
 protected:
  void SetUp() override {
    MacRecords::SetUp();
    mac().indexes = {{"lo0", 1}, {"en0", 4}};
    mac().interfaces = {
        {"lo0", IFF_UP | IFF_LOOPBACK, link_address("lo0", ""), {}},
        {"lo0", IFF_UP | IFF_LOOPBACK, ipv4_address("127.0.0.1"), ipv4_mask("255.0.0.0")},
        {"en0", IFF_UP, link_address("en0", std::string("\x00\x1c\x42\x0a\xff\x01", 6)), {}},
        {"en0", IFF_UP, ipv6_address("fe80::1c42:aff", 4), ipv6_mask("ffff:ffff:ffff:ffff::")},
        {"en0", IFF_UP, ipv4_address("192.168.1.20"), ipv4_mask("255.255.255.0")},
    };
    machine.host = "mac.local";
    machine.node = "mac.local";
    machine.machine = "arm64";
    machine.domain = "nis.example";
    mac().officials = {{"mac.local", "mac.corp.example"}};
  }

  const ScopedLocalIp no_preference{L""};
  NetworkInformation record;
};

TEST_F(MacNetworks, NamesAndFirstIpv4Address) {
  mac().kernel_values[kDomain] = std::string("kernel.example\0", 15);
  EXPECT_TRUE(collect_network(machine, record));
  EXPECT_EQ(L"mac", record.computerName);
  EXPECT_EQ(L"kernel.example", record.domainName);
  EXPECT_EQ(L"mac.corp.example", record.ipHostName);
  EXPECT_EQ(L"192.168.1.20", record.ipAddress);
  EXPECT_EQ(L"192.168.1.0", record.subnetAddress);
  EXPECT_EQ(L"255.255.255.0", record.subnetMask);
  EXPECT_EQ(L"001c420aff01", record.netAddress);
  EXPECT_EQ(L"N/A", record.ipxAddress);
}

TEST_F(MacNetworks, TheResolversDomainWhenTheKernelHasNone) {
  mac().kernel_values[kDomain] = std::string(1, '\0');
  EXPECT_TRUE(collect_network(machine, record));
  EXPECT_EQ(L"corp.example", record.domainName);
}

TEST_F(MacNetworks, AnUnresolvedNameGetsTheDomainOfTheSystem) {
  mac().officials.clear();
  EXPECT_TRUE(collect_network(machine, record));
  EXPECT_EQ(L"N/A", record.domainName);
  EXPECT_EQ(L"mac.local.nis.example", record.ipHostName);
}

TEST_F(MacNetworks, APreferredIpv6AddressOfTheMacsOwnFamilyNumber) {
  const ScopedLocalIp preferred(L"2001:db8:0:0:0:0:0:1");  // no interface carries it
  EXPECT_TRUE(collect_network(machine, record));
  EXPECT_EQ(L"fe80:0:0:0:0:0:1c42:aff", record.ipAddress);
  EXPECT_EQ(L"ffff:ffff:ffff:ffff:0:0:0:0", record.subnetMask);
  EXPECT_EQ(L"fe80:0:0:0:0:0:0:0", record.subnetAddress);
}

TEST_F(MacNetworks, WithoutAnInterfaceOnlyTheNamesAreWritten) {
  mac().interfaces.reset();
  EXPECT_FALSE(collect_network(machine, record));
  EXPECT_EQ(L"mac", record.computerName);
  EXPECT_EQ(L"N/A", record.ipAddress);
}

TEST_F(MacRecords, UserTimeAndLanguage) {
  const ScopedEnvironment language("LANG", "ja_JP.UTF-8");
  mac().sessions = {session_record(BOOT_TIME, "", "", ""),
                    session_record(USER_PROCESS, "s000", "JDoe", "console"),
                    session_record(USER_PROCESS, "s001", "admin", "ttys000"),
                    session_record(DEAD_PROCESS, "s002", "gone", "ttys001")};
  machine.groups = {{"JDoe", "CORP\\Domain Users"}, {"admin", "staff"}};
  machine.zone = "PST";
  tm broken_down{};
  broken_down.tm_year = 124;
  broken_down.tm_mon = 1;
  broken_down.tm_mday = 3;
  broken_down.tm_hour = 9;
  broken_down.tm_min = 7;
  broken_down.tm_sec = 5;
  machine.broken_down = broken_down;
  MiscInformation record;
  EXPECT_TRUE(collect_misc(machine, record));
  EXPECT_EQ(L"corp\\jdoe,admin", record.userName);
  EXPECT_EQ(L"PST", record.timeZone);
  EXPECT_EQ(L"02/03/2024 09:07:05", record.lastUpdate);
  EXPECT_EQ(L"0411", record.defaultLangId);
}

TEST_F(MacRecords, AnAccountThatFillsItsFieldIsCutTo128Bytes) {
  mac().sessions = {session_record(USER_PROCESS, "s000x", std::string(300, 'u'), "console")};
  MiscInformation record;
  EXPECT_TRUE(collect_misc(machine, record));
  EXPECT_EQ(std::wstring(128, L'u'), record.userName);
}

}  // namespace
}  // namespace orbtest
