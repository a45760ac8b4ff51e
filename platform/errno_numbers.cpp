// platform/errno_numbers.cpp: a host's errno in the portability core's own numbering, by its name.
#include <cerrno>

#include "platform/values.h"

namespace quillon_com::orb::platform {

int core_errno(int host_errno) {
  switch (host_errno) {
    case 0:
      return 0;
    case ENOENT:
      return 2;
    case ESRCH:
      return 3;
    case EINTR:
      return 4;
    case EIO:
      return 5;
    case ENXIO:
      return 6;
    case E2BIG:
      return 7;
    case EBADF:
      return 9;
    case EDEADLK:
      return 11;
    case ENOMEM:
      return 12;
    case EACCES:
      return 13;
    case EBUSY:
      return 16;
    case ENODEV:
      return 19;
    case EINVAL:
      return 22;
    case ENFILE:
      return 23;
    case EMFILE:
      return 24;
    case ENOTTY:
      return 25;
    case ETXTBSY:
      return 26;
    case EFBIG:
      return 27;
    case ENOSPC:
      return 28;
    case EROFS:
      return 30;
    case EMLINK:
      return 31;
    case EAGAIN:
      return 35;
    case ENOLCK:
      return 77;
    default:
      return -1;
  }
}

}  // namespace quillon_com::orb::platform
