// tests/tools/tool_terminal_test.cpp: the built tool on pseudo-terminals.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "tests/tools/run_tool.h"

namespace {

using orbtest::Launch;
using orbtest::lines_of;
using orbtest::Outcome;

Launch on_terminal(unsigned short columns, const std::vector<std::string>& arguments) {
  Launch launch;
  launch.window = columns;
  launch.arguments = arguments;
  launch.environment = {{"TERM", "xterm"}, {"LC_ALL", "C.UTF-8"}};
  return launch;
}

// `line` without the sequences that switch renditions.
std::string plain(const std::string& line) {
  std::string out;
  for (size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '\x1b') {
      i = line.find('m', i);
      if (i == std::string::npos) break;
    } else {
      out += line[i];
    }
  }
  return out;
}

// Columns of UTF-8 text of single-width characters.
size_t columns_of(const std::string& line) {
  return static_cast<size_t>(std::count_if(line.begin(), line.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
  }));
}

TEST(OnTerminal, ColoursAndBars) {
  const Outcome outcome = orbtest::run(on_terminal(100, {}));
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ(0U, outcome.out.find("\x1b[1mOperating system\x1b[0m\n"));
  EXPECT_NE(std::string::npos, outcome.out.find("\u2591"));
}

TEST(OnTerminal, NoColorSwitchesColoursOffButNotBars) {
  Launch launch = on_terminal(100, {});
  launch.environment["NO_COLOR"] = "1";
  const Outcome outcome = orbtest::run(launch);
  EXPECT_EQ(std::string::npos, outcome.out.find('\x1b'));
  EXPECT_NE(std::string::npos, outcome.out.find("\u2591"));
}

TEST(OnTerminal, DumbOneGetsNoColours) {
  Launch launch = on_terminal(100, {});
  launch.environment["TERM"] = "dumb";
  EXPECT_EQ(std::string::npos, orbtest::run(launch).out.find('\x1b'));
}

TEST(OnTerminal, OutsideUtf8BarsAreAscii) {
  Launch launch = on_terminal(100, {"filesystems"});
  launch.environment["LC_ALL"] = "C";
  const Outcome outcome = orbtest::run(launch);
  EXPECT_TRUE(std::all_of(outcome.out.begin(), outcome.out.end(),
                          [](char byte) { return static_cast<unsigned char>(byte) < 0x80; }));
  EXPECT_NE(std::string::npos, plain(outcome.out).find("-]"));
}

TEST(OnTerminal, LinesFollowTheWindow) {
  for (const char* command : {"report", "filesystems", "keys"}) {
    for (unsigned short columns : std::array<unsigned short, 6>{20, 24, 40, 80, 132, 250}) {
      for (const std::string& line : lines_of(orbtest::run(on_terminal(columns, {command})).out)) {
        EXPECT_LE(columns_of(plain(line)), columns) << command << ": " << line;
      }
    }
  }
}

TEST(OnTerminal, ColumnsVariableStandsForTheWindow) {
  Launch launch = on_terminal(250, {"report"});
  launch.environment["COLUMNS"] = "40";
  for (const std::string& line : lines_of(orbtest::run(launch).out)) {
    EXPECT_LE(columns_of(plain(line)), 40U) << line;
  }
}

TEST(OnTerminal, TinyWindowIsLaidOutForTwentyColumns) {
  const std::vector<std::string> lines = lines_of(orbtest::run(on_terminal(1, {"keys"})).out);
  ASSERT_LT(30U, lines.size());  // a key a line, and what it means below
  for (const std::string& line : lines) EXPECT_LE(columns_of(plain(line)), 20U) << line;
}

TEST(OnTerminal, KeysAreExplained) {
  const Outcome outcome = orbtest::run(on_terminal(80, {"keys"}));
  EXPECT_EQ(0U, plain(outcome.out).find("OSType               name of the operating system\n"));
}

TEST(OnTerminal, GetStaysAlone) {
  EXPECT_EQ("N/A\n", orbtest::run(on_terminal(80, {"get", "IPXAddress"})).out);
}

TEST(OnTerminal, JsonIsTheSameDocument) {
  const Outcome outcome = orbtest::run(on_terminal(20, {"get", "IPXAddress", "--json"}));
  EXPECT_EQ("{\n  \"IPXAddress\": \"N/A\"\n}\n", outcome.out);
}

TEST(InAPipe, NoColoursWhateverTheEnvironment) {
  Launch launch;
  launch.environment = {{"TERM", "xterm"}, {"COLUMNS", "20"}, {"LC_ALL", "C.UTF-8"}};
  const Outcome outcome = orbtest::run(launch);
  EXPECT_EQ(std::string::npos, outcome.out.find('\x1b'));
  EXPECT_EQ(std::string::npos, outcome.out.find("\u2591"));
  EXPECT_NE(std::string::npos, outcome.out.find("  NumberOfFileSystems  "));
}

}  // namespace
