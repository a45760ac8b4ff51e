// tests/darwin/headers/sys/socket.h: socket addresses that state their own length.
#pragma once

#include <stdint.h>
#include <sys/types.h>

#include "scripted.h"

typedef uint8_t sa_family_t;
typedef uint32_t socklen_t;

struct sockaddr {
  uint8_t sa_len;
  sa_family_t sa_family;
  char sa_data[14];
};

struct sockaddr_storage {
  uint8_t ss_len;
  sa_family_t ss_family;
  char ss_pad1[6];
  int64_t ss_align;
  char ss_pad2[112];
};

#define AF_UNSPEC 0
#define AF_INET 2
#define AF_LINK 18
#define AF_INET6 30

#define SOCK_STREAM 1
#define SOCK_DGRAM 2

#define SOL_SOCKET 0xffff
#define SO_ERROR 0x1007

#ifdef __cplusplus
extern "C" {
#endif
int socket(int family, int type, int protocol) ORB_SCRIPTED(socket);
int connect(int descriptor, const struct sockaddr* address, socklen_t size) ORB_SCRIPTED(connect);
int getsockname(int descriptor, struct sockaddr* address, socklen_t* size)
    ORB_SCRIPTED(getsockname);
int getsockopt(int descriptor, int level, int option, void* value, socklen_t* size)
    ORB_SCRIPTED(getsockopt);
#ifdef __cplusplus
}
#endif
