// tests/support/mount_namespace.h: runs a part of a test where mounts are seen by nobody else.
#pragma once

#include <sched.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

namespace orbtest {

// Runs `body` in a child process with a mount name space of its own and returns what it wrote to
// standard output. One that does not come to an end is killed by a signal. nullopt without such a
// name space (it takes root), or when `body` returned false, which tells that a mount was refused:
// reason to skip the test. A child that dies gives its status as text, which no test expects.
inline std::optional<std::string> in_mount_namespace(const std::function<bool()>& body) {
  constexpr int kRefused = 77;
  constexpr unsigned kPatience = 120;  // seconds
  int ends[2];
  if (pipe(ends) != 0) return std::nullopt;
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    alarm(kPatience);
    if (unshare(CLONE_NEWNS) != 0 ||
        mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
      _exit(kRefused);
    }
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
    const bool mounted = body();
    std::fflush(nullptr);
    _exit(mounted ? 0 : kRefused);
  }
  close(ends[1]);
  std::string written;
  char piece[4096];
  for (ssize_t got = 0; (got = read(ends[0], piece, sizeof(piece))) > 0;) {
    written.append(piece, static_cast<size_t>(got));
  }
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == kRefused) return std::nullopt;
  if (status != 0) return "the child ended with status " + std::to_string(status);
  return written;
}

// Covers the folder `path`, which may be a link to it, with an empty one.
inline bool cover_folder(const char* path) {
  char* real = realpath(path, nullptr);
  const bool covered = real != nullptr && mount("none", real, "tmpfs", 0, nullptr) == 0;
  free(real);
  return covered;
}

inline void write_file(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

// Shows `bytes`, kept in `copy`, in place of the file `path`.
inline bool replace_file(const std::string& path, const std::string& copy,
                         const std::string& bytes) {
  write_file(copy, bytes);
  return mount(copy.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) == 0;
}

}  // namespace orbtest
