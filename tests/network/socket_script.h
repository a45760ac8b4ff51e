// tests/network/socket_script.h: scripts the resolver and the socket calls of the code under test.
//
// The linker sends the calls that the library and the tests make to the functions behind this
// scope; what a test does not script goes on to the system. One scope at a time, for one thread.
#pragma once

#include <netdb.h>
#include <poll.h>
#include <sys/select.h>
#include <sys/socket.h>

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orbtest {

// One call of getaddrinfo.
struct Question {
  std::optional<std::string> host;     // absent for a null pointer
  std::optional<std::string> service;  // absent for a null pointer
  addrinfo hints;
};

class SocketScript {
 public:
  SocketScript();
  SocketScript(const SocketScript&) = delete;
  SocketScript& operator=(const SocketScript&) = delete;
  ~SocketScript();

  // What the resolver answers; other names go to the system's.
  std::map<std::string, std::vector<std::string>> hosts;  // name -> numeric addresses, in order
  std::map<std::string, int> refusals;                    // name -> resolver's code

  // Function -> numbers of its calls, from 1, that fail: "getnameinfo" with EAI_FAIL, "fcntl",
  // "socket", "connect", "select", "getsockopt" and "getsockname" with EIO.
  std::map<std::string, std::set<int>> failing;

  std::function<int(int, const sockaddr*, socklen_t)> on_connect;
  std::function<int(int, fd_set*, fd_set*, fd_set*, timeval*)> on_select;
  std::function<int(pollfd*, nfds_t, int)> on_poll;
  std::function<int(int, sockaddr*, socklen_t*)> on_getsockname;

  int failing_name_buffers = 0;  // so many of the next arrays asked for are not to be had

  // What was seen.
  std::map<std::string, int> calls;     // function -> number
  std::vector<Question> questions;      // to getaddrinfo
  std::vector<int> name_flags;          // of getnameinfo
  std::vector<socklen_t> name_rooms;    // of getnameinfo's host buffer
  std::vector<socklen_t> name_lengths;  // of getnameinfo's address
  std::vector<int> status_flags;        // stored with F_SETFL
  std::set<int> sockets;                // opened and not closed
  int lists = 0;                        // of the resolver, given out and not freed

  bool fails(const char* function);  // counts a call
};

}  // namespace orbtest

// The system's connect, for a script's own use.
extern "C" int orbtest_real_connect(int fd, const sockaddr* address, socklen_t length);
