// tests/support/scoped_locale.h: the process's LC_CTYPE locale for one scope.
#pragma once

#include <clocale>
#include <string>

namespace orbtest {

// Sets LC_CTYPE to `name`; the destructor gives back what it was. The tests that use it run on one
// thread. `set` tells whether the machine has that locale.
class ScopedLocale {
 public:
  explicit ScopedLocale(const char* name) : before_(setlocale(LC_CTYPE, nullptr)) {
    set_ = setlocale(LC_CTYPE, name) != nullptr;
  }
  ~ScopedLocale() { setlocale(LC_CTYPE, before_.c_str()); }
  ScopedLocale(const ScopedLocale&) = delete;
  ScopedLocale& operator=(const ScopedLocale&) = delete;

  bool set() const { return set_; }

 private:
  std::string before_;
  bool set_ = false;
};

}  // namespace orbtest
