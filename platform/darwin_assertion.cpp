// platform/darwin_assertion.cpp: platform/assertion.h for the C library of macOS.
#undef NDEBUG  // the declaration is wanted, whatever becomes of assertions elsewhere
#include <assert.h>

#include "platform/assertion.h"

namespace quillon_com::orb::platform {

void report_assertion(const char* function, const char* source, int line, const char* expression) {
  __assert_rtn(function, source, line, expression);
}

}  // namespace quillon_com::orb::platform
