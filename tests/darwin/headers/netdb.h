// tests/darwin/headers/netdb.h: the resolver; its addrinfo has the name before the address.
#pragma once

#include <netinet/in.h>

struct hostent {
  char* h_name;
  char** h_aliases;
  int h_addrtype;
  int h_length;
  char** h_addr_list;
};

struct addrinfo {
  int ai_flags;
  int ai_family;
  int ai_socktype;
  int ai_protocol;
  socklen_t ai_addrlen;
  char* ai_canonname;
  struct sockaddr* ai_addr;
  struct addrinfo* ai_next;
};

#define AI_NUMERICHOST 0x00000004
#define NI_NUMERICHOST 0x00000002
#define NI_NUMERICSERV 0x00000008
#define NI_MAXHOST 1025
#define EAI_FAIL 4
#define EAI_MEMORY 6
#define EAI_NONAME 8
#define EAI_OVERFLOW 14

#ifdef __cplusplus
extern "C" {
#endif
struct hostent* gethostbyname(const char* name) ORB_SCRIPTED(gethostbyname);
int getaddrinfo(const char* host, const char* service, const struct addrinfo* hints,
                struct addrinfo** list) ORB_SCRIPTED(getaddrinfo);
void freeaddrinfo(struct addrinfo* list) ORB_SCRIPTED(freeaddrinfo);
int getnameinfo(const struct sockaddr* address, socklen_t size, char* host, socklen_t host_size,
                char* service, socklen_t service_size, int flags) ORB_SCRIPTED(getnameinfo);
#ifdef __cplusplus
}
#endif
