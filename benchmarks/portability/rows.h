// benchmarks/portability/rows.h: the measured loops, over small classes that stand for us and for
// each peer.
//
// An Event is made not set and closed with its scope; it has set(), reset() and wait(milliseconds),
// where kEndless has no end. A Lock has shared(), leave_shared(), exclusive(), leave_exclusive().
#pragma once

#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "benchmarks/family.h"

namespace orbbench {

constexpr long kEndless = -1;

template <class Event>
void create_close(benchmark::State& state) {
  for (auto _ : state) {
    Event event;
    benchmark::DoNotOptimize(&event);
  }
}

template <class Event>
void set_wait(benchmark::State& state) {
  Event event;
  for (auto _ : state) {
    event.set();
    event.wait(kEndless);
  }
}

template <class Event>
void wait_when_set(benchmark::State& state) {
  Event event;
  event.set();
  for (auto _ : state) event.wait(kEndless);
}

template <class Event>
void wait_0ms_not_set(benchmark::State& state) {
  Event event;
  for (auto _ : state) event.wait(0);
}

// One round: this thread wakes the other, which wakes this one.
template <class Event>
void ping_pong(benchmark::State& state) {
  Event ping;
  Event pong;
  bool over = false;
  std::thread other([&] {
    for (;;) {
      ping.wait(kEndless);
      ping.reset();
      if (over) return;
      pong.set();
    }
  });
  for (auto _ : state) {
    ping.set();
    pong.wait(kEndless);
    pong.reset();
  }
  over = true;
  ping.set();
  other.join();
}

// How often the system has taken the processor from the calling thread.
inline long preemptions() {
  rusage usage{};
  getrusage(RUSAGE_THREAD, &usage);
  return usage.ru_nivcsw;
}

// A batch of operations of two threads at once: both begin when both are there, and the later end
// counts. Each thread makes a Party and calls it for every operation.
struct Batch {
  double seconds;    // of one operation
  bool undisturbed;  // neither thread lost its processor: they did run at once
};
template <class Party>
Batch two_threads_batch() {
  using Clock = std::chrono::steady_clock;
  constexpr int kBatch = 2000;
  std::atomic<int> ready{0};
  std::atomic<int> done{0};
  std::atomic<long> lost{0};
  const auto meet = [](std::atomic<int>& meeting) {
    meeting.fetch_add(1);
    while (meeting.load() < 2) {
    }
  };
  const auto work = [&] {
    Party party;
    meet(ready);
    const long lost_before = preemptions();
    const Clock::time_point begin = Clock::now();
    for (int i = 0; i < kBatch; ++i) party();
    meet(done);
    const Clock::duration spent = Clock::now() - begin;
    lost.fetch_add(preemptions() - lost_before);
    return spent;
  };
  std::thread other(work);
  const std::chrono::duration<double> spent = work();
  other.join();
  return {spent.count() / (2 * kBatch), lost.load() == 0};
}

// What an operation costs where two threads do nothing else.
template <class Party>
void two_threads(benchmark::State& state) {
  constexpr int kMostTries = 20;  // a busy machine gives no undisturbed batch
  for (auto _ : state) {
    Batch batch = two_threads_batch<Party>();
    for (int tries = 1; !batch.undisturbed && tries < kMostTries; ++tries) {
      batch = two_threads_batch<Party>();
    }
    state.SetIterationTime(batch.seconds);
  }
}

template <class Lock>
void shared_pair(benchmark::State& state) {
  Lock lock;
  for (auto _ : state) {
    lock.shared();
    lock.leave_shared();
  }
}

template <class Lock>
void exclusive_pair(benchmark::State& state) {
  Lock lock;
  for (auto _ : state) {
    lock.exclusive();
    lock.leave_exclusive();
  }
}

template <class Lock>
void exclusive_three_deep(benchmark::State& state) {
  Lock lock;
  for (auto _ : state) {
    for (int depth = 0; depth < 3; ++depth) lock.exclusive();
    for (int depth = 0; depth < 3; ++depth) lock.leave_exclusive();
  }
}

}  // namespace orbbench
