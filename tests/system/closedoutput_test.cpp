// tests/system/closedoutput_test.cpp: a process whose standard output, input and error are closed,
// full or without a reader. The tool there: tests/tools/tool_streams_test.cpp.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <map>
#include <set>
#include <string>

#include "fileutil/filetree.h"
#include "session/loggedonusers.h"
#include "sysprops/catalogue.h"
#include "tests/support/silent_output.h"
#include "tests/support/temp_dir.h"
#include "tests/system/surroundings.h"

namespace {

using namespace quillon_com::orb;

struct StreamCase {
  const char* name;
  bool (*spoil)();
};

void PrintTo(const StreamCase& row, std::ostream* out) { *out << row.name; }

bool close_all() {
  return close(STDIN_FILENO) == 0 && close(STDOUT_FILENO) == 0 && close(STDERR_FILENO) == 0;
}

bool fill_output() {
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  return full >= 0 && dup2(full, STDOUT_FILENO) == STDOUT_FILENO;
}

bool leave_output_without_reader() {
  int ends[2];
  if (pipe(ends) != 0 || signal(SIGPIPE, SIG_IGN) == SIG_ERR) return false;
  close(ends[0]);
  return dup2(ends[1], STDOUT_FILENO) == STDOUT_FILENO;
}

class SpoiltStreams : public testing::TestWithParam<StreamCase> {};

struct Answers {
  std::set<std::string> network, local;
  std::string line;
  size_t keys = 0;
  bool operator==(const Answers& other) const {
    return network == other.network && local == other.local && line == other.line &&
           keys == other.keys;
  }
};

Answers ask() {
  Answers answers;
  session::CollectLoggedonUsers(answers.network, answers.local, false);
  session::CollectAllLoggedonUsers(answers.line);
  std::map<std::wstring, std::wstring> values;
  std::map<std::wstring, std::pair<std::wstring, std::wstring>> file_systems;
  sysprops::ISysProps().GetAllSystemProperties(values, file_systems);
  answers.keys = values.size();
  return answers;
}

// The child tells by its status alone, for it has nowhere to write.
TEST_P(SpoiltStreams, AnswersAreTheSame) {
  Answers sound;
  {
    const orbtest::SilentOutput silent;
    sound = ask();
  }
  EXPECT_EQ(orbtest::kReportKeys, sound.keys);
  EXPECT_EQ("", orbtest::outcome_in_child([&sound] {
              if (!GetParam().spoil()) _exit(3);
              for (int round = 0; round < 100; ++round)
                if (!(ask() == sound)) _exit(4);
            }));
}

TEST_P(SpoiltStreams, DiagnosticLinesReachNoFileOfTheLibrary) {
  const orbtest::TempDir folder;
  const std::string source = folder.write("source", std::string(1000, 's'));
  const std::string target = folder.path("target");
  EXPECT_EQ("", orbtest::outcome_in_child([&] {
              if (!GetParam().spoil()) _exit(3);
              ask();
              if (!voxcomn_copy_file(source.c_str(), target.c_str(), 1)) _exit(4);
              ask();
            }));
  uint64_t size = 0;
  EXPECT_EQ(0U, voxcomn_get_file_sizeA(target.c_str(), &size));
  EXPECT_EQ(1000U, size);
}

INSTANTIATE_TEST_SUITE_P(Kinds, SpoiltStreams,
                         testing::Values(StreamCase{"Closed", close_all},
                                         StreamCase{"Full", fill_output},
                                         StreamCase{"WithoutReader", leave_output_without_reader}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
