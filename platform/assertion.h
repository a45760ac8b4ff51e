// platform/assertion.h: the platform's report of a failed assertion.
#pragma once

namespace quillon_com::orb::platform {

// Reports, in the platform's own form on standard error, that `expression` was false in `function`
// at `line` of `source`, and ends the process with SIGABRT.
[[noreturn]] void report_assertion(const char* function, const char* source, int line,
                                   const char* expression);

}  // namespace quillon_com::orb::platform
