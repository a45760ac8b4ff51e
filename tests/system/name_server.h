// tests/system/name_server.h: a name server of the test's own on the loopback interface.
#pragma once

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>

namespace orbtest {

// Brings up the loopback interface of a network name space that has just been made.
inline bool raise_loopback() {
  const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ifreq request{};
  std::strcpy(request.ifr_name, "lo");
  request.ifr_flags = IFF_UP;
  const bool raised = fd >= 0 && ioctl(fd, SIOCSIFFLAGS, &request) == 0;
  close(fd);
  return raised;
}

enum class Zone {
  silent,      // takes questions and never answers
  empty,       // no name exists
  ipv4,        // every name has an IPv4 address
  ipv6,        // every name has an IPv6 address alone
  other_name,  // every name is an alias of "real.example.org", which has an IPv4 address
};

// Listens at 127.0.0.1, port 53, and counts what it is asked. Ends with its process.
class NameServer {
 public:
  // Starts the server; false when the port is not to be had.
  bool start(Zone zone) {
    zone_ = zone;
    fd_ = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(53);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return false;
    server_ = std::thread([this] { serve(); });
    return true;
  }
  NameServer() = default;
  NameServer(const NameServer&) = delete;
  NameServer& operator=(const NameServer&) = delete;
  ~NameServer() {
    shutdown(fd_, SHUT_RDWR);
    if (server_.joinable()) server_.join();
    close(fd_);
  }
  // Questions since the last call.
  int asked() { return questions_.exchange(0); }

 private:
  void serve() {
    char packet[1024];
    for (;;) {
      sockaddr_in from{};
      socklen_t size = sizeof from;
      const ssize_t got =
          recvfrom(fd_, packet, sizeof packet, 0, reinterpret_cast<sockaddr*>(&from), &size);
      if (got <= 0) return;
      if (got < 17) continue;
      ++questions_;
      const std::string reply = answer(std::string(packet, static_cast<size_t>(got)));
      if (zone_ != Zone::silent)
        sendto(fd_, reply.data(), reply.size(), 0, reinterpret_cast<sockaddr*>(&from), size);
    }
  }

  // The reply to a question: header, the question again, and the records of the zone.
  std::string answer(const std::string& question) const {
    using namespace std::string_literals;
    const size_t name_end = question.find('\0', 12) + 1;
    const bool asks_ipv4 = question.substr(name_end, 2) == "\0\x01"s;
    const std::string ipv4 = "\0\x01\0\x01\0\0\0\x3c\0\x04\xc0\0\x02\x05"s;
    std::string records;
    if (zone_ == Zone::ipv4 && asks_ipv4) records = "\xc0\x0c"s + ipv4;
    if (zone_ == Zone::ipv6 && !asks_ipv4)
      records =
          "\xc0\x0c\0\x1c\0\x01\0\0\0\x3c\0\x10\x20\x01\x0d\xb8"s + std::string(11, '\0') + "\x05";
    if (zone_ == Zone::other_name && asks_ipv4) {
      const std::string real = "\4real\7example\3org\0"s;
      records =
          "\xc0\x0c\0\5\0\1\0\0\0\x3c\0"s + static_cast<char>(real.size()) + real + real + ipv4;
    }
    const char count = records.empty() ? 0 : zone_ == Zone::other_name ? 2 : 1;
    const char code = zone_ == Zone::empty ? 3 : 0;
    return question.substr(0, 2) + "\x85"s + static_cast<char>('\x80' | code) + "\0\1\0"s + count +
           "\0\0\0\0"s + question.substr(12, name_end + 4 - 12) + records;
  }

  Zone zone_ = Zone::silent;
  int fd_ = -1;
  std::thread server_;
  std::atomic<int> questions_{0};
};

}  // namespace orbtest
