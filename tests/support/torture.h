// tests/support/torture.h: every call of the system that a function makes fails, one after another.
//
// A row names an exported function and a case of it, what that gives when nothing fails, and for
// each call that it makes what it gives when that one fails. The harness counts the calls, lets
// each fail in turn, once and onwards, and expects the row's answer, memory and descriptors as
// before, and the same function working as ever right behind. A call that no fault of the row
// speaks of fails the test; so does a fault that never came.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/calltrace.h"
#include "tests/support/scoped_error_word.h"

namespace orbtest {

constexpr int64_t kUntouched = ScopedErrorWord::kUntouched;
constexpr const char* kEndsTheProcess = "ends the process";  // by abort
constexpr const char* kGoesOn = "goes on";  // for as long as the call fails; not run

// How the next call may be told: "malloc" for any of that name, "malloc#2" for the second one, with
// " onwards" behind either for a call that fails with all that follow. The most special one holds.
struct Fault {
  const char* call;
  const char* answer;
  int64_t error_word = kUntouched;  // in nErrno
  size_t kept = 0;                  // blocks of memory that stay allocated by the interface's rule
  const char* or_answer = nullptr;  // as good: what failed may not have mattered for the answer
};

inline std::string answer_text(const std::string& text) { return text; }
inline std::string answer_text(const std::wstring& text) { return {text.begin(), text.end()}; }
inline std::string answer_text(const char* text) { return text == nullptr ? "null" : text; }

// Numbers in decimal; pointers as "null", "-1" (all ones) or "made".
template <class Result>
std::string answer_text(Result result) {
  if constexpr (std::is_pointer_v<Result>) {
    if (result == nullptr) return "null";
    return reinterpret_cast<intptr_t>(result) == -1 ? "-1" : "made";
  } else {
    return std::to_string(result);
  }
}

// One run of a row.
class Trial {
 public:
  Trial(size_t nth, Failing failing) : trace_(nth, failing) {}

  // Makes the tortured call, with what it gives as the answer. At most once in a run.
  template <class Call>
  auto call(Call tortured) -> decltype(tortured()) {
    using Result = decltype(tortured());
    watch();
    try {
      if constexpr (std::is_void_v<Result>) {
        tortured();
        stop_watching();
        answer("done");
      } else {
        Result result = tortured();
        stop_watching();
        answer(answer_text(result));
        return result;
      }
    } catch (const std::bad_alloc&) {
      stop_watching();
      answer("no memory");
      if constexpr (!std::is_void_v<Result>) return Result{};
    }
  }

  // The parts of call(), for a call that ends the thread which makes it.
  void watch();
  void stop_watching();

  // Says more of the outcome than the result does.
  void answer(const std::string& text);

  bool failed() const { return trace_.failures() != 0; }
  const CallTrace& trace() const { return trace_; }
  const char* answer() const { return answer_; }
  int64_t error_word() const { return error_word_; }

 private:
  CallTrace trace_;
  ScopedErrorWord word_;
  char answer_[200] = "no call";
  int64_t error_word_ = kUntouched;
};

struct Torture {
  const char* function;  // as the list of exports has it
  const char* name;      // of the case; "" when there is one
  const char* answer;
  std::function<void(Trial&)> body;  // sets up, calls, gives everything back
  std::vector<Fault> faults = {};
  size_t kept = 0;  // blocks that stay allocated when nothing fails
};

// The row of a function that asks for nothing.
template <class Call>
Torture plain_row(const char* function, const char* answer, Call call) {
  return {function, "", answer, [call](Trial& trial) { trial.call(call); }};
}

// Tortures one row; failures are test failures that name row and call.
void torture(const Torture& row);

// The functions that have rows, to be compared with the exports.
std::vector<const Torture*>& all_tortures();

// A table of rows, a static object in the file that has them.
class Tortures {
 public:
  explicit Tortures(std::vector<Torture> rows);

 private:
  std::vector<Torture> rows_;
};

}  // namespace orbtest
