// tests/fileutil/directory_faults.h: lets directories fail, or tell less.
#pragma once

#include <cstddef>

namespace orbtest {

// While it lives, this thread's calls of readdir from number `reads` on (from 1; 0 for none) give
// null with EIO in errno, and closedir closes but gives -1 with EIO when `closing`. Only calls of
// this project count. Scopes do not nest.
class DirectoryFaults {
 public:
  DirectoryFaults(size_t reads, bool closing);
  ~DirectoryFaults();
  DirectoryFaults(const DirectoryFaults&) = delete;
  DirectoryFaults& operator=(const DirectoryFaults&) = delete;

  size_t failures() const;  // of both kinds
};

// While it lives, this thread reads entries that state no type, and cannot ask for it either unless
// they are `examinable`: fstatat gives -1 with EACCES.
class UntypedEntries {
 public:
  explicit UntypedEntries(bool examinable = true);
  ~UntypedEntries();
  UntypedEntries(const UntypedEntries&) = delete;
  UntypedEntries& operator=(const UntypedEntries&) = delete;
};

}  // namespace orbtest
