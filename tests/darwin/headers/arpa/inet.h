// tests/darwin/headers/arpa/inet.h: address texts.
#pragma once

#include <netinet/in.h>

#ifdef __cplusplus
extern "C" {
#endif
const char* inet_ntop(int family, const void* address, char* text, socklen_t size)
    ORB_SCRIPTED(inet_ntop);
int inet_pton(int family, const char* text, void* address) ORB_SCRIPTED(inet_pton);
#ifdef __cplusplus
}
#endif
