// platform/linux_assertion.cpp: platform/assertion.h for glibc.
#undef NDEBUG  // the declaration is wanted, whatever becomes of assertions elsewhere
#include <assert.h>

#include "platform/assertion.h"

namespace quillon_com::orb::platform {

void report_assertion(const char* function, const char* source, int line, const char* expression) {
  __assert_fail(expression, source, static_cast<unsigned>(line), function);
}

}  // namespace quillon_com::orb::platform
