// fileutil/direntsearch.h: searches of fileutil/dirent.h without their records; internal.
#pragma once

#include "fileutil/dirent.h"

namespace quillon_com::orb::fileutil {

// Opens the directory `search.prefix` and gives a copy of `search`, with the stream, the lowest
// free place; no entry is read. Returns the search, for voxFindCloseDirEnt to end; -1 when the
// directory cannot be opened (errno tells why) and when there is no place or no memory (35 in
// nErrno).
int begin_search(DirEntSlot search);

// The stream of an open search, which keeps it; null, with 22 in nErrno, for any other number.
DIR* search_stream(int handle);

}  // namespace quillon_com::orb::fileutil
