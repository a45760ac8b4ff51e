// tests/support/callfaults.h: makes the n-th call of a system function fail, sets the wall clock.
//
// Watched are calls made by the code of this project (the C library's own calls are not) to
// gettimeofday and to the pthread functions that callfaults.cpp lists. A program that uses this
// file has each of them wrapped by its link. A scope counts and fails the calls of its own thread
// only. A call that fails does nothing.
#pragma once

#include <ctime>

#include <functional>
#include <string_view>

#include "tests/support/faults.h"

namespace orbtest {

// While it lives, call number `nth` (from 1) of `function` in this thread fails: a pthread function
// returns `code`, any other returns -1 with `code` in errno. A `nth` of 0 only counts. At most one
// scope is alive in a thread.
class CallFaults {
 public:
  CallFaults(std::string_view function, int code, size_t nth = 1, Failing failing = Failing::once);
  CallFaults(const CallFaults&) = delete;
  CallFaults& operator=(const CallFaults&) = delete;
  ~CallFaults();

  size_t calls() const;  // made in this scope, the failed ones included
  size_t failures() const;
};

// While it lives, `action` runs right behind call number `nth` (from 1) of the pthread function
// `function` that this thread makes and the system answers. At most one scope of the kind is alive
// in a thread.
class AfterCall {
 public:
  AfterCall(std::string_view function, std::function<void()> action, size_t nth = 1);
  AfterCall(const AfterCall&) = delete;
  AfterCall& operator=(const AfterCall&) = delete;
  ~AfterCall();
};

// The same right before the call is made, in place of a thread that is a moment faster.
class BeforeCall {
 public:
  BeforeCall(std::string_view function, std::function<void()> action, size_t nth = 1);
  BeforeCall(const BeforeCall&) = delete;
  BeforeCall& operator=(const BeforeCall&) = delete;
  ~BeforeCall();
};

// While it lives, gettimeofday tells this thread `seconds` and `microseconds`.
class StoppedClock {
 public:
  StoppedClock(time_t seconds, long microseconds);
  StoppedClock(const StoppedClock&) = delete;
  StoppedClock& operator=(const StoppedClock&) = delete;
  ~StoppedClock();
};

// The deadline of this thread's last pthread_cond_timedwait.
timespec last_deadline();

}  // namespace orbtest
