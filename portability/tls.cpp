// portability/tls.cpp: the table of 512 thread-local slots over the system's keys.
//
// The end of any thread releases slots that other threads may be using. Readers therefore never
// follow pTlsKeyTable's cells, which may be freed under them: they read the key itself from a
// private table of words.
#include <pthread.h>

#include <atomic>
#include <cstdlib>

#include "portability/forks.h"
#include "portability/handleparts.h"
#include "portability/threads.h"

pthread_key_t* pTlsKeyTable[kTlsSlots];
int64_t nTlsOwnerTable[kTlsSlots];

namespace quillon_com::orb::portability {
namespace {

ProcessMutex table_lock;
bool first_call = true;  // guarded by table_lock

// The key of a slot plus 1, 0 when the slot is free; written under table_lock.
std::atomic<uint64_t> keys[kTlsSlots];

static_assert(sizeof(pthread_key_t) <= sizeof(uint64_t));

// table_lock is held by the callers of the next three and of release. The exported words are stored
// atomically, because callers may look at them at any time.
void publish(size_t slot, pthread_key_t* cell, int64_t owner) {
  __atomic_store_n(&pTlsKeyTable[slot], cell, __ATOMIC_RELEASE);
  __atomic_store_n(&nTlsOwnerTable[slot], owner, __ATOMIC_RELEASE);
  keys[slot].store(cell == nullptr ? 0 : uint64_t{*cell} + 1, std::memory_order_release);
}

void clear_tables_once() {
  if (!first_call) return;
  first_call = false;
  for (size_t slot = 0; slot < kTlsSlots; ++slot) publish(slot, nullptr, 0);
}

size_t lowest_free_slot() {
  size_t slot = 0;
  while (slot < kTlsSlots && pTlsKeyTable[slot] != nullptr) ++slot;
  return slot;
}

bool reject() {
  store_error(kErrInvalid);
  return false;
}

// The key of a slot in use; otherwise false with 22 in nErrno.
bool key_of(uint32_t slot, pthread_key_t* key) {
  if (slot >= kTlsSlots) return reject();
  const uint64_t word = keys[slot].load(std::memory_order_acquire);
  if (word == 0) return reject();
  *key = static_cast<pthread_key_t>(word - 1);
  return true;
}

// Frees a slot in use; false when the system cannot delete its key.
bool release(uint32_t slot, pthread_key_t key) {
  pthread_key_t* cell = pTlsKeyTable[slot];
  publish(slot, nullptr, 0);
  free(cell);
  return pthread_key_delete(key) == 0;
}

}  // namespace

void release_slots_of_process() {
  const int64_t self = process_id();
  const Hold hold(table_lock);
  for (uint32_t slot = 0; slot < kTlsSlots; ++slot) {
    const uint64_t word = keys[slot].load(std::memory_order_relaxed);
    if (word != 0 && nTlsOwnerTable[slot] == self) {
      release(slot, static_cast<pthread_key_t>(word - 1));
    }
  }
}

}  // namespace quillon_com::orb::portability

using namespace quillon_com::orb::portability;

int64_t voxTlsAlloc() {
  const Hold hold(table_lock);
  clear_tables_once();
  const size_t slot = lowest_free_slot();
  if (slot == kTlsSlots) {
    store_error(kErrAgain);
    return -1;
  }
  auto* cell = static_cast<pthread_key_t*>(malloc(sizeof(pthread_key_t)));
  if (cell == nullptr) {
    store_error(kErrNoMemory);
    return -1;
  }
  if (pthread_key_create(cell, nullptr) != 0) {
    free(cell);
    return -1;
  }
  publish(slot, cell, process_id());
  return static_cast<int64_t>(slot);
}

int voxTlsFree(uint32_t slot) {
  const Hold hold(table_lock);
  pthread_key_t key{};
  return key_of(slot, &key) && release(slot, key) ? 1 : 0;
}

int voxTlsSetValue(uint32_t slot, void* value) {
  pthread_key_t key{};
  return key_of(slot, &key) && pthread_setspecific(key, value) == 0 ? 1 : 0;
}

void* voxTlsGetValue(uint32_t slot) {
  pthread_key_t key{};
  return key_of(slot, &key) ? pthread_getspecific(key) : nullptr;
}
