// tests/darwin/headers/assert.h: the host's header, and the report that macOS has instead.
// No "pragma once": the host's header may be read again with another NDEBUG.
#include_next <assert.h>

#include "scripted.h"

#ifdef __cplusplus
extern "C" {
#endif
void __assert_rtn(const char* function, const char* source, int line, const char* expression)
    ORB_SCRIPTED(assert_rtn) __attribute__((noreturn));
#ifdef __cplusplus
}
#endif
