// platform/freespace.h: the room that a file system has left.
#pragma once

#include <cstdint>

namespace quillon_com::orb::platform {

// Stores the blocks of the file system that holds `path` that users without privileges may still
// take, and the size in bytes of such a block. Returns false, both untouched, when the system does
// not tell. A call that hangs on a dead network file system hangs the caller.
bool available_blocks(const char* path, uint64_t* blocks, uint64_t* block_size);

}  // namespace quillon_com::orb::platform
