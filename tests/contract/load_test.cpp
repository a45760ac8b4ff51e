// tests/contract/load_test.cpp: what the system is asked for while the library is loaded and
// unloaded: a mapping of its file and memory, no other file, no thread, nothing written.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "tests/support/temp_dir.h"

namespace {

const std::string kLibrary = ORB_LIBRARY;
const std::string kNoisyLibrary = ORB_NOISY_LIBRARY;
const std::string kProbe = ORB_LOAD_PROBE;

// The exit status of a shell command; -1 when a signal ended it.
int status_of(const std::string& command) {
  const int status = system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string bytes_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> lines_of(const std::string& path) {
  std::vector<std::string> lines;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

std::string call_of(const std::string& line) { return line.substr(0, line.find('(')); }

// Runs the probe on `library`, its words going to `out`; gives its exit status.
int probe(const std::string& library, const std::string& out = "/dev/null") {
  return status_of("'" + kProbe + "' '" + library + "' >'" + out + "' 2>&1");
}

TEST(Load, StartsNoThreadKeepsNoDescriptorAndGivesItsMemoryBack) {
  const orbtest::TempDir folder;
  EXPECT_EQ(0, probe(kLibrary, folder.path("out")));
  EXPECT_EQ("", bytes_of(folder.path("out")));
}

TEST(Load, TheProbeSeesWhatIsAmiss) {
  EXPECT_EQ(1, probe("/no/such/library"));
  EXPECT_EQ(2, probe(kNoisyLibrary));
}

class LoadTrace : public testing::Test {
 protected:
  void SetUp() override {
    if (status_of("strace -V >/dev/null 2>&1") != 0) GTEST_SKIP() << "strace is not installed";
    if (status_of("strace -o /dev/null true >/dev/null 2>&1") != 0)
      GTEST_SKIP() << "tracing is forbidden here";
  }

  // Traces the probe with `library`: the calls between its mark number `mark` and the next.
  std::vector<std::string> calls(const std::string& library, int mark) {
    const std::string file = folder_.path("trace");
    status_of("strace -f -o '" + file + "' -- '" + kProbe + "' '" + library + "'");
    std::vector<std::string> between;
    int marks = 0;
    for (std::string& line : lines_of(file)) {
      line.erase(0, line.find_first_not_of("0123456789 "));  // the process number
      if (call_of(line) == "getppid") {
        ++marks;
      } else if (marks == mark) {
        between.push_back(line);
      }
    }
    EXPECT_LT(mark, marks) << library;
    return between;
  }

  // Those of `lines` that are neither an allowed call nor the opening of `library` for reading.
  static std::vector<std::string> others(const std::vector<std::string>& lines,
                                         const std::set<std::string>& allowed,
                                         const std::string& library) {
    const std::string opening = '"' + library + "\", O_RDONLY|O_CLOEXEC)";
    std::vector<std::string> found;
    for (const std::string& line : lines) {
      const bool opens = call_of(line) == "openat" && line.find(opening) != std::string::npos;
      if (!opens && allowed.count(call_of(line)) == 0) found.push_back(line);
    }
    return found;
  }

  const std::set<std::string> mapping_ = {"read",  "pread64", "fstat",    "fstat64", "newfstatat",
                                          "mmap",  "mmap2",   "mprotect", "munmap",  "madvise",
                                          "close", "brk",     "futex"};
  const std::set<std::string> unmapping_ = {"munmap", "mprotect", "madvise", "brk", "futex"};

 private:
  const orbtest::TempDir folder_;
};

using Lines = std::vector<std::string>;

TEST_F(LoadTrace, LoadingMapsTheLibraryAndDoesNothingElse) {
  const Lines lines = calls(kLibrary, 1);
  EXPECT_EQ(Lines{}, others(lines, mapping_, kLibrary));
  EXPECT_EQ(1U, others(lines, mapping_, "").size());
}

TEST_F(LoadTrace, UnloadingUnmapsTheLibraryAndDoesNothingElse) {
  const Lines lines = calls(kLibrary, 3);
  EXPECT_EQ(Lines{}, others(lines, unmapping_, kLibrary));
  EXPECT_NE(Lines{}, lines);
}

TEST_F(LoadTrace, SeesWhatALibraryDoesBesides) {
  const Lines besides = others(calls(kNoisyLibrary, 1), mapping_, kNoisyLibrary);
  ASSERT_EQ(2U, besides.size());
  EXPECT_NE(std::string::npos, besides[0].find("\"/dev/null\"")) << besides[0];
  EXPECT_EQ("write", call_of(besides[1]));
}

}  // namespace
