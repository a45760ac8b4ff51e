// tests/soak/crew.cpp: turns through all areas, beginning with another one in each thread.
#include "tests/soak/crew.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <utility>

namespace soak {
namespace {

constexpr auto kPatience = std::chrono::minutes(1);

// What the file areas find in their folder.
void furnish(const std::string& folder) {
  namespace fs = std::filesystem;
  fs::create_directories(folder + "/found");
  for (const char* name : {"a.txt", "b.txt", "c.txt", "d.dat"})
    std::ofstream(folder + "/found/" + name) << name;
  std::ofstream(folder + "/source") << std::string(100'000, 's');
  fs::create_symlink("source", folder + "/link");
}

}  // namespace

Crew::Crew(const std::string& folder, std::vector<Area> areas) : areas_(std::move(areas)) {
  for (unsigned number = 0; number < kWorkers; ++number) {
    const std::string own = folder + "/" + std::to_string(number);
    furnish(own);
    workers_.push_back(std::make_unique<Worker>(number, own));
    workers_.back()->rounds.resize(areas_.size());
  }
  for (const auto& worker : workers_) threads_.emplace_back([this, &worker] { run(*worker); });
}

Crew::~Crew() {
  {
    const std::lock_guard lock(mutex_);
    order_ = Order::end;
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void Crew::work() {
  {
    const std::lock_guard lock(mutex_);
    order_ = Order::work;
  }
  changed_.notify_all();
}

bool Crew::rest() {
  std::unique_lock lock(mutex_);
  order_ = Order::rest;
  return changed_.wait_for(lock, kPatience, [this] { return resting_ == kWorkers; });
}

void Crew::run(Worker& worker) {
  for (unsigned turn = worker.number(); is_to_go_on(); ++turn) make_turn(worker, turn);
  worker.detach();
}

void Crew::make_turn(Worker& worker, unsigned turn) {
  for (size_t step = 0; step < areas_.size(); ++step) {
    const size_t place = (step + worker.number() * areas_.size() / kWorkers) % areas_.size();
    if (turn % areas_[place].every != 0) continue;
    worker.area = areas_[place].name;
    areas_[place].round(worker);
    ++worker.rounds[place];
  }
  worker.area = "none";
}

bool Crew::is_to_go_on() {
  std::unique_lock lock(mutex_);
  if (order_ == Order::rest) {
    ++resting_;
    changed_.notify_all();
    changed_.wait(lock, [this] { return order_ != Order::rest; });
    --resting_;
  }
  return order_ == Order::work;
}

}  // namespace soak
