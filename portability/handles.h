// portability/handles.h: handles, events, mutexes, waits and interlocked arithmetic.
//
// A handle stands for a file, an event, a thread or a mutex. It belongs to its caller from its
// creation to voxCloseHandle. Functions that make one return `_voxHandleObject_t*`; functions that
// take one accept any pointer to it, so that callers may keep handles as `void*`.
//
// Failures are told by results and two error words that are deliberately not the same: nErrno,
// where bad arguments and lack of memory are stored, and the calling thread's errno, which system
// calls set and voxGetLastError maps. All time-outs are milliseconds in 64 bits. Unless a comment
// says otherwise, results are 1 for success and 0 for failure, and every function may be called
// from any thread. A pointer that a comment does not allow to be null is not null, and a handle
// that it does not allow to be closed is not closed.
//
// A forked child may use the whole library, whatever the parent's other threads were doing: only a
// handle that one of them was in the middle of using stays with it, and so does what it owned.
#pragma once

#include <pthread.h>
#include <stdint.h>

#include "platform/export.h"
#include "portability/errorwords.h"

ORB_EXTERN_C_BEGIN

// What a handle stands for.
enum {
  HANDLE_TYPE_FILE = 0,  // see portability/filehandle.h; cannot be waited on
  HANDLE_TYPE_EVENT = 1,
  HANDLE_TYPE_THREAD = 2,  // see portability/threads.h
  HANDLE_TYPE_MUTEX = 3
};

// Wait results; the multiple wait returns WAIT_OBJECT_0 + index.
enum {
  WAIT_FAILED = 0,
  WAIT_ABANDONED = 1,  // never given by a single wait
  WAIT_OBJECT_0 = 2,
  WAIT_TIMEOUT = 3
};

// The time-out that never ends in a single wait.
#define INFINITE 0xFFFFFFFFu

// The record behind a handle, allocated with malloc. Callers treat it as opaque.
typedef struct _voxHandleObject_t {
  void* payload;             // file: its file record; thread: a cell with its pthread_t; mutex: its
                             // owner mutex; event: null
  uint32_t kind;             // HANDLE_TYPE_…, never changed
  int64_t references;        // 1 from creation on; guarded by guard
  int32_t signalled;         // 1 signalled, 0 not; accessed atomically
  pthread_cond_t condition;  // waiters sleep on it
  pthread_mutex_t guard;     // protects signalled and condition
  int32_t** threadLink;  // threads: at the signalled-word pointer of the start record; else null
} _voxHandleObject_t;

// Creates an event. `attributes` is ignored; `manualReset` must be 1, because only events that stay
// set until they are reset exist; `name` must be null or empty, because there are no named ones. An
// `initialState` of 1 sets the event.
// Returns the handle, which the caller closes; null on failure, with 22 in nErrno for a refused
// argument, 12 when there is no memory, 16 when the event could not be set, and no error word when
// the condition or the guard could not be made.
ORB_EXPORT _voxHandleObject_t* voxCreateEvent(void* attributes, int manualReset, int initialState,
                                              const char* name);

// Sets an event and wakes every waiter. Null and the value 0xFFFFFFFF store 22 in nErrno and give
// 0. Gives 0 too when a pthread call fails.
// Quirk: the refused value is the 32-bit all-ones value widened with zeros, not the 64-bit one that
// voxCloseHandle lets pass; and the kind is not looked at: any handle can be set.
ORB_EXPORT int voxSetEvent(void* handle);

// Resets an event. Null stores 22 in nErrno and gives 0; so does, without an error word, a guard
// that cannot be locked or unlocked. The kind is not looked at.
ORB_EXPORT int voxResetEvent(void* handle);

// Creates a mutex that is not recursive, owned by the caller when `initialOwner` is 1.
// `attributes` and `name` are ignored. Returns the handle, which the caller closes; null when there
// is no memory (12 in nErrno) or a pthread object cannot be made (no error word).
ORB_EXPORT _voxHandleObject_t* voxCreateMutex(void* attributes, int initialOwner, const char* name);

// Always null: there are no named mutexes. No error word.
ORB_EXPORT _voxHandleObject_t* voxOpenMutex(uint32_t access, int inherit, const char* name);

