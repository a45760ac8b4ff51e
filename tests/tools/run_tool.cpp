// tests/tools/run_tool.cpp: fork, exec and two streams.
#include "tests/tools/run_tool.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <sstream>
#include <system_error>

namespace orbtest {
namespace {

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

struct Ends {
  int parent = -1, child = -1;
};

Ends make_pipe() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) fail("pipe");
  return {ends[0], ends[1]};
}

Ends make_terminal(unsigned short columns) {
  Ends ends;
  ends.parent = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (ends.parent == -1 || grantpt(ends.parent) != 0 || unlockpt(ends.parent) != 0) {
    fail("posix_openpt");
  }
  ends.child = open(ptsname(ends.parent), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (ends.child == -1) fail("ptsname");
  termios modes{};
  tcgetattr(ends.child, &modes);
  modes.c_oflag &= ~static_cast<tcflag_t>(OPOST);  // line ends as written
  tcsetattr(ends.child, TCSANOW, &modes);
  winsize window{};
  window.ws_row = 24;
  window.ws_col = columns;
  ioctl(ends.parent, TIOCSWINSZ, &window);
  return ends;
}

// Reads both to their ends; a terminal ends with an error once its other side is closed.
void drain(int out, int error, Outcome& outcome) {
  std::array<pollfd, 2> entries = {pollfd{out, POLLIN, 0}, pollfd{error, POLLIN, 0}};
  std::array<std::string*, 2> texts = {&outcome.out, &outcome.error};
  std::array<char, 4096> buffer;
  while (entries[0].fd != -1 || entries[1].fd != -1) {
    if (poll(entries.data(), entries.size(), -1) == -1 && errno != EINTR) fail("poll");
    for (size_t i = 0; i < entries.size(); ++i) {
      if (entries[i].fd == -1 || entries[i].revents == 0) continue;
      const ssize_t got = read(entries[i].fd, buffer.data(), buffer.size());
      if (got > 0) {
        texts[i]->append(buffer.data(), static_cast<size_t>(got));
      } else if (got == 0 || errno != EINTR) {
        entries[i].fd = -1;
      }
    }
  }
}

[[noreturn]] void become(const Launch& launch, int out, int error) {
  dup2(out, STDOUT_FILENO);
  dup2(error, STDERR_FILENO);
  for (const char* name : {"COLUMNS", "NO_COLOR", "TERM", "LANG", "LC_ALL"}) unsetenv(name);
  for (const auto& [name, value] : launch.environment) {
    if (value) {
      setenv(name.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name.c_str());
    }
  }
  std::string program = launch.program.empty() ? ORBPROPS_TOOL : launch.program;
  std::vector<char*> words = {program.data()};
  std::vector<std::string> arguments = launch.arguments;
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  if (launch.in_child) launch.in_child();
  execvp(program.c_str(), words.data());
  _exit(127);
}

}  // namespace

Outcome run(const Launch& launch) {
  const Ends out = launch.window > 0 ? make_terminal(launch.window) : make_pipe();
  const Ends error = make_pipe();
  const pid_t child = fork();
  if (child == -1) fail("fork");
  if (child == 0) become(launch, out.child, error.child);
  close(out.child);
  close(error.child);
  Outcome outcome;
  if (launch.watch) launch.watch(child);
  drain(out.parent, error.parent, outcome);
  close(out.parent);
  close(error.parent);
  int status = 0;
  while (waitpid(child, &status, 0) == -1) {
    if (errno != EINTR) fail("waitpid");
  }
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return outcome;
}

Outcome run_tool(const std::vector<std::string>& arguments) {
  Launch launch;
  launch.arguments = arguments;
  return run(launch);
}

bool has_command(const std::string& command) {
  Launch launch;
  launch.program = "sh";
  launch.arguments = {"-c", "command -v \"$0\"", command};
  return run(launch).status == 0;
}

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

ToolFolder::ToolFolder() {
  std::string name = std::filesystem::temp_directory_path() / "orbprops-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) fail("mkdtemp");
  path_ = name;
  std::filesystem::create_symlink(ORBPROPS_TOOL, path_ + "/orbprops");
}

ToolFolder::~ToolFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace orbtest
