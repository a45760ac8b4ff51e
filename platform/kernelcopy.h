// platform/kernelcopy.h: copies between open files that need not pass through the process.
#pragma once

namespace quillon_com::orb::platform {

// Copies bytes from the position of the descriptor `source` to that of `destination` and moves
// both by what was copied. It stops at the end of the source and at any failure, at once where the
// system cannot do it at all; which of these it was, the next read and write tell.
void copy_in_kernel(int source, int destination);

}  // namespace quillon_com::orb::platform
