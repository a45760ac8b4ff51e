// portability/selock_forks.cpp: the locks of the process, and what a fork does about their spin
// words.
#include <sched.h>

#include "portability/selockparts.h"

namespace quillon_com::orb::portability {
namespace {

std::atomic_flag list_busy = ATOMIC_FLAG_INIT;  // guards the list; held by a forking thread
bool list_taken = false;                        // by the forking thread
LockRecord* locks = nullptr;

thread_local const Notifying* innermost = nullptr;

// The list, for a scope.
class ListHold {
 public:
  ListHold() : forking_(forking_here()) {
    while (!forking_ && list_busy.test_and_set(std::memory_order_acquire)) sched_yield();
  }
  ~ListHold() {
    if (!forking_) list_busy.clear(std::memory_order_release);
  }
  ListHold(const ListHold&) = delete;
  ListHold& operator=(const ListHold&) = delete;

 private:
  bool forking_;
};

bool take(long* spin, ForkPatience* patience) {
  while (!try_to_take(spin)) {
    if (!patience->wait()) return false;
  }
  return true;
}

}  // namespace

void enlist(LockRecord* record) {
  const ListHold hold;
  record->next = locks;
  if (locks != nullptr) locks->previous = record;
  locks = record;
}

void unlist(LockRecord* record) {
  const ListHold hold;
  (record->previous == nullptr ? locks : record->previous->next) = record->next;
  if (record->next != nullptr) record->next->previous = record->previous;
}

Notifying::Notifying(const _vxSELock_t* lock) : lock_(lock), outer_(innermost) { innermost = this; }

Notifying::~Notifying() { innermost = outer_; }

bool Notifying::is_running(const _vxSELock_t* lock) {
  const Notifying* each = innermost;
  while (each != nullptr && each->lock_ != lock) each = each->outer_;
  return each != nullptr;
}

void take_spin_words(ForkPatience* patience) {
  list_taken = patience->take(&list_busy);
  for (LockRecord* each = locks; each != nullptr; each = each->next)
    each->taken = !Notifying::is_running(&each->lock) && take(&each->lock.spin, patience);
}

void give_back_spin_words() {
  for (LockRecord* each = locks; each != nullptr; each = each->next)
    if (each->taken) vxSL_Release(&each->lock.spin);
  if (list_taken) list_busy.clear(std::memory_order_release);
}

void free_spin_words() {
  for (LockRecord* each = locks; each != nullptr; each = each->next) {
    each->lock.sharedWaiters = nullptr;
    each->lock.exclusiveWaiters = nullptr;
    if (!Notifying::is_running(&each->lock)) vxSL_Release(&each->lock.spin);
  }
  list_busy.clear(std::memory_order_release);
}

}  // namespace quillon_com::orb::portability
