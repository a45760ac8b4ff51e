// portability/filehandle.cpp: Windows-style files over POSIX descriptors.
#include "portability/filehandle.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "portability/handleparts.h"

namespace quillon_com::orb::portability {
namespace {

constexpr uint32_t kDeleteOnClose = 0x4000000;
constexpr mode_t kNewFileMode = 0660;

// The flags of open for `access`, `disposition` and `flags`; -1 when one of them is refused.
int open_flags(uint32_t access, uint32_t disposition, uint32_t flags) {
  int result = 0;
  switch (access) {
    case 0x80000000:
      result = O_RDONLY;
      break;
    case 0x40000000:
      result = O_WRONLY;
      break;
    case 0xC0000000:
      result = O_RDWR;
      break;
    default:
      return -1;
  }
  switch (disposition) {
    case 1:
      result |= O_CREAT | O_EXCL;
      break;
    case 2:
      result |= O_CREAT | O_TRUNC;
      break;
    case 3:
      break;
    case 4:
      result |= O_CREAT;
      break;
    default:
      return -1;
  }
  return flags == 0 || flags == 0x80 || flags == kDeleteOnClose ? result : -1;
}

_voxFileRecord_t* file_of(void* handle) {
  return static_cast<_voxFileRecord_t*>(static_cast<_voxHandleObject_t*>(handle)->payload);
}

// The file record of a handle; null, with 22 in nErrno, when there is none.
_voxFileRecord_t* checked_file(void* handle) {
  const bool none = handle == nullptr || handle == no_handle() ||
                    static_cast<_voxHandleObject_t*>(handle)->kind != HANDLE_TYPE_FILE;
  _voxFileRecord_t* file = none ? nullptr : file_of(handle);
  if (file == nullptr) store_error(kErrInvalid);
  return file;
}

void discard_file_record(_voxFileRecord_t* file) {
  free(file->wholePath);
  free(file);
}

// A file record of `path`, without a descriptor; null, with 12 in nErrno, when there is no memory.
_voxFileRecord_t* make_file_record(const char* path, bool delete_on_close) {
  auto* file = static_cast<_voxFileRecord_t*>(calloc(1, sizeof(_voxFileRecord_t)));
  const size_t size = strlen(path) + 1;
  if (file != nullptr && delete_on_close) file->wholePath = static_cast<char*>(malloc(size));
  if (file == nullptr || (delete_on_close && file->wholePath == nullptr)) {
    free(file);
    store_error(kErrNoMemory);
    return nullptr;
  }
  if (delete_on_close) memcpy(file->wholePath, path, size);
  file->deleteOnClose = delete_on_close ? 1 : 0;
  memcpy(file->path, path, strnlen(path, sizeof file->path));
  return file;
}

// A file handle without a file record. Its condition and guard are made by assignment, which
// cannot fail. Null, with 12 in nErrno, when there is no memory.
_voxHandleObject_t* make_file_handle() {
  static const pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
  static const pthread_mutex_t guard = PTHREAD_MUTEX_INITIALIZER;
  auto* handle = static_cast<_voxHandleObject_t*>(calloc(1, sizeof(_voxHandleObject_t)));
  if (handle == nullptr) {
    store_error(kErrNoMemory);
    return nullptr;
  }
  handle->kind = HANDLE_TYPE_FILE;
  handle->references = 1;
  memcpy(&handle->condition, &condition, sizeof condition);
  memcpy(&handle->guard, &guard, sizeof guard);
  return handle;
}

// A read's or write's count as callers get it.
int deliver(ssize_t count, uint32_t* out) {
  if (count < 0) return 0;
  if (out != nullptr) *out = static_cast<uint32_t>(count);
  return 1;
}

// Removes the file by its whole path, which is kept when it was opened to be removed; a caller that
// marked the record later has the path field alone, which must then hold all of it.
bool remove_file(const _voxFileRecord_t* file) {
  if (file->wholePath != nullptr) return remove(file->wholePath) == 0;
  if (memchr(file->path, '\0', sizeof file->path) != nullptr) return remove(file->path) == 0;
  errno = ENAMETOOLONG;
  return false;
}

}  // namespace

bool close_file(void* payload) {
  auto* file = static_cast<_voxFileRecord_t*>(payload);
  if (file == nullptr || close(file->descriptor) != 0) return false;
  if (file->deleteOnClose == 1 && !remove_file(file)) return false;
  discard_file_record(file);
  return true;
}

}  // namespace quillon_com::orb::portability

