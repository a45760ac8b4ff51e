// tests/portability/log_socket.h: the system log's socket, in the test's own hand.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "tests/support/mount_namespace.h"

namespace orbtest {

// The socket that syslog writes to, opened where none is: behind an empty folder for the devices,
// so only within in_mount_namespace.
class LogSocket {
 public:
  LogSocket() : socket_(socket(AF_UNIX, SOCK_DGRAM, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strcpy(address.sun_path, "/dev/log");
    open_ = socket_ >= 0 && cover_folder("/dev") &&
            bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  }
  ~LogSocket() { close(socket_); }
  LogSocket(const LogSocket&) = delete;
  LogSocket& operator=(const LogSocket&) = delete;

  bool is_open() const { return open_; }

  // The messages that have come, each as "<NUMBER>TAG: TEXT" without its time, a line each.
  std::string messages() const {
    std::string all;
    char message[2048];
    for (ssize_t got = 0; (got = recv(socket_, message, sizeof message - 1, MSG_DONTWAIT)) >= 0;) {
      const std::string text(message, strnlen(message, static_cast<size_t>(got)));
      const size_t time = text.find('>') + 1;
      constexpr size_t kTimeLength = sizeof "Jan  1 00:00:00 " - 1;
      all += text.substr(0, time) + text.substr(time + kTimeLength) + "\n";
    }
    return all;
  }

 private:
  int socket_;
  bool open_ = false;
};

// What `body` wrote to the system log, in a process of its own; nullopt without the right to mount.
inline std::optional<std::string> logged_by(const std::function<void()>& body) {
  return in_mount_namespace([&] {
    const LogSocket log;
    if (!log.is_open()) return false;
    body();
    const std::string messages = log.messages();
    return write(STDOUT_FILENO, messages.data(), messages.size()) ==
           static_cast<ssize_t>(messages.size());
  });
}

}  // namespace orbtest
