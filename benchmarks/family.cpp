// benchmarks/family.cpp: the run of a family beside a second thread.
#include "benchmarks/family.h"

#include <future>
#include <thread>

namespace orbbench {
namespace {

class SecondThread {
 public:
  SecondThread() : thread_([done = done_.get_future()]() mutable { done.wait(); }) {}
  SecondThread(const SecondThread&) = delete;
  SecondThread& operator=(const SecondThread&) = delete;
  ~SecondThread() {
    done_.set_value();
    thread_.join();
  }

 private:
  std::promise<void> done_;
  std::thread thread_;
};

}  // namespace

int run_family(int argc, char** argv) {
  const SecondThread second;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace orbbench
