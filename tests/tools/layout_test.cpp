// tests/tools/layout_test.cpp: tools/orbprops/layout.h on a made-up machine.
#include "tools/orbprops/layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tools/orbprops/properties.h"

namespace {

using orbprops::Answer;
using orbprops::Style;

Style window(size_t columns) {
  Style style;
  style.terminal = true;
  style.columns = columns;
  style.charset = orbprops::Charset::ascii;
  return style;
}

Answer machine() {
  Answer answer;
  answer.properties.emplace();
  for (const auto& info : orbprops::kProperties) answer.properties->push_back({info.key, L"v"});
  answer.file_systems = {{L"/", L"400.00", L"300.00"}, {L"/caf\u00e9", L"4000.00", L"0.00"}};
  return answer;
}

TEST(Report, GroupsKeysUnderHeadings) {
  const std::string text = orbprops::report_text(machine(), Style());
  EXPECT_EQ(0U, text.find("Operating system\n  OSType               v\n"));
  EXPECT_NE(std::string::npos, text.find("  PlatformID           v\n\nProcessor and memory\n"));
  EXPECT_NE(std::string::npos, text.find("\n\nNetwork\n  ComputerName         v\n"));
  EXPECT_NE(std::string::npos, text.find("\n\nUser and locale\n  UserName             v\n"));
  EXPECT_NE(std::string::npos, text.find("\n\nDisks\n  NumberOfFileSystems  v\n"));
  EXPECT_NE(std::string::npos, text.find("\n\nFile systems\n"
                                         "  MOUNT POINT  TOTAL MB  FREE MB  USED\n"
                                         "  /              400.00   300.00   25%\n"
                                         "  /caf\u00e9         4000.00     0.00  100%\n"));
}

TEST(Report, EndsBehindTheDisksWithoutFileSystems) {
  Answer answer = machine();
  answer.file_systems->clear();
  const std::string text = orbprops::report_text(answer, Style());
  const std::string end = "  FreeDiskSpace        v\n";
  ASSERT_LT(end.size(), text.size());
  EXPECT_EQ(end, text.substr(text.size() - end.size()));
}

TEST(Report, NoLineIsWiderThanTheWindow) {
  Answer answer = machine();
  (*answer.properties)[0].value = std::wstring(300, L'x');
  for (size_t columns : {20U, 21U, 24U, 33U, 60U, 80U, 200U}) {
    std::istringstream lines(orbprops::report_text(answer, window(columns)));
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), columns) << line;
  }
}

TEST(Report, WithoutAWindowEveryPropertyIsOneLine) {
  Answer answer = machine();
  (*answer.properties)[0].value = std::wstring(300, L'x') + L"\nFake  line";
  const std::string text = orbprops::report_text(answer, Style());
  EXPECT_NE(std::string::npos,
            text.find("  OSType               " + std::string(300, 'x') + "\\x0aFake  line\n"));
}

TEST(Report, UnansweredValuesAreFaintInColour) {
  Answer answer = machine();
  (*answer.properties)[0].value = L"N/A";
  Style style = window(80);
  style.colour = true;
  const std::string text = orbprops::report_text(answer, style);
  EXPECT_NE(std::string::npos, text.find("\x1b[2mN/A\x1b[0m\n"));
  EXPECT_EQ(0U, text.find("\x1b[1mOperating system\x1b[0m\n"));
}

TEST(Values, OneIsAlone) {
  EXPECT_EQ("Linux\n", orbprops::values_text({{"OSType", L"Linux"}}, Style()));
  EXPECT_EQ("\n", orbprops::values_text({{"OSType", L""}}, Style()));
}

TEST(Values, SeveralStandBehindTheirKeys) {
  EXPECT_EQ("OSType Linux\nCPUType a b\n",
            orbprops::values_text({{"OSType", L"Linux"}, {"CPUType", L"a b"}}, window(20)));
}

TEST(Values, LineEndsInAValueAreEscaped) {
  EXPECT_EQ("a\\x0ab\n", orbprops::values_text({{"OSType", L"a\nb"}}, Style()));
}

