// portability/filehandle.h: Windows-style files over POSIX descriptors.
//
// A file is a handle of kind HANDLE_TYPE_FILE, closed with voxCloseHandle; it cannot be waited on.
// Paths are narrow byte strings. Refused arguments store 22 in nErrno; failures of the system leave
// errno for voxGetLastError. Results are 1 for success and 0 for failure unless a comment says
// otherwise. Every function may be called from any thread; one file's position is shared by all.
#pragma once

#include <stdint.h>

#include "portability/handles.h"

ORB_EXTERN_C_BEGIN

// What `payload` of a file handle points at; owned by the handle.
typedef struct _voxFileRecord_t {
  int32_t descriptor;     // open for as long as the handle
  int32_t deleteOnClose;  // 1 when voxCloseHandle removes the file
  int32_t endOfFile;      // 1 once a read gave 0 bytes
  char path[260];         // as given; not terminated when it has 260 bytes or more
  char* wholePath;        // private: the path of a file that was opened to be removed, else null
} _voxFileRecord_t;

// Opens or creates the file `path` with mode 0660 (less the umask).
// `access` is 0x80000000 (read), 0x40000000 (write) or 0xC0000000 (both); `disposition` 1 (create,
// must not exist), 2 (create or empty), 3 (must exist) or 4 (create unless it exists); `flags` 0,
// 0x80 (normal) or 0x4000000 (remove at close). Any other value stores 22 in nErrno and gives null.
// `shareMode`, `security` and `templateFile` are ignored.
// Returns the handle, which the caller closes; null when the file cannot be opened (errno as the
// system left it) or there is no memory (12 in nErrno, nothing stays open).
ORB_EXPORT _voxHandleObject_t* voxCreateFileAW(const char* path, uint32_t access,
                                               uint32_t shareMode, void* security,
                                               uint32_t disposition, uint32_t flags,
                                               void* templateFile);

// Reads once, up to `length` bytes, into `buffer` and stores their count in `*bytesRead`, which
// must not be null; 0 bytes mark the end of the file and are a success. `overlapped` is ignored. A
// null or all-ones handle, one of another kind or one without file record stores 22 in nErrno and
// gives 0; a failing read gives 0.
ORB_EXPORT int voxReadFile(void* handle, void* buffer, uint32_t length, uint32_t* bytesRead,
                           void* overlapped);

// Writes once, up to `length` bytes of `buffer`, and stores how many were written in
// `*bytesWritten`, which must not be null. Otherwise like voxReadFile.
ORB_EXPORT int voxWriteFile(void* handle, const void* buffer, uint32_t length,
                            uint32_t* bytesWritten, void* overlapped);

// Moves the position by `distance` from the beginning (`method` 0), the position (1) or the end
// (2); `method` is passed to the system as it is. `distanceHigh` is ignored and not written.
// Returns the new position, -1 on failure, with errno as the system left it.
// Quirk: the handle is not checked: null or a closed one is the caller's mistake.
ORB_EXPORT int64_t voxSetFilePointer(void* handle, int64_t distance, int32_t* distanceHigh,
                                     uint32_t method);

// Cuts or extends the file to its position, which stays. Handles are refused as by voxReadFile; a
// failure of the system gives 0.
// Quirk: the position is kept in 32 signed bits: from 2 GiB on it is cut.
ORB_EXPORT int voxSetEndOfFile(void* handle);

// Returns the size in bytes, -1 on failure: for a handle that voxReadFile refuses with 22 in
// nErrno, else with errno as the system left it. Quirk: `*high`, when `high` is not null, receives
// the size divided by 65535, on success alone.
ORB_EXPORT int64_t voxGetFileSize(void* handle, uint32_t* high);

// Makes a new empty file of mode 0600 in `directory`, its name `prefix` (which may be null) and six
// random characters, and copies its path to `out`, which has room for both, a slash and seven bytes
// more. The file stays, closed, and is the caller's to remove. Returns `unique`, or 1 when that is
// 0; 0 on failure, with `out` untouched and errno as the system left it, also for a null
// `directory` or `out`, then without an error word.
ORB_EXPORT uint32_t voxGetTempFileName(const char* directory, const char* prefix, uint32_t unique,
                                       char* out);

// Renames `oldPath` to `newPath`, replacing a file of that name. A null path gives 0 without an
// error word; a failure of the system gives 0, with both files as they were.
ORB_EXPORT int voxMoveFile(const char* oldPath, const char* newPath);

// Does nothing and returns 1.
ORB_EXPORT int voxSetFileAttributes(const char* path, uint32_t attributes);

ORB_EXTERN_C_END
