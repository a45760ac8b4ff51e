// benchmarks/portability/plain.cpp: an event and two operations on a word, written plainly.
#include "benchmarks/portability/plain.h"

#include <cstdlib>
#include <ctime>

namespace orbbench {
namespace {

alignas(kCacheLine) pthread_mutex_t word_mutex = PTHREAD_MUTEX_INITIALIZER;

timespec deadline_after(long milliseconds) {
  timespec deadline{};
  clock_gettime(CLOCK_REALTIME, &deadline);
  deadline.tv_sec += milliseconds / 1000;
  deadline.tv_nsec += milliseconds % 1000 * 1'000'000;
  if (deadline.tv_nsec >= 1'000'000'000) {
    deadline.tv_nsec -= 1'000'000'000;
    ++deadline.tv_sec;
  }
  return deadline;
}

}  // namespace

Form* form_create() {
  auto* form = static_cast<Form*>(malloc(sizeof(Form)));
  if (form == nullptr) abort();
  pthread_mutex_init(&form->mutex, nullptr);
  pthread_cond_init(&form->condition, nullptr);
  form->set = false;
  return form;
}

void form_close(Form* form) {
  pthread_cond_destroy(&form->condition);
  pthread_mutex_destroy(&form->mutex);
  free(form);
}

void form_set(Form* form) {
  pthread_mutex_lock(&form->mutex);
  form->set = true;
  pthread_cond_broadcast(&form->condition);
  pthread_mutex_unlock(&form->mutex);
}

void form_reset(Form* form) {
  pthread_mutex_lock(&form->mutex);
  form->set = false;
  pthread_mutex_unlock(&form->mutex);
}

bool form_wait(Form* form, long milliseconds) {
  pthread_mutex_lock(&form->mutex);
  if (milliseconds < 0) {
    while (!form->set) pthread_cond_wait(&form->condition, &form->mutex);
  } else if (milliseconds > 0 && !form->set) {
    const timespec deadline = deadline_after(milliseconds);
    while (!form->set && pthread_cond_timedwait(&form->condition, &form->mutex, &deadline) == 0) {
    }
  }
  const bool set = form->set;
  pthread_mutex_unlock(&form->mutex);
  return set;
}

long increment_under_mutex(long* p) {
  pthread_mutex_lock(&word_mutex);
  const long after = ++*p;
  pthread_mutex_unlock(&word_mutex);
  return after;
}

long exchange_under_mutex(long* p, long value) {
  pthread_mutex_lock(&word_mutex);
  const long before = *p;
  *p = value;
  pthread_mutex_unlock(&word_mutex);
  return before;
}

}  // namespace orbbench
