// tests/system/jumping_clock.cpp: stands before the calls that read the wall clock.
#include "tests/system/jumping_clock.h"

#include <sys/time.h>

#include <atomic>
#include <ctime>

namespace {

std::atomic<int64_t> distance{0};  // seconds

}  // namespace

namespace orbtest {

void jump_clock(int64_t seconds) { distance = seconds; }

}  // namespace orbtest

extern "C" {

int __real_clock_gettime(clockid_t clock, timespec* now);
int __wrap_clock_gettime(clockid_t clock, timespec* now);
int __real_gettimeofday(timeval* now, void* zone);
int __wrap_gettimeofday(timeval* now, void* zone);
time_t __real_time(time_t* now);
time_t __wrap_time(time_t* now);

int __wrap_clock_gettime(clockid_t clock, timespec* now) {
  const int code = __real_clock_gettime(clock, now);
  if (code == 0 && clock == CLOCK_REALTIME) now->tv_sec += distance;
  return code;
}

int __wrap_gettimeofday(timeval* now, void* zone) {
  const int code = __real_gettimeofday(now, zone);
  if (code == 0) now->tv_sec += distance;
  return code;
}

time_t __wrap_time(time_t* now) {
  const time_t jumped = __real_time(nullptr) + distance;
  if (now != nullptr) *now = jumped;
  return jumped;
}

}  // extern "C"
