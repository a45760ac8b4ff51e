// examples/shared_table.cpp: readers share a table, writers have it to themselves.
#include <cstdio>
#include <map>
#include <thread>
#include <vector>

#include "portability/selock.h"
#include "portability/threads.h"

int main() {
  vxSO_ProcessAttach();  // once in a process, before its first lock
  _vxSELock_t* lock = nullptr;
  if (vxSO_SELockCreate(&lock) != 0) return 1;
  std::map<int, int> table;

  std::vector<std::thread> threads;
  threads.reserve(6);
  for (int writer = 0; writer < 2; ++writer) {
    threads.emplace_back([&, writer] {
      vxSO_ThreadAttach();  // once in each thread that uses a lock
      for (int change = 0; change < 100; ++change) {
        vxSO_SELockExclusive(lock, 1);
        table[writer * 100 + change] = change;
        vxSO_SELockRelease(lock);
      }
      vxSO_ThreadDetach();
    });
  }
  for (int reader = 0; reader < 4; ++reader) {
    threads.emplace_back([&] {
      vxSO_ThreadAttach();
      for (size_t seen = 0; seen < 200;) {
        vxSO_SELockSharedWaitForExclusive(lock, 1);
        seen = table.size();
        vxSO_SELockRelease(lock);
      }
      vxSO_ThreadDetach();
    });
  }
  for (std::thread& thread : threads) thread.join();

  std::printf("4 readers, 2 writers, %zu changes\n", table.size());
  vxSO_Release(lock);
  vxSO_ProcessDetach();
  return 0;
}
