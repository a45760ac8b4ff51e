// portability/errorwords.cpp: nErrno, and errno as Windows-style codes.
#include "portability/errorwords.h"

#include <cerrno>

#include "platform/values.h"
#include "portability/handleparts.h"

int64_t nErrno = 0;

namespace quillon_com::orb::portability {

void store_error(int64_t number) { __atomic_store_n(&nErrno, number, __ATOMIC_RELAXED); }

namespace {

constexpr int64_t kUnmapped = static_cast<int32_t>(0x80000008u);

// By number of the numbering that the codes were laid down on.
int64_t windows_code(int number) {
  switch (number) {
    case 0:
      return 0;
    case 2:   // ENOENT
    case 5:   // EIO
    case 6:   // ENXIO
    case 77:  // ENOLCK
      return 38;
    case 3:   // ESRCH
    case 4:   // EINTR
    case 9:   // EBADF
    case 19:  // ENODEV
      return 126;
    case 7:   // E2BIG
    case 12:  // ENOMEM
    case 23:  // ENFILE
    case 24:  // EMFILE
    case 27:  // EFBIG
    case 28:  // ENOSPC
    case 31:  // EMLINK
      return 259;
    case 11:  // EDEADLK
    case 16:  // EBUSY
    case 26:  // ETXTBSY
    case 35:  // EAGAIN
      return 997;
    case 13:  // EACCES
      return 5;
    case 22:  // EINVAL
    case 25:  // ENOTTY
      return 1010;
    case 30:  // EROFS
      return 19;
    default:
      return kUnmapped;
  }
}

}  // namespace
}  // namespace quillon_com::orb::portability

int64_t voxGetLastError() {
  namespace platform = quillon_com::orb::platform;
  return quillon_com::orb::portability::windows_code(platform::core_errno(errno));
}
