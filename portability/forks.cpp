// portability/forks.cpp: the handlers that run around a fork.
#include "portability/forks.h"

#include <sched.h>

#include <ctime>

#include "portability/cancellation.h"

namespace quillon_com::orb::portability {
namespace {

std::atomic<pthread_t> forking_thread{};  // meaningless unless fork_state is forking
int nested_forks = 0;                     // of the forking thread; its own affair

pthread_mutex_t turn = PTHREAD_MUTEX_INITIALIZER;  // one thread forks at a time
pthread_once_t registered = PTHREAD_ONCE_INIT;

std::atomic_flag list_busy = ATOMIC_FLAG_INIT;  // guards the list; held by a forking thread
ProcessMutex* watched_mutexes = nullptr;

bool list_taken = false;  // by the forking thread

void give_back_list() { list_busy.clear(std::memory_order_release); }

}  // namespace

bool is_forking_thread() {
  return pthread_equal(forking_thread.load(std::memory_order_relaxed), pthread_self()) != 0;
}

bool ForkPatience::wait() {
  constexpr int kYields = 200;
  constexpr int kNaps = 500;
  constexpr timespec kNap{0, 200'000};
  if (turns_ == kYields + kNaps) return false;
  if (turns_++ < kYields) {
    sched_yield();
  } else {
    const CancellationShield shield;
    nanosleep(&kNap, nullptr);
  }
  return true;
}

bool ForkPatience::take(std::atomic_flag* flag) {
  while (flag->test_and_set(std::memory_order_acquire)) {
    if (!wait()) return false;
  }
  return true;
}

void ProcessMutex::note_holder() {
  holder_.store(pthread_self(), std::memory_order_relaxed);
  has_holder_.store(true, std::memory_order_release);
}

bool ProcessMutex::passes() {
  if (forking_here()) return true;
  watch_forks();
  if (watched_.load(std::memory_order_relaxed)) return false;
  while (list_busy.test_and_set(std::memory_order_acquire)) sched_yield();
  if (!watched_.load(std::memory_order_relaxed)) {
    next_ = watched_mutexes;
    watched_mutexes = this;
    watched_.store(true, std::memory_order_relaxed);
  }
  give_back_list();
  return false;
}

class ForkHandlers {
 public:
  static void prepare() {
    if (forking_here()) {
      ++nested_forks;
      return;
    }
    pthread_mutex_lock(&turn);
    ForkPatience patience;
    take_spin_words(&patience);
    list_taken = patience.take(&list_busy);
    for (ProcessMutex* each = watched_mutexes; each != nullptr; each = each->next_)
      each->taken_ = take(each, &patience);
    forget_process_id();
    forking_thread.store(pthread_self(), std::memory_order_relaxed);
    fork_state.store(ForkState::forking, std::memory_order_relaxed);
  }

  static void in_parent() {
    if (nested_forks > 0) {
      --nested_forks;
      return;
    }
    for (ProcessMutex* each = watched_mutexes; each != nullptr; each = each->next_)
      if (each->taken_) pthread_mutex_unlock(&each->mutex_);
    if (list_taken) give_back_list();
    finish();
    give_back_spin_words();
    pthread_mutex_unlock(&turn);
  }

  static void in_child() {
    if (nested_forks > 0) {
      --nested_forks;
      return;
    }
    for (ProcessMutex* each = watched_mutexes; each != nullptr; each = each->next_) {
      if (each->taken_)
        pthread_mutex_unlock(&each->mutex_);
      else if (!is_held_here(each))
        make_anew(each);
    }
    give_back_list();
    finish();
    free_spin_words();
    pthread_mutex_unlock(&turn);
  }

 private:
  static bool take(ProcessMutex* mutex, ForkPatience* patience) {
    while (pthread_mutex_trylock(&mutex->mutex_) != 0) {
      if (mutex->held_for_ == ProcessMutex::HeldFor::foreign_code || !patience->wait())
        return false;
    }
    return true;
  }

  static bool is_held_here(const ProcessMutex* mutex) {
    return mutex->has_holder_.load(std::memory_order_acquire) &&
           pthread_equal(mutex->holder_.load(std::memory_order_relaxed), pthread_self()) != 0;
  }

  static void make_anew(ProcessMutex* mutex) {
    pthread_mutex_init(&mutex->mutex_, nullptr);
    mutex->has_holder_.store(false, std::memory_order_relaxed);
  }

  static void finish() {
    refresh_process_id();
    fork_state.store(ForkState::idle, std::memory_order_relaxed);
  }
};

namespace {

void register_handlers() {
  if (pthread_atfork(ForkHandlers::prepare, ForkHandlers::in_parent, ForkHandlers::in_child) == 0)
    fork_state.store(ForkState::idle, std::memory_order_relaxed);
}

}  // namespace

bool watch_forks() {
  if (fork_state.load(std::memory_order_relaxed) == ForkState::unwatched)
    pthread_once(&registered, register_handlers);
  return fork_state.load(std::memory_order_relaxed) != ForkState::unwatched;
}

}  // namespace quillon_com::orb::portability
