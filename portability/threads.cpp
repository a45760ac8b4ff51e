// portability/threads.cpp: begin, body and clean-up of a thread.
//
// A thread ends while another closes its handle, or closes it in the moment in which its wait
// returns. Both exchange the start record's pointer to the signalled word for a mark of their own:
// what they find there tells who came first and who frees what, and neither waits for the other.
#include "portability/threads.h"

#include <cstddef>
#include <cstdlib>

#include "portability/handleparts.h"
#include "portability/signals.h"

namespace quillon_com::orb::portability {
namespace {

struct StartRecord {
  pthread_mutex_t* guard;     // the handle's
  pthread_cond_t* condition;  // the handle's
  int32_t* signalled;         // the handle's while the thread runs; then one of the marks; atomic
  voxThreadRoutine routine;
  void* argument;
  _voxHandleObject_t* handle;  // private
};

// Marks in the place of the signalled word: the thread is signalling its handle, or is done with
// it. bDummyThreadSignalled is the third: the handle is closed.
int32_t signalling;
int32_t done;

// Leaves `mark` in the record and returns what was there.
int32_t* exchange_word(StartRecord* record, int32_t* mark) {
  return __atomic_exchange_n(&record->signalled, mark, __ATOMIC_ACQ_REL);
}

// The record that a thread link points into.
StartRecord* record_of(int32_t** link) {
  return reinterpret_cast<StartRecord*>(reinterpret_cast<char*>(link) -
                                        offsetof(StartRecord, signalled));
}

StartRecord* make_start_record(_voxHandleObject_t* handle, voxThreadRoutine routine,
                               void* argument) {
  auto* record = static_cast<StartRecord*>(malloc(sizeof(StartRecord)));
  if (record == nullptr) {
    store_error(kErrNoMemory);
    return nullptr;
  }
  *record = {&handle->guard, &handle->condition, &handle->signalled, routine, argument, handle};
  handle->threadLink = &record->signalled;
  return record;
}

// Starts the body, detached. 0 or the failed call's code.
int start_detached(pthread_t* thread, StartRecord* record) {
  pthread_attr_t attributes;
  int code = pthread_attr_init(&attributes);
  if (code != 0) return code;
  code = pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  if (code == 0) code = pthread_create(thread, &attributes, voxThreadJuggle, record);
  pthread_attr_destroy(&attributes);
  return code;
}

// A thread handle with its cell, not yet started; null on failure.
_voxHandleObject_t* make_thread_handle() {
  _voxHandleObject_t* handle = make_handle(HANDLE_TYPE_THREAD);
  if (handle == nullptr) return nullptr;
  handle->payload = calloc(1, sizeof(pthread_t));
  if (handle->payload != nullptr) return handle;
  store_error(kErrNoMemory);
  destroy_handle(handle);
  return nullptr;
}

void discard_thread_handle(_voxHandleObject_t* handle) {
  free(handle->payload);
  destroy_handle(handle);
}

}  // namespace

bool detach_thread(_voxHandleObject_t* handle) {
  if (handle->threadLink == nullptr) return true;  // never begun
  StartRecord* record = record_of(handle->threadLink);
  const int32_t* found = exchange_word(record, &bDummyThreadSignalled);
  if (found == &done) free(record);
  return found != &signalling;
}

}  // namespace quillon_com::orb::portability

using namespace quillon_com::orb::portability;

_voxHandleObject_t* voxBeginThread(void*, uint64_t, voxThreadRoutine startRoutine, void* argument,
                                   uint32_t, uint32_t* threadIdOut) {
  auto* failed = static_cast<_voxHandleObject_t*>(no_handle());
  if (startRoutine == nullptr) {
    store_error(kErrInvalid);
    return failed;
  }
  _voxHandleObject_t* handle = make_thread_handle();
  if (handle == nullptr) return failed;
  StartRecord* record = make_start_record(handle, startRoutine, argument);
  if (record == nullptr) {
    discard_thread_handle(handle);
    return failed;
  }
  const int code = start_detached(static_cast<pthread_t*>(handle->payload), record);
  if (code != 0) {
    free(record);
    discard_thread_handle(handle);
    return failed;
  }
  if (threadIdOut != nullptr) *threadIdOut = static_cast<uint32_t>(code);
  set_pthread_sched_param(handle);
  return handle;
}

_voxHandleObject_t* voxCreateThread(void* security, uint64_t stackSize,
                                    voxThreadRoutine startRoutine, void* argument,
                                    uint32_t creationFlags, uint32_t* threadIdOut) {
  _voxHandleObject_t* handle =
      voxBeginThread(security, stackSize, startRoutine, argument, creationFlags, threadIdOut);
  return handle == no_handle() ? nullptr : handle;
}

void set_pthread_sched_param(_voxHandleObject_t*) {}

void* voxThreadJuggle(void* startRecord) {
  const auto* record = static_cast<StartRecord*>(startRecord);
  void* result = nullptr;
  pthread_cleanup_push(voxCleanupThread, startRecord);
  result = record->routine(record->argument);
  pthread_cleanup_pop(1);
  return result;
}

void voxCleanupThread(void* startRecord) {
  auto* record = static_cast<StartRecord*>(startRecord);
  release_slots_of_process();
  int32_t* word = exchange_word(record, &signalling);
  if (word != &bDummyThreadSignalled) {
    set_signalled(word, 1);
    const bool guarded = pthread_mutex_lock(record->guard) == 0;
    pthread_cond_broadcast(record->condition);
    if (guarded) pthread_mutex_unlock(record->guard);
    if (exchange_word(record, &done) != &bDummyThreadSignalled) return;  // the closing frees both
    free(record->handle->payload);
    free(record->handle);
  }
  free(record);
}
