// portability/threads.h: threads behind waitable handles, thread-local slots, one event per thread.
//
// Error words as in portability/handles.h. Unless a comment says otherwise, results are 1 for
// success and 0 for failure, and every function may be called from any thread.
#pragma once

#include <stdint.h>

#include "portability/handles.h"

ORB_EXTERN_C_BEGIN

// What a thread runs: takes one pointer-sized argument, returns a pointer-sized result.
typedef void* (*voxThreadRoutine)(void* argument);

// Starts a detached thread that runs `startRoutine(argument)` at once, with the default stack.
// `security`, `stackSize` and `creationFlags` are ignored. When `threadIdOut` is not null it
// receives 0 once the thread is started and is left alone otherwise. Returns the thread's handle,
// which becomes signalled when the thread ends and which the caller closes, before or after that
// end. Returns all ones (-1) on failure: with 12 in nErrno when there is no memory, 22 for a null
// `startRoutine`, without an error word when a pthread call fails. Quirk: `threadIdOut` never
// receives an identifier: what is stored is the result code of the system's thread creation, 0.
// Quirk: when any thread started here ends, every thread-local slot that its process allocated is
// released, the slots of other threads included.
ORB_EXPORT _voxHandleObject_t* voxBeginThread(void* security, uint64_t stackSize,
                                              voxThreadRoutine startRoutine, void* argument,
                                              uint32_t creationFlags, uint32_t* threadIdOut);

// The same with null for failure.
ORB_EXPORT _voxHandleObject_t* voxCreateThread(void* security, uint64_t stackSize,
                                               voxThreadRoutine startRoutine, void* argument,
                                               uint32_t creationFlags, uint32_t* threadIdOut);

// A hook for scheduling parameters; does nothing.
ORB_EXPORT void set_pthread_sched_param(_voxHandleObject_t* handle);

// The body of every thread, called by the system with the record that voxBeginThread made: runs the
// start routine and then, also when the thread exits or is cancelled, voxCleanupThread. Returns the
// routine's result.
ORB_EXPORT void* voxThreadJuggle(void* startRecord);

// The end of every thread: releases the process's thread-local slots, signals the handle unless it
// was closed, and lets go of the start record. Called once for each record, by voxThreadJuggle.
ORB_EXPORT void voxCleanupThread(void* startRecord);

// Thread-local slots: 512 for the process, numbered from 0. A slot is in use when its entry of
// pTlsKeyTable is not null; the entry's cell and nTlsOwnerTable tell its key and the process that
// allocated it (0 when free). Both tables are kept under a private lock and are for reading only.
enum { kTlsSlots = 512 };
extern ORB_EXPORT pthread_key_t* pTlsKeyTable[kTlsSlots];
extern ORB_EXPORT int64_t nTlsOwnerTable[kTlsSlots];

// Takes the lowest free slot; no thread has a value in it. Returns its number, or -1 with 35 in
// nErrno when all are in use, 12 when there is no memory, and no error word when the system has no
// key left. The first call of a process clears both tables.
ORB_EXPORT int64_t voxTlsAlloc(void);

// Releases a slot. A number from 512 on or a free slot stores 22 in nErrno and gives 0; so does,
// without an error word, a key that the system cannot delete: the slot is free then all the same.
ORB_EXPORT int voxTlsFree(uint32_t slot);

// Stores the calling thread's value of a slot. A number from 512 on or a free slot stores 22 in
// nErrno and gives 0; a failure of the system gives 0.
ORB_EXPORT int voxTlsSetValue(uint32_t slot, void* value);

// The calling thread's value of a slot, null when it never stored one. A number from 512 on or a
// free slot stores 22 in nErrno and gives null.
ORB_EXPORT void* voxTlsGetValue(uint32_t slot);

// One event per thread, kept in one slot: what the shared/exclusive lock knows a thread by and what
// it sleeps on. Call vxSO_ProcessAttach once, vxSO_ThreadAttach in each thread that takes a lock,
// vxSO_ThreadDetach when it leaves, vxSO_ProcessDetach at the end. Handles are given as numbers,
// all ones (-1) standing for none.

// The slot, 0xFFFFFFFF before vxSO_ProcessAttach; its low 32 bits are passed on.
extern ORB_EXPORT int64_t vxSO_tls_index;

// Allocates the slot. Returns its number or -1, with voxTlsAlloc's error words.
ORB_EXPORT int64_t vxSO_ProcessAttach(void);

// Releases the slot and forgets its number. Returns voxTlsFree's result.
ORB_EXPORT int vxSO_ProcessDetach(void);

// Gives the calling thread an event unless it has one. Returns the handle it had, else 1 when the
// new one is stored and 0 when it could not be (nothing stays allocated). Quirk: without memory for
// an event (12 in nErrno) the result is 1 too and the thread has none.
ORB_EXPORT intptr_t vxSO_ThreadAttach(void);

// Closes the calling thread's event, if any, and marks it as having none. Returns voxTlsSetValue's
// result.
ORB_EXPORT int vxSO_ThreadDetach(void);

// Marks the calling thread as having no event, closing nothing. Returns voxTlsSetValue's result.
ORB_EXPORT int vxSO_ThreadAttachX(void);

// Does nothing.
ORB_EXPORT void vxSO_ThreadDetachX(void);

// The calling thread's event, -1 when it has none or never attached.
ORB_EXPORT intptr_t vxSO_GetThread(void);

// The slot's value as it is: 0 when the thread never attached.
ORB_EXPORT intptr_t vxSO_DbgGetThread(void);

ORB_EXTERN_C_END
