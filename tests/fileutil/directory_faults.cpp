// tests/fileutil/directory_faults.cpp: the calls that stand before the system's.
#include "tests/fileutil/directory_faults.h"

#include <dirent.h>

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

}  // namespace

namespace orbtest {

DirectoryFaults::DirectoryFaults(size_t reads, bool closing) { script = {reads, closing, 0, 0}; }
DirectoryFaults::~DirectoryFaults() { script = {}; }
size_t DirectoryFaults::failures() const { return script.failures; }

UntypedEntries::UntypedEntries() { untyped = true; }
UntypedEntries::~UntypedEntries() { untyped = false; }

}  // namespace orbtest

// The library is built for long file offsets, where this is what readdir stands for.
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

int __wrap_closedir(DIR* stream) {
  const int result = __real_closedir(stream);
  if (!script.closing) return result;
  ++script.failures;
  errno = EIO;
  return -1;
}

}  // extern "C"
