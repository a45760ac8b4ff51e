// tools/orbprops/output.cpp: descriptor work.
#include "tools/orbprops/output.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

namespace orbprops {
namespace {

constexpr char kNullDevice[] = "/dev/null";

// Waits until a descriptor that does not block takes more.
void wait_writable(int fd) {
  pollfd entry{fd, POLLOUT, 0};
  poll(&entry, 1, -1);
}

}  // namespace

bool secure_descriptors() {
  signal(SIGPIPE, SIG_IGN);
  bool output_open = true;
  for (int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(fd, F_GETFD) != -1 || errno != EBADF) continue;
    if (fd == STDOUT_FILENO) output_open = false;
    // The lowest free descriptor is `fd` itself: those below it are open by now.
    if (open(kNullDevice, O_RDWR) == -1) return output_open;
  }
  return output_open;
}

int write_all(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(fd, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<size_t>(written));
    } else if (errno == EAGAIN) {
      wait_writable(fd);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

void complain(std::string_view message) {
  write_all(STDERR_FILENO, std::string("orbprops: ").append(message).append("\n"));
}

Diversion::Diversion(bool to_standard_error) {
  setvbuf(stdout, nullptr, _IONBF, 0);
  const int target = to_standard_error ? fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)
                                       : open(kNullDevice, O_WRONLY | O_CLOEXEC);
  kept_ = target == -1 ? -1 : fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
  if (kept_ == -1 || dup2(target, STDOUT_FILENO) == -1) error_ = errno;
  if (target != -1) close(target);
}

Diversion::~Diversion() {
  if (kept_ == -1) return;
  dup2(kept_, STDOUT_FILENO);
  close(kept_);
}

}  // namespace orbprops
