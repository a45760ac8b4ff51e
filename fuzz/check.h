// fuzz/check.h: what every fuzzer compares with.
#pragma once

#include <cstdlib>

namespace orbfuzz {

// Aborts, which libFuzzer reports with the input that led here.
inline void check(bool holds) {
  if (!holds) std::abort();
}

}  // namespace orbfuzz
