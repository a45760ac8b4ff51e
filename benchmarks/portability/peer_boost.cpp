// benchmarks/portability/peer_boost.cpp: Boost's rows.
#include <benchmark/benchmark.h>

#include <boost/intrusive/list.hpp>
#include <boost/thread/shared_mutex.hpp>
#include <mutex>

#include "benchmarks/portability/rows.h"

namespace {

using namespace orbbench;

class BoostLock {
 public:
  void shared() { lock_.lock_shared(); }
  void leave_shared() { lock_.unlock_shared(); }
  void exclusive() { lock_.lock(); }
  void leave_exclusive() { lock_.unlock(); }

 private:
  boost::shared_mutex lock_;
};

BENCHMARK(shared_pair<BoostLock>)->Name("selock/shared/Boost");
BENCHMARK(exclusive_pair<BoostLock>)->Name("selock/exclusive/Boost");

void guarded_list(benchmark::State& state) {
  using Lock = std::unique_lock<boost::shared_mutex>;
  struct Item : boost::intrusive::list_base_hook<> {};
  boost::shared_mutex mutex;
  boost::intrusive::list<Item> list;
  Item item;
  for (auto _ : state) {
    {
      const Lock hold(mutex);
      list.push_back(item);
    }
    const Lock hold(mutex);
    benchmark::DoNotOptimize(&list.front());
    list.pop_front();
  }
}
BENCHMARK(guarded_list)->Name("list/insert_remove/Boost");

}  // namespace
