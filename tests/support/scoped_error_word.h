// tests/support/scoped_error_word.h: nErrno and errno set for a scope and restored behind it.
#pragma once

#include <cerrno>

#include "portability/errorwords.h"

namespace orbtest {

// Sets nErrno to a number that nothing stores, so that a stored one is seen, and restores it.
class ScopedErrorWord {
 public:
  static constexpr int64_t kUntouched = -77;

  ScopedErrorWord() : before_(load()), errno_before_(errno) { store(kUntouched); }
  ScopedErrorWord(const ScopedErrorWord&) = delete;
  ScopedErrorWord& operator=(const ScopedErrorWord&) = delete;
  ~ScopedErrorWord() {
    store(before_);
    errno = errno_before_;
  }

  int64_t stored() const { return load(); }  // kUntouched when nothing was
  void clear() { store(kUntouched); }

 private:
  static int64_t load() { return __atomic_load_n(&nErrno, __ATOMIC_RELAXED); }
  static void store(int64_t number) { __atomic_store_n(&nErrno, number, __ATOMIC_RELAXED); }

  int64_t before_;
  int errno_before_;
};

}  // namespace orbtest
