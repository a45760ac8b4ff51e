// tests/portability/call_script.h: system calls that answer by script and keep a record.
//
// A script belongs to the thread that opened it; other threads' calls go through.
#pragma once

#include <deque>
#include <string>
#include <vector>

namespace orbtest {

// One answer of sigwait: its result, the errno it leaves and the signal it stores.
struct SigwaitAnswer {
  int result;
  int error;
  int signal;
};

// While it lives, this thread's calls answer as the members say. Scripts do not nest.
class CallScript {
 public:
  CallScript();
  ~CallScript();
  CallScript(const CallScript&) = delete;
  CallScript& operator=(const CallScript&) = delete;

  // The next `busy_tries` exchanges of a spin word find it taken.
  size_t busy_tries = 0;
  size_t tries = 0;  // exchanges made
  struct Nap {
    size_t after_tries;
    unsigned microseconds;
    int cancel_state;  // of the napping thread
  };
  std::vector<Nap> naps;  // usleep's, which return at once while a script lives

  std::deque<SigwaitAnswer> sigwait_answers;  // taken one by one; the system answers when empty
  std::vector<std::string> log_calls;         // "open TAG OPTION FACILITY" and "close"
  bool dlclose_fails = false;
};

}  // namespace orbtest
