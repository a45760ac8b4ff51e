// tests/session/scripted_users.h: what the tests of the session folder script and capture.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/system.h"

namespace orbtest {

// A stream that keeps what is written to it.
class CapturedStream {
 public:
  CapturedStream() : stream_(open_memstream(&bytes_, &size_)) {}
  ~CapturedStream() {
    std::fclose(stream_);
    std::free(bytes_);
  }
  CapturedStream(const CapturedStream&) = delete;
  CapturedStream& operator=(const CapturedStream&) = delete;

  FILE* get() { return stream_; }
  std::string text() {
    std::fflush(stream_);
    return std::string(bytes_, size_);
  }

 private:
  char* bytes_ = nullptr;
  size_t size_ = 0;
  FILE* stream_;
};

inline quillon_com::orb::platform::SessionEntry session_of(const std::string& user,
                                                           const std::string& line = "pts/0") {
  return {7, "ts/0", user, line};
}

// The command that asks the directory service for `attribute` of `user`.
inline std::string directory_query(const std::string& user, const std::string& attribute) {
  return "/usr/bin/dscl /Search read /Users/" + user + "  |  /usr/bin/grep " + attribute;
}

inline const char* const kPrincipal = "userPrincipalName";
inline const char* const kAuthority = "OriginalAuthenticationAuthority";

}  // namespace orbtest
