// platform/linux_freespace.cpp: platform/freespace.h by statfs, whose counts are of f_frsize bytes.
#include "platform/freespace.h"

#include <sys/statfs.h>

namespace quillon_com::orb::platform {

bool available_blocks(const char* path, uint64_t* blocks, uint64_t* block_size) {
  struct statfs answer {};
  if (statfs(path, &answer) != 0) return false;
  *blocks = answer.f_bavail;
  *block_size = static_cast<uint64_t>(answer.f_frsize != 0 ? answer.f_frsize : answer.f_bsize);
  return true;
}

}  // namespace quillon_com::orb::platform
