// portability/processid.cpp: the process's number without a system call each time.
#include <pthread.h>
#include <unistd.h>

#include <atomic>

#include "portability/handleparts.h"

namespace quillon_com::orb::portability {
namespace {

std::atomic<int64_t> cached_id{0};

void refresh() { cached_id.store(getpid(), std::memory_order_relaxed); }

pthread_once_t watched = PTHREAD_ONCE_INIT;

// A process without room for the fork handler asks the system every time.
void watch_forks() {
  if (pthread_atfork(nullptr, nullptr, refresh) == 0) refresh();
}

}  // namespace

int64_t process_id() {
  int64_t id = cached_id.load(std::memory_order_relaxed);
  if (id != 0) return id;
  pthread_once(&watched, watch_forks);
  id = cached_id.load(std::memory_order_relaxed);
  return id != 0 ? id : getpid();
}

}  // namespace quillon_com::orb::portability
