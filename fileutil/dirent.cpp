// fileutil/dirent.cpp: the table of 50 directory searches.
#include "fileutil/dirent.h"

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "fileutil/direntsearch.h"
#include "portability/forks.h"
#include "portability/handleparts.h"

using quillon_com::orb::portability::Hold;
using quillon_com::orb::portability::ProcessMutex;
using quillon_com::orb::portability::store_error;

DirEntSlot* pDirEntTable[kDirEntSlots];

namespace {

constexpr int kNoSearch = -1;

// Guards the choice and the filling of a free place. Places are emptied without it.
ProcessMutex MutexDirEnt;

std::atomic<bool> first_call = true;

// The exported places are read and written atomically: those of other searches change at any time.
DirEntSlot* at(int place) { return __atomic_load_n(&pDirEntTable[place], __ATOMIC_ACQUIRE); }
void put(int place, DirEntSlot* search) {
  __atomic_store_n(&pDirEntTable[place], search, __ATOMIC_RELEASE);
}

void clear_table_once() {
  if (!first_call.load(std::memory_order_acquire)) return;
  const Hold hold(MutexDirEnt);
  if (!first_call.exchange(false)) return;
  for (int place = 0; place < kDirEntSlots; ++place) put(place, nullptr);
}

// The open search behind `handle`; null, with 22 in nErrno, when it is none.
DirEntSlot* search_of(int handle) {
  DirEntSlot* search = handle < 1 || handle > kDirEntSlots ? nullptr : at(handle - 1);
  if (search == nullptr) store_error(kErrInvalid);
  return search;
}

// The directory and the pattern of `path`, without a stream.
DirEntSlot split(const char* path) {
  DirEntSlot search{};
  const char* const slash = strrchr(path, '/');
  const char* const pattern = slash == nullptr ? path : slash + 1;
  const char* const prefix = slash == nullptr ? "." : path;
  const size_t length = slash == nullptr ? 1 : static_cast<size_t>(pattern - path);
  memcpy(search.prefix, prefix, std::min<size_t>(length, kDirEntName));
  memcpy(search.pattern, pattern, strnlen(pattern, kDirEntName));
  return search;
}

// Puts a copy of `search` at the lowest free place and returns its handle; kNoSearch when there is
// no place or no memory.
int keep(const DirEntSlot& search) {
  const Hold hold(MutexDirEnt);
  int place = 0;
  while (place < kDirEntSlots && at(place) != nullptr) ++place;
  if (place == kDirEntSlots) return kNoSearch;
  auto* kept = static_cast<DirEntSlot*>(malloc(sizeof(DirEntSlot)));
  if (kept == nullptr) return kNoSearch;
  *kept = search;
  put(place, kept);
  return place + 1;
}

// What the system tells of the path made of `prefix` and `name`.
bool examine(const char* prefix, const char* name, struct stat* status) {
  char path[kDirEntPath + 1];
  const size_t before = strnlen(prefix, kDirEntPath);
  const size_t behind = strnlen(name, kDirEntPath - before);
  memcpy(path, prefix, before);
  memcpy(path + before, name, behind);
  path[before + behind] = '\0';
  return stat(path, status) == 0;
}

// A name may be longer than the array that the system declares for it.
const char* name_of(const dirent* entry) {
  return reinterpret_cast<const char*>(entry) + offsetof(dirent, d_name);
}

void describe(const struct stat& status, FindDataDirEnt* found) {
  if (S_ISDIR(status.st_mode)) found->attributes = kDirEntIsDirectory;
  found->accessed = status.st_atime;
  found->modified = status.st_mtime;
  found->size = status.st_size;
}

}  // namespace

namespace quillon_com::orb::fileutil {

int begin_search(DirEntSlot search) {
  clear_table_once();
  search.stream = opendir(search.prefix);
  if (search.stream == nullptr) return kNoSearch;
  const int handle = keep(search);
  if (handle == kNoSearch) {
    closedir(search.stream);
    store_error(kErrAgain);
  }
  return handle;
}

DIR* search_stream(int handle) {
  const DirEntSlot* search = search_of(handle);
  return search == nullptr ? nullptr : search->stream;
}

}  // namespace quillon_com::orb::fileutil

using quillon_com::orb::fileutil::begin_search;

int voxFindFirstDirEnt(const char* path, FindDataDirEnt* findData) {
  clear_table_once();
  if (path == nullptr || findData == nullptr) {
    store_error(kErrInvalid);
    return kNoSearch;
  }
  const int handle = begin_search(split(path));
  if (handle == kNoSearch || voxFindNextDirEnt(handle, findData) == 1) return handle;
  voxFindCloseDirEnt(handle);
  return kNoSearch;
}

int voxFindNextDirEnt(int handle, FindDataDirEnt* findData) {
  const DirEntSlot* search = search_of(handle);
  if (search == nullptr) return 0;
  if (findData == nullptr) {
    store_error(kErrInvalid);
    return 0;
  }
  const dirent* entry = readdir(search->stream);
  while (entry != nullptr && voxWildCardMatch(search->pattern, name_of(entry)) != 0)
    entry = readdir(search->stream);
  if (entry == nullptr) return 0;
  voxSetFindDataDirEnt(findData, entry, search->prefix);
  return 1;
}

int voxFindCloseDirEnt(int handle) {
  DirEntSlot* search = search_of(handle);
  if (search == nullptr) return 0;
  const bool closed = closedir(search->stream) == 0;
  free(search);
  put(handle - 1, nullptr);
  return closed ? 1 : 0;
}

FindDataDirEnt* voxSetFindDataDirEnt(FindDataDirEnt* findData, const struct dirent* entry,
                                     const char* prefix) {
  if (findData == nullptr) return nullptr;
  memset(findData, 0, sizeof *findData);
  if (entry == nullptr || prefix == nullptr) return findData;
  const char* const name = name_of(entry);
  memcpy(findData->name, name, strnlen(name, kDirEntName));
  struct stat status {};
  if (examine(prefix, name, &status)) describe(status, findData);
  return findData;
}

int voxcomn_findfirstA(const char* path, FindDataDirEnt* findData) {
  const int handle = voxFindFirstDirEnt(path, findData);
  return handle == kNoSearch ? 0 : handle;
}

bool voxcomn_findnextA(int handle, FindDataDirEnt* findData) {
  return voxFindNextDirEnt(handle, findData) == 1;
}

int voxcomn_findclose(int handle) { return voxFindCloseDirEnt(handle); }
