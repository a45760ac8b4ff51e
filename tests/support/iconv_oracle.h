// tests/support/iconv_oracle.h: the system's iconv, a second source that stops where it stops.
#pragma once

#include <iconv.h>

#include <cstddef>

namespace orbtest {

// One conversion, opened once and started afresh for each text.
class Iconv {
 public:
  Iconv(const char* to, const char* from) : descriptor_(iconv_open(to, from)) {}
  Iconv(const Iconv&) = delete;
  Iconv& operator=(const Iconv&) = delete;
  ~Iconv() {
    if (open()) iconv_close(descriptor_);
  }

  bool open() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

  // Converts `bytes` bytes into `out`, which has `room`; returns the bytes written.
  size_t convert(const void* text, size_t bytes, void* out, size_t room) {
    char* in = const_cast<char*>(static_cast<const char*>(text));
    char* to = static_cast<char*>(out);
    iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
    iconv(descriptor_, &in, &bytes, &to, &room);
    return static_cast<size_t>(to - static_cast<char*>(out));
  }

 private:
  iconv_t descriptor_;
};

}  // namespace orbtest
