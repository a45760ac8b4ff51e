// platform/linux_kernelcopy.cpp: platform/kernelcopy.h by sendfile.
#include "platform/kernelcopy.h"

#include <sys/sendfile.h>

#include <cerrno>

namespace quillon_com::orb::platform {

void copy_in_kernel(int source, int destination) {
  constexpr size_t kMost = 1 << 30;  // bytes in one call
  ssize_t copied = 1;
  while (copied > 0 || (copied < 0 && errno == EINTR))
    copied = sendfile(destination, source, nullptr, kMost);
}

}  // namespace quillon_com::orb::platform
