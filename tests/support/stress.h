// tests/support/stress.h: how long the stress tests run.
#pragma once

#include <cstdlib>

namespace orbtest {

// Rounds of a stress test: what the build asks for, or ORB_STRESS_ROUNDS of the environment.
inline long stress_rounds() {
  const char* wanted = getenv("ORB_STRESS_ROUNDS");
  return wanted == nullptr ? ORB_USUAL_STRESS_ROUNDS : atol(wanted);
}

}  // namespace orbtest
