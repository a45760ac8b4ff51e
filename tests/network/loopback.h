// tests/network/loopback.h: sockets on the loopback interface that release themselves.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace orbtest {

// A descriptor, closed at the end; -1 for none.
class Fd {
 public:
  explicit Fd(int fd = -1) : fd_(fd) {}
  Fd(Fd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Fd& operator=(Fd&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~Fd() {
    if (fd_ >= 0) close(fd_);
  }
  int get() const { return fd_; }

 private:
  int fd_;
};

inline Fd stream_socket(int family) { return Fd(socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0)); }

// The loopback address of `family` (AF_INET or AF_INET6) with a port.
struct Endpoint {
  sockaddr_storage bytes{};
  socklen_t length = 0;

  Endpoint(int family, in_port_t port) {
    bytes.ss_family = static_cast<sa_family_t>(family);
    if (family == AF_INET) {
      auto* record = reinterpret_cast<sockaddr_in*>(&bytes);
      record->sin_addr.s_addr = htonl(INADDR_LOOPBACK);
      record->sin_port = htons(port);
      length = sizeof *record;
    } else {
      auto* record = reinterpret_cast<sockaddr_in6*>(&bytes);
      record->sin6_addr = in6addr_loopback;
      record->sin6_port = htons(port);
      length = sizeof *record;
    }
  }
  sockaddr* get() { return reinterpret_cast<sockaddr*>(&bytes); }
};

// A loopback address that takes connections: it accepts `backlog` + 1 of them and drops the rest.
class Listener {
 public:
  explicit Listener(int family, int backlog = 64)
      : family_(family), socket_(stream_socket(family)), endpoint_(family, 0) {
    if (bind(socket_.get(), endpoint_.get(), endpoint_.length) != 0 ||
        listen(socket_.get(), backlog) != 0)
      throw std::runtime_error("no listener on the loopback interface");
    socklen_t length = sizeof endpoint_.bytes;
    getsockname(socket_.get(), endpoint_.get(), &length);
  }
  Endpoint& endpoint() { return endpoint_; }
  int family() const { return family_; }
  std::string service() const {
    const auto* record = reinterpret_cast<const sockaddr_in*>(&endpoint_.bytes);
    return std::to_string(ntohs(record->sin_port));  // at the same place for both families
  }

 private:
  int family_;
  Fd socket_;
  Endpoint endpoint_;
};

// A loopback address whose port is bound but takes no connection: attempts are refused.
class RefusingPort {
 public:
  explicit RefusingPort(int family) : socket_(stream_socket(family)), endpoint_(family, 0) {
    if (bind(socket_.get(), endpoint_.get(), endpoint_.length) != 0)
      throw std::runtime_error("no port on the loopback interface");
    socklen_t length = sizeof endpoint_.bytes;
    getsockname(socket_.get(), endpoint_.get(), &length);
  }
  Endpoint& endpoint() { return endpoint_; }
  std::string service() const {
    const auto* record = reinterpret_cast<const sockaddr_in*>(&endpoint_.bytes);
    return std::to_string(ntohs(record->sin_port));
  }

 private:
  Fd socket_;
  Endpoint endpoint_;
};

// A listener whose queue is full: further attempts get no answer.
class SilentPort {
 public:
  explicit SilentPort(int family) : listener_(family, 0), first_(stream_socket(family)) {
    if (connect(first_.get(), listener_.endpoint().get(), listener_.endpoint().length) != 0)
      throw std::runtime_error("the queue cannot be filled");
  }
  Endpoint& endpoint() { return listener_.endpoint(); }
  std::string service() const { return listener_.service(); }

 private:
  Listener listener_;
  Fd first_;
};

}  // namespace orbtest
