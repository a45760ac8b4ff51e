// tests/tools/tool_streams_test.cpp: the built tool's three descriptors, closed, full and mixed up.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

#include "tests/tools/run_tool.h"

namespace {

using orbtest::Launch;
using orbtest::Outcome;

constexpr char kFirstLine[] = "Some changes happen in the logon sessions.\n";
constexpr char kLastLine[] = "Coming out from the logon session collections.\n";

struct CommandCase {
  const char* name;
  std::vector<std::string> arguments;
  bool asks_sessions;
};

class Streams : public testing::TestWithParam<CommandCase> {};

TEST_P(Streams, DiagnosticLinesAreNowhereByDefault) {
  const Outcome outcome = orbtest::run_tool(GetParam().arguments);
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ("", outcome.error);
  EXPECT_EQ(std::string::npos, outcome.out.find("logon session"));
}

TEST_P(Streams, DiagnosticLinesGoToStandardErrorWithVerbose) {
  Launch launch;
  launch.arguments = GetParam().arguments;
  launch.arguments.emplace_back("--verbose");
  const Outcome outcome = orbtest::run(launch);
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ(std::string::npos, outcome.out.find("logon session"));
  if (GetParam().asks_sessions) {
    EXPECT_EQ(0U, outcome.error.find(kFirstLine));
    EXPECT_NE(std::string::npos, outcome.error.find(kLastLine));
  } else {
    EXPECT_EQ("", outcome.error);
  }
}

TEST_P(Streams, ClosedOutputIsAnError) {
  Launch launch;
  launch.arguments = GetParam().arguments;
  launch.in_child = [] { close(STDOUT_FILENO); };
  const Outcome outcome = orbtest::run(launch);
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("orbprops: standard output is closed\n", outcome.error);
}

TEST_P(Streams, FullDiskIsAnError) {
  Launch launch;
  launch.arguments = GetParam().arguments;
  launch.in_child = [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
  const Outcome outcome = orbtest::run(launch);
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("orbprops: standard output: No space left on device\n", outcome.error);
}

TEST_P(Streams, ReaderThatIsGoneIsAnError) {
  Launch launch;
  launch.arguments = GetParam().arguments;
  launch.in_child = [] {
    int ends[2];
    if (pipe(ends) != 0) _exit(126);
    close(ends[0]);
    dup2(ends[1], STDOUT_FILENO);
    signal(SIGPIPE, SIG_DFL);
  };
  const Outcome outcome = orbtest::run(launch);
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("orbprops: standard output: Broken pipe\n", outcome.error);
}

TEST_P(Streams, OutputOpenForReadingIsAnError) {
  Launch launch;
  launch.arguments = GetParam().arguments;
  launch.in_child = [] { dup2(open("/dev/null", O_RDONLY), STDOUT_FILENO); };
  const Outcome outcome = orbtest::run(launch);
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("orbprops: standard output: Bad file descriptor\n", outcome.error);
}

TEST_P(Streams, ClosedInputAndErrorChangeNothing) {
  Launch launch;
  launch.arguments = GetParam().arguments;
  launch.arguments.emplace_back("--verbose");
  launch.in_child = [] {
    close(STDIN_FILENO);
    close(STDERR_FILENO);
  };
  const Outcome outcome = orbtest::run(launch);
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ(std::string::npos, outcome.out.find("logon session"));
  EXPECT_EQ(orbtest::lines_of(orbtest::run_tool(GetParam().arguments).out).size(),
            orbtest::lines_of(outcome.out).size());
}

INSTANTIATE_TEST_SUITE_P(Commands, Streams,
                         testing::Values(CommandCase{"Report", {"report"}, true},
                                         CommandCase{"ReportAsJson", {"--json"}, true},
                                         CommandCase{"UserName", {"get", "UserName"}, true},
                                         CommandCase{"OsType", {"get", "OSType"}, false},
                                         CommandCase{"Filesystems", {"filesystems"}, false},
                                         CommandCase{"UsersAsJson", {"users", "-j"}, true}),
                         [](const auto& row) { return row.param.name; });

// The collector's lines that standard error refuses do not turn up in the answer.
TEST(ToolStreams, FullStandardErrorLeavesTheAnswerAlone) {
  Launch launch;
  launch.arguments = {"get", "PlatformID", "UserName", "--verbose", "--timing"};
  launch.in_child = [] { dup2(open("/dev/full", O_WRONLY), STDERR_FILENO); };
  const Outcome outcome = orbtest::run(launch);
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ(2U, orbtest::lines_of(outcome.out).size());
  EXPECT_EQ(std::string::npos, outcome.out.find("logon session"));
}

TEST(ToolStreams, HelpToAFullDiskIsAnError) {
  for (const char* flag : {"--help", "--version", "keys"}) {
    Launch launch;
    launch.arguments = {flag};
    launch.in_child = [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
    EXPECT_EQ(1, orbtest::run(launch).status) << flag;
  }
}

// With descriptors 0 to 2 and what the loader needs, but none to keep standard output in.
TEST(ToolStreams, WithoutDescriptorsItSaysSo) {
  Launch launch;
  launch.arguments = {"get", "PlatformID"};
  launch.program = "sh";
  launch.arguments = {"-c", "ulimit -n 4; exec 3</dev/null \"$0\" get PlatformID", ORBPROPS_TOOL};
  const Outcome outcome = orbtest::run(launch);
  EXPECT_NE(0, outcome.status);
  EXPECT_NE("", outcome.error);
  EXPECT_EQ("", outcome.out);
}

TEST(ToolStreams, SlowReaderGetsEverything) {
  Launch launch;
  launch.program = "sh";
  launch.arguments = {"-c", "\"$0\" --json | { read -r line; echo \"$line\"; cat; }",
                      ORBPROPS_TOOL};
  EXPECT_EQ(orbtest::lines_of(orbtest::run_tool({"--json"}).out).size(),
            orbtest::lines_of(orbtest::run(launch).out).size());
}

}  // namespace
