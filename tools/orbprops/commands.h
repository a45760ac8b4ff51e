// tools/orbprops/commands.h: carries a command out.
#pragma once

#include <string_view>

#include "tools/orbprops/arguments.h"

namespace orbprops {

// Exit statuses.
inline constexpr int kAnswered = 0;
inline constexpr int kNotAnswered = 1;  // a key unknown or not answered, or output not written
inline constexpr int kUsage = 2;

// Collects, prints the answer on standard output and complaints and timings on standard error, and
// returns the exit status. secure_descriptors has been called.
int run(const Options& options);

// Writes `text` to standard output and closes it. Complains and returns kNotAnswered when that
// fails, else `status`.
int print(std::string_view text, int status);

}  // namespace orbprops
