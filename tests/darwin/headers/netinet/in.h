// tests/darwin/headers/netinet/in.h: internet addresses.
#pragma once

#include <sys/socket.h>

typedef uint32_t in_addr_t;
typedef uint16_t in_port_t;

struct in_addr {
  in_addr_t s_addr;
};

struct sockaddr_in {
  uint8_t sin_len;
  sa_family_t sin_family;
  in_port_t sin_port;
  struct in_addr sin_addr;
  char sin_zero[8];
};

struct in6_addr {
  uint8_t s6_addr[16];
};

struct sockaddr_in6 {
  uint8_t sin6_len;
  sa_family_t sin6_family;
  in_port_t sin6_port;
  uint32_t sin6_flowinfo;
  struct in6_addr sin6_addr;
  uint32_t sin6_scope_id;
};

#define INET_ADDRSTRLEN 16
#define INET6_ADDRSTRLEN 46
#define INADDR_ANY ((uint32_t)0)

static inline int IN6_IS_ADDR_UNSPECIFIED(const struct in6_addr* address) {
  int bits = 0;
  for (int i = 0; i < 16; ++i) bits |= address->s6_addr[i];
  return bits == 0;
}
