// tests/portability/call_script.cpp: what the linker puts before the scripted calls.
#include "tests/portability/call_script.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>

namespace {

thread_local orbtest::CallScript* script = nullptr;

}  // namespace

namespace orbtest {

CallScript::CallScript() { script = this; }
CallScript::~CallScript() { script = nullptr; }

}  // namespace orbtest

extern "C" {

long __real_voxInterlockedExchange(long* word, long value);
int __real_usleep(useconds_t microseconds);
int __real_sigwait(const sigset_t* mask, int* signal);
void __real_openlog(const char* ident, int option, int facility);
void __real_closelog();
int __real_dlclose(void* library);

long __wrap_voxInterlockedExchange(long* word, long value) {
  if (script != nullptr && value == 1) {
    ++script->tries;
    if (script->tries <= script->busy_tries) return 1;
  }
  return __real_voxInterlockedExchange(word, value);
}

int __wrap_usleep(useconds_t microseconds) {
  if (script == nullptr) return __real_usleep(microseconds);
  int state = -1, disabled = -1;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
  pthread_setcancelstate(state, &disabled);
  script->naps.push_back({script->tries, microseconds, state});
  return 0;
}

int __wrap_sigwait(const sigset_t* mask, int* signal) {
  if (script == nullptr || script->sigwait_answers.empty()) return __real_sigwait(mask, signal);
  const orbtest::SigwaitAnswer answer = script->sigwait_answers.front();
  script->sigwait_answers.pop_front();
  *signal = answer.signal;
  errno = answer.error;
  return answer.result;
}

void __wrap_openlog(const char* ident, int option, int facility) {
  if (script != nullptr) {
    script->log_calls.push_back("open " + std::string(ident) + " " + std::to_string(option) + " " +
                                std::to_string(facility));
  }
  __real_openlog(ident, option, facility);
}

void __wrap_closelog() {
  if (script != nullptr) script->log_calls.push_back("close");
  __real_closelog();
}

int __wrap_dlclose(void* library) {
  const int result = __real_dlclose(library);
  return script != nullptr && script->dlclose_fails ? -1 : result;
}

// Memory that stays allocated by the interface's own rules.
const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:load_new\nleak:add_notification\n"; }

}  // extern "C"
