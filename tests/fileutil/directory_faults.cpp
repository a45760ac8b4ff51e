// tests/fileutil/directory_faults.cpp: the calls that stand before the system's.
#include "tests/fileutil/directory_faults.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>

namespace {

struct Script {
  size_t failing_read = 0;
  bool closing = false;
  size_t reads = 0;
  size_t failures = 0;
};

thread_local Script script;
thread_local bool untyped = false;
thread_local bool closed = false;

}  // namespace

namespace orbtest {

DirectoryFaults::DirectoryFaults(size_t reads, bool closing) { script = {reads, closing, 0, 0}; }
DirectoryFaults::~DirectoryFaults() { script = {}; }
size_t DirectoryFaults::failures() const { return script.failures; }

UntypedEntries::UntypedEntries(bool examinable) {
  untyped = true;
  closed = !examinable;
}
UntypedEntries::~UntypedEntries() { untyped = closed = false; }

}  // namespace orbtest

// The library is built for long file offsets, where these are what readdir and fstatat stand for.
extern "C" {

dirent64* __real_readdir64(DIR* stream);
int __real_closedir(DIR* stream);

dirent64* __wrap_readdir64(DIR* stream) {
  if (script.failing_read == 0 || ++script.reads < script.failing_read) {
    dirent64* const entry = __real_readdir64(stream);
    if (entry != nullptr && untyped) entry->d_type = DT_UNKNOWN;
    return entry;
  }
  ++script.failures;
  errno = EIO;
  return nullptr;
}

int __real_fstatat64(int folder, const char* name, struct stat* status, int flags);

int __wrap_fstatat64(int folder, const char* name, struct stat* status, int flags) {
  if (!closed) return __real_fstatat64(folder, name, status, flags);
  errno = EACCES;
  return -1;
}

int __wrap_closedir(DIR* stream) {
  const int result = __real_closedir(stream);
  if (!script.closing) return result;
  ++script.failures;
  errno = EIO;
  return -1;
}

}  // extern "C"
