// tests/soak/crew.h: the eight threads, which work, rest while they are measured, and end.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/soak/soak.h"

namespace soak {

class Crew {
 public:
  // Begins the threads, at rest, each with a folder of its own below `folder`.
  Crew(const std::string& folder, std::vector<Area> areas);
  ~Crew();
  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;

  void work();
  // Waits until every thread has ended its round; false when one has not after a minute.
  bool rest();

  const std::vector<Area>& areas() const { return areas_; }
  const std::vector<std::unique_ptr<Worker>>& workers() const { return workers_; }

 private:
  enum class Order { rest, work, end };

  void run(Worker& worker);
  void make_turn(Worker& worker, unsigned turn);
  bool is_to_go_on();

  const std::vector<Area> areas_;
  std::vector<std::unique_ptr<Worker>> workers_;
  std::mutex mutex_;
  std::condition_variable changed_;
  Order order_ = Order::rest;  // guarded by mutex_
  unsigned resting_ = 0;       // guarded by mutex_
  std::vector<std::thread> threads_;
};

}  // namespace soak
