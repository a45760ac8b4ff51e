// fileutil/voxfio.h: a small file object with a table of its operations, and the folder test.
//
// A file object is one over a file handle of portability/filehandle.h. Results are 0 for success
// and 0x80000008 for failure; the error words are left as the handle's functions leave them. An
// object may be used by several threads at once, but is closed by one when the others are done.
#pragma once

#include <stdbool.h>
#include <stdint.h>

#include "platform/export.h"
#include "portability/filehandle.h"

ORB_EXTERN_C_BEGIN

// A file object, as vxCreateFile makes it.
typedef struct _vxFile_t _vxFile_t;

// The functions below, by which a file object is used as well; one table per object.
typedef struct _vxFileOperations_t {
  // Each stands for the function of its name: vxCloseFile, vxReadFile, vxWriteFile, vxGetFileSize.
  uint32_t (*close)(_vxFile_t* file);
  uint32_t (*read)(_vxFile_t* file, void* buffer, int count, unsigned* read);
  uint32_t (*write)(_vxFile_t* file, const void* buffer, int count, unsigned* written);
  uint32_t (*size)(_vxFile_t* file, uint64_t* size);
} _vxFileOperations_t;

// The record behind it, allocated with malloc.
struct _vxFile_t {
  _vxFileOperations_t* operations;  // owned by the object
  _voxHandleObject_t* handle;       // the open file, owned by the object
};

// Opens or creates the file `name` by voxCreateFileAW's rules and stores an object for it in
// `*out`, which the caller closes with vxCloseFile. On failure `*out` is null and nothing stays
// open or allocated; a null `out` fails and opens nothing.
ORB_EXPORT uint32_t vxCreateFile(const char* name, uint32_t access, uint32_t shareMode,
                                 uint32_t disposition, uint32_t flags, _vxFile_t** out);

// Closes the handle and frees the object and its table, whether or not the handle could be closed;
// the result tells that. Null is a success.
ORB_EXPORT uint32_t vxCloseFile(_vxFile_t* file);

// Reads once, up to `count` bytes, into `buffer` and stores their count in `*read`. A failed read
// stores nothing; so does a null `file` or a negative `count`, which fail.
// Quirk: the end of the file is a failure, with 0 stored in `*read`; so is a `count` of 0.
ORB_EXPORT uint32_t vxReadFile(_vxFile_t* file, void* buffer, int count, unsigned* read);

// Writes once, up to `count` bytes of `buffer`, and stores how many were written in `*written`;
// fewer than `count` are a success. A failed write stores nothing; so does a null `file` or a
// negative `count`, which fail.
ORB_EXPORT uint32_t vxWriteFile(_vxFile_t* file, const void* buffer, int count, unsigned* written);

// Stores the size in bytes in `*size`: all bits set when it cannot be had, which fails, as does a
// null argument.
// Quirk: a file of 4294967295 bytes fails too, its size stored.
ORB_EXPORT uint32_t vxGetFileSize(_vxFile_t* file, uint64_t* size);

// Whether `folder`, cut to 259 bytes, is a directory or a link to one. A null `folder` is reported
// as a failed assertion and ends the process.
// Quirk: one backslash at the end, and only a backslash, is taken off first.
ORB_EXPORT bool vxFolderExists(const char* folder);

ORB_EXTERN_C_END
