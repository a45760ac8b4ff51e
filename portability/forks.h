// portability/forks.h: what keeps the process-wide locks usable in a forked child.
//
// A child has the thread alone that forked; a lock that another thread held at that moment would
// never come free in it. The forking thread therefore takes the process-wide locks before the
// process is split and gives them back in both halves, so that what they guard is whole. It waits
// for each of them a bounded time only: a lock that did not come free is made anew in the child.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstddef>

namespace quillon_com::orb::portability {

enum class ForkState { unwatched, idle, forking };
inline std::atomic<ForkState> fork_state{ForkState::unwatched};

// Whether the calling thread is between the split's preparation and its end, and so holds every
// process-wide lock: what it calls then, from fork handlers of others, takes none.
bool is_forking_thread();
inline bool forking_here() {
  return fork_state.load(std::memory_order_relaxed) == ForkState::forking && is_forking_thread();
}

// Has forks handled from now on; false when the system has no room for the handlers.
bool watch_forks();

constexpr size_t kCacheLine = 128;  // bytes, the longest of the processors in use

// A process-wide mutex, held for moments, that a forked child finds free. Only for objects that
// live as long as the process.
class ProcessMutex {
 public:
  constexpr ProcessMutex() = default;

  // 0, or the code of the failed pthread call.
  int lock() {
    pthread_mutex_t* mutex = to_lock();
    return mutex == nullptr ? 0 : pthread_mutex_lock(mutex);
  }
  int try_lock() {
    pthread_mutex_t* mutex = to_lock();
    return mutex == nullptr ? 0 : pthread_mutex_trylock(mutex);
  }
  int unlock() {
    pthread_mutex_t* mutex = to_lock();
    return mutex == nullptr ? 0 : pthread_mutex_unlock(mutex);
  }
  // The end of what lock() did in a thread that was not forking then.
  int unlock_locked() { return pthread_mutex_unlock(&mutex_); }
  // What a scope of the calling thread locks and unlocks; null when the thread holds every mutex
  // because it forks, which no scope outlives.
  pthread_mutex_t* to_lock() {
    if (is_plain()) [[likely]]
      return &mutex_;
    return passes() ? nullptr : &mutex_;
  }

 protected:
  enum class HeldFor { moments, foreign_code };
  explicit constexpr ProcessMutex(HeldFor held_for) : held_for_(held_for) {}
  void note_holder();
  void forget_holder() { has_holder_.store(false, std::memory_order_relaxed); }

 private:
  friend class ForkHandlers;

  bool is_plain() const {
    return fork_state.load(std::memory_order_relaxed) == ForkState::idle &&
           watched_.load(std::memory_order_relaxed);
  }
  // Has the mutex watched; true when the calling thread holds every mutex because it forks.
  bool passes();

  // Apart from what is read before it is locked: contended, that would fetch its line twice.
  alignas(kCacheLine) pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
  alignas(kCacheLine) const HeldFor held_for_ = HeldFor::moments;
  std::atomic<bool> watched_{false};
  std::atomic<bool> has_holder_{false};  // kept for foreign_code alone, as the next
  std::atomic<pthread_t> holder_{};      // meaningless unless has_holder_
  bool taken_ = false;                   // by the forking thread
  ProcessMutex* next_ = nullptr;         // of the watched ones
};

// One that is held while a caller's function runs, which may take long or fork itself: a fork never
// waits for it, and the child finds it held when the forking thread held it.
class ForeignCodeMutex : public ProcessMutex {
 public:
  constexpr ForeignCodeMutex() : ProcessMutex(HeldFor::foreign_code) {}

  int lock() {
    const int code = ProcessMutex::lock();
    if (code == 0) note_holder();
    return code;
  }
  int unlock() {
    forget_holder();
    return ProcessMutex::unlock();
  }
};

// A mutex of these, held for a scope; not held, and not given up, when it cannot be taken.
template <class Mutex = ProcessMutex>
class Hold {
 public:
  explicit Hold(Mutex& mutex) : mutex_(mutex.lock() == 0 ? &mutex : nullptr) {}
  ~Hold() {
    if (mutex_ != nullptr) mutex_->unlock();
  }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;
  explicit operator bool() const { return mutex_ != nullptr; }

 private:
  Mutex* mutex_;
};

// Whether there is something to lock is asked once for both ends: this scope is in operations that
// take no longer than the asking.
template <>
class Hold<ProcessMutex> {
 public:
  explicit Hold(ProcessMutex& mutex)
      : mutex_(mutex.to_lock()), held_(mutex_ == nullptr || pthread_mutex_lock(mutex_) == 0) {}
  ~Hold() {
    if (held_ && mutex_ != nullptr) pthread_mutex_unlock(mutex_);
  }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;

 private:
  pthread_mutex_t* mutex_;
  bool held_;
};

// How long a forking thread waits for the locks of others, all in all.
class ForkPatience {
 public:
  // False when it is used up; otherwise a short time has passed.
  bool wait();
  // Waits for a flag and sets it; false when it stays set by another.
  bool take(std::atomic_flag* flag);

 private:
  int turns_ = 0;
};

// The three steps of a fork for the locks of portability/selock.h: their spin words are taken where
// that can be done, given back, and freed in the child, whose queues have lost their threads.
void take_spin_words(ForkPatience* patience);
void give_back_spin_words();
void free_spin_words();

// Forgets the kept process number, or reads it anew.
void forget_process_id();
void refresh_process_id();

}  // namespace quillon_com::orb::portability