// Gives up a mutex and wakes its waiters. Null gives 0 without an error word; a handle of another
// kind stores 22 in nErrno and gives 0; a failing pthread call gives 0. A mutex that nobody owns is
// free afterwards too, and any thread may release one for its owner, which takes memory (12 in
// nErrno and 0 without): both give 1.
ORB_EXPORT int voxReleaseMutex(void* handle);

// Waits until `handle` is signalled or `milliseconds` of the wall clock are over. A mutex is taken
// by the wait; events and threads stay signalled.
// Returns WAIT_OBJECT_0, WAIT_TIMEOUT, or WAIT_FAILED: for null, all ones (-1), a file or an
// unknown kind with 22 in nErrno, for a failing pthread call without an error word. A time-out of 0
// never sleeps. An owned mutex stays its owner's when voxSetEvent set it. A thread that is
// cancelled in its wait leaves the handle usable.
// Quirk: any wake-up of an event's or a thread's waiter is taken as a signal, even when the word
// has been reset meanwhile; a mutex waiter looks again and waits on until its deadline. Quirk: a
// deadline of exactly 1,000,000,000 nanoseconds is not carried into the seconds; the system refuses
// it and the wait gives WAIT_FAILED. Quirk: when the wall clock cannot be read the guard stays
// locked.
ORB_EXPORT uint64_t voxWaitForSingleObject(void* handle, uint64_t milliseconds);

// Waits until one of `count` handles is signalled: they are visited in cyclic order from the first,
// one turn of 10 ms each, until the turns taken add up to `milliseconds`. A handle that is already
// signalled and whose turn will come is found at once, the next in order first.
// Returns WAIT_OBJECT_0 + index of the first found signalled, WAIT_TIMEOUT, WAIT_ABANDONED, or
// WAIT_FAILED when `waitAll` is not 0 (waiting for all is not supported), when there is no handle
// to wait on (22 in nErrno) or when a single wait fails. Quirk: turns are counted, not time: 25 ms
// are three turns. Quirk: the second handle's result is WAIT_TIMEOUT's number, 3. INFINITE is
// 0xFFFFFFFF ms. A time-out of 0 gives WAIT_TIMEOUT without looking at any handle. `handles` stays
// the caller's: an array of handles in either pointer type.
ORB_EXPORT uint64_t voxWaitForMultipleObjects(uint64_t count, const void* handles, int waitAll,
                                              uint64_t milliseconds);

// Gives up a reference and, with the last one, destroys the record: a file is closed (and removed
// when it was opened so), a running thread runs on. Null and the 64-bit all-ones value give 1 and
// do nothing. Gives 0 when a pthread call fails, when a file cannot be closed or removed (the
// record is then kept), or for an unknown kind. No error word; errno as the system left it. The
// handle of a thread may be closed at any time, in particular as soon as a wait on it returned.
// Quirk: the condition, guard and owner mutex of events and mutexes are freed, not destroyed.
ORB_EXPORT int voxCloseHandle(void* handle);

// The calling thread's errno as a Windows-style code: 0 → 0; ENOENT, EIO, ENXIO, ENOLCK → 38;
// ESRCH, EINTR, EBADF, ENODEV → 126; E2BIG, ENOMEM, ENFILE, EMFILE, EFBIG, ENOSPC, EMLINK → 259;
// EDEADLK, EBUSY, ETXTBSY, EAGAIN → 997; EACCES → 5; EINVAL, ENOTTY → 1010; EROFS → 19; any other →
// 0x80000008 with the sign extended to 64 bits. errno itself is left alone; nErrno plays no part.
ORB_EXPORT int64_t voxGetLastError(void);

// Adds 1 to, or takes 1 from, `*p` under one process-wide mutex, wrapping at the ends of its range.
// Returns `*p` read again after the mutex is released.
// Quirk: a change that another thread makes in between shows in the result.
ORB_EXPORT long voxInterlockedIncrement(long* p);
ORB_EXPORT long voxInterlockedDecrement(long* p);

// Stores `value` in `*p` under a process-wide mutex of its own and returns what was there.
ORB_EXPORT long voxInterlockedExchange(long* p, long value);

ORB_EXTERN_C_END
