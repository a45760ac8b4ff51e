// tests/support/torture.cpp: runs the rows.
#include "tests/support/torture.h"

#include <chrono>
#include <cstring>
#include <filesystem>
#include <map>
#include <thread>

#include "tests/support/forked_child.h"

namespace orbtest {
namespace {

size_t open_descriptors() {
  size_t count = 0;
  for ([[maybe_unused]] const auto& each : std::filesystem::directory_iterator("/proc/self/fd"))
    ++count;
  return count;
}

struct Outcome {
  std::string answer;
  int64_t error_word;
  size_t kept;
  size_t calls;
  size_t failures;
};

// Blocks that a thread of the library's own still gives back get the time to be.
size_t settled_blocks(const LiveMemory& memory, size_t wanted) {
  for (int turn = 0; memory.blocks() != wanted && turn < 2000; ++turn)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return memory.blocks();
}

Outcome run(const Torture& row, Trial& trial, size_t kept) {
  size_t blocks = 0;
  {
    const LiveMemory memory;
    row.body(trial);
    blocks = settled_blocks(memory, kept);
  }
  return {trial.answer(), trial.error_word(), blocks, trial.trace().calls(),
          trial.trace().failures()};
}

const Fault* fault_called(const Torture& row, const std::string& call) {
  for (const Fault& each : row.faults)
    if (call == each.call) return &each;
  return nullptr;
}

// The fault that speaks of a failing call; null when the row has none.
const Fault* fault_of(const Torture& row, const std::string& call, Failing failing) {
  const std::string name = call.substr(0, call.find('#'));
  const std::string onwards = failing == Failing::onwards ? " onwards" : "";
  for (const std::string& spelling : {call + onwards, name + onwards, call, name})
    if (const Fault* fault = fault_called(row, spelling)) return fault;
  return nullptr;
}

class Session {
 public:
  explicit Session(const Torture& row) : row_(row) {}

  void run_all() {
    const std::string when = "when nothing fails";
    expect(run_plain(), normal(), when);  // makes what is made once in a process
    auto counting = std::make_unique<Trial>(0, Failing::once);
    const Outcome whole = run(row_, *counting, row_.kept);
    expect(whole, normal(), when);
    for (size_t nth = 1; nth <= whole.calls && !testing::Test::HasFailure(); ++nth) {
      const std::string call = counting->trace().call(nth - 1);
      fail(call, nth, Failing::once);
      fail(call, nth, Failing::onwards);
    }
    for (const Fault& fault : row_.faults)
      EXPECT_TRUE(came_[fault.call] || testing::Test::HasFailure())
          << title() << ": no call fails as " << fault.call << " says";
  }

 private:
  Fault normal() const { return {"", row_.answer, kUntouched, row_.kept, nullptr}; }

  std::string title() const { return std::string(row_.function) + " " + row_.name; }

  Outcome run_plain() const {
    const auto trial = std::make_unique<Trial>(0, Failing::once);
    return run(row_, *trial, row_.kept);
  }

  void fail(const std::string& call, size_t nth, Failing failing) {
    const Fault* fault = fault_of(row_, call, failing);
    const std::string when =
        call + (failing == Failing::onwards ? " and all behind it" : "") + " failing";
    if (fault == nullptr) {
      ADD_FAILURE() << title() << ": the row does not say what it gives with " << when;
      return;
    }
    came_[fault->call] = true;
    if (strcmp(fault->answer, kGoesOn) == 0) return;
    if (strcmp(fault->answer, kEndsTheProcess) == 0) {
      EXPECT_EQ("killed by signal 6", outcome_in_child([&] {
                  Trial trial(nth, failing);
                  row_.body(trial);
                }))
          << title() << " with " << when;
      return;
    }
    const size_t open_before = open_descriptors();
    const auto trial = std::make_unique<Trial>(nth, failing);
    const Outcome outcome = run(row_, *trial, fault->kept);
    expect(outcome, *fault, "with " + when);
    EXPECT_LE(1u, outcome.failures) << title() << ": no call failed with " << when;
    EXPECT_EQ(open_before, open_descriptors()) << title() << " with " << when;
    expect(run_plain(), normal(), "behind " + when);
  }

  void expect(const Outcome& outcome, const Fault& wanted, const std::string& when) const {
    const bool other = wanted.or_answer != nullptr && wanted.or_answer == outcome.answer;
    EXPECT_EQ(other ? wanted.or_answer : wanted.answer, outcome.answer) << title() << " " << when;
    EXPECT_EQ(wanted.error_word, outcome.error_word) << title() << ": nErrno " << when;
    EXPECT_EQ(wanted.kept, outcome.kept) << title() << ": blocks kept " << when;
  }

  const Torture& row_;
  std::map<std::string, bool> came_;
};

}  // namespace

void Trial::watch() {
  word_.clear();
  trace_.attach();
}

void Trial::stop_watching() {
  trace_.detach();
  error_word_ = word_.stored();
}

void Trial::answer(const std::string& text) {
  const size_t length = text.copy(answer_, sizeof answer_ - 1);
  answer_[length] = '\0';
}

void torture(const Torture& row) { Session(row).run_all(); }

std::vector<const Torture*>& all_tortures() {
  static std::vector<const Torture*> all;
  return all;
}

Tortures::Tortures(std::vector<Torture> rows) : rows_(std::move(rows)) {
  for (const Torture& row : rows_) all_tortures().push_back(&row);
}

}  // namespace orbtest
