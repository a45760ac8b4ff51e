// tests/sysprops/hostreport_test.cpp: the running machine's report against second sources.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "sysprops/catalogue.h"
#include "tests/support/command_text.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/scoped_local_ip.h"
#include "tests/support/silent_output.h"

namespace {

using namespace quillon_com::orb::sysprops;
using orbtest::command_text;
using PropertyMap = std::map<std::wstring, std::wstring>;

struct Wrapper {
  const wchar_t* key;
  std::wstring (*answer)();
};

const Wrapper kWrappers[] = {
    {L"CPUType", voxcomn_get_cpu_type},
    {L"CPUSpeed", voxcomn_get_cpu_speed},
    {L"NumOfCPU", voxcomn_get_number_of_processors},
    {L"CPUSerialNumber", voxcomn_get_cpu_serial_number},
    {L"DomainName", voxcomn_get_domain_name},
    {L"ComputerName", voxcomn_get_computer_name},
    {L"IPAddress", voxcomn_get_ip_address},
    {L"SubnetAddress", voxcomn_get_subnet_address},
    {L"SubnetMask", voxcomn_get_subnet_mask},
    {L"NETAddress", voxcomn_get_mac_address},
    {L"IPXAddress", voxcomn_get_ipx_address},
    {L"IPHostName", voxcomn_get_fqdn_address},
    {L"TotalPhysicalMemory", voxcomn_get_total_memory},
    {L"FreeMemory", voxcomn_get_free_memory},
    {L"NumberOfFileSystems", voxcomn_get_number_of_file_systems},
    {L"TotalDiskSpace", voxcomn_get_total_disk_space},
    {L"FreeDiskSpace", voxcomn_get_free_disk_space},
    {L"OSType", voxcomn_get_os_type},
    {L"OSPlatform", voxcomn_get_os_platform},
    {L"OSVersion", voxcomn_get_os_version},
    {L"OSCsdVersion", voxcomn_get_os_service_pack},
    {L"OSBuildNum", voxcomn_get_os_build_number},
    {L"OSOEMId", voxcomn_get_os_oem_id},
    {L"PlatformID", voxcomn_get_os_platform_id},
    {L"UserName", voxcomn_get_user_name},
    {L"TimeZone", voxcomn_get_time_zone},
    {L"DefaultLangID", voxcomn_get_language},
    {L"LastUpdate", voxcomn_get_last_update_time},
};

bool stands_still(const std::wstring& key) {
  return key != L"FreeMemory" && key != L"FreeDiskSpace" && key != L"LastUpdate";
}

std::string narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

PropertyMap host_report() {
  const orbtest::SilentOutput silent;
  PropertyMap properties;
  EXPECT_TRUE(ISysProps().GetAllSystemProperties(properties));
  return properties;
}

// The text of `command`, or nothing worth comparing.
std::string second_source(const std::string& command) {
  return narrow(command_text(command + " 2>/dev/null"));
}

TEST(HostReport, HoldsTheKeysOfBothForms) {
  const orbtest::SilentOutput silent;
  ISysProps props;
  PropertyMap one{{L"stale", L"x"}};
  PropertyMap two{{L"stale", L"x"}};
  std::map<std::wstring, std::pair<std::wstring, std::wstring>> file_systems{{L"stale", {}}};
  EXPECT_TRUE(props.GetAllSystemProperties(one));
  EXPECT_TRUE(props.GetAllSystemProperties(two, file_systems));
  EXPECT_EQ(29 + 2 * file_systems.size(), one.size());
  EXPECT_EQ(30U, two.size());
  EXPECT_EQ(0U, one.count(L"IsPortable"));
  EXPECT_EQ(1U, two.count(L"IsPortable"));
  EXPECT_EQ(0U, one.count(L"stale") + two.count(L"stale") + file_systems.count(L"stale"));
  EXPECT_EQ(std::to_wstring(file_systems.size()), two[L"NumberOfFileSystems"]);
  for (const auto& [mount_point, space] : file_systems) {
    EXPECT_EQ(space.first, one[L"FileSystem\"" + mount_point + L"\" Total_Disk_Space_in_MB"]);
  }
}

TEST(HostReport, EveryWrapperAnswersWhatAnObjectDoes) {
  const orbtest::SilentOutput silent;
  const orbtest::ScopedLocalIp none(L"");
  tzset();
  PropertyMap report = host_report();
  ISysProps props;
  for (const Wrapper& wrapper : kWrappers) {
    const std::wstring key = wrapper.key;
    const std::wstring answer = wrapper.answer();
    if (key == L"NumberOfFileSystems") {
      EXPECT_EQ(L"", answer);
    } else if (stands_still(key)) {
      EXPECT_EQ(report[key], answer) << narrow(key);
      EXPECT_EQ(report[key], props.GetOneSystemProperty(key)) << narrow(key);
    } else {
      EXPECT_FALSE(answer.empty()) << narrow(key);
      EXPECT_NE(L"N/A", answer) << narrow(key);
    }
  }
}

TEST(HostReport, AnswersOfSingleFileSystemsAreNeverCollected) {
  EXPECT_EQ(L"N/A", voxcomn_get_file_system_name(0));
  EXPECT_EQ(L"N/A", voxcomn_get_file_system_name(-1));
  EXPECT_EQ(L"N/A", voxcomn_get_file_system_name(2147483647));
  EXPECT_EQ(L"N/A", voxcomn_get_file_system_free_space_by_name(L"/"));
  EXPECT_EQ(L"N/A", voxcomn_get_file_system_free_space_by_name(L""));
  EXPECT_EQ(L"N/A", voxcomn_get_file_system_total_space_by_name(L"/"));
  EXPECT_EQ(L"N/A", voxcomn_get_file_system_total_space_by_name(L"no such mount point"));
}

TEST(HostReport, QuirkSystemInfoAndOtherSpellingsAnswerNothing) {
  ISysProps props;
  EXPECT_EQ(L"", props.GetOneSystemProperty(L"SystemInfo"));
  EXPECT_EQ(L"", props.GetOneSystemProperty(L"cputype"));
  EXPECT_EQ(L"", props.GetOneSystemProperty(L"NumberOfFileSystems"));
}

TEST(HostReport, ComputerNameIsTheNodesFirstLabel) {
  const std::string name = second_source("uname -n | cut -d. -f1");
  if (name.empty()) GTEST_SKIP() << "uname prints no node name";
  EXPECT_EQ(name, narrow(voxcomn_get_computer_name()));
}

TEST(HostReport, FullNameIsTheResolversOfficialName) {
  const std::string name = second_source("uname -n");
  const std::string official =
      second_source("getent ahostsv4 '" + name + "' | awk 'NR == 1 { print $3 }'");
  if (official.empty() || official.rfind("localhost", 0) == 0) {
    GTEST_SKIP() << "the resolver tells no name of its own for " << name;
  }
  EXPECT_EQ(official, narrow(voxcomn_get_fqdn_address()));
}

// The first IPv4 address of the interfaces that are up and have a hardware address, in index order.
constexpr char kFirstAddress[] =
    "ip -o -4 addr show up | while read -r index name family address rest; do "
    "[ \"$name\" = lo ] && continue; "
    "[ \"$(cat /sys/class/net/$name/addr_len)\" = 6 ] || continue; "
    "echo \"$address $(tr -d : </sys/class/net/$name/address)\"; break; done";

TEST(HostReport, AddressIsTheFirstThatTheRoutingToolLists) {
  const orbtest::ScopedLocalIp none(L"");
  std::istringstream listed(second_source(kFirstAddress));
  std::string quad, hardware;
  int bits = 0;
  std::getline(listed, quad, '/');
  listed >> bits >> hardware;
  if (hardware.empty()) GTEST_SKIP() << "no interface with an IPv4 and a hardware address";
  const uint32_t mask = bits == 0 ? 0 : ~uint32_t{0} << (32 - bits);
  const auto quad_of = [](uint32_t address) {
    return std::to_string(address >> 24) + "." + std::to_string(address >> 16 & 255) + "." +
           std::to_string(address >> 8 & 255) + "." + std::to_string(address & 255);
  };
  uint32_t address = 0;
  std::istringstream parts(quad);
  for (std::string part; std::getline(parts, part, '.');) {
    address = address << 8 | static_cast<uint32_t>(std::stoul(part));
  }
  EXPECT_EQ(quad, narrow(voxcomn_get_ip_address()));
  EXPECT_EQ(quad_of(mask), narrow(voxcomn_get_subnet_mask()));
  EXPECT_EQ(quad_of(address & mask), narrow(voxcomn_get_subnet_address()));
  EXPECT_EQ(hardware, narrow(voxcomn_get_mac_address()));
}

TEST(HostReport, LastUpdateIsTheDateToolsTime) {
  constexpr char kDate[] = "date '+%m/%d/%Y %H:%M:%S'";
  const orbtest::ScopedTimeZone zone("XYZ-5:30");
  for (int attempt = 0; attempt < 3; ++attempt) {
    const std::string before = second_source(kDate);
    const std::string stamp = narrow(voxcomn_get_last_update_time());
    const std::string after = second_source(kDate);
    if (before.substr(0, 10) != after.substr(0, 10)) continue;  // midnight in between
    EXPECT_LE(before, stamp);
    EXPECT_LE(stamp, after);
    return;
  }
  FAIL() << "the date changed three times";
}

TEST(HostReport, TimeZoneIsTheStandardAbbreviation) {
  const orbtest::ScopedTimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(L"CET", voxcomn_get_time_zone());
  const orbtest::ScopedTimeZone other("<+0530>-5:30");
  EXPECT_EQ(L"+0530", voxcomn_get_time_zone());
}

TEST(HostReport, TimeZoneFollowsTzsetNotTheVariable) {
  const orbtest::ScopedTimeZone zone("CET-1CEST");
  const orbtest::ScopedEnvironment changed("TZ", "EST5EDT");
  EXPECT_EQ(L"CET", voxcomn_get_time_zone());
}

TEST(HostReport, TimeZoneIsWholeWhileAnotherThreadBreaksTimesDown) {
  const orbtest::ScopedTimeZone zone("Asia/Tokyo");  // of a file, where there are any
  const std::wstring expected = voxcomn_get_time_zone();
  std::atomic<bool> done{false};
  std::thread other([&done] {
    tm local{};
    for (time_t now = 0; !done; ++now) localtime_r(&now, &local);
  });
  int differing = 0;
  for (int turn = 0; turn < 20000; ++turn) differing += voxcomn_get_time_zone() != expected;
  done = true;
  other.join();
  EXPECT_EQ(0, differing);
}

TEST(HostReport, LanguageIsThatOfTheEnvironment) {
  const orbtest::ScopedEnvironment lang("LANG", "ja_JP.UTF-8");
  EXPECT_EQ(L"0411", voxcomn_get_language());
}

TEST(HostReport, RootVolumeIsAsLargeAsTheDiskToolSays) {
  const std::string kilobytes = second_source("df -P -k / | awk 'NR == 2 { print $2 }'");
  if (kilobytes.empty()) GTEST_SKIP() << "df lists nothing";
  const orbtest::SilentOutput silent;
  ISysProps props;
  PropertyMap properties;
  std::map<std::wstring, std::pair<std::wstring, std::wstring>> file_systems;
  props.GetAllSystemProperties(properties, file_systems);
  ASSERT_EQ(1U, file_systems.count(L"/"));
  EXPECT_NEAR(std::stod(kilobytes) / 1024, std::stod(file_systems[L"/"].first), 0.01);
  double sum = 0;
  for (const auto& entry : file_systems) sum += std::stod(entry.second.first);
  EXPECT_NEAR(sum, std::stod(properties[L"TotalDiskSpace"]),
              0.01 * static_cast<double>(1 + file_systems.size()));
}

TEST(HostReport, WrappersAgreeOnManyThreads) {
  const orbtest::ScopedLocalIp none(L"");
  tzset();
  const auto start = std::chrono::steady_clock::now();
  voxcomn_get_fqdn_address();
  const bool slow = std::chrono::steady_clock::now() - start > std::chrono::milliseconds(50);
  std::vector<Wrapper> chosen;
  PropertyMap expected;
  for (const Wrapper& wrapper : kWrappers) {
    const std::wstring key = wrapper.key;
    if (!stands_still(key) || key == L"UserName") continue;  // callers serialise the latter
    if (slow && (key == L"DomainName" || key == L"IPHostName")) continue;
    chosen.push_back(wrapper);
    expected[key] = wrapper.answer();
  }
  ASSERT_LT(20U, chosen.size());
  std::vector<std::thread> threads;
  std::vector<std::string> differing(4);
  for (size_t id = 0; id < differing.size(); ++id) {
    threads.emplace_back([&, id] {
      for (size_t turn = 0; turn < 20 * chosen.size(); ++turn) {
        const Wrapper& wrapper = chosen[(turn + id * 7) % chosen.size()];
        if (wrapper.answer() != expected.at(wrapper.key)) differing[id] = narrow(wrapper.key);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(std::vector<std::string>(4), differing);
}

}  // namespace
