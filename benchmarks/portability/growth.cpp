// benchmarks/portability/growth.cpp: lists of up to a million items, and a lock of many threads.
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "benchmarks/family.h"
#include "portability/Linklist.h"
#include "portability/selock.h"
#include "tests/support/attached.h"

namespace {

// An item of any list family.
struct Item {
  void* first;
  void* second;
};
using Items = std::vector<Item>;

// Links all items to one another and takes each out again, or walks them; by hand.
void fill_plainly(Items& items) {
  void* head = nullptr;
  for (Item& item : items) {
    item.first = head;
    head = &item;
    benchmark::DoNotOptimize(head);
  }
  while (head != nullptr) {
    head = static_cast<Item*>(head)->first;
    benchmark::DoNotOptimize(head);
  }
}

// Fills a list with all items and empties it again.
void fill_bare(Items& items) {
  void* head = nullptr;
  vxLL_Init(&head);
  for (Item& item : items) vxLL_XInsertHead(&head, &item);
  while (vxLL_XRemoveHead(&head) != nullptr) continue;
}

void fill_singly(Items& items) {
  _vxSLL_t* list = nullptr;
  vxSLL_Create(&list);
  for (Item& item : items) vxSLL_XInsertHead(list, &item);
  vxSLL_Release(list);
}

void fill_doubly(Items& items) {
  _vxSLL2_t* list = nullptr;
  vxSLL2_Create(&list);
  for (Item& item : items) vxSLL2_XInsertTail(list, &item);
  vxSLL2_Release(list);
}

void fill_counted(Items& items) {
  _LinkedList_t* list = nullptr;
  LinkedList_Init(&list);
  for (Item& item : items) LinkedList_AddHead(list, &item);
  while (LinkedList_RemoveTail(list) != nullptr) continue;
  LinkedList_End(&list);
}

void walk(Items& items) {
  void* head = nullptr;
  vxLL_Init(&head);
  for (Item& item : items) vxLL_XInsertHead(&head, &item);
  void* at = vxLL_XGetNext(vxLL_XGetStart(&head));
  while (vxLL_XIsEnd(at) == 0) at = vxLL_XGetNext(at);
  benchmark::DoNotOptimize(at);
}

void add_list(const std::string& name, void (*run)(Items&)) {
  for (const size_t count : {1, 10, 100, 1'000, 10'000, 100'000, 1'000'000}) {
    for (const auto& [who, fill] : {std::pair{"ours", run}, std::pair{"plain", &fill_plainly}}) {
      const auto measure = [=, fill = fill](benchmark::State& state) {
        const orbtest::Attached attached;
        Items items(count);
        for (auto _ : state) fill(items);
        orbbench::size(state, static_cast<double>(count));
      };
      benchmark::RegisterBenchmark((name + "/" + std::to_string(count) + "/" + who).c_str(),
                                   measure);
    }
  }
}

// One entry of `threads` that do nothing else: they begin together, and the last end counts.
template <class Entry>
double seconds_of_entry(int threads, Entry entry) {
  using Clock = std::chrono::steady_clock;
  constexpr int kEntries = 16'000;  // of all threads
  std::atomic<int> ready{0};
  Clock::time_point begin;
  std::vector<std::thread> others;
  const auto work = [&] {
    const orbtest::AttachedThread attached;
    if (ready.fetch_add(1) + 1 == threads) begin = Clock::now();
    while (ready.load() < threads) std::this_thread::yield();
    for (int i = 0; i < kEntries / threads; ++i) entry();
  };
  for (int other = 1; other < threads; ++other) others.emplace_back(work);
  work();
  for (std::thread& other : others) other.join();
  const std::chrono::duration<double> spent = Clock::now() - begin;
  return spent.count() / kEntries;
}

template <class Enter>
void add_lock(const std::string& name, Enter enter) {
  for (const int threads : {1, 2, 4, 8}) {
    const auto run = [=](benchmark::State& state) {
      vxSO_ProcessAttach();
      {
        const orbtest::Lock lock;
        for (auto _ : state) {
          state.SetIterationTime(seconds_of_entry(threads, [&] {
            enter(lock.get());
            vxSO_SELockRelease(lock.get());
          }));
        }
      }
      vxSO_ProcessDetach();
      orbbench::size(state, threads);
    };
    benchmark::RegisterBenchmark((name + "/" + std::to_string(threads) + "_threads/ours").c_str(),
                                 run)
        ->Iterations(3)
        ->UseManualTime();
  }
}

const bool added = [] {
  add_list("list_bare", fill_bare);
  add_list("list_walk", walk);
  add_list("list_guarded_single", fill_singly);
  add_list("list_guarded_double", fill_doubly);
  add_list("list_counted", fill_counted);
  add_lock("selock_exclusive", [](_vxSELock_t* lock) { vxSO_SELockExclusive(lock, 1); });
  add_lock("selock_shared", [](_vxSELock_t* lock) { vxSO_SELockSharedWaitForExclusive(lock, 1); });
  return true;
}();

}  // namespace
