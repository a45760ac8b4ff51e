// tools/orbprops/output.h: the three standard descriptors: made safe, written to, diverted.
#pragma once

#include <string_view>

namespace orbprops {

// Opens the null device on each of the descriptors 0 to 2 that is closed, so that no file that the
// process opens later takes its place. Returns false when descriptor 1 was closed. Also makes
// writing to a pipe without a reader fail with EPIPE instead of ending the process.
bool secure_descriptors();

// Writes all of `text` to `fd`. Returns 0, or the errno of the write that failed; what was written
// until then stays written.
int write_all(int fd, std::string_view text);

// Writes "orbprops: `message`" and a line end to standard error; a failure is passed over.
void complain(std::string_view message);

// While it lives, what the process prints on standard output goes elsewhere: to standard error, or
// nowhere. One at a time; the stream stdout stays unbuffered afterwards, so that nothing printed
// in between is left for later.
class Diversion {
 public:
  // Diverts to standard error when `to_standard_error`. error() tells whether that worked.
  explicit Diversion(bool to_standard_error);
  // Gives descriptor 1 back.
  ~Diversion();
  Diversion(const Diversion&) = delete;
  Diversion& operator=(const Diversion&) = delete;

  // 0, or the errno for which standard output was left alone.
  int error() const { return error_; }

 private:
  int kept_ = -1;  // the real standard output, closed on exec
  int error_ = 0;
};

}  // namespace orbprops
