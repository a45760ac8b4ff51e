// benchmarks/portability/peer_poco.cpp: POCO's rows.
#include <Poco/Event.h>
#include <benchmark/benchmark.h>

#include "benchmarks/portability/rows.h"

namespace {

using namespace orbbench;

class PocoEvent {
 public:
  void set() { event_.set(); }
  void reset() { event_.reset(); }
  void wait(long milliseconds) {
    if (milliseconds < 0)
      event_.wait();
    else
      benchmark::DoNotOptimize(event_.tryWait(milliseconds));
  }

 private:
  Poco::Event event_{Poco::Event::EVENT_MANUALRESET};
};

BENCHMARK(create_close<PocoEvent>)->Name("event/create_close/POCO");
BENCHMARK(set_wait<PocoEvent>)->Name("event/set_wait/POCO");
BENCHMARK(wait_when_set<PocoEvent>)->Name("event/wait_when_set/POCO");
BENCHMARK(ping_pong<PocoEvent>)->Name("event/ping_pong/POCO")->UseRealTime();

}  // namespace
