// benchmarks/second_thread.h: keeps a second thread alive while a benchmark runs.
#pragma once

#include <future>
#include <thread>

namespace orbbench {

// A process with one thread pays a third of the C library's price for a lock; no host process of
// the library has only one.
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

}  // namespace orbbench
