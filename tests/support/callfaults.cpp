// tests/support/callfaults.cpp: the watched system functions.
#include "tests/support/callfaults.h"

#include <pthread.h>
#include <sys/time.h>

#include <cerrno>
#include <utility>

namespace {

struct Watch {
  std::string_view function;
  int code = 0;
  size_t nth = 0;
  orbtest::Failing failing = orbtest::Failing::once;
  size_t calls = 0;
  size_t failures = 0;
};

thread_local Watch watch;
thread_local bool clock_stopped = false;
thread_local timeval stopped_at{};
thread_local timespec deadline{};

// The code that a call of `function` fails with, 0 when it is to be made.
int failure_of(std::string_view function) {
  if (watch.function != function) return 0;
  ++watch.calls;
  const bool due =
      watch.failing == orbtest::Failing::once ? watch.calls == watch.nth : watch.calls >= watch.nth;
  if (watch.nth == 0 || !due) return 0;
  ++watch.failures;
  return watch.code;
}

// What is to be done beside a call.
struct Companion {
  std::string_view function;
  std::function<void()> action;
  size_t nth = 1;
  size_t seen = 0;

  void accompany(std::string_view call) {
    if (function != call || ++seen != nth) return;
    function = {};
    action();
  }
};

thread_local Companion leader;
thread_local Companion follower;

// Passes on the result of a call of `function`, once what is to follow it is done.
int followed(std::string_view function, int result) {
  follower.accompany(function);
  return result;
}

}  // namespace

namespace orbtest {

CallFaults::CallFaults(std::string_view function, int code, size_t nth, Failing failing) {
  watch = {function, code, nth, failing, 0, 0};
}
CallFaults::~CallFaults() { watch.function = {}; }
size_t CallFaults::calls() const { return watch.calls; }
size_t CallFaults::failures() const { return watch.failures; }

AfterCall::AfterCall(std::string_view function, std::function<void()> action, size_t nth) {
  follower = {function, std::move(action), nth, 0};
}
AfterCall::~AfterCall() { follower = {}; }

BeforeCall::BeforeCall(std::string_view function, std::function<void()> action, size_t nth) {
  leader = {function, std::move(action), nth, 0};
}
BeforeCall::~BeforeCall() { leader = {}; }

StoppedClock::StoppedClock(time_t seconds, long microseconds) {
  stopped_at = {seconds, microseconds};
  clock_stopped = true;
}
StoppedClock::~StoppedClock() { clock_stopped = false; }

timespec last_deadline() { return deadline; }

}  // namespace orbtest

// Defines the stand-in of a pthread function: its name, its parameters and the same as arguments.
#define ORB_WATCHED(name, parameters, arguments)                        \
  int __real_##name parameters;                                         \
  int __wrap_##name parameters {                                        \
    leader.accompany(#name);                                            \
    const int code = failure_of(#name);                                 \
    return code != 0 ? code : followed(#name, __real_##name arguments); \
  }

extern "C" {

ORB_WATCHED(pthread_attr_init, (pthread_attr_t * made), (made))
ORB_WATCHED(pthread_attr_setdetachstate, (pthread_attr_t * made, int state), (made, state))
ORB_WATCHED(pthread_cond_init, (pthread_cond_t * made, const pthread_condattr_t* with),
            (made, with))
ORB_WATCHED(pthread_cond_broadcast, (pthread_cond_t * condition), (condition))
ORB_WATCHED(pthread_cond_wait, (pthread_cond_t * condition, pthread_mutex_t* guard),
            (condition, guard))
ORB_WATCHED(pthread_create,
            (pthread_t * made, const pthread_attr_t* with, void* (*body)(void*), void* argument),
            (made, with, body, argument))
ORB_WATCHED(pthread_key_create, (pthread_key_t * made, void (*at_end)(void*)), (made, at_end))
ORB_WATCHED(pthread_key_delete, (pthread_key_t key), (key))
ORB_WATCHED(pthread_mutex_init, (pthread_mutex_t * made, const pthread_mutexattr_t* with),
            (made, with))
ORB_WATCHED(pthread_mutex_lock, (pthread_mutex_t * mutex), (mutex))
ORB_WATCHED(pthread_mutex_trylock, (pthread_mutex_t * mutex), (mutex))
ORB_WATCHED(pthread_mutex_unlock, (pthread_mutex_t * mutex), (mutex))
ORB_WATCHED(pthread_setspecific, (pthread_key_t key, const void* value), (key, value))

int __real_pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* guard,
                                  const timespec* until);
int __wrap_pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* guard,
                                  const timespec* until) {
  deadline = *until;
  const int code = failure_of("pthread_cond_timedwait");
  return code != 0 ? code : __real_pthread_cond_timedwait(condition, guard, until);
}

int __real_gettimeofday(timeval* now, void* zone);
int __wrap_gettimeofday(timeval* now, void* zone) {
  const int code = failure_of("gettimeofday");
  if (code != 0) {
    errno = code;
    return -1;
  }
  if (!clock_stopped) return __real_gettimeofday(now, zone);
  *now = stopped_at;
  return 0;
}

}  // extern "C"
