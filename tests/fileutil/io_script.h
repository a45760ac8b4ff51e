// tests/fileutil/io_script.h: lets file calls of this project answer by script.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>

namespace orbtest {

// One answer: `error` other than 0 gives -1 with it in errno; otherwise the system is asked for at
// most `most` bytes.
struct IoAnswer {
  int error = 0;
  size_t most = 0;
};

// While it lives, this thread's calls take their answers from the front; the system answers when
// none is left. A close that fails closes all the same. Scripts do not nest.
class IoScript {
 public:
  IoScript();
  ~IoScript();
  IoScript(const IoScript&) = delete;
  IoScript& operator=(const IoScript&) = delete;

  std::deque<IoAnswer> reads, writes, closes;
  std::deque<IoAnswer> kernel_copies;         // sendfile's
  std::optional<std::string> working_folder;  // what getcwd tells; the system's own when empty
};

}  // namespace orbtest
