// tests/support/faults.h: makes the n-th request for memory fail.
//
// Watched are operator new in every form, wherever it is called from, and malloc, calloc and
// realloc called by the code of this project (the C library's own calls are not). The sanitizers'
// allocators stay in place. A scope counts and fails the requests of its own thread only; what
// needs memory itself, an assertion for one, belongs behind the scope.
#pragma once

#include <cstddef>

namespace orbtest {

enum class Failing {
  once,     // the n-th request alone
  onwards,  // the n-th and every later one
};

// While it lives, request number `nth` (from 1) of this thread fails: null, or std::bad_alloc. A
// `nth` of 0 only counts. Scopes do not nest.
class MemoryFaults {
 public:
  explicit MemoryFaults(size_t nth, Failing failing = Failing::once);
  MemoryFaults(const MemoryFaults&) = delete;
  MemoryFaults& operator=(const MemoryFaults&) = delete;
  ~MemoryFaults();

  size_t requests() const;  // made in this scope, the failed ones included
  size_t failures() const;
};

// While it lives, requests of this thread are neither counted nor refused: what stands in for a
// system has memory of its own.
class FaultsPaused {
 public:
  FaultsPaused();
  FaultsPaused(const FaultsPaused&) = delete;
  FaultsPaused& operator=(const FaultsPaused&) = delete;
  ~FaultsPaused();

 private:
  const bool watched_before_;
};

// Runs `step(nth, failing)` with the first, second, ... request failing, once and onwards, until a
// run makes fewer than `nth` requests. `step` opens a MemoryFaults with both, does its work inside,
// checks the outcome behind it and returns the scope's failures(). Returns the requests of a
// whole run, so that a test can tell that any were made.
template <class Step>
size_t for_each_memory_fault(Step step) {
  size_t nth = 1;
  for (;; ++nth) {
    const size_t single = step(nth, Failing::once);
    const size_t lasting = step(nth, Failing::onwards);
    if (single == 0 && lasting == 0) return nth - 1;
  }
}

}  // namespace orbtest
