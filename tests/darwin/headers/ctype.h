// tests/darwin/headers/ctype.h: the host's header, and the table look-ups that macOS adds.
#pragma once

#include_next <ctype.h>

#include "scripted.h"

#define _CTYPE_A 0x00000100L
#define _CTYPE_D 0x00000400L
#define _CTYPE_S 0x00004000L

#ifdef __cplusplus
extern "C" {
#endif
int __maskrune(int c, unsigned long classes) ORB_SCRIPTED(maskrune);
int __tolower(int c) ORB_SCRIPTED(tolower);
int __toupper(int c) ORB_SCRIPTED(toupper);
#ifdef __cplusplus
}
#endif
