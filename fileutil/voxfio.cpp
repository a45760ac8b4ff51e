// fileutil/voxfio.cpp: the small file object and the folder test.
#include "fileutil/voxfio.h"

#include <sys/stat.h>

#include <cstdlib>

#include "fileutil/pathbuffer.h"
#include "platform/assertion.h"

using quillon_com::orb::fileutil::PathBuffer;

namespace {

constexpr uint32_t kSuccess = 0;
constexpr uint32_t kFailure = 0x80000008;

uint32_t status_of(bool success) { return success ? kSuccess : kFailure; }

void discard(_vxFile_t* file) {
  free(file->operations);
  free(file);
}

// An object with its table and no handle; null when there is no memory.
_vxFile_t* make_file() {
  auto* file = static_cast<_vxFile_t*>(calloc(1, sizeof(_vxFile_t)));
  if (file == nullptr) return nullptr;
  file->operations = static_cast<_vxFileOperations_t*>(calloc(1, sizeof(_vxFileOperations_t)));
  if (file->operations == nullptr) {
    free(file);
    return nullptr;
  }
  *file->operations = {vxCloseFile, vxReadFile, vxWriteFile, vxGetFileSize};
  return file;
}

void store(uint32_t count, unsigned* out) {
  if (out != nullptr) *out = count;
}

}  // namespace

uint32_t vxCreateFile(const char* name, uint32_t access, uint32_t shareMode, uint32_t disposition,
                      uint32_t flags, _vxFile_t** out) {
  if (out == nullptr) return kFailure;
  *out = nullptr;
  _vxFile_t* file = make_file();
  if (file == nullptr) return kFailure;
  file->handle = voxCreateFileAW(name, access, shareMode, nullptr, disposition, flags, nullptr);
  if (file->handle == nullptr) {
    discard(file);
    return kFailure;
  }
  *out = file;
  return kSuccess;
}

uint32_t vxCloseFile(_vxFile_t* file) {
  if (file == nullptr) return kSuccess;
  const bool closed = voxCloseHandle(file->handle) == 1;
  discard(file);
  return status_of(closed);
}

uint32_t vxReadFile(_vxFile_t* file, void* buffer, int count, unsigned* read) {
  uint32_t done = 0;
  if (file == nullptr || count < 0) return kFailure;
  if (voxReadFile(file->handle, buffer, static_cast<uint32_t>(count), &done, nullptr) == 0)
    return kFailure;
  store(done, read);
  return status_of(done > 0);
}

uint32_t vxWriteFile(_vxFile_t* file, const void* buffer, int count, unsigned* written) {
  uint32_t done = 0;
  if (file == nullptr || count < 0) return kFailure;
  if (voxWriteFile(file->handle, buffer, static_cast<uint32_t>(count), &done, nullptr) == 0)
    return kFailure;
  store(done, written);
  return kSuccess;
}

uint32_t vxGetFileSize(_vxFile_t* file, uint64_t* size) {
  if (file == nullptr || size == nullptr) return kFailure;
  const int64_t bytes = voxGetFileSize(file->handle, nullptr);
  *size = static_cast<uint64_t>(bytes);
  return status_of(bytes != -1 && bytes != int64_t{0xFFFFFFFF});
}

bool vxFolderExists(const char* folder) {
  if (folder == nullptr) {
    quillon_com::orb::platform::report_assertion("vxFolderExists", "../source/voxfio", 190,
                                                 "lpszFolder");
  }
  PathBuffer path(folder);
  if (path.last() == '\\') path.cut(path.length() - 1);
  struct stat status {};
  return stat(path.text(), &status) == 0 && S_ISDIR(status.st_mode);
}
