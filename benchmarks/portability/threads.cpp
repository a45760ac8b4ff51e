// benchmarks/portability/threads.cpp: threads, thread-local slots and interlocked operations.
#include <benchmark/benchmark.h>
#include <pthread.h>

#include <thread>

#include "benchmarks/portability/plain.h"
#include "benchmarks/portability/rows.h"
#include "portability/threads.h"

namespace {

using namespace orbbench;

void* nothing(void*) { return nullptr; }

void our_thread(benchmark::State& state) {
  goal(state, "goal_ratio_detached_form", 1.15);
  goal(state, "goal_ratio_WinPR", 0.85);
  for (auto _ : state) {
    _voxHandleObject_t* thread = voxBeginThread(nullptr, 0, nothing, nullptr, 0, nullptr);
    voxWaitForSingleObject(thread, INFINITE);
    voxCloseHandle(thread);
  }
}
BENCHMARK(our_thread)->Name("thread/create_wait_close/ours")->UseRealTime();

void* set_form(void* form) {
  form_set(static_cast<Form*>(form));
  return nullptr;
}

void detached_form(benchmark::State& state) {
  for (auto _ : state) {
    Form* ended = form_create();
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread{};
    if (pthread_create(&thread, &attributes, set_form, ended) == 0) form_wait(ended, kEndless);
    pthread_attr_destroy(&attributes);
    form_close(ended);
  }
}
BENCHMARK(detached_form)->Name("thread/create_wait_close/detached_form")->UseRealTime();

void std_thread(benchmark::State& state) {
  for (auto _ : state) std::thread([] {}).join();
}
BENCHMARK(std_thread)->Name("thread/create_wait_close/std_thread")->UseRealTime();

void our_tls(benchmark::State& state) {
  goal(state, "goal_ratio_WinPR", 2);
  const auto slot = static_cast<uint32_t>(voxTlsAlloc());
  for (auto _ : state) {
    voxTlsSetValue(slot, &state);
    benchmark::DoNotOptimize(voxTlsGetValue(slot));
  }
  voxTlsFree(slot);
}
BENCHMARK(our_tls)->Name("tls/set_get/ours");

void pthread_tls(benchmark::State& state) {
  pthread_key_t key{};
  if (pthread_key_create(&key, nullptr) != 0) state.SkipWithError("no key");
  for (auto _ : state) {
    pthread_setspecific(key, &state);
    benchmark::DoNotOptimize(pthread_getspecific(key));
  }
  pthread_key_delete(key);
}
BENCHMARK(pthread_tls)->Name("tls/set_get/pthread");

// The interlocked operations and their plain versions, on one word of all threads. It shares its
// cache line with nothing that an operation reads.
alignas(kCacheLine) long word = 0;

struct Increment {
  void operator()() const { benchmark::DoNotOptimize(voxInterlockedIncrement(&word)); }
};
struct PlainIncrement {
  void operator()() const { benchmark::DoNotOptimize(increment_under_mutex(&word)); }
};
struct Exchange {
  void operator()() const { benchmark::DoNotOptimize(voxInterlockedExchange(&word, 1)); }
};
struct PlainExchange {
  void operator()() const { benchmark::DoNotOptimize(exchange_under_mutex(&word, 1)); }
};

template <class Operation>
void one_thread(benchmark::State& state) {
  for (auto _ : state) Operation()();
}

// `run` with the goal that every interlocked operation has.
template <void (*run)(benchmark::State&)>
void interlocked(benchmark::State& state) {
  goal(state, "goal_ratio_mutexed", 1.25);
  run(state);
}

constexpr int kBatches = 20;

BENCHMARK(interlocked<one_thread<Increment>>)->Name("interlocked/increment/ours");
BENCHMARK(one_thread<PlainIncrement>)->Name("interlocked/increment/mutexed");
BENCHMARK(interlocked<one_thread<Exchange>>)->Name("interlocked/exchange/ours");
BENCHMARK(one_thread<PlainExchange>)->Name("interlocked/exchange/mutexed");
BENCHMARK(interlocked<two_threads<Increment>>)
    ->Name("interlocked/increment_2_threads/ours")
    ->Iterations(kBatches)
    ->UseManualTime();
BENCHMARK(two_threads<PlainIncrement>)
    ->Name("interlocked/increment_2_threads/mutexed")
    ->Iterations(kBatches)
    ->UseManualTime();
BENCHMARK(interlocked<two_threads<Exchange>>)
    ->Name("interlocked/exchange_2_threads/ours")
    ->Iterations(kBatches)
    ->UseManualTime();
BENCHMARK(two_threads<PlainExchange>)
    ->Name("interlocked/exchange_2_threads/mutexed")
    ->Iterations(kBatches)
    ->UseManualTime();

}  // namespace
