// fileutil/paths.h: absolute, flattened paths, and the regular file that a path leads to.
//
// Both classes do their work when they are constructed and hand out the result. Neither throws nor
// stores an error word: a path that has no result, memory that runs out included, is told by
// `false` or 0x80000008. Different objects may be used by different threads at once; the process's
// working folder is read.
#pragma once

#include "platform/export.h"

#ifdef __cplusplus

#include <string>

// Makes a path absolute and takes its "." and ".." steps out, as a matter of text: nothing on disk
// is looked at, so that symbolic links stay.
// Quirk: runs of slashes are kept, and what stands between two of them is a step: "/a//b" stays,
// "/a//../b" gives "/a/b".
// Quirk: one "/" at the end is dropped first of all, so that "/" counts as empty; "//" gives "/".
// Quirk: an empty path gives the base and a "/": with the base "/x", "" and "/" give "/x/".
// Quirk: a path whose steps cancel out is empty: "/a/.." and "/." give "".
// Quirk: ".." above the root is a failure, not the root.
class ORB_EXPORT FileNameFlattener {
 public:
  // Reads a relative `path` against the working folder, or against the root when that folder cannot
  // be had or its path is longer than 1023 bytes.
  // Quirk: in the root folder a relative path gets two slashes: "a" gives "//a".
  explicit FileNameFlattener(const std::string& path);

  // Reads a relative `path` against `base`, which is flattened by the constructor above. When that
  // fails the object stays failed, whatever `path` is.
  FileNameFlattener(const std::string& path, const std::string& base);

  // Does the work anew, with the same path and base; the constructors call it. Returns whether
  // there is a result.
  // Quirk: behind a base that failed it takes the root for the base.
  bool Flatten();

  // Copies the result to `out` and returns true; false, `out` untouched, without a result.
  bool GetFlatPath(std::string& out);

 private:
  bool success_ = false;
  std::string path_;
  std::string flat_;
  std::string base_;
};

// Follows symbolic links, one after the other, from a path to a regular file. The path of each link
// and the text of the link are flattened, so that ".." takes back the step before it even where
// that is a link.
// Anything but a regular file at the end (nothing, a folder, a device, a socket) is no result; so
// are more than 50 links, a link that cannot be read, and one whose text climbs above the root.
// Quirk: a link's text is cut to 1024 bytes, and the file of that name is taken.
// Quirk: the relative text of a link in the root folder is read against the working folder.
class ORB_EXPORT FileNameResolver {
 public:
  // Follows `path`, which is read against the working folder when it is relative.
  explicit FileNameResolver(const std::string& path);

  // Copies the path of the regular file, flattened, to `out` and returns true; false, `out`
  // untouched, when there is none.
  bool GetAbsolutePath(std::string& out);

 private:
  bool success_ = false;
  std::string path_;
  std::string absolute_;
};

// The names above under the namespace of the newer services as well.
namespace quillon_com::orb {
using ::FileNameFlattener;
using ::FileNameResolver;
}  // namespace quillon_com::orb

#endif

ORB_EXTERN_C_BEGIN

// Resolves `path` and stores a FileNameResolver in `*resolver`, which the caller gives to
// voxcomn_filenameresolver_destroy. Returns 0, also when the path leads to no regular file; the
// next call tells that. Returns 0x80000008, `*resolver` untouched, for a null argument or when
// there is no memory for the object.
ORB_EXPORT unsigned voxcomn_filenameresolver_create(const char* path, void** resolver);

// Copies the path of the regular file with its terminator to `buffer`, which has room for `*size`
// bytes, stores the bytes written in `*size` and returns 0. Returns 0x80000008, `buffer` untouched,
// for a null argument or without a result (`*size` untouched), and when the room is too small:
// `*size` then is what is needed.
ORB_EXPORT unsigned voxcomn_filenameresolver_get_absolute_filename(void* resolver, char* buffer,
                                                                   int* size);

// Deletes the resolver; null is none. Returns 0.
ORB_EXPORT unsigned voxcomn_filenameresolver_destroy(void* resolver);

ORB_EXTERN_C_END
