// tests/soak/figures.h: what the process takes of the machine.
#pragma once

#include <cstddef>

namespace soak {

struct Figures {
  size_t in_use = 0;       // bytes that were allocated and not released, as the allocator counts
  size_t resident = 0;     // bytes
  size_t descriptors = 0;  // open, the one that lists them aside
  size_t threads = 0;
};

// The figures of this moment.
Figures figures_now();

// The allocator counts a released block as released only where no thread keeps some for itself:
// the variable of the environment that has to say so when the process starts, and its text.
constexpr const char* kExactName = "GLIBC_TUNABLES";
constexpr const char* kExactValue = "glibc.malloc.tcache_count=0";

}  // namespace soak
