// tests/tools/arguments_test.cpp: tools/orbprops/arguments.h on right and wrong command lines.
#include "tools/orbprops/arguments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace {

using orbprops::Command;
using orbprops::Options;

std::optional<Options> parse(const std::vector<std::string>& arguments, std::string& error) {
  std::vector<const char*> words = {"orbprops"};
  for (const std::string& argument : arguments) words.push_back(argument.c_str());
  words.push_back(nullptr);
  return orbprops::parse_arguments(static_cast<int>(words.size()) - 1, words.data(), error);
}

struct CommandCase {
  const char* name;
  std::vector<std::string> arguments;
  Command command;
};

class Commands : public testing::TestWithParam<CommandCase> {};

TEST_P(Commands, AreUnderstood) {
  std::string error;
  const auto options = parse(GetParam().arguments, error);
  ASSERT_TRUE(options) << error;
  EXPECT_EQ(GetParam().command, options->command);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, Commands,
    testing::Values(CommandCase{"NothingIsReport", {}, Command::report},
                    CommandCase{"Report", {"report"}, Command::report},
                    CommandCase{"Get", {"get", "OSType"}, Command::get},
                    CommandCase{"Keys", {"keys"}, Command::keys},
                    CommandCase{"Filesystems", {"filesystems"}, Command::filesystems},
                    CommandCase{"Interfaces", {"interfaces"}, Command::interfaces},
                    CommandCase{"Users", {"users"}, Command::users},
                    CommandCase{"LongHelp", {"--help"}, Command::help},
                    CommandCase{"ShortHelp", {"-h"}, Command::help},
                    CommandCase{"HelpOfACommand", {"get", "--help"}, Command::help},
                    CommandCase{"HelpBeforeAnythingWrong", {"--help", "--nonsense"}, Command::help},
                    CommandCase{"LongVersion", {"--version"}, Command::version},
                    CommandCase{"ShortVersion", {"-V"}, Command::version}),
    [](const auto& row) { return row.param.name; });

struct FlagCase {
  const char* name;
  const char *long_name, *short_name;
  bool Options::*flag;
};

class Flags : public testing::TestWithParam<FlagCase> {};

