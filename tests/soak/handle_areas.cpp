// tests/soak/handle_areas.cpp: rounds of events, mutexes, threads, slots, locks and lists.
#include <array>
#include <atomic>
#include <memory>
#include <thread>

#include "portability/threads.h"
#include "tests/soak/soak.h"

namespace soak {
namespace {

void use_events(Worker& worker) {
  std::array<_voxHandleObject_t*, 3> events{};
  for (_voxHandleObject_t*& event : events) {
    event = voxCreateEvent(nullptr, 1, 0, nullptr);
    worker.expect(event != nullptr, "an event is made");
    worker.expect(voxWaitForSingleObject(event, 0) == WAIT_TIMEOUT, "a new event is not set");
  }
  voxSetEvent(events[2]);
  worker.expect(voxWaitForSingleObject(events[2], INFINITE) == WAIT_OBJECT_0, "a set one is");
  worker.expect(voxWaitForMultipleObjects(3, events.data(), 0, 40) == WAIT_OBJECT_0 + 2,
                "the third of three is found");
  voxResetEvent(events[2]);
  worker.expect(voxWaitForSingleObject(events[2], 0) == WAIT_TIMEOUT, "a reset event is not set");
  for (_voxHandleObject_t* event : events)
    worker.expect(voxCloseHandle(event) == 1, "an event is closed");
}

// Tells the neighbour and looks whether the other one has told; whether it has is left open.
void tell_a_neighbour(Worker& worker) {
  Shared& all = shared();
  worker.expect(voxSetEvent(all.events[(worker.number() + 1) % kWorkers]) == 1, "an event is set");
  _voxHandleObject_t* const mine = all.events[worker.number()];
  const uint64_t outcome = voxWaitForSingleObject(mine, 1);
  worker.expect(outcome == WAIT_OBJECT_0 || outcome == WAIT_TIMEOUT, "a wait ends either way");
  worker.expect(voxResetEvent(mine) == 1, "an event is reset");
}

void use_the_mutex(Worker& worker) {
  Shared& all = shared();
  const uint64_t limit = worker.number() % 2 == 0 ? uint64_t{INFINITE} : 20;
  const uint64_t outcome = voxWaitForSingleObject(all.mutex, limit);
  if (outcome == WAIT_OBJECT_0) {
    ++all.behind_mutex;
    ++all.mutex_entries;
    worker.expect(voxReleaseMutex(all.mutex) == 1, "a mutex is released");
  } else {
    worker.expect(outcome == WAIT_TIMEOUT && limit != INFINITE, "only a bounded wait times out");
  }
}

void use_interlocked_words(Worker& worker) {
  Shared& all = shared();
  voxInterlockedIncrement(&all.interlocked);
  voxInterlockedIncrement(&all.interlocked);
  voxInterlockedDecrement(&all.interlocked);
  ++all.additions;
  vxSL_Get(&all.spin);
  ++all.behind_spin;
  vxSL_Release(&all.spin);
  ++all.spin_entries;
  long own = 41;
  worker.expect(voxInterlockedExchange(&own, 7) == 41 && own == 7, "an exchange gives the old");
}

void* count(void* argument) {
  ++*static_cast<std::atomic<int>*>(argument);
  return nullptr;
}

// A thread whose handle is closed while it may still run; its end is seen by a slot that it takes.
void begin_and_close(Worker& worker, std::atomic<int>* ran) {
  const int64_t witness = voxTlsAlloc();
  worker.expect(witness >= 0, "a slot is free");
  if (witness < 0) return;
  void* const thread = voxBeginThread(nullptr, 0, count, ran, 0, nullptr);
  worker.expect(reinterpret_cast<intptr_t>(thread) != -1, "a thread begins");
  worker.expect(voxCloseHandle(thread) == 1, "the handle of a running thread is closed");
  while (__atomic_load_n(&pTlsKeyTable[witness], __ATOMIC_ACQUIRE) != nullptr)
    std::this_thread::yield();
}

void use_threads(Worker& worker) {
  const std::unique_lock alone(shared().slots);
  std::atomic<int> ran{0};
  std::array<void*, 3> threads{};
  for (void*& thread : threads) {
    uint32_t number = 1;
    thread = voxBeginThread(nullptr, 0, count, &ran, 0, &number);
    worker.expect(reinterpret_cast<intptr_t>(thread) != -1 && number == 0, "a thread begins");
  }
  for (void* thread : threads) {
    worker.expect(voxWaitForSingleObject(thread, INFINITE) == WAIT_OBJECT_0, "a thread ends");
    worker.expect(voxCloseHandle(thread) == 1, "the handle of an ended thread is closed");
  }
  begin_and_close(worker, &ran);
  worker.expect(ran == 4, "every thread runs its routine once");
  worker.expect(vxSO_GetThread() == -1, "the end of a thread releases every slot");
  worker.expect(vxSO_ProcessAttach() != -1, "the slot of the events is taken anew");
}

void use_slots(Worker& worker) {
  const std::shared_lock together(shared().slots);
  const int64_t slot = voxTlsAlloc();
  worker.expect(slot >= 0 && slot < kTlsSlots, "a slot is free");
  const auto number = static_cast<uint32_t>(slot);
  worker.expect(voxTlsGetValue(number) == nullptr, "a new slot is empty");
  worker.expect(voxTlsSetValue(number, &worker) == 1, "a value is stored");
  worker.expect(voxTlsGetValue(number) == &worker, "a thread has its own value");
  worker.expect(voxTlsFree(number) == 1, "a slot is released");
}

int32_t told(void* worker, uint32_t message, void*, void*) {
  static_cast<Worker*>(worker)->expect(message == 0x1100, "a free lock is told of");
  static_cast<Worker*>(worker)->registered = false;
  return 0;
}

// The lock is held alone when this returns true; otherwise the thread is on its list.
bool enter_or_register(Worker& worker, _vxSELock_t* lock) {
  if (worker.registered.exchange(true)) return false;
  if (vxSO_SELockExclusiveNotify(lock, told, &worker, nullptr) == 0) return false;
  worker.registered = false;
  return true;
}

void write_behind(Shared& all) {
  ++all.behind_lock;
  ++all.lock_entries;
}

void use_the_lock(Worker& worker) {
  Shared& all = shared();
  const std::shared_lock together(all.slots);
  worker.attach();
  worker.expect(vxSO_SELockExclusive(all.lock, 1) == 1, "an exclusive entry that waits gets in");
  worker.expect(vxSO_SELockExclusive(all.lock, 0) == 1, "the owner enters again");
  write_behind(all);
  vxSO_SELockRelease(all.lock);
  const long written = all.behind_lock;
  vxSO_SELockExclusiveToShared(all.lock);
  worker.expect(all.behind_lock == written, "no writer enters between");
  vxSO_SELockRelease(all.lock);
  worker.expect(vxSO_SELockSharedStarveExclusive(all.lock, 1) == 1, "a reader gets in");
  vxSO_SELockRelease(all.lock);
  worker.expect(vxSO_SELock(all.lock, 0, 1) == 1, "a reader that yields gets in");
  vxSO_SELockRelease(all.lock);
  if (!enter_or_register(worker, all.lock)) return;
  write_behind(all);
  vxSO_SELockRelease(all.lock);
}

struct Item {
  void* links[2] = {};
  uint64_t mark = kMark;
  static constexpr uint64_t kMark = 0x5157494E47;
};

// What each thread has inserted is still there or has been taken for something inserted by another:
// a thread that has inserted more than it took finds an item.
void take(Worker& worker, void* item) {
  const std::unique_ptr<Item> taken(static_cast<Item*>(item));
  worker.expect(taken != nullptr && taken->mark == Item::kMark, "an inserted item is found");
}

void use_guarded_lists(Worker& worker) {
  Shared& all = shared();
  const std::shared_lock together(all.slots);
  worker.attach();
  vxSLL_XInsertHead(all.stack, new Item);
  vxSLL_XInsertHead(all.stack, new Item);
  vxSLL2_XInsertHead(all.queue, new Item);
  vxSLL2_XInsertTail(all.queue, new Item);
  void* const first = vxSLL2_XGetHead(all.queue, 0, 1);
  worker.expect(first != nullptr && vxLL2_XIsEnd(first) == 0, "a walk begins at an item");
  vxSLL2_LockRelease(all.queue);
  take(worker, vxSLL2_XRemoveHead(all.queue));
  take(worker, vxSLL2_XRemoveTail(all.queue));
  take(worker, vxSLL_XRemoveHead(all.stack));
  take(worker, vxSLL_XRemoveHead(all.stack));
}

void use_plain_lists(Worker& worker) {
  std::array<Item, 4> items;
  void* head = nullptr;
  vxLL_Init(&head);
  for (Item& item : items) vxLL_XInsertHead(&head, &item);
  vxLL_XRemove(vxLL_XGetStart(&head), &items[3]);
  worker.expect(vxLL_XRemoveHead(&head) == &items[2], "the last that came is the first to go");
  _LinkedList_t* list = nullptr;
  worker.expect(LinkedList_Init(&list) == 1, "a list is made");
  for (Item& item : items) LinkedList_AddTail(list, &item);
  worker.expect(LinkedList_PeekAt(list, 2) == &items[2], "an item is seen at its place");
  worker.expect(LinkedList_RemoveAt(list, 1) == &items[1], "an item is taken from its place");
  worker.expect(LinkedList_RemoveTail(list) == &items[3], "the last item is taken");
  worker.expect(LinkedList_GetCount(list) == 2, "two of four are left");
  LinkedList_End(&list);
}

}  // namespace

const std::vector<Area>& handle_areas() {
  static const std::vector<Area> areas = {
      {"events", 1, use_events},
      {"events between threads", 4, tell_a_neighbour},
      {"mutexes", 1, use_the_mutex},
      {"interlocked words", 1, use_interlocked_words},
      {"threads", 4, use_threads},
      {"thread-local slots", 1, use_slots},
      {"shared/exclusive lock", 1, use_the_lock},
      {"guarded lists", 1, use_guarded_lists},
      {"plain lists", 1, use_plain_lists},
  };
  return areas;
}

}  // namespace soak
