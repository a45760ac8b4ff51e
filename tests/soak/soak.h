// tests/soak/soak.h: what the areas of the soak share: a worker thread, and the tables of rounds.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <vector>

#include "portability/Linklist.h"
#include "portability/handles.h"
#include "portability/selock.h"

namespace soak {

constexpr unsigned kWorkers = 8;

// One of the threads, with what is its own.
class Worker {
 public:
  Worker(unsigned number, std::string folder) : number_(number), folder_(std::move(folder)) {}
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  unsigned number() const { return number_; }
  // A path in the worker's own folder.
  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  // Counts a failure when `holds` is false, and keeps the first one's rule.
  void expect(bool holds, const char* rule) {
    if (holds) return;
    if (failures_++ == 0) first_failure_ = rule;
  }
  // Gives the thread its event again where a thread's end took the slot with it.
  void attach();
  // Takes the event away, for good.
  void detach();

  unsigned long failures() const { return failures_; }
  const char* first_failure() const { return first_failure_; }

  std::atomic<const char*> area{"none"};  // that the thread is in
  std::vector<unsigned long> rounds;      // by area
  std::atomic<bool> registered{false};    // with the shared lock, to be told that it is free

 private:
  const unsigned number_;
  const std::string folder_;
  intptr_t event_ = -1;
  unsigned long failures_ = 0;
  const char* first_failure_ = "";
};

// What all threads use together. What is counted here holds when every thread is at rest.
struct Shared {
  // Held in common by whoever uses thread-local slots or the events in them, and alone by who
  // lets a thread end: that end releases every slot of the process.
  std::shared_mutex slots;
  // The user accounting has one cursor for the process.
  std::mutex accounting;

  _voxHandleObject_t* mutex = nullptr;
  long behind_mutex = 0;  // guarded by `mutex`
  std::atomic<long> mutex_entries{0};

  _voxHandleObject_t* events[kWorkers] = {};  // set by each worker's neighbour

  long interlocked = 0;
  std::atomic<long> additions{0};
  long spin = 0;
  long behind_spin = 0;  // guarded by `spin`
  std::atomic<long> spin_entries{0};

  _vxSELock_t* lock = nullptr;
  long behind_lock = 0;  // guarded by `lock`
  std::atomic<long> lock_entries{0};
  _vxSLL_t* stack = nullptr;
  _vxSLL2_t* queue = nullptr;
};

Shared& shared();
// Makes what all use; false when something is not to be had.
bool make_shared_objects();
// Whether what was counted beside the shared objects is what they hold; every thread is at rest.
// `rule` tells what does not hold.
bool shared_objects_hold(const char** rule);

// A round of an area, made in every `every`-th turn of each thread.
struct Area {
  const char* name;
  unsigned every;
  void (*round)(Worker& worker);
};

const std::vector<Area>& handle_areas();
const std::vector<Area>& file_areas();
const std::vector<Area>& text_areas();
const std::vector<Area>& machine_areas();

}  // namespace soak
