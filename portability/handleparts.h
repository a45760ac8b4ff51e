// portability/handleparts.h: what the files of the portability core share behind their interfaces.
#pragma once

#include "portability/handles.h"

namespace quillon_com::orb::portability {

// The all-ones handle, which stands for "no handle".
inline void* no_handle() { return reinterpret_cast<void*>(intptr_t{-1}); }

// Stores `number`, one of the constants of errorwords.h, in nErrno.
void store_error(int64_t number);

// The signalled word, read and written without a lock by contract.
inline bool is_signalled(const _voxHandleObject_t* handle) {
  return __atomic_load_n(&handle->signalled, __ATOMIC_ACQUIRE) == 1;
}
inline void set_signalled(int32_t* word, int32_t value) {
  __atomic_store_n(word, value, __ATOMIC_RELEASE);
}

// Its address stands for the thread that takes it, for as long as the thread lives: a third of what
// pthread_self costs.
[[gnu::tls_model("initial-exec")]] inline constinit thread_local char thread_mark = 0;

// The payload of a mutex handle. All of it is guarded by the handle's guard.
struct OwnerMutex {
  pthread_mutex_t mutex;  // locked while the handle is owned
  const char* holder;     // the owner's thread_mark, null when nobody owns the handle
};

// Takes an owner mutex that nobody holds for the calling thread; it never waits, because the guard
// is held. False when the system refuses.
inline bool lock_owner(OwnerMutex* owner) {
  if (pthread_mutex_trylock(&owner->mutex) != 0) return false;
  owner->holder = &thread_mark;
  return true;
}

// A zeroed handle record of `kind` with one reference, its condition and guard made; null when
// there is no memory (12 stored in nErrno) or one of them cannot be made (nothing stored).
_voxHandleObject_t* make_handle(uint32_t kind);

// Undoes make_handle; `payload` is not looked at.
void destroy_handle(_voxHandleObject_t* handle);

// Releases every thread-local slot that this process allocated. No error word.
void release_slots_of_process();

// Parts the handle of a thread from the thread: a thread that still runs will leave the handle
// alone. False when the thread is just signalling the handle: it frees the handle and its payload
// then, and the caller must not touch them any more; after true they are the caller's to free.
bool detach_thread(_voxHandleObject_t* handle);

// Closes the descriptor of a file handle's payload, removes the file when it was opened so, and
// frees the payload. False when either fails: the payload is kept.
bool close_file(void* payload);

// getpid(), kept in a word that is refreshed in a forked child.
int64_t process_id();

}  // namespace quillon_com::orb::portability
