// tests/platform/linux_text_test.cpp: platform/linux_text.h on texts whole, cut and hostile.
#include "platform/linux_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace quillon_com::orb::platform;
using namespace std::string_literals;

struct CountCase {
  const char* name;
  std::string text;
  std::optional<uint64_t> count;
};

class DecimalCount : public testing::TestWithParam<CountCase> {};

TEST_P(DecimalCount, ReadsDigitsAlone) {
  EXPECT_EQ(GetParam().count, decimal_count(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, DecimalCount,
    testing::Values(CountCase{"Empty", "", std::nullopt}, CountCase{"Blanks", " \n", std::nullopt},
                    CountCase{"Zero", "0", 0}, CountCase{"LineEndIsIgnored", "42\n", 42},
                    CountCase{"BlanksAreIgnored", " \t7 ", 7},
                    CountCase{"LargestFits", "18446744073709551615", UINT64_MAX},
                    CountCase{"OneMoreDoesNot", "18446744073709551616", std::nullopt},
                    CountCase{"TwentyOneDigits", "100000000000000000000", std::nullopt},
                    CountCase{"SignIsNone", "-1", std::nullopt},
                    CountCase{"TextBehind", "12 kB", std::nullopt},
                    CountCase{"ZeroByte", "12\0"s, std::nullopt}),
    [](const auto& row) { return row.param.name; });

TEST(Lines, AreTakenWithoutTheirEnd) {
  std::string_view rest = "a\n\nb";
  EXPECT_EQ("a", take_line(&rest));
  EXPECT_EQ("", take_line(&rest));
  EXPECT_EQ("b", take_line(&rest));
  EXPECT_EQ("", rest);
}

TEST(FirstLine, EndsAtTheLineEndOrTheFirstZeroByte) {
  EXPECT_EQ("12.5", first_line("12.5\nmore\n"));
  EXPECT_EQ("Raspberry Pi 4", first_line("Raspberry Pi 4\0rest"s));
  EXPECT_EQ("trixie/sid", first_line("  trixie/sid \r\n"));
  EXPECT_EQ("", first_line("\nsecond"));
  EXPECT_EQ("", first_line(""));
}

TEST(KernelName, NoneInParenthesesIsEmpty) {
  EXPECT_EQ("", name_unless_none("(none)"));
  EXPECT_EQ("corp.example", name_unless_none("corp.example"));
  EXPECT_EQ("none", name_unless_none("none"));
  EXPECT_EQ("", name_unless_none(""));
}

TEST(BootSeconds, OfTheFirstLineThatStatesThem) {
  const std::string processors = "cpu  1 2 3\ncpu0 1 2 3\nintr 5 0 0\nctxt 7\n";
  EXPECT_EQ(1795235419u, boot_seconds(processors + "btime 1795235419\nprocesses 9\n"));
  EXPECT_EQ(5u, boot_seconds("btime 5"));
  EXPECT_EQ(0u, boot_seconds("btime 0\nbtime 5\n"));
  EXPECT_EQ(std::nullopt, boot_seconds(processors));
  EXPECT_EQ(std::nullopt, boot_seconds(""));
  EXPECT_EQ(std::nullopt, boot_seconds("btime\n"));
  EXPECT_EQ(std::nullopt, boot_seconds("btime x\n"));
  EXPECT_EQ(std::nullopt, boot_seconds("btimes 5\nxbtime 5\n"));
}

struct MemoryCase {
  const char* name;
  std::string table;
  std::optional<uint64_t> kilobytes;
};

class MemoryTable : public testing::TestWithParam<MemoryCase> {};

TEST_P(MemoryTable, GivesMemFree) {
  EXPECT_EQ(GetParam().kilobytes, memory_kilobytes(GetParam().table, "MemFree"));
}

INSTANTIATE_TEST_SUITE_P(
    Tables, MemoryTable,
    testing::Values(
        MemoryCase{"Usual", "MemTotal:  16 kB\nMemFree:         1234 kB\nMemAvailable: 9 kB\n",
                   1234},
        MemoryCase{"Empty", "", std::nullopt},
        MemoryCase{"NotStated", "MemTotal: 16 kB\n", std::nullopt},
        MemoryCase{"LongerNameIsAnother", "MemFreeBeyond: 5 kB\nMemFree: 6 kB\n", 6},
        MemoryCase{"NameInsideALineIsNone", "x MemFree: 5 kB\n", std::nullopt},
        MemoryCase{"FirstLineCounts", "MemFree: 5 kB\nMemFree: 6 kB\n", 5},
        MemoryCase{"WithoutUnit", "MemFree: 5\n", 5},
        MemoryCase{"CutInTheNumber", "MemFree:    12", 12},
        MemoryCase{"CutBeforeTheNumber", "MemFree:", std::nullopt},
        MemoryCase{"CutBehindTheName", "MemFree", std::nullopt},
        MemoryCase{"CutInTheUnit", "MemFree: 12 k", std::nullopt},
        MemoryCase{"OtherUnit", "MemFree: 12 MB\n", std::nullopt},
        MemoryCase{"Negative", "MemFree: -12 kB\n", std::nullopt},
        MemoryCase{"BytesFit64Bits", "MemFree: 18014398509481983 kB\n", 18014398509481983},
        MemoryCase{"BytesPass64Bits", "MemFree: 18014398509481984 kB\n", std::nullopt},
        MemoryCase{"ZeroBytes", "MemFree:\0 12 kB\n"s, std::nullopt}),
    [](const auto& row) { return row.param.name; });

struct ProcessorListCase {
  const char* name;
  const char* list;
  std::optional<int> count;
};

class ProcessorList : public testing::TestWithParam<ProcessorListCase> {};

TEST_P(ProcessorList, IsCounted) {
  EXPECT_EQ(GetParam().count, listed_processors(GetParam().list));
}

INSTANTIATE_TEST_SUITE_P(
    Lists, ProcessorList,
    testing::Values(ProcessorListCase{"One", "0\n", 1}, ProcessorListCase{"Range", "0-255\n", 256},
                    ProcessorListCase{"Ranges", "0-3,8,10-11\n", 7},
                    ProcessorListCase{"Empty", "", std::nullopt},
                    ProcessorListCase{"LineEndAlone", "\n", std::nullopt},
                    ProcessorListCase{"CutAfterAComma", "0-3,", std::nullopt},
                    ProcessorListCase{"CutAfterADash", "0-", std::nullopt},
                    ProcessorListCase{"Backwards", "3-0", std::nullopt},
                    ProcessorListCase{"NoNumber", "a-b", std::nullopt},
                    ProcessorListCase{"MostThatFits", "1-2147483647", 2147483647},
                    ProcessorListCase{"OneRangeTooWide", "0-2147483647", std::nullopt},
                    ProcessorListCase{"SumTooLarge", "1-2147483647,0", std::nullopt},
                    ProcessorListCase{"AllOf64Bits", "0-18446744073709551615", std::nullopt}),
    [](const auto& row) { return row.param.name; });

struct SettingCase {
  const char* name;
  std::string text;
  std::optional<std::string> value;  // of NAME
};

class Settings : public testing::TestWithParam<SettingCase> {};

TEST_P(Settings, GiveTheValueOfName) {
  const auto settings = settings_of(GetParam().text);
  const auto found = settings.find("NAME");
  EXPECT_EQ(GetParam().value,
            found == settings.end() ? std::nullopt : std::optional<std::string>(found->second));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Settings,
    testing::Values(SettingCase{"Plain", "NAME=Fedora\n", "Fedora"},
                    SettingCase{"DoubleQuotes", "NAME=\"Debian GNU/Linux\"\n", "Debian GNU/Linux"},
                    SettingCase{"SingleQuotes", "NAME='Arch Linux'\n", "Arch Linux"},
                    SettingCase{"EscapesInDoubleQuotes", R"(NAME="a\"b\$c\`d\\e")", "a\"b$c`d\\e"},
                    SettingCase{"OtherBackslashStaysInDoubleQuotes", R"(NAME="a\nb")", "a\\nb"},
                    SettingCase{"NoEscapeInSingleQuotes", R"(NAME='a\"b')", "a\\\"b"},
                    SettingCase{"EscapeWithoutQuotes", R"(NAME=a\ b)", "a b"},
                    SettingCase{"ValueEndsAtABlank", "NAME=a b\n", "a"},
                    SettingCase{"DoubleQuoteInSingleQuotes", "NAME='a\"b'\n", "a\"b"},
                    SettingCase{"Comment", "#NAME=no\nNAME=yes\n", "yes"},
                    SettingCase{"CommentBehindBlanks", "NAME=yes\n  # NAME=no\n", "yes"},
                    SettingCase{"LaterLineWins", "NAME=a\nNAME=b\n", "b"},
                    SettingCase{"LaterEmptyLineWins", "NAME=a\nNAME=\n", ""},
                    SettingCase{"BlanksInFront", "   NAME=a\n", "a"},
                    SettingCase{"CarriageReturn", "NAME=\"a\"\r\n", "a"},
                    SettingCase{"WithoutLineEnd", "NAME=a", "a"},
                    SettingCase{"EqualsSignInTheValue", "NAME=a=b\n", "a=b"},
                    SettingCase{"BlankBeforeTheSignIsNoName", "NAME =a\n", std::nullopt},
                    SettingCase{"DigitFirstIsNoName", "1NAME=a\n", std::nullopt},
                    SettingCase{"LowerCaseIsAnotherName", "name=a\nNAME=b\n", "b"},
                    SettingCase{"DigitsWithinAName", "NAME2=a\nNAME=b\n", "b"},
                    SettingCase{"SignWithinAName", "na{me=a\nNAME=b\n", "b"},
                    SettingCase{"OtherNames", "NAMES=a\nTHE_NAME=b\n", std::nullopt},
                    SettingCase{"NoSign", "NAME\n", std::nullopt},
                    SettingCase{"Empty", "", std::nullopt},
                    SettingCase{"OpenQuoteEndsWithItsLine", "NAME=\"a b\nID=c\n", "a b"},
                    SettingCase{"BackslashAtTheEnd", "NAME=a\\", "a\\"},
                    SettingCase{"ZeroByteIsKept", "NAME=a\0b\n"s, "a\0b"s},
                    SettingCase{"Utf8", "NAME=\"\xC3\x9Cnix\"\n", "\xC3\x9Cnix"}),
    [](const auto& row) { return row.param.name; });

TEST(ReleaseFile, WordsBeforeRelease) {
  EXPECT_EQ("Red Hat Enterprise Linux",
            words_before_release("Red Hat Enterprise Linux release 8.4 (Ootpa)\n"));
  EXPECT_EQ("CentOS Linux", words_before_release("CentOS Linux release 7.9.2009 (Core)"));
  EXPECT_EQ("", words_before_release("Rocky Linux\nx release 9\n"));
  EXPECT_EQ("", words_before_release("no releases here"));
  EXPECT_EQ("", words_before_release(""));
}

struct SessionCase {
  const char* name;
  const char* text;
  std::optional<SessionEntry> entry;
};

class SessionFile : public testing::TestWithParam<SessionCase> {};

TEST_P(SessionFile, IsAnEntry) {
  const auto entry = session_of("c2", GetParam().text);
  ASSERT_EQ(GetParam().entry.has_value(), entry.has_value());
  if (!entry) return;
  EXPECT_EQ(7, entry->type);
  EXPECT_EQ("c2", entry->id);
  EXPECT_EQ(GetParam().entry->user, entry->user);
  EXPECT_EQ(GetParam().entry->line, entry->line);
}

INSTANTIATE_TEST_SUITE_P(
    Files, SessionFile,
    testing::Values(
        SessionCase{"User",
                    "# This is private data.\nUID=1000\nUSER=ada\nACTIVE=1\nSTATE=active\n"
                    "CLASS=user\nTTY=tty2\n",
                    SessionEntry{7, "c2", "ada", "tty2"}},
        SessionCase{"WithoutTerminal", "USER=ada\nSTATE=online\nCLASS=user\n",
                    SessionEntry{7, "c2", "ada", ""}},
        SessionCase{"UserEarly", "USER=root\nCLASS=user-early\nSTATE=active\n",
                    SessionEntry{7, "c2", "root", ""}},
        SessionCase{"StateNotStated", "USER=ada\nCLASS=user\n", SessionEntry{7, "c2", "ada", ""}},
        SessionCase{"Closing", "USER=ada\nSTATE=closing\nCLASS=user\n", std::nullopt},
        SessionCase{"Greeter", "USER=gdm\nSTATE=active\nCLASS=greeter\n", std::nullopt},
        SessionCase{"Manager", "USER=ada\nSTATE=active\nCLASS=manager\n", std::nullopt},
        SessionCase{"Background", "USER=ada\nSTATE=active\nCLASS=background\n", std::nullopt},
        SessionCase{"LongerWordIsAnotherClass", "USER=ada\nCLASS=users\n", std::nullopt},
        SessionCase{"ClassNotStated", "USER=ada\nSTATE=active\n", std::nullopt},
        SessionCase{"Empty", "", std::nullopt}),
    [](const auto& row) { return row.param.name; });

TEST(HugeText, EveryParserEnds) {
  for (const std::string& part : {"\0"s, "x"s, "\n"s, "NAME=\"\\"s, "MemFree:\n"s, "0-1,"s}) {
    std::string text;
    while (text.size() < 1 << 20) text += part;
    EXPECT_EQ(std::nullopt, memory_kilobytes(text, "MemFree"));
    EXPECT_EQ(std::nullopt, listed_processors(text));
    EXPECT_EQ(std::nullopt, decimal_count(text));
    EXPECT_EQ(std::nullopt, session_of("1", text));
    EXPECT_LE(settings_of(text).size(), 1u);
    EXPECT_EQ("", words_before_release(text));
    EXPECT_LE(first_line(text).size(), text.size());
  }
}

}  // namespace
