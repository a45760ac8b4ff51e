// tests/darwin/headers/net/if.h: interface flags and indexes.
#pragma once

#include "scripted.h"

#define IFF_UP 0x1
#define IFF_LOOPBACK 0x8
#define IF_NAMESIZE 16

#ifdef __cplusplus
extern "C" {
#endif
unsigned int if_nametoindex(const char* name) ORB_SCRIPTED(if_nametoindex);
#ifdef __cplusplus
}
#endif
