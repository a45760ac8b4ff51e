// benchmarks/portability/plain.h: the plain versions of what the portability core offers.
//
// Compiled apart from the benchmarks, so that they cost a call as ours do.
#pragma once

#include <pthread.h>

namespace orbbench {

constexpr int kCacheLine = 128;  // bytes, the longest of the processors in use

// A manual-reset event: a heap record with one mutex and one condition.
struct Form {
  pthread_mutex_t mutex;
  pthread_cond_t condition;
  bool set;  // guarded by mutex
};

// Makes an event that is not set.
Form* form_create();
void form_close(Form* form);
void form_set(Form* form);
void form_reset(Form* form);

// Waits until the event is set. False when `milliseconds` are over before; -1 has no end, 0 looks.
bool form_wait(Form* form, long milliseconds);

// Adds 1 to `*p`, or stores `value` and returns what was there, under one mutex.
long increment_under_mutex(long* p);
long exchange_under_mutex(long* p, long value);

}  // namespace orbbench
