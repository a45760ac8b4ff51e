// tests/tools/tool_test.cpp: the built tool's commands against the library's own answers.
#include <gtest/gtest.h>

#include <ctime>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "network/netinterface.h"
#include "session/loggedonusers.h"
#include "sysprops/records.h"
#include "tests/support/scoped_environment.h"
#include "tests/tools/run_tool.h"

namespace {

using nlohmann::json;
using orbtest::lines_of;
using orbtest::Outcome;
using orbtest::run_tool;
namespace props = quillon_com::orb::sysprops;

// Those that another moment answers differently.
const std::set<std::string> kMoving = {"FreeMemory", "FreeDiskSpace", "LastUpdate"};

struct LibraryReport {
  std::map<std::string, std::string> properties;
  std::map<std::string, std::pair<std::string, std::string>> file_systems;

  LibraryReport() {
    tzset();
    std::map<std::wstring, std::wstring> wide;
    std::map<std::wstring, std::pair<std::wstring, std::wstring>> wide_volumes;
    const orbtest::ScopedEnvironment language("LANG", std::nullopt);
    props::ISysProps().GetAllSystemProperties(wide, wide_volumes);
    for (const auto& [key, value] : wide) properties[narrow(key)] = narrow(value);
    for (const auto& [point, sizes] : wide_volumes) {
      file_systems[narrow(point)] = {narrow(sizes.first), narrow(sizes.second)};
    }
  }
  static std::string narrow(const std::wstring& text) { return props::sysprops_wide_to_ansi(text); }
};

TEST(Tool, ReportIsWhatTheLibraryReports) {
  const LibraryReport library;
  const Outcome outcome = run_tool({"--json"});
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ("", outcome.error);
  const json document = json::parse(outcome.out);
  std::map<std::string, std::string> properties = document["SystemInfo"];
  ASSERT_EQ(30U, properties.size());
  for (const auto& [key, value] : library.properties) {
    ASSERT_EQ(1U, properties.count(key)) << key;
    if (kMoving.count(key) == 0) {
      EXPECT_EQ(value, properties[key]) << key;
    }
  }
  ASSERT_EQ(library.file_systems.size(), document["FileSystem"].size());
  size_t i = 0;
  for (const auto& [point, sizes] : library.file_systems) {
    EXPECT_EQ(point, document["FileSystem"][i]["MountPoint"]);
    EXPECT_EQ(sizes.first, document["FileSystem"][i++]["Total_Disk_Space_in_MB"]);
  }
}

TEST(Tool, TableHoldsTheSameReport) {
  const LibraryReport library;
  const Outcome outcome = run_tool({});
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ("", outcome.error);
  std::map<std::string, std::string> shown;
  for (const std::string& line : lines_of(outcome.out)) {
    if (line.substr(0, 2) != "  ") continue;
    const std::string key = line.substr(2, line.find(' ', 2) - 2);
    shown[key] = line.size() > 23 ? line.substr(23) : "";
  }
  for (const auto& [key, value] : library.properties) {
    ASSERT_EQ(1U, shown.count(key)) << key;
    if (kMoving.count(key) == 0) {
      EXPECT_EQ(value, shown[key]) << key;
    }
  }
  EXPECT_EQ(outcome.out.substr(0, 20), run_tool({"report"}).out.substr(0, 20));
}

TEST(Tool, GetAnswersEveryKeyOfKeys) {
  const LibraryReport library;
  const Outcome keys = run_tool({"keys"});
  EXPECT_EQ(0, keys.status);
  const std::vector<std::string> all = lines_of(keys.out);
  ASSERT_EQ(30U, all.size());
  std::vector<std::string> arguments = {"get"};
  for (const std::string& key : all) {
    ASSERT_EQ(1U, library.properties.count(key)) << key;
    const Outcome one = run_tool({"get", key});
    EXPECT_EQ(0, one.status) << key << one.error;
    if (kMoving.count(key) == 0) {
      EXPECT_EQ(library.properties.at(key) + "\n", one.out) << key;
    }
    arguments.push_back(key);
  }
  const std::vector<std::string> several = lines_of(run_tool(arguments).out);
  ASSERT_EQ(30U, several.size());
  for (size_t i = 0; i < all.size(); ++i) {
    if (kMoving.count(all[i]) == 0) {
      EXPECT_EQ(all[i] + " " + library.properties.at(all[i]), several[i]);
    } else {
      EXPECT_EQ(0U, several[i].find(all[i] + " "));
    }
  }
}

TEST(Tool, NumberOfFileSystemsIsAnsweredAlthoughTheCatalogueHasAGap) {
  const LibraryReport library;
  EXPECT_EQ(std::to_string(library.file_systems.size()) + "\n",
            run_tool({"get", "NumberOfFileSystems"}).out);
}

TEST(Tool, GetAsJsonIsAFlatObject) {
  const Outcome outcome = run_tool({"get", "PlatformID", "IPXAddress", "--json"});
  EXPECT_EQ(0, outcome.status);
  const json expected = {{"IPXAddress", "N/A"},
                         {"PlatformID", LibraryReport().properties["PlatformID"]}};
  EXPECT_EQ(expected, json::parse(outcome.out));
}

TEST(Tool, KeysAsJsonAreTheSameKeys) {
  const json document = json::parse(run_tool({"keys", "--json"}).out);
  EXPECT_EQ(lines_of(run_tool({"keys"}).out), document["Keys"].get<std::vector<std::string>>());
}

TEST(Tool, FilesystemsAreThoseOfTheDiskRecord) {
  const LibraryReport library;
  const json document = json::parse(run_tool({"filesystems", "--json"}).out);
  ASSERT_EQ(library.file_systems.size(), document["FileSystem"].size());
  const std::vector<std::string> lines = lines_of(run_tool({"filesystems"}).out);
  ASSERT_EQ(library.file_systems.size() + 1, lines.size());
  EXPECT_EQ(0U, lines[0].find("MOUNT POINT"));
  size_t i = 0;
  for (const auto& [point, sizes] : library.file_systems) {
    EXPECT_EQ(point, document["FileSystem"][i]["MountPoint"]);
    EXPECT_EQ(sizes.first, document["FileSystem"][i++]["Total_Disk_Space_in_MB"]);
    EXPECT_EQ(0U, lines[i].find(point + " "));
    EXPECT_NE(std::string::npos, lines[i].find(" " + sizes.first + " "));
  }
}

TEST(Tool, InterfacesAreThoseOfTheList) {
  for (const bool loopback : {false, true}) {
    NetInterfaceList list(loopback);
    list.initialize();
    json expected = json::array();
    size_t addresses = 0;
    for (int index : list.getIndexes()) {
      const NetInterface& record = list.getNetInterface(static_cast<unsigned>(index));
      json entry = {{"Index", record.getIndex()},
                    {"Name", record.getIndexName()},
                    {"NETAddress", record.getMACAddress()},
                    {"Addresses", json::array()}};
      for (const IPAddress& address : record.getIPAddress()) {
        ++addresses;
        entry["Addresses"].push_back({{"IPAddress", address.getIPAddress()},
                                      {"SubnetMask", address.getSubNetMask()},
                                      {"SubnetAddress", address.getSubNetAddr()}});
      }
      expected.push_back(entry);
    }
    std::vector<std::string> arguments = {"interfaces"};
    if (loopback) arguments.emplace_back("--loopback");
    const size_t lines = lines_of(run_tool(arguments).out).size();
    EXPECT_EQ(addresses == 0 ? 0 : addresses + 1, lines);
    arguments.emplace_back("--json");
    EXPECT_EQ(expected, json::parse(run_tool(arguments).out)["Interfaces"]);
  }
}

TEST(Tool, UsersAreThoseOfTheSessions) {
  std::set<std::string> network;
  std::set<std::string> local;
  testing::internal::CaptureStdout();  // the collector's diagnostic lines
  quillon_com::orb::session::CollectLoggedonUsers(network, local, false);
  testing::internal::GetCapturedStdout();
  const Outcome outcome = run_tool({"users", "--json"});
  EXPECT_EQ(0, outcome.status);
  const json expected = {{"Users", {{"Network", network}, {"Local", local}}}};
  EXPECT_EQ(expected, json::parse(outcome.out));
  EXPECT_EQ(network.size() + local.size(), lines_of(run_tool({"users"}).out).size());
}

TEST(Tool, UnknownKeyNamesTheNearestAndTheOthersAreAnswered) {
  const Outcome outcome = run_tool({"get", "OSVersoin", "IPXAddress", "osversion", "Humidity"});
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("N/A\n", outcome.out);
  EXPECT_EQ(
      "orbprops: unknown key \"OSVersoin\"; did you mean OSVersion?\n"
      "orbprops: unknown key \"osversion\"; did you mean OSVersion?\n"
      "orbprops: unknown key \"Humidity\"; \"orbprops keys\" lists all\n",
      outcome.error);
}

TEST(Tool, UnknownKeyIsLeftOutOfTheJsonObject) {
  const Outcome outcome = run_tool({"get", "SystemInfo", "--json"});
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("{}\n", outcome.out);
}

TEST(Tool, ControlCharactersOfAKeyDoNotReachTheTerminal) {
  EXPECT_EQ("orbprops: unknown key \"\\x1b[2J\"; \"orbprops keys\" lists all\n",
            run_tool({"get", "\x1b[2J"}).error);
}

TEST(Tool, StrictFailsOnWhatIsNotAnswered) {
  Outcome outcome = run_tool({"--strict", "get", "IPXAddress", "PlatformID", "CPUSerialNumber"});
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("orbprops: not answered: IPXAddress, CPUSerialNumber\n", outcome.error);
  EXPECT_EQ(3U, lines_of(outcome.out).size());
  outcome = run_tool({"--strict", "get", "PlatformID"});
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ("", outcome.error);
  outcome = run_tool({"--strict"});
  EXPECT_EQ(1, outcome.status);
  EXPECT_NE(std::string::npos, outcome.error.find("CPUSerialNumber"));
  EXPECT_NE(std::string::npos, outcome.error.find("IPXAddress"));
  EXPECT_EQ(0, run_tool({"get", "IPXAddress"}).status);
}

TEST(Tool, TimingGoesToStandardErrorOrIntoTheDocument) {
  const Outcome table = run_tool({"--timing"});
  EXPECT_EQ(0, table.status);
  const std::vector<std::string> lines = lines_of(table.error);
  const std::vector<std::string> names = {"network", "cpu", "memory", "disk",
                                          "misc",    "os",  "total"};
  ASSERT_EQ(names.size(), lines.size()) << table.error;
  for (size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(0U, lines[i].find(names[i] + " "));
    EXPECT_EQ(lines[i].size() - 3, lines[i].rfind(" ms"));
  }
  const Outcome document = run_tool({"--timing", "--json"});
  EXPECT_EQ("", document.error);
  const json timings = json::parse(document.out)["Timing_in_ms"];
  EXPECT_EQ(names.size(), timings.size());
  double sum = 0;
  for (const std::string& name : names) {
    ASSERT_TRUE(timings.contains(name)) << name;
    if (name != "total") sum += timings[name].get<double>();
  }
  EXPECT_LE(sum, timings["total"].get<double>() + 0.01);  // each is rounded
  const Outcome get = run_tool({"get", "OSType", "--json", "--timing"});
  EXPECT_EQ(1U, json::parse(get.out).size());
  EXPECT_EQ(0U, get.error.find("OSType "));
}

TEST(Tool, BothNameKeysShareOneLookUp) {
  const Outcome outcome = run_tool({"get", "DomainName", "IPHostName", "--timing"});
  ASSERT_EQ(1U, lines_of(outcome.error).size()) << outcome.error;
  EXPECT_EQ(0U, outcome.error.find("network "));
  EXPECT_EQ(2U, lines_of(outcome.out).size());
}

TEST(Tool, UsageErrorsExitWithTwo) {
  const Outcome outcome = run_tool({"get"});
  EXPECT_EQ(2, outcome.status);
  EXPECT_EQ("", outcome.out);
  EXPECT_EQ("orbprops: get needs a key; \"orbprops keys\" lists them\nTry \"orbprops --help\".\n",
            outcome.error);
  EXPECT_EQ(2, run_tool({"--frobnicate"}).status);
  EXPECT_EQ(2, run_tool({"frobnicate"}).status);
}

TEST(Tool, EveryCommandRefusesWhatItDoesNotTake) {
  for (const char* command : {"report", "keys", "filesystems", "interfaces", "users"}) {
    for (const char* word : {"Humidity", "--Humidity", "-H", "--json=yes", ""}) {
      const Outcome outcome = run_tool({command, word});
      EXPECT_EQ(2, outcome.status) << command << word;
      EXPECT_EQ("", outcome.out);
      EXPECT_EQ(0U, outcome.error.find("orbprops: ")) << outcome.error;
      EXPECT_EQ(2U, lines_of(outcome.error).size());
    }
  }
  for (const char* word : {"--Humidity", "-H", "--json=yes"}) {
    EXPECT_EQ(2, run_tool({"get", "OSType", word}).status) << word;
  }
}

TEST(Tool, HelpAndVersionGoToStandardOutput) {
  Outcome outcome = run_tool({"--version"});
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ("orbprops " ORB_VERSION "\n", outcome.out);
  outcome = run_tool({"--help"});
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ(0U, outcome.out.find("Usage: orbprops "));
  EXPECT_EQ("", outcome.error);
}

TEST(Tool, TimeZoneIsTheEnvironments) {
  orbtest::Launch launch;
  launch.arguments = {"get", "TimeZone"};
  launch.environment = {{"TZ", "ABC3"}};
  EXPECT_EQ("ABC\n", orbtest::run(launch).out);
}

TEST(Tool, LanguageIsTheEnvironments) {
  orbtest::Launch launch;
  launch.arguments = {"get", "DefaultLangID"};
  launch.environment = {{"LANG", "ja_JP.UTF-8"}};
  EXPECT_EQ("0411\n", orbtest::run(launch).out);
}

TEST(Tool, HostileEnvironmentIsHarmless) {
  for (const std::string& value : {std::string("\xff\xfe\x1b[31m"), std::string(100000, 'A'),
                                   std::string("../../../etc/passwd"), std::string("%s%n%s%n"),
                                   std::string("C.UTF-8/../../x")}) {
    orbtest::Launch launch;
    launch.arguments = {"--json"};
    for (const char* name : {"LANG", "LC_ALL", "COLUMNS", "TERM", "NO_COLOR"}) {
      launch.environment[name] = value;
    }
    const Outcome outcome = orbtest::run(launch);
    EXPECT_EQ(0, outcome.status) << outcome.error;
    EXPECT_EQ("0409", json::parse(outcome.out)["SystemInfo"]["DefaultLangID"]);
  }
}

}  // namespace
