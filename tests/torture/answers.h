// tests/torture/answers.h: what rows of property texts share.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/support/torture.h"

namespace orbtest {

// What stands for no answer in the rows below: the default of a property, or, where memory ran out,
// an exception or an empty text, which none of this machine's is.
constexpr const char* kNone = "N/A";

inline void note_none(Trial& trial) {
  if (*trial.answer() == '\0' || trial.answer() == std::string("no memory")) trial.answer(kNone);
}

// The same faults; whatever fails with all behind it leaves no memory for the answer.
inline std::vector<Fault> and_onwards(std::vector<Fault> faults) {
  static std::vector<std::unique_ptr<std::string>> names;
  const size_t given = faults.size();
  for (size_t each = 0; each < given; ++each) {
    names.push_back(std::make_unique<std::string>(std::string(faults[each].call) + " onwards"));
    faults.push_back({names.back()->c_str(), kNone});
  }
  return faults;
}

// The faults of memory for an answer that needs both kinds. One may strike a text that is collected
// along with the answer's own.
inline std::vector<Fault> and_memory(const char* answer, std::vector<Fault> faults) {
  for (const char* call : {"malloc", "operator new"})
    faults.push_back({call, kNone, kUntouched, 0, answer});
  return faults;
}

}  // namespace orbtest