TEST_P(Flags, StandBeforeAndBehindTheCommand) {
  for (const char* flag : {GetParam().long_name, GetParam().short_name}) {
    for (const std::vector<std::string>& line :
         {std::vector<std::string>{flag, "interfaces"}, {"interfaces", flag}}) {
      std::string error;
      const auto options = parse(line, error);
      ASSERT_TRUE(options) << flag << error;
      EXPECT_TRUE(*options.*GetParam().flag) << flag;
      EXPECT_EQ(1, options->json + options->timing + options->strict + options->verbose +
                       options->loopback);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, Flags,
                         testing::Values(FlagCase{"Json", "--json", "-j", &Options::json},
                                         FlagCase{"Timing", "--timing", "-t", &Options::timing},
                                         FlagCase{"Strict", "--strict", "-s", &Options::strict},
                                         FlagCase{"Verbose", "--verbose", "-v", &Options::verbose},
                                         FlagCase{"Loopback", "--loopback", "-l",
                                                  &Options::loopback}),
                         [](const auto& row) { return row.param.name; });

TEST(Arguments, KeysKeepTheirOrderAndLetterCase) {
  std::string error;
  const auto options = parse({"get", "b", "-j", "A", "b"}, error);
  ASSERT_TRUE(options) << error;
  EXPECT_EQ((std::vector<std::string>{"b", "A", "b"}), options->keys);
  EXPECT_TRUE(options->json);
}

TEST(Arguments, KeyMayReadLikeACommand) {
  std::string error;
  const auto options = parse({"get", "keys", "report"}, error);
  ASSERT_TRUE(options) << error;
  EXPECT_EQ(Command::get, options->command);
  EXPECT_EQ((std::vector<std::string>{"keys", "report"}), options->keys);
}

TEST(Arguments, KeyBehindTwoDashesMayReadLikeAnOption) {
  for (const std::vector<std::string>& line :
       {std::vector<std::string>{"get", "--", "--json", "-x"}, {"--", "get", "--json", "-x"}}) {
    std::string error;
    const auto options = parse(line, error);
    ASSERT_TRUE(options) << error;
    EXPECT_EQ(Command::get, options->command);
    EXPECT_EQ((std::vector<std::string>{"--json", "-x"}), options->keys);
    EXPECT_FALSE(options->json);
  }
}

TEST(Arguments, TwoDashesAloneChangeNothing) {
  for (const std::vector<std::string>& line :
       {std::vector<std::string>{"--"}, {"report", "--"}, {"-s", "--", "report"}}) {
    std::string error;
    const auto options = parse(line, error);
    ASSERT_TRUE(options) << error;
    EXPECT_EQ(Command::report, options->command);
  }
}

TEST(Arguments, NoneAtAllNotEvenAName) {
  const char* const none[] = {nullptr};
  std::string error;
  const auto options = orbprops::parse_arguments(0, none, error);
  ASSERT_TRUE(options) << error;
  EXPECT_EQ(Command::report, options->command);
}

TEST(Arguments, ShortFlagsMayBeJoined) {
  std::string error;
  const auto options = parse({"-js"}, error);
  ASSERT_TRUE(options) << error;
  EXPECT_TRUE(options->json && options->strict);
}

struct ErrorCase {
  const char* name;
  std::vector<std::string> arguments;
  const char* error;
};

class Errors : public testing::TestWithParam<ErrorCase> {};

TEST_P(Errors, AreExplained) {
  std::string error;
  EXPECT_FALSE(parse(GetParam().arguments, error));
  EXPECT_EQ(GetParam().error, error);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, Errors,
    testing::Values(
        ErrorCase{"GetWithoutKey", {"get"}, "get needs a key; \"orbprops keys\" lists them"},
        ErrorCase{"CommandNamesTheNearest",
                  {"interface"},
                  "unknown command \"interface\"; did you mean interfaces?"},
        ErrorCase{"CommandLikeNone", {"temperature"}, "unknown command \"temperature\""},
        ErrorCase{
            "OptionNamesTheNearest", {"--jsno"}, "unknown option \"--jsno\"; did you mean --json?"},
        ErrorCase{"OptionNamesOneThatBeginsLikeIt",
                  {"--loop"},
                  "unknown option \"--loop\"; did you mean --loopback?"},
        ErrorCase{"LongOptionWithOneDash",
                  {"keys", "-json"},
                  "unknown option \"-json\"; did you mean --json?"},
        ErrorCase{"LetterIsNearToNone", {"-x"}, "unknown option \"-x\""},
        ErrorCase{"LetterAmongKnownOnes", {"-jx"}, "unknown option \"-jx\""},
        ErrorCase{"DigitIsNoOption", {"-5"}, "unknown option \"-5\""},
        ErrorCase{"OptionWithAValue", {"--json=false"}, "option \"--json\" takes no value"},
        ErrorCase{
            "ValueOfAnUnknownOption", {"keys", "--a\n=b"}, "option \"--a\\x0a\" takes no value"},
        ErrorCase{"ShortOptionWithAValue", {"-j=1"}, "unknown option \"-j=1\""},
        ErrorCase{"TwoPlusSigns", {"keys", "++"}, "unexpected argument \"++\""},
        ErrorCase{"OneDash", {"-"}, "unknown command \"-\""},
        ErrorCase{"ArgumentBehindTwoDashes", {"keys", "--", "-x"}, "unexpected argument \"-x\""},
        ErrorCase{"OptionOfACommand", {"users", "--frobnicate"}, "unknown option \"--frobnicate\""},
        ErrorCase{"ArgumentTooMany", {"users", "root"}, "unexpected argument \"root\""},
        ErrorCase{"TwoCommands", {"users", "keys"}, "unexpected argument \"keys\""},
        ErrorCase{
            "ControlCharactersAreEscaped", {"\x1b[2Jx\xff"}, "unknown command \"\\x1b[2Jx\\xff\""},
        ErrorCase{"EmptyArgument", {""}, "unknown command \"\""},
        ErrorCase{"LoopbackElsewhere", {"users", "-l"}, "--loopback goes with interfaces alone"}),
    [](const auto& row) { return row.param.name; });

TEST(Arguments, LongAndManyArgumentsAreHarmless) {
  std::string error;
  EXPECT_FALSE(parse({std::string(100000, 'x')}, error));
  EXPECT_TRUE(parse(std::vector<std::string>(2000, "get"), error));
}

TEST(Help, FitsOneScreen) {
  std::istringstream lines(orbprops::kHelp);
  size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count) EXPECT_LE(line.size(), 80U) << line;
  EXPECT_LE(count, 24U);
}

TEST(Help, NamesEveryCommandAndOption) {
  const std::string help = orbprops::kHelp;
  for (const std::string& name : orbprops::command_names()) {
    EXPECT_NE(std::string::npos, help.find("\n  " + name + " ")) << name;
  }
  for (const std::string& name : orbprops::option_names()) {
    const bool is_short = name.size() == 2;
    EXPECT_NE(std::string::npos, help.find(is_short ? "\n  " + name + ", " : ", " + name)) << name;
  }
  EXPECT_EQ(6U, orbprops::command_names().size());
  EXPECT_EQ(14U, orbprops::option_names().size());
}

}  // namespace
