// tests/support/scoped_environment.h: an environment variable, or the time zone, for one scope.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace orbtest {

// Sets the variable `name` to `value`, or removes it when there is none; the destructor gives it
// back what it held. The tests that use it run on one thread.
class ScopedEnvironment {
 public:
  ScopedEnvironment(const char* name, const std::optional<std::string>& value) : name_(name) {
    if (const char* before = getenv(name)) before_ = before;
    assign(value);
  }
  ~ScopedEnvironment() { assign(before_); }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
  void assign(const std::optional<std::string>& value) const {
    if (value) {
      setenv(name_.c_str(), value->c_str(), 1);
    } else {
      unsetenv(name_.c_str());
    }
  }

  std::string name_;
  std::optional<std::string> before_;
};

// The same for TZ, with the C library told of it at both ends.
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const std::optional<std::string>& zone) : variable_("TZ", zone) {
    tzset();
  }
  ~ScopedTimeZone() = default;
  ScopedTimeZone(const ScopedTimeZone&) = delete;
  ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

 private:
  struct TellingAtTheEnd {
    ~TellingAtTheEnd() { tzset(); }
  };
  TellingAtTheEnd telling_;  // destroyed behind the variable
  ScopedEnvironment variable_;
};

}  // namespace orbtest
