// platform/errno_numbers.cpp: a host's errno in the portability core's own numbering, by its name.
#include <algorithm>
#include <cerrno>
#include <iterator>

#include "platform/values.h"

namespace quillon_com::orb::platform {
namespace {

struct ErrnoNumber {
  int host;
  int core;
};

constexpr ErrnoNumber kNumbers[] = {
    {0, 0},       {ENOENT, 2},  {ESRCH, 3},    {EINTR, 4},   {EIO, 5},     {ENXIO, 6},
    {E2BIG, 7},   {EBADF, 9},   {EDEADLK, 11}, {ENOMEM, 12}, {EACCES, 13}, {EBUSY, 16},
    {ENODEV, 19}, {EINVAL, 22}, {ENFILE, 23},  {EMFILE, 24}, {ENOTTY, 25}, {ETXTBSY, 26},
    {EFBIG, 27},  {ENOSPC, 28}, {EROFS, 30},   {EMLINK, 31}, {EAGAIN, 35}, {ENOLCK, 77},
};

}  // namespace

int core_errno(int host_errno) {
  const auto known = std::find_if(std::begin(kNumbers), std::end(kNumbers),
                                  [&](const ErrnoNumber& n) { return n.host == host_errno; });
  return known == std::end(kNumbers) ? -1 : known->core;
}

}  // namespace quillon_com::orb::platform
