// tests/torture/machine_calls.cpp: the calls about the machine, its network and its accounts.
//
// Without a Machine each goes on to the system; some are then not watched. The linker sends checked
// forms of a call, those that end in _chk, here as well.
#include "tests/torture/machine_calls.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <grp.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netpacket/packet.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/statfs.h>
#include <sys/sysinfo.h>
#include <sys/utsname.h>
#include <unistd.h>
#include <utmpx.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "tests/support/liveblocks.h"
#include "tests/support/tracedcalls.h"
#include "tests/torture/machine.h"

namespace {

using orbtest::connections_linger;
using orbtest::fails;
using orbtest::machine_answers;

constexpr time_t kNow = 1706951225;  // 2024-02-03 09:07:05
constexpr unsigned kIndex = 2;       // of eth0
constexpr uint64_t kTotalMemory = uint64_t{16} << 30;
constexpr uint64_t kFreeMemory = uint64_t{1} << 30;

size_t session_cursor = 0;

// Fills a field of the kernel's or the account database's.
template <size_t N>
void put(const char* text, char (&field)[N]) {
  const std::string bytes(text);
  field[bytes.copy(field, N - 1)] = '\0';
}

// Answers a name within `room` bytes; the call itself is `function`.
int give_name(const char* function, const char* name, char* buffer, size_t room) {
  if (fails(function, ENAMETOOLONG)) return -1;
  buffer[std::string(name).copy(buffer, room - 1)] = '\0';
  return 0;
}

// What a look-up in the account database or the resolver's gives.
template <class Record>
int found(Record* record, Record** result) {
  *result = record;
  return 0;
}

template <class Record>
int not_found(int code, Record** result) {
  *result = nullptr;
  return code;
}

// The list that getifaddrs gives: one block, with all that it points to.
struct Interfaces {
  ifaddrs entries[3]{};
  sockaddr_ll hardware{};
  sockaddr_in ipv4{};
  sockaddr_in ipv4_mask{};
  sockaddr_in6 ipv6{};
  sockaddr_in6 ipv6_mask{};
  char name[5] = "eth0";

  Interfaces() {
    hardware.sll_family = AF_PACKET;
    hardware.sll_halen = 6;
    const unsigned char bytes[6] = {0x00, 0x1c, 0x42, 0x0a, 0xff, 0x01};
    std::memcpy(hardware.sll_addr, bytes, sizeof bytes);
    ipv4.sin_family = ipv4_mask.sin_family = AF_INET;
    inet_pton(AF_INET, "192.0.2.20", &ipv4.sin_addr);
    inet_pton(AF_INET, "255.255.255.0", &ipv4_mask.sin_addr);
    ipv6.sin6_family = ipv6_mask.sin6_family = AF_INET6;
    inet_pton(AF_INET6, "fe80::aede:48ff:fe00:1122", &ipv6.sin6_addr);
    inet_pton(AF_INET6, "ffff:ffff:ffff:ffff::", &ipv6_mask.sin6_addr);
    ipv6.sin6_scope_id = kIndex;
    describe(0, reinterpret_cast<sockaddr*>(&hardware), nullptr);
    describe(1, reinterpret_cast<sockaddr*>(&ipv4), reinterpret_cast<sockaddr*>(&ipv4_mask));
    describe(2, reinterpret_cast<sockaddr*>(&ipv6), reinterpret_cast<sockaddr*>(&ipv6_mask));
    entries[0].ifa_next = &entries[1];
    entries[1].ifa_next = &entries[2];
  }
  Interfaces(const Interfaces&) = delete;
  Interfaces& operator=(const Interfaces&) = delete;

 private:
  void describe(size_t place, sockaddr* address, sockaddr* mask) {
    entries[place].ifa_name = name;
    entries[place].ifa_flags = IFF_UP;
    entries[place].ifa_addr = address;
    entries[place].ifa_netmask = mask;
  }
};

}  // namespace

namespace orbtest {

SlowConnections::SlowConnections() { connections_linger = true; }
SlowConnections::~SlowConnections() { connections_linger = false; }

}  // namespace orbtest

