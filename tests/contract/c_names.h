// tests/contract/c_names.h: the addresses of everything that is exported with an unmangled name, as
// a C program sees it.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "platform/export.h"

ORB_EXTERN_C_BEGIN

typedef struct CName {
  const char* name;
  uintptr_t address;
} CName;

// Calls `visit` for each of them.
void each_c_name(void (*visit)(const CName* name, void* argument), void* argument);

ORB_EXTERN_C_END
