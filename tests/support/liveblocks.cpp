// tests/support/liveblocks.cpp: the blocks of memory that a watched thread has not given back.
#include "tests/support/liveblocks.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <thread>

#include "tests/support/calltrace.h"

namespace {

constexpr size_t kRoom = 20000;

thread_local bool watching = false;

// Blocks that any thread may give back; in an array, because the list must not ask for memory.
std::atomic_flag busy = ATOMIC_FLAG_INIT;  // guards the next three
std::array<void*, kRoom> blocks;
size_t count = 0;  // of the blocks
size_t first = 0;  // of those that the open scope counts
std::atomic<bool> any_watched{false};

class ListHold {
 public:
  ListHold() {
    while (busy.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
  }
  ~ListHold() { busy.clear(std::memory_order_release); }
  ListHold(const ListHold&) = delete;
  ListHold& operator=(const ListHold&) = delete;
};

}  // namespace

namespace orbtest {

void* note_block(void* block) {
  if (!watching || block == nullptr) return block;
  const ListHold hold;
  if (count == kRoom) abort();
  blocks[count++] = block;
  return block;
}

void forget_block(void* block) {
  if (!any_watched || block == nullptr) return;
  const ListHold hold;
  // The latest are given back first, mostly.
  for (size_t place = count; place > first; --place) {
    if (blocks[place - 1] != block) continue;
    blocks[place - 1] = blocks[--count];
    return;
  }
}

LiveMemory::LiveMemory() {
  any_watched = true;
  watching = true;
}

LiveMemory::~LiveMemory() {
  watching = false;
  any_watched = false;
  const ListHold hold;
  // What is left is never given back; the list keeps it in reach, so that it is no leak.
  first = count;
}

size_t LiveMemory::blocks() const {
  const ListHold hold;
  return count - first;
}

}  // namespace orbtest
