// fileutil/filetree.cpp: sizes, free space and the small text helpers.
#include "fileutil/filetree.h"

#include <sys/stat.h>

#include <cstring>

#include "platform/freespace.h"

namespace {

constexpr uint32_t kSuccess = 0;
constexpr uint32_t kFailure = 0x80000008;
constexpr uint64_t kSpaceFactor = 1000;

}  // namespace

uint32_t voxcomn_get_file_sizeA(const char* path, uint64_t* size) {
  if (path == nullptr || size == nullptr) return kFailure;
  struct stat status {};
  const bool known = stat(path, &status) == 0;
  *size = static_cast<uint64_t>(status.st_size);
  return known ? kSuccess : kFailure;
}

uint32_t voxcomn_get_disk_free_spaceA(const char* path, uint64_t* space) {
  uint64_t blocks = 0;
  uint64_t block_size = 0;
  if (path == nullptr || space == nullptr) return kFailure;
  if (!quillon_com::orb::platform::available_blocks(path, &blocks, &block_size)) return kFailure;
  *space = blocks * block_size * kSpaceFactor;
  return kSuccess;
}

char* voxcomn_chop_semicolon(char* text) {
  char* const found = text == nullptr ? nullptr : strchr(text, ';');
  if (found != nullptr) *found = '\0';
  return found;
}

uint64_t voxcomn_append_backslash_check(char* path) {
  if (path == nullptr) return 0;
  const size_t length = strlen(path);
  if (length > 0 && path[length - 1] == '/') return length - 1;
  memcpy(path + length, "/", 2);
  return length;
}
