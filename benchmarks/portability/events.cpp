// benchmarks/portability/events.cpp: events, waits and mutex handles beside their plain versions.
#include <benchmark/benchmark.h>
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

#include "benchmarks/portability/plain.h"
#include "benchmarks/portability/rows.h"
#include "portability/handles.h"

namespace {

using namespace orbbench;

class OurEvent {
 public:
  OurEvent() : handle_(voxCreateEvent(nullptr, 1, 0, nullptr)) {}
  ~OurEvent() { voxCloseHandle(handle_); }
  OurEvent(const OurEvent&) = delete;
  OurEvent& operator=(const OurEvent&) = delete;
  void set() { voxSetEvent(handle_); }
  void reset() { voxResetEvent(handle_); }
  void wait(long milliseconds) {
    benchmark::DoNotOptimize(voxWaitForSingleObject(
        handle_, milliseconds < 0 ? INFINITE : static_cast<uint64_t>(milliseconds)));
  }

 private:
  _voxHandleObject_t* handle_;
};

class FormEvent {
 public:
  FormEvent() : form_(form_create()) {}
  ~FormEvent() { form_close(form_); }
  FormEvent(const FormEvent&) = delete;
  FormEvent& operator=(const FormEvent&) = delete;
  void set() { form_set(form_); }
  void reset() { form_reset(form_); }
  void wait(long milliseconds) { benchmark::DoNotOptimize(form_wait(form_, milliseconds)); }

 private:
  Form* form_;
};

void our_create_close(benchmark::State& state) {
  goal(state, "goal_ratio_POCO", 2.5);
  goal(state, "goal_ratio_WinPR", 0.03);
  create_close<OurEvent>(state);
}
BENCHMARK(our_create_close)->Name("event/create_close/ours");
BENCHMARK(create_close<FormEvent>)->Name("event/create_close/form");

void our_set_wait(benchmark::State& state) {
  goal(state, "goal_ratio_form", 1.15);
  set_wait<OurEvent>(state);
}
BENCHMARK(our_set_wait)->Name("event/set_wait/ours");
BENCHMARK(set_wait<FormEvent>)->Name("event/set_wait/form");

void our_wait_when_set(benchmark::State& state) {
  goal(state, "goal_ratio_form", 1.15);
  wait_when_set<OurEvent>(state);
}
BENCHMARK(our_wait_when_set)->Name("event/wait_when_set/ours");
BENCHMARK(wait_when_set<FormEvent>)->Name("event/wait_when_set/form");

void our_wait_0ms_not_set(benchmark::State& state) {
  goal(state, "goal_ratio_form", 1.5);
  wait_0ms_not_set<OurEvent>(state);
}
BENCHMARK(our_wait_0ms_not_set)->Name("event/wait_0ms_not_set/ours");
BENCHMARK(wait_0ms_not_set<FormEvent>)->Name("event/wait_0ms_not_set/form");

void our_ping_pong(benchmark::State& state) {
  goal(state, "goal_ratio_form", 1.1);
  ping_pong<OurEvent>(state);
}
BENCHMARK(our_ping_pong)->Name("event/ping_pong/ours")->UseRealTime();
BENCHMARK(ping_pong<FormEvent>)->Name("event/ping_pong/form")->UseRealTime();

class OurEvents {
 public:
  explicit OurEvents(size_t count) : handles_(count) {
    for (void*& handle : handles_) handle = voxCreateEvent(nullptr, 1, 0, nullptr);
  }
  ~OurEvents() {
    for (void* handle : handles_) voxCloseHandle(handle);
  }
  OurEvents(const OurEvents&) = delete;
  OurEvents& operator=(const OurEvents&) = delete;
  void* operator[](size_t index) const { return handles_[index]; }
  uint64_t wait_any() const {
    return voxWaitForMultipleObjects(handles_.size(), handles_.data(), 0, INFINITE);
  }

 private:
  std::vector<void*> handles_;
};

// The last of `count` events is set: the longest way to it.
template <size_t count>
void wait_any_last_set(benchmark::State& state) {
  goal(state, "goal_ratio_WinPR", 0.2);
  const OurEvents events(count);
  voxSetEvent(events[count - 1]);
  for (auto _ : state) benchmark::DoNotOptimize(events.wait_any());
}
BENCHMARK(wait_any_last_set<8>)->Name("wait_any/last_of_8_set/ours");
BENCHMARK(wait_any_last_set<64>)->Name("wait_any/last_of_64_set/ours");

// From the moment in which another thread sets one event to the end of the wait, at a new point of
// the wait's turns each time.
template <size_t count>
void wait_any_wake(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  goal(state, "goal_worst_ns", 11e6);
  const OurEvents events(count);
  int round = 0;
  double worst = 0;
  for (auto _ : state) {
    const auto pause = std::chrono::microseconds(3000 + round++ * 1300 % 10'000);
    Clock::time_point set_at;
    std::thread setter([&] {
      std::this_thread::sleep_for(pause);
      set_at = Clock::now();
      voxSetEvent(events[count / 2]);
    });
    benchmark::DoNotOptimize(events.wait_any());
    const Clock::time_point woken_at = Clock::now();
    setter.join();
    const double seconds = std::chrono::duration<double>(woken_at - set_at).count();
    worst = std::max(worst, seconds);
    state.SetIterationTime(seconds);
    voxResetEvent(events[count / 2]);
  }
  goal(state, "worst_ns", worst * 1e9);
}
BENCHMARK(wait_any_wake<1>)->Name("wait_any/wake_1/ours")->UseManualTime()->Iterations(8);
BENCHMARK(wait_any_wake<8>)->Name("wait_any/wake_8/ours")->UseManualTime()->Iterations(8);
BENCHMARK(wait_any_wake<64>)->Name("wait_any/wake_64/ours")->UseManualTime()->Iterations(8);

void our_mutex(benchmark::State& state) {
  goal(state, "goal_ratio_pthread", 4);
  goal(state, "goal_ratio_WinPR", 1.2);
  _voxHandleObject_t* mutex = voxCreateMutex(nullptr, 0, nullptr);
  for (auto _ : state) {
    benchmark::DoNotOptimize(voxWaitForSingleObject(mutex, 1000));
    voxReleaseMutex(mutex);
  }
  voxCloseHandle(mutex);
}
BENCHMARK(our_mutex)->Name("mutex/acquire_release/ours");

void pthread_mutex(benchmark::State& state) {
  pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
  for (auto _ : state) {
    pthread_mutex_lock(&mutex);
    pthread_mutex_unlock(&mutex);
  }
}
BENCHMARK(pthread_mutex)->Name("mutex/acquire_release/pthread");

}  // namespace
