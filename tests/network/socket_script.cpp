// tests/network/socket_script.cpp: the functions that stand before the system's.
#include "tests/network/socket_script.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <new>

namespace {

orbtest::SocketScript* script = nullptr;

std::optional<std::string> text_of(const char* text) {
  return text ? std::optional<std::string>(text) : std::nullopt;
}

int fail_with(int number) {
  errno = number;
  return -1;
}

}  // namespace

namespace orbtest {

SocketScript::SocketScript() {
  if (script != nullptr) std::abort();
  script = this;
}

SocketScript::~SocketScript() { script = nullptr; }

bool SocketScript::fails(const char* function) {
  const int number = ++calls[function];
  auto found = failing.find(function);
  return found != failing.end() && found->second.count(number) != 0;
}

}  // namespace orbtest

extern "C" {

int __real_getaddrinfo(const char*, const char*, const addrinfo*, addrinfo**);
void __real_freeaddrinfo(addrinfo*);
int __real_getnameinfo(const sockaddr*, socklen_t, char*, socklen_t, char*, socklen_t, int);
int __real_socket(int, int, int);
int __real_close(int);
int __real_connect(int, const sockaddr*, socklen_t);
int __real_select(int, fd_set*, fd_set*, fd_set*, timeval*);
int __real_poll(pollfd*, nfds_t, int);
int __real_getsockopt(int, int, int, void*, socklen_t*);
int __real_getsockname(int, sockaddr*, socklen_t*);
int __real_fcntl64(int, int, ...);
void* __real__ZnamRKSt9nothrow_t(size_t, const std::nothrow_t&);

int orbtest_real_connect(int fd, const sockaddr* address, socklen_t length) {
  return __real_connect(fd, address, length);
}

// A scripted list is a chain of the system's own lists, which the system's freeaddrinfo takes.
int __wrap_getaddrinfo(const char* host, const char* service, const addrinfo* hints,
                       addrinfo** result) {
  if (script == nullptr) return __real_getaddrinfo(host, service, hints, result);
  script->questions.push_back({text_of(host), text_of(service), *hints});
  const std::string name = host ? host : "";
  if (script->refusals.count(name) != 0) return script->refusals[name];
  auto known = script->hosts.find(name);
  if (known == script->hosts.end()) {
    const int code = __real_getaddrinfo(host, service, hints, result);
    if (code == 0) ++script->lists;
    return code;
  }
  addrinfo numeric = *hints;
  numeric.ai_flags |= AI_NUMERICHOST;
  addrinfo** end = result;
  *end = nullptr;
  for (const std::string& address : known->second) {
    if (__real_getaddrinfo(address.c_str(), service, &numeric, end) != 0) std::abort();
    end = &(*end)->ai_next;
  }
  ++script->lists;
  return 0;
}

void __wrap_freeaddrinfo(addrinfo* list) {
  if (script != nullptr) --script->lists;
  __real_freeaddrinfo(list);
}

int __wrap_getnameinfo(const sockaddr* address, socklen_t length, char* host, socklen_t host_room,
                       char* service, socklen_t service_room, int flags) {
  if (script != nullptr) {
    script->name_flags.push_back(flags);
    script->name_rooms.push_back(host_room);
    script->name_lengths.push_back(length);
    if (script->fails("getnameinfo")) return EAI_FAIL;
  }
  return __real_getnameinfo(address, length, host, host_room, service, service_room, flags);
}

int __wrap_socket(int family, int type, int protocol) {
  if (script != nullptr && script->fails("socket")) return fail_with(EIO);
  const int fd = __real_socket(family, type, protocol);
  if (script != nullptr && fd >= 0) script->sockets.insert(fd);
  return fd;
}

int __wrap_close(int fd) {
  if (script != nullptr) script->sockets.erase(fd);
  return __real_close(fd);
}

int __wrap_connect(int fd, const sockaddr* address, socklen_t length) {
  if (script != nullptr && script->fails("connect")) return fail_with(EIO);
  if (script != nullptr && script->on_connect) return script->on_connect(fd, address, length);
  return __real_connect(fd, address, length);
}

int __wrap_select(int count, fd_set* in, fd_set* out, fd_set* except, timeval* limit) {
  if (script != nullptr && script->fails("select")) return fail_with(EIO);
  if (script != nullptr && script->on_select)
    return script->on_select(count, in, out, except, limit);
  return __real_select(count, in, out, except, limit);
}

int __wrap_poll(pollfd* waiting, nfds_t count, int limit_ms) {
  if (script != nullptr && script->fails("poll")) return fail_with(EIO);
  if (script != nullptr && script->on_poll) return script->on_poll(waiting, count, limit_ms);
  return __real_poll(waiting, count, limit_ms);
}

int __wrap_getsockopt(int fd, int level, int name, void* value, socklen_t* size) {
  if (script != nullptr && script->fails("getsockopt")) return fail_with(EIO);
  return __real_getsockopt(fd, level, name, value, size);
}

int __wrap_getsockname(int fd, sockaddr* address, socklen_t* length) {
  if (script != nullptr && script->fails("getsockname")) return fail_with(EIO);
  if (script != nullptr && script->on_getsockname)
    return script->on_getsockname(fd, address, length);
  return __real_getsockname(fd, address, length);
}

// Every command that the code uses takes a whole number or nothing.
int __wrap_fcntl64(int fd, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  const int value = va_arg(arguments, int);
  va_end(arguments);
  if (script != nullptr) {
    if (script->fails("fcntl")) return fail_with(EIO);
    if (command == F_SETFL) script->status_flags.push_back(value);
  }
  return __real_fcntl64(fd, command, value);
}

int __wrap_fcntl(int fd, int command, ...) __attribute__((alias("__wrap_fcntl64")));

void* __wrap__ZnamRKSt9nothrow_t(size_t size, const std::nothrow_t& tag) {
  if (script != nullptr && script->failing_name_buffers > 0) {
    --script->failing_name_buffers;
    return nullptr;
  }
  return __real__ZnamRKSt9nothrow_t(size, tag);
}

}  // extern "C"