TEST(Keys, AreBareElsewhereAndExplainedOnATerminal) {
  const std::string bare = orbprops::keys_text(Style());
  EXPECT_EQ(0U, bare.find("OSType\nOSVersion\n"));
  EXPECT_EQ(30, std::count(bare.begin(), bare.end(), '\n'));
  EXPECT_EQ(
      0U,
      orbprops::keys_text(window(80)).find("OSType               name of the operating system\n"));
}

TEST(FileSystems, BarTakesTheRestOfTheWindow) {
  const std::vector<orbprops::FileSystem> volumes = {{L"/", L"400.00", L"300.00"}};
  EXPECT_EQ(  // 11 + 8 + 7 + 4 columns, three gaps of two, and a gap before the bar: 38
      "MOUNT POINT  TOTAL MB  FREE MB  USED\n"
      "/              400.00   300.00   25%  [##------]\n",
      orbprops::file_systems_text(volumes, 0, window(48)));
  EXPECT_EQ(
      "MOUNT POINT  TOTAL MB  FREE MB  USED\n"
      "/              400.00   300.00   25%\n",
      orbprops::file_systems_text(volumes, 0, window(45)));
  EXPECT_NE(std::string::npos, orbprops::file_systems_text(volumes, 0, window(500))
                                   .find("[########" + std::string(22, '-') + "]\n"));
}

TEST(FileSystems, SizeThatIsNoNumberHasNoBar) {
  EXPECT_EQ(
      "MOUNT POINT  TOTAL MB  FREE MB  USED\n"
      "/                 N/A      N/A     -\n",
      orbprops::file_systems_text({{L"/", L"N/A", L"N/A"}}, 0, window(80)));
}

TEST(FileSystems, NoneIsNothing) { EXPECT_EQ("", orbprops::file_systems_text({}, 0, Style())); }

TEST(Interfaces, RepeatTheirNameForEachAddress) {
  const std::vector<orbprops::Interface> interfaces = {
      {2,
       "eth0",
       "001c42a1b2c3",
       {{"10.0.0.5", "255.0.0.0", "10.0.0.0"}, {"fe80:0:0:0:0:0:0:1", "ffff:0", "fe80:0"}}},
      {12, "w\xff", "001c42a1b2c4", {{"10.1.0.5", "255.255.0.0", "10.1.0.0"}}}};
  EXPECT_EQ(
      "INDEX  NAME   HARDWARE      ADDRESS             MASK         SUBNET\n"
      "    2  eth0   001c42a1b2c3  10.0.0.5            255.0.0.0    10.0.0.0\n"
      "    2  eth0   001c42a1b2c3  fe80:0:0:0:0:0:0:1  ffff:0       fe80:0\n"
      "   12  w\\xff  001c42a1b2c4  10.1.0.5            255.255.0.0  10.1.0.0\n",
      orbprops::interfaces_text(interfaces, Style()));
  EXPECT_EQ("", orbprops::interfaces_text({}, Style()));
}

TEST(Interfaces, AreStackedInANarrowWindow) {
  EXPECT_EQ(
      "INDEX     2\n"
      "NAME      eth0\n"
      "HARDWARE  001c42a1b2c3\n"
      "ADDRESS   10.0.0.5\n"
      "MASK      255.0.0.0\n"
      "SUBNET    10.0.0.0\n",
      orbprops::interfaces_text(
          {{2, "eth0", "001c42a1b2c3", {{"10.0.0.5", "255.0.0.0", "10.0.0.0"}}}}, window(40)));
}

TEST(Users, NetworkOnesComeFirst) {
  EXPECT_EQ("network  corp\\jdoe\nlocal    ann\nlocal    \\x1b[31m\n",
            orbprops::users_text({{"corp\\jdoe"}, {"ann", "\x1b[31m"}}, Style()));
  EXPECT_EQ("", orbprops::users_text({}, Style()));
}

TEST(Timings, AreAligned) {
  EXPECT_EQ("network     0.412 ms\nos       1234.500 ms\n",
            orbprops::timings_text({{"network", 0.4119}, {"os", 1234.5}}));
}

}  // namespace
