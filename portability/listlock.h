// portability/listlock.h: what the two guarded list families share.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "portability/selock.h"

namespace quillon_com::orb::portability {

constexpr uint32_t kListFailed = 0x80000008u;

// A list's lock, held for one operation. A thread without an event cannot wait for it: the
// operation then finds it not held and does nothing.
class ExclusiveHold {
 public:
  explicit ExclusiveHold(_vxSELock_t* lock)
      : lock_(vxSO_SELockExclusive(lock, 1) != 0 ? lock : nullptr) {}
  ~ExclusiveHold() { vxSO_SELockRelease(lock_); }
  ExclusiveHold(const ExclusiveHold&) = delete;
  ExclusiveHold& operator=(const ExclusiveHold&) = delete;
  explicit operator bool() const { return lock_ != nullptr; }

 private:
  _vxSELock_t* lock_;
};

class SharedHold {
 public:
  explicit SharedHold(_vxSELock_t* lock)
      : lock_(vxSO_SELockSharedWaitForExclusive(lock, 1) != 0 ? lock : nullptr) {}
  ~SharedHold() { vxSO_SELockRelease(lock_); }
  SharedHold(const SharedHold&) = delete;
  SharedHold& operator=(const SharedHold&) = delete;
  explicit operator bool() const { return lock_ != nullptr; }

 private:
  _vxSELock_t* lock_;
};

// Allocates a list's record and initialises it; null in `*out` when either fails.
template <class List>
uint32_t create_list(List** out, uint32_t (*initialise)(List*)) {
  if (out == nullptr) return kListFailed;
  *out = static_cast<List*>(calloc(1, sizeof(List)));
  if (*out == nullptr) return kListFailed;
  if (static_cast<int32_t>(initialise(*out)) < 0) {
    free(*out);
    *out = nullptr;
  }
  return 0;
}

}  // namespace quillon_com::orb::portability
