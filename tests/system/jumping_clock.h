// tests/system/jumping_clock.h: a wall clock that is set back and forth under the library.
#pragma once

#include <cstdint>

namespace orbtest {

// Sets the wall clock, as the code of this project reads it, `seconds` away from the machine's, for
// every thread, until the next jump. The machine's own clock, and what the kernel and the C
// library read of it, stay. A program that uses this file has clock_gettime, gettimeofday and time
// wrapped by its link.
void jump_clock(int64_t seconds);

// The clock is the machine's again at the end of the scope.
class JumpingClock {
 public:
  JumpingClock() = default;
  ~JumpingClock() { jump_clock(0); }
  JumpingClock(const JumpingClock&) = delete;
  JumpingClock& operator=(const JumpingClock&) = delete;
};

}  // namespace orbtest
