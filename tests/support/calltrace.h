// tests/support/calltrace.h: lists what a piece of code asks of the system and makes any of it
// fail.
//
// Watched are the calls that calltrace.cpp lists, made by the code of this project, and operator
// new wherever it is called from. The link of a program that uses this file wraps each of them (see
// tests/torture/CMakeLists.txt). Calls that give something back, close and pthread_mutex_unlock for
// two, do it and then tell that they failed, as the system's own do; others do nothing.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <string>

#include "tests/support/faults.h"

namespace orbtest {

// The watched calls of one thread, the first of them that come. At most one is attached to a
// thread.
class CallTrace {
 public:
  // Call number `nth` (from 1) is to fail, and those behind it too when `failing` says so; 0 lets
  // all go through.
  CallTrace(size_t nth, Failing failing) : nth_(nth), failing_(failing) {}
  CallTrace(const CallTrace&) = delete;
  CallTrace& operator=(const CallTrace&) = delete;
  ~CallTrace() { detach(); }

  void attach();  // to the calling thread
  void detach();  // from the calling thread; nothing when it is not attached to it

  size_t calls() const { return made_; }
  size_t failures() const { return failures_; }
  // The name of the last call that failed. "" before the first.
  const char* failed() const { return failed_; }
  // The name of call `index` (from 0) and, behind a "#", which one of its name it is: "malloc#2".
  std::string call(size_t index) const;
  // The last call made; safe while the traced thread runs. "" before the first.
  const char* last() const { return last_; }

  bool fails(const char* function);  // notes a call; whether it is to fail

 private:
  static constexpr size_t kRoom = 50000;

  const size_t nth_;
  const Failing failing_;
  std::array<const char*, kRoom> names_;  // the first made_
  size_t made_ = 0;
  std::atomic<size_t> failures_{0};
  std::atomic<const char*> last_{""};
  const char* failed_ = "";
};

// While it lives, memory that this thread asks for and nobody gives back is counted. Scopes do not
// nest.
class LiveMemory {
 public:
  LiveMemory();
  ~LiveMemory();
  LiveMemory(const LiveMemory&) = delete;
  LiveMemory& operator=(const LiveMemory&) = delete;

  size_t blocks() const;
};

}  // namespace orbtest
