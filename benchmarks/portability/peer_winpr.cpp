// benchmarks/portability/peer_winpr.cpp: WinPR's rows. Its macros bear names of ours: no header of
// the library may stand beside its own.
#include <benchmark/benchmark.h>
#include <winpr/collections.h>
#include <winpr/synch.h>
#include <winpr/thread.h>

#include <array>

#include "benchmarks/portability/rows.h"

namespace {

using namespace orbbench;

class WinprEvent {
 public:
  WinprEvent() : handle_(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}
  ~WinprEvent() { CloseHandle(handle_); }
  WinprEvent(const WinprEvent&) = delete;
  WinprEvent& operator=(const WinprEvent&) = delete;
  void set() { SetEvent(handle_); }
  void reset() { ResetEvent(handle_); }
  void wait(long milliseconds) {
    benchmark::DoNotOptimize(WaitForSingleObject(
        handle_, milliseconds < 0 ? INFINITE : static_cast<DWORD>(milliseconds)));
  }
  HANDLE handle() const { return handle_; }

 private:
  HANDLE handle_;
};

BENCHMARK(create_close<WinprEvent>)->Name("event/create_close/WinPR");
BENCHMARK(set_wait<WinprEvent>)->Name("event/set_wait/WinPR");
BENCHMARK(wait_when_set<WinprEvent>)->Name("event/wait_when_set/WinPR");
BENCHMARK(wait_0ms_not_set<WinprEvent>)->Name("event/wait_0ms_not_set/WinPR");
BENCHMARK(ping_pong<WinprEvent>)->Name("event/ping_pong/WinPR")->UseRealTime();

template <size_t count>
void wait_any_last_set(benchmark::State& state) {
  std::array<WinprEvent, count> events;
  std::array<HANDLE, count> handles{};
  for (size_t i = 0; i < count; ++i) handles[i] = events[i].handle();
  events[count - 1].set();
  for (auto _ : state) {
    benchmark::DoNotOptimize(WaitForMultipleObjects(count, handles.data(), FALSE, INFINITE));
  }
}
BENCHMARK(wait_any_last_set<8>)->Name("wait_any/last_of_8_set/WinPR");
BENCHMARK(wait_any_last_set<64>)->Name("wait_any/last_of_64_set/WinPR");

void mutex(benchmark::State& state) {
  HANDLE handle = CreateMutexA(nullptr, FALSE, nullptr);
  for (auto _ : state) {
    benchmark::DoNotOptimize(WaitForSingleObject(handle, 1000));
    ReleaseMutex(handle);
  }
  CloseHandle(handle);
}
BENCHMARK(mutex)->Name("mutex/acquire_release/WinPR");

DWORD nothing(LPVOID) { return 0; }

void thread(benchmark::State& state) {
  for (auto _ : state) {
    HANDLE handle = CreateThread(nullptr, 0, nothing, nullptr, 0, nullptr);
    WaitForSingleObject(handle, INFINITE);
    CloseHandle(handle);
  }
}
BENCHMARK(thread)->Name("thread/create_wait_close/WinPR")->UseRealTime();

void tls(benchmark::State& state) {
  const DWORD slot = TlsAlloc();
  for (auto _ : state) {
    TlsSetValue(slot, &state);
    benchmark::DoNotOptimize(TlsGetValue(slot));
  }
  TlsFree(slot);
}
BENCHMARK(tls)->Name("tls/set_get/WinPR");

class CriticalSection {
 public:
  CriticalSection() { InitializeCriticalSection(&section_); }
  ~CriticalSection() { DeleteCriticalSection(&section_); }
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;
  void exclusive() { EnterCriticalSection(&section_); }
  void leave_exclusive() { LeaveCriticalSection(&section_); }

 private:
  CRITICAL_SECTION section_{};
};
BENCHMARK(exclusive_three_deep<CriticalSection>)
    ->Name("selock/exclusive_3_deep/WinPR_critical_section");

void queue(benchmark::State& state) {
  wQueue* list = Queue_New(TRUE, -1, -1);
  for (auto _ : state) {
    Queue_Enqueue(list, &state);
    benchmark::DoNotOptimize(Queue_Dequeue(list));
  }
  Queue_Free(list);
}
BENCHMARK(queue)->Name("list/insert_remove/WinPR_queue");

}  // namespace
