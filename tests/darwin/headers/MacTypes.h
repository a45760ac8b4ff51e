// tests/darwin/headers/MacTypes.h: the system's oldest types.
#pragma once

#include <stdint.h>

typedef uint8_t UInt8;
typedef uint32_t UInt32;
typedef int32_t SInt32;
typedef unsigned char Boolean;
typedef uint32_t OSType;
typedef int16_t OSErr;

enum { noErr = 0 };
