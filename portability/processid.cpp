// portability/processid.cpp: the process's number without a system call each time.
#include <unistd.h>

#include <atomic>

#include "portability/forks.h"
#include "portability/handleparts.h"

namespace quillon_com::orb::portability {
namespace {

std::atomic<int64_t> kept_id{0};  // 0 when it is not known, as in the middle of a fork

}  // namespace

void forget_process_id() { kept_id.store(0, std::memory_order_relaxed); }

void refresh_process_id() { kept_id.store(getpid(), std::memory_order_relaxed); }

// A process without room for the fork handlers asks the system every time.
int64_t process_id() {
  const int64_t id = kept_id.load(std::memory_order_relaxed);
  if (id != 0) return id;
  const bool watched = watch_forks();
  if (watched && fork_state.load(std::memory_order_relaxed) == ForkState::idle)
    refresh_process_id();
  return getpid();
}

}  // namespace quillon_com::orb::portability