extern "C" {

ORB_TRACED(int, select, "select", -1, EINTR,
           (int count, fd_set* in, fd_set* out, fd_set* except, timeval* limit),
           (count, in, out, except, limit))
ORB_TRACED(int, getsockopt, "getsockopt", -1, EBADF,
           (int file, int level, int name, void* value, socklen_t* size),
           (file, level, name, value, size))
ORB_TRACED(int, getsockname, "getsockname", -1, ENOBUFS,
           (int file, sockaddr* address, socklen_t* size), (file, address, size))
ORB_TRACED(int, getnameinfo, "getnameinfo", EAI_FAIL, 0,
           (const sockaddr* address, socklen_t size, char* host, socklen_t host_room, char* service,
            socklen_t service_room, int flags),
           (address, size, host, host_room, service, service_room, flags))

int __real_getaddrinfo(const char* host, const char* service, const addrinfo* hints,
                       addrinfo** list);
int __wrap_getaddrinfo(const char* host, const char* service, const addrinfo* hints,
                       addrinfo** list);
int __wrap_getaddrinfo(const char* host, const char* service, const addrinfo* hints,
                       addrinfo** list) {
  if (fails("getaddrinfo", 0)) return EAI_MEMORY;
  const int code = __real_getaddrinfo(host, service, hints, list);
  if (code == 0) orbtest::note_block(*list);
  return code;
}

void __real_freeaddrinfo(addrinfo* list);
void __wrap_freeaddrinfo(addrinfo* list);
void __wrap_freeaddrinfo(addrinfo* list) {
  orbtest::forget_block(list);
  __real_freeaddrinfo(list);
}

int __real_getifaddrs(ifaddrs** list);
int __wrap_getifaddrs(ifaddrs** list);
int __wrap_getifaddrs(ifaddrs** list) {
  if (fails("getifaddrs", ENOMEM)) return -1;
  if (!machine_answers) return __real_getifaddrs(list);
  static Interfaces interfaces;
  *list = static_cast<ifaddrs*>(orbtest::note_block(interfaces.entries));
  return 0;
}

void __real_freeifaddrs(ifaddrs* list);
void __wrap_freeifaddrs(ifaddrs* list);
void __wrap_freeifaddrs(ifaddrs* list) {
  orbtest::forget_block(list);
  if (!machine_answers) __real_freeifaddrs(list);
}

// The machine has every family; on the one that the test runs on IPv6 may be off.
int __real_socket(int family, int type, int protocol);
int __wrap_socket(int family, int type, int protocol);
int __wrap_socket(int family, int type, int protocol) {
  if (fails("socket", EMFILE)) return -1;
  const bool any = machine_answers && (type & SOCK_DGRAM) == SOCK_DGRAM;
  return __real_socket(any ? AF_UNIX : family, type, protocol);
}

int __real_ioctl(int file, unsigned long request, void* argument);
int __wrap_ioctl(int file, unsigned long request, void* argument);
int __wrap_ioctl(int file, unsigned long request, void* argument) {
  if (fails("ioctl", ENODEV)) return -1;
  if (!machine_answers || request != SIOCGIFINDEX) return __real_ioctl(file, request, argument);
  static_cast<ifreq*>(argument)->ifr_ifindex = kIndex;
  return 0;
}

// Every command that the library uses takes a whole number or nothing.
int __real_fcntl64(int file, int command, ...);
int __wrap_fcntl64(int file, int command, ...);
int __wrap_fcntl64(int file, int command, ...) {
  if (fails("fcntl", EBADF)) return -1;
  va_list arguments;
  va_start(arguments, command);
  const int value = va_arg(arguments, int);
  va_end(arguments);
  return __real_fcntl64(file, command, value);
}

int __real_connect(int file, const sockaddr* address, socklen_t size);
int __wrap_connect(int file, const sockaddr* address, socklen_t size);
int __wrap_connect(int file, const sockaddr* address, socklen_t size) {
  if (fails("connect", ENETUNREACH)) return -1;
  const int result = __real_connect(file, address, size);
  if (!connections_linger) return result;
  errno = EINPROGRESS;
  return -1;
}

FILE* __real_popen(const char* command, const char* mode);
FILE* __wrap_popen(const char* command, const char* mode);
FILE* __wrap_popen(const char* command, const char* mode) {
  if (fails("popen", EMFILE)) return nullptr;
  FILE* const pipe = __real_popen(command, mode);
  orbtest::note_block(pipe);
  return pipe;
}

int __real_pclose(FILE* pipe);
int __wrap_pclose(FILE* pipe);
int __wrap_pclose(FILE* pipe) {
  orbtest::forget_block(pipe);
  const int status = __real_pclose(pipe);
  return fails("pclose", ECHILD) ? -1 : status;
}

int __real_gethostname(char* buffer, size_t room);
int __wrap_gethostname(char* buffer, size_t room);
int __wrap_gethostname(char* buffer, size_t room) {
  if (!machine_answers) return __real_gethostname(buffer, room);
  return give_name("gethostname", "box", buffer, room);
}
int __wrap___gethostname_chk(char* buffer, size_t room, size_t);
int __wrap___gethostname_chk(char* buffer, size_t room, size_t) {
  return __wrap_gethostname(buffer, room);
}

int __real_getdomainname(char* buffer, size_t room);
int __wrap_getdomainname(char* buffer, size_t room);
int __wrap_getdomainname(char* buffer, size_t room) {
  if (!machine_answers) return __real_getdomainname(buffer, room);
  return give_name("getdomainname", "(none)", buffer, room);
}
int __wrap___getdomainname_chk(char* buffer, size_t room, size_t);
int __wrap___getdomainname_chk(char* buffer, size_t room, size_t) {
  return __wrap_getdomainname(buffer, room);
}

int __real_gethostbyname2_r(const char* name, int family, hostent* record, char* texts, size_t room,
                            hostent** result, int* error);
int __wrap_gethostbyname2_r(const char* name, int family, hostent* record, char* texts, size_t room,
                            hostent** result, int* error);
int __wrap_gethostbyname2_r(const char* name, int family, hostent* record, char* texts, size_t room,
                            hostent** result, int* error) {
  if (machine_answers && fails("gethostbyname2_r", EAGAIN)) {
    *error = TRY_AGAIN;
    return not_found(EAGAIN, result);
  }
  if (!machine_answers)
    return __real_gethostbyname2_r(name, family, record, texts, room, result, error);
  if (room < 4000) return not_found(ERANGE, result);  // a larger buffer is asked for
  strcpy(texts, "box.office.example");
  *record = {};
  record->h_name = texts;
  return found(record, result);
}

int __real_uname(utsname* names);
int __wrap_uname(utsname* names);
int __wrap_uname(utsname* names) {
  if (fails("uname", EFAULT)) return -1;
  if (!machine_answers) {
    const int result = __real_uname(names);
    // The machine's own may be short enough to be kept without memory.
    if (orbtest::is_traced()) {
      for (char* name : {names->nodename, names->machine, names->release})
        strcpy(name, "a-name-longer-than-a-text-object");
    }
    return result;
  }
  put("box.lab.example", names->nodename);
  put("x86_64", names->machine);
  put("6.1.0", names->release);
  return 0;
}

int __real_getpwnam_r(const char* name, passwd* record, char* texts, size_t room, passwd** result);
int __wrap_getpwnam_r(const char* name, passwd* record, char* texts, size_t room, passwd** result);
int __wrap_getpwnam_r(const char* name, passwd* record, char* texts, size_t room, passwd** result) {
  if (fails("getpwnam_r", EIO)) return not_found(EIO, result);
  if (!machine_answers) return __real_getpwnam_r(name, record, texts, room, result);
  record->pw_gid = 100;
  return found(record, result);
}

int __real_getpwuid_r(uid_t id, passwd* record, char* texts, size_t room, passwd** result);
int __wrap_getpwuid_r(uid_t id, passwd* record, char* texts, size_t room, passwd** result);
int __wrap_getpwuid_r(uid_t id, passwd* record, char* texts, size_t room, passwd** result) {
  if (machine_answers && fails("getpwuid_r", EIO)) return not_found(EIO, result);
  if (!machine_answers) return __real_getpwuid_r(id, record, texts, room, result);
  const std::string_view name = "somebody with a name that needs room";
  if (room <= name.size()) return not_found(ERANGE, result);
  record->pw_name = static_cast<char*>(std::memcpy(texts, name.data(), name.size() + 1));
  return found(record, result);
}

int __real_getgrgid_r(gid_t id, group* record, char* texts, size_t room, group** result);
int __wrap_getgrgid_r(gid_t id, group* record, char* texts, size_t room, group** result);
int __wrap_getgrgid_r(gid_t id, group* record, char* texts, size_t room, group** result) {
  if (machine_answers && fails("getgrgid_r", EIO)) return not_found(EIO, result);
  if (!machine_answers) return __real_getgrgid_r(id, record, texts, room, result);
  record->gr_name = strcpy(texts, "CORP\\Domain Users");
  return found(record, result);
}

utmpx* __real_getutxent();
utmpx* __wrap_getutxent();
utmpx* __wrap_getutxent() {
  if (machine_answers && fails("getutxent", EIO)) return nullptr;
  if (!machine_answers) return __real_getutxent();
  if (session_cursor++ != 0) return nullptr;
  static utmpx record{};
  record.ut_type = USER_PROCESS;
  put("ts/0", record.ut_id);
  put("Jane", record.ut_user);
  put("pts/0", record.ut_line);
  return &record;
}

void __real_setutxent();
void __wrap_setutxent();
void __wrap_setutxent() {
  session_cursor = 0;
  if (!machine_answers) __real_setutxent();
}

int __real_utmpxname(const char* path);
int __wrap_utmpxname(const char* path);
int __wrap_utmpxname(const char* path) { return machine_answers ? 0 : __real_utmpxname(path); }

long __real_sysconf(int name);
long __wrap_sysconf(int name);
long __wrap_sysconf(int name) {
  if (fails("sysconf", EINVAL)) return -1;
  if (!machine_answers) return __real_sysconf(name);
  if (name == _SC_NPROCESSORS_ONLN) return 4;
  return name == _SC_GETPW_R_SIZE_MAX ? 20 : __real_sysconf(name);
}

int __real_statfs64(const char* path, struct statfs* figures);
int __wrap_statfs64(const char* path, struct statfs* figures);
int __wrap_statfs64(const char* path, struct statfs* figures) {
  if (fails("statfs", EIO)) return -1;
  const int result = __real_statfs64(path, figures);
  if (!machine_answers || result != 0) return result;
  figures->f_bsize = figures->f_frsize = 4096;
  figures->f_blocks = 1000000;
  figures->f_bfree = 300000;
  return result;
}

int __real_sysinfo(struct sysinfo* figures);
int __wrap_sysinfo(struct sysinfo* figures);
int __wrap_sysinfo(struct sysinfo* figures) {
  if (machine_answers && fails("sysinfo", EFAULT)) return -1;
  if (!machine_answers) return __real_sysinfo(figures);
  figures->totalram = kTotalMemory;
  figures->freeram = kFreeMemory;
  figures->mem_unit = 1;
  return 0;
}

time_t __real_time(time_t* now);
time_t __wrap_time(time_t* now);
time_t __wrap_time(time_t* now) { return machine_answers ? kNow : __real_time(now); }

tm* __real_localtime_r(const time_t* time, tm* broken_down);
tm* __wrap_localtime_r(const time_t* time, tm* broken_down);
tm* __wrap_localtime_r(const time_t* time, tm* broken_down) {
  return fails("localtime_r", EOVERFLOW) ? nullptr : __real_localtime_r(time, broken_down);
}

}  // extern "C"
