// tests/tools/tool_hostile_test.cpp: names of a host and of interfaces that attack a terminal.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/tools/run_tool.h"

namespace {

using orbtest::Launch;
using orbtest::Outcome;

// A host of its own, without a network, that bears `name`.
Launch on_host(const std::string& name, const std::vector<std::string>& arguments) {
  Launch launch;
  launch.program = "unshare";
  launch.arguments = {
      "-un",        "sh",
      "-c",         "printf %s \"$1\" >/proc/sys/kernel/hostname || exit 99; shift; exec \"$@\"",
      "sh",         name,
      ORBPROPS_TOOL};
  launch.arguments.insert(launch.arguments.end(), arguments.begin(), arguments.end());
  launch.environment = {{"LC_ALL", "C.UTF-8"}, {"TERM", "xterm"}, {"NO_COLOR", "1"}};
  return launch;
}

struct HostCase {
  const char* name;
  std::string host;
  std::string shown;    // by a terminal in UTF-8
  std::string decoded;  // from the JSON document
};

class HostileHost : public testing::TestWithParam<HostCase> {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "needs root for a host name";
    if (!orbtest::has_command("unshare")) GTEST_SKIP() << "needs unshare";
    if (orbtest::run(on_host("pc", {"--version"})).status != 0) GTEST_SKIP() << "not allowed here";
  }
};

bool is_control(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  return (code < 0x20 && byte != '\n') || code == 0x7f;
}

TEST_P(HostileHost, NameIsShownNotObeyed) {
  for (const char* command : {"report", "get"}) {
    Launch launch = on_host(GetParam().host, {command});
    if (launch.arguments.back() == "get") launch.arguments.emplace_back("ComputerName");
    launch.window = 80;
    const Outcome outcome = orbtest::run(launch);
    EXPECT_EQ(0, outcome.status) << outcome.error;
    EXPECT_NE(std::string::npos, outcome.out.find(GetParam().shown + "\n")) << outcome.out;
    EXPECT_TRUE(std::none_of(outcome.out.begin(), outcome.out.end(), is_control));
    EXPECT_EQ(std::string::npos, outcome.out.find("\xc2\x9b"));
  }
}

TEST_P(HostileHost, NameIsWholeInJson) {
  const Outcome outcome = orbtest::run(on_host(GetParam().host, {"--json"}));
  EXPECT_EQ(0, outcome.status) << outcome.error;
  EXPECT_TRUE(std::none_of(outcome.out.begin(), outcome.out.end(), is_control));
  EXPECT_EQ(GetParam().decoded,
            nlohmann::json::parse(outcome.out)["SystemInfo"]["ComputerName"].get<std::string>());
}

INSTANTIATE_TEST_SUITE_P(
    Names, HostileHost,
    testing::Values(HostCase{"EscapeSequences", "\x1b[2J\x1b]0;x\x07pc", "\\x1b[2J\\x1b]0;x\\x07pc",
                             "\x1b[2J\x1b]0;x\x07pc"},
                    HostCase{"Tab", "pc\tOSType", "pc\\x09OSType", "pc\tOSType"},
                    HostCase{"EightBitControl",
                             "\xc2\x9b"
                             "2Jpc",
                             "\\u009b2Jpc",
                             "\xc2\x9b"
                             "2Jpc"},
                    HostCase{"DirectionOverride", "\u202epc", "\\u202epc", "\u202epc"},
                    HostCase{"WideCharacters", "\u65e5\u672c", "\u65e5\u672c", "\u65e5\u672c"},
                    HostCase{"CombiningMark", "e\u0301", "e\u0301", "e\u0301"},
                    HostCase{"EndsAtWhatIsNoUtf8", "pc\xff\x1b[2J", "pc", "pc"}),
    [](const auto& row) { return row.param.name; });

// A network name space of its own with one interface whose name a terminal would obey.
class HostileInterface : public testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "needs root for a network name space";
    if (!orbtest::has_command("unshare") || !orbtest::has_command("ip")) {
      GTEST_SKIP() << "needs unshare and ip";
    }
    launch_.program = "unshare";
    launch_.arguments = {"-n",
                         "sh",
                         "-c",
                         "ip link add \"$1\" type veth peer name other && ip link set other up && "
                         "ip link set \"$1\" up && ip addr add 10.9.8.7/24 dev \"$1\" || exit 99; "
                         "shift; exec \"$@\"",
                         "sh",
                         "\x1b[2Jx\xe9y",
                         ORBPROPS_TOOL};
    launch_.environment = {{"LC_ALL", "C.UTF-8"}, {"TERM", "xterm"}};
  }
  Outcome run_with(const std::vector<std::string>& arguments) {
    Launch launch = launch_;
    launch.arguments.insert(launch.arguments.end(), arguments.begin(), arguments.end());
    return orbtest::run(launch);
  }
  Launch launch_;
};

TEST_F(HostileInterface, NameIsEscapedInTheTable) {
  launch_.window = 200;
  const Outcome outcome = run_with({"interfaces"});
  if (outcome.status == 99) GTEST_SKIP() << "cannot make interfaces here: " << outcome.error;
  EXPECT_EQ(0, outcome.status) << outcome.error;
  EXPECT_EQ(std::string::npos, outcome.out.find("\x1b[2J"));
  EXPECT_NE(std::string::npos, outcome.out.find("  \\x1b[2Jx\\xe9y  ")) << outcome.out;
}

TEST_F(HostileInterface, NameIsRepairedInJson) {
  const Outcome outcome = run_with({"interfaces", "--json"});
  if (outcome.status == 99) GTEST_SKIP() << "cannot make interfaces here: " << outcome.error;
  EXPECT_EQ(0, outcome.status) << outcome.error;
  EXPECT_EQ(std::string::npos, outcome.out.find('\x1b'));
  const auto interfaces = nlohmann::json::parse(outcome.out)["Interfaces"];
  ASSERT_GE(interfaces.size(), 1U);
  bool found = false;
  for (const auto& entry : interfaces) found = found || entry["Name"] == "\x1b[2Jx\xef\xbf\xbdy";
  EXPECT_TRUE(found) << outcome.out;
}

TEST_F(HostileInterface, StrictTellsThatThereIsNone) {
  launch_.arguments = {"-n", ORBPROPS_TOOL, "--strict", "interfaces"};
  const Outcome outcome = run_with({});
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("", outcome.out);
  EXPECT_EQ("orbprops: not answered: interfaces\n", outcome.error);
}

}  // namespace
