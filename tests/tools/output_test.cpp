// tests/tools/output_test.cpp: tools/orbprops/output.h on pipes and files.
#include "tools/orbprops/output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <string>
#include <thread>

namespace {

struct Pipe {
  int read_end = -1, write_end = -1;
  Pipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) == 0) {
      read_end = ends[0];
      write_end = ends[1];
    }
  }
  ~Pipe() {
    close(read_end);
    close(write_end);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
};

std::string read_until_end(int fd) {
  std::string out;
  std::array<char, 4096> buffer;
  for (ssize_t got; (got = read(fd, buffer.data(), buffer.size())) > 0;) {
    out.append(buffer.data(), static_cast<size_t>(got));
  }
  return out;
}

TEST(WriteAll, FullPipeThatDoesNotBlockIsWaitedFor) {
  const Pipe pipe;
  ASSERT_EQ(0, fcntl(pipe.write_end, F_SETFL, O_NONBLOCK));
  const std::string text(1 << 20, 'x');
  int error = -1;
  std::thread writer([&] {
    error = orbprops::write_all(pipe.write_end, text);
    close(pipe.write_end);
  });
  EXPECT_EQ(text, read_until_end(pipe.read_end));
  writer.join();
  EXPECT_EQ(0, error);
}

TEST(WriteAll, NothingIsWrittenWithoutTouchingTheDescriptor) {
  EXPECT_EQ(0, orbprops::write_all(-1, ""));
}

TEST(WriteAll, FailuresAreToldByTheirErrno) {
  EXPECT_EQ(EBADF, orbprops::write_all(-1, "x"));
  const int full = open("/dev/full", O_WRONLY);
  ASSERT_NE(-1, full);
  EXPECT_EQ(ENOSPC, orbprops::write_all(full, "x"));
  close(full);
  const int read_only = open("/dev/null", O_RDONLY);
  EXPECT_EQ(EBADF, orbprops::write_all(read_only, "x"));
  close(read_only);
}

// Runs `action` in a child whose standard output and error are pipes, and gives what came out.
template <class Action>
std::pair<std::string, std::string> outputs_of(Action action) {
  Pipe out;
  Pipe error;
  fflush(nullptr);  // what the test program has yet to write is none of the child's
  const pid_t child = fork();
  if (child == 0) {
    dup2(out.write_end, STDOUT_FILENO);
    dup2(error.write_end, STDERR_FILENO);
    action();
    _exit(0);
  }
  close(out.write_end);
  close(error.write_end);
  return {read_until_end(out.read_end), read_until_end(error.read_end)};
}

TEST(Diversion, SwallowsWhatIsPrintedMeanwhile) {
  const auto [out, error] = outputs_of([] {
    {
      const orbprops::Diversion diversion(false);
      printf("from the stream\n");
      orbprops::write_all(STDOUT_FILENO, "from the descriptor\n");
    }
    orbprops::write_all(STDOUT_FILENO, "answer\n");
    fflush(stdout);
  });
  EXPECT_EQ("answer\n", out);
  EXPECT_EQ("", error);
}

TEST(Diversion, SendsItToStandardErrorOnRequest) {
  const auto [out, error] = outputs_of([] {
    {
      const orbprops::Diversion diversion(true);
      printf("one\n");
      orbprops::write_all(STDOUT_FILENO, "two\n");
    }
    orbprops::write_all(STDOUT_FILENO, "answer\n");
    fflush(stdout);
  });
  EXPECT_EQ("answer\n", out);
  EXPECT_EQ("one\ntwo\n", error);
}

// What standard error refuses is dropped, not kept for standard output.
TEST(Diversion, LeavesNothingBehindWhenStandardErrorIsFull) {
  const auto [out, error] = outputs_of([] {
    dup2(open("/dev/full", O_WRONLY), STDERR_FILENO);
    {
      const orbprops::Diversion diversion(true);
      printf("lost\n");
    }
    fflush(stdout);
    orbprops::write_all(STDOUT_FILENO, "answer\n");
  });
  EXPECT_EQ("answer\n", out);
  EXPECT_EQ("", error);
}

TEST(Diversion, ChildProcessesDoNotReachTheRealOutput) {
  const auto [out, error] = outputs_of([] {
    const orbprops::Diversion diversion(false);
    // The only other way to the pipe would be the kept descriptor: it is closed on exec.
    FILE* child = popen("echo stray; for d in /proc/self/fd/*; do echo x >\"$d\"; done 2>&-", "w");
    if (child != nullptr) pclose(child);
  });
  EXPECT_EQ("", out);
}

TEST(Diversion, WithoutDescriptorsStandardOutputIsLeftAlone) {
  const auto [out, error] = outputs_of([] {
    while (dup(STDERR_FILENO) != -1) {
    }
    const orbprops::Diversion diversion(false);
    if (diversion.error() == EMFILE) orbprops::write_all(STDOUT_FILENO, "refused");
  });
  EXPECT_EQ("refused", out);
}

TEST(SecureDescriptors, ClosedOnesAreFilledAndAClosedOutputIsTold) {
  const auto [out, error] = outputs_of([] {
    close(STDIN_FILENO);
    close(STDERR_FILENO);
    const bool open_before = orbprops::secure_descriptors();
    const int next = open("/dev/null", O_RDONLY);
    const bool filled = next > STDERR_FILENO && fcntl(STDIN_FILENO, F_GETFD) != -1;
    orbprops::write_all(STDOUT_FILENO, open_before && filled ? "ok" : "wrong");
  });
  EXPECT_EQ("ok", out);
  const auto [none, told] = outputs_of([] {
    close(STDOUT_FILENO);
    if (!orbprops::secure_descriptors()) orbprops::complain("closed");
  });
  EXPECT_EQ("orbprops: closed\n", told);
}

TEST(SecureDescriptors, PipeWithoutReaderIsAnError) {
  const auto [out, error] = outputs_of([] {
    orbprops::secure_descriptors();
    int ends[2];
    if (pipe(ends) != 0) return;
    close(ends[0]);
    if (orbprops::write_all(ends[1], "x") == EPIPE) orbprops::complain("EPIPE");
  });
  EXPECT_EQ("orbprops: EPIPE\n", error);
}

}  // namespace
