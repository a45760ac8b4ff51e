// tests/support/peak_memory.h: the peak of the memory that a program takes.
#pragma once

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <string>
#include <vector>

namespace orbtest {

// The peak of the resident set, in KiB, of the process `child`, which stands still; 0 when the
// system does not tell.
inline long peak_of_stopped(pid_t child) {
  std::ifstream status("/proc/" + std::to_string(child) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmHWM:", 0) == 0) return std::stol(line.substr(6));
  }
  return 0;
}

// Runs the program words[0] with its arguments, its output to the null device, and gives the peak
// of its resident set in KiB; 0 when it cannot be started or traced. Resource usage as wait4 tells
// it would count the caller too, whose image the child had before exec: the program is held at its
// exit and its own figure read there.
inline long peak_resident_kib(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    const int null_device = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(null_device, STDOUT_FILENO);
    dup2(null_device, STDERR_FILENO);
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(126);
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  long peak = 0;
  int status = 0;
  if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) return 0;
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACEEXIT | PTRACE_O_EXITKILL);
  ptrace(PTRACE_CONT, child, nullptr, nullptr);
  while (waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
    if (status >> 8 == (SIGTRAP | PTRACE_EVENT_EXIT << 8)) peak = peak_of_stopped(child);
    ptrace(PTRACE_CONT, child, nullptr, nullptr);
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? peak : 0;
}

}  // namespace orbtest