using namespace quillon_com::orb::portability;

_voxHandleObject_t* voxCreateFileAW(const char* path, uint32_t access, uint32_t, void*,
                                    uint32_t disposition, uint32_t flags, void*) {
  const int how = open_flags(access, disposition, flags);
  if (path == nullptr || how == -1) {
    store_error(kErrInvalid);
    return nullptr;
  }
  const int descriptor = open(path, how, kNewFileMode);
  if (descriptor < 0) return nullptr;
  _voxHandleObject_t* handle = make_file_handle();
  if (handle != nullptr) handle->payload = make_file_record(path, flags == kDeleteOnClose);
  if (handle == nullptr || handle->payload == nullptr) {
    if (handle != nullptr) destroy_handle(handle);
    close(descriptor);
    return nullptr;
  }
  file_of(handle)->descriptor = descriptor;
  return handle;
}

int voxReadFile(void* handle, void* buffer, uint32_t length, uint32_t* bytesRead, void*) {
  _voxFileRecord_t* file = checked_file(handle);
  if (file == nullptr) return 0;
  const ssize_t count = read(file->descriptor, buffer, length);
  if (count == 0) __atomic_store_n(&file->endOfFile, 1, __ATOMIC_RELAXED);
  return deliver(count, bytesRead);
}

int voxWriteFile(void* handle, const void* buffer, uint32_t length, uint32_t* bytesWritten, void*) {
  const _voxFileRecord_t* file = checked_file(handle);
  return file == nullptr ? 0 : deliver(write(file->descriptor, buffer, length), bytesWritten);
}

int64_t voxSetFilePointer(void* handle, int64_t distance, int32_t*, uint32_t method) {
  return lseek(file_of(handle)->descriptor, distance, static_cast<int>(method));
}

int voxSetEndOfFile(void* handle) {
  const _voxFileRecord_t* file = checked_file(handle);
  if (file == nullptr) return 0;
  const off_t position = lseek(file->descriptor, 0, SEEK_CUR);
  if (position == -1) return 0;
  return ftruncate(file->descriptor, static_cast<int32_t>(position)) == 0 ? 1 : 0;
}

int64_t voxGetFileSize(void* handle, uint32_t* high) {
  const _voxFileRecord_t* file = checked_file(handle);
  struct stat status {};
  if (file == nullptr || fstat(file->descriptor, &status) != 0) return -1;
  if (high != nullptr) *high = static_cast<uint32_t>(status.st_size / 65535);
  return status.st_size;
}

uint32_t voxGetTempFileName(const char* directory, const char* prefix, uint32_t unique, char* out) {
  if (directory == nullptr || out == nullptr) return 0;
  try {
    std::string path = directory;
    path.append("/").append(prefix == nullptr ? "" : prefix).append("XXXXXX");
    const int descriptor = mkstemp(path.data());
    if (descriptor < 0) return 0;
    close(descriptor);
    memcpy(out, path.c_str(), path.size() + 1);
  } catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return 0;
  }
  return unique != 0 ? unique : 1;
}

int voxMoveFile(const char* oldPath, const char* newPath) {
  if (oldPath == nullptr || newPath == nullptr) return 0;
  return rename(oldPath, newPath) == 0 ? 1 : 0;
}

int voxSetFileAttributes(const char*, uint32_t) { return 1; }
