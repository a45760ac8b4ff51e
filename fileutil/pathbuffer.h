// fileutil/pathbuffer.h: a path of at most 259 bytes, for the file utilities; internal.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace quillon_com::orb::fileutil {

class PathBuffer {
 public:
  static constexpr size_t kMost = 259;  // bytes, without the terminator

  // Holds `path`, cut.
  explicit PathBuffer(const char* path) { append(path); }

  // Adds `text` behind the path; false when it had to be cut.
  bool append(const char* text) {
    const size_t length = strlen(text);
    const size_t taken = std::min(length, kMost - length_);
    memcpy(text_ + length_, text, taken);
    cut(length_ + taken);
    return taken == length;
  }

  // Keeps the first `length` bytes, which there are.
  void cut(size_t length) { text_[length_ = length] = '\0'; }

  const char* text() const { return text_; }
  size_t length() const { return length_; }
  // The last byte; 0 for the empty path, which has none.
  char last() const { return length_ == 0 ? '\0' : text_[length_ - 1]; }

 private:
  char text_[kMost + 1];
  size_t length_ = 0;
};

}  // namespace quillon_com::orb::fileutil
