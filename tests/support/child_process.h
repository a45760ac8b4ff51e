// tests/support/child_process.h: runs a part of a test in a process of its own.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>

namespace orbtest {

// The text that `body` returns in a forked child, whose static state the caller never sees. A child
// that dies gives its status as text, which no test expects.
inline std::string text_of_child(const std::function<std::string()>& body) {
  int ends[2];
  if (pipe(ends) != 0) return "no pipe";
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    const std::string text = body();
    size_t written = 0;
    while (written < text.size()) {
      const ssize_t count = write(ends[1], text.data() + written, text.size() - written);
      if (count <= 0) _exit(1);
      written += static_cast<size_t>(count);
    }
    _exit(0);
  }
  close(ends[1]);
  std::string text;
  char piece[4096];
  for (ssize_t got = 0; (got = read(ends[0], piece, sizeof piece)) > 0;)
    text.append(piece, static_cast<size_t>(got));
  close(ends[0]);
  int status = 0;
  if (waitpid(child, &status, 0) != child) return "no child";
  if (status != 0) return "the child ended with status " + std::to_string(status);
  return text;
}

}  // namespace orbtest
