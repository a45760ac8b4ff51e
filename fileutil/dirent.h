// fileutil/dirent.h: Windows-style searches of one directory, and the wildcard matcher.
//
// A search is known by a small number, its place in a table of 50 plus 1. It belongs to whoever
// began it until it is closed: one that is never closed keeps its place and its open directory for
// the life of the process. Searches may be begun, used and closed by any number of threads at
// once, but one search by one thread at a time. Entries come in the directory's own order.
#pragma once

#include <dirent.h>
#include <stdbool.h>
#include <stdint.h>

#include "platform/export.h"
#include "portability/errorwords.h"

ORB_EXTERN_C_BEGIN

enum {
  kDirEntSlots = 50,        // searches that can be open at once
  kDirEntName = 260,        // bytes of a pattern, a prefix or a found name that are kept
  kDirEntPath = 259,        // bytes of an entry's path that are looked at
  kDirEntIsDirectory = 16,  // the attribute of a directory
};

// What is told of an entry that was found.
typedef struct FindDataDirEnt {
  uint32_t attributes;     // kDirEntIsDirectory or 0
  int64_t reserved;        // always 0
  int64_t accessed;        // last access, seconds since 1970
  int64_t modified;        // last modification, seconds since 1970
  int64_t size;            // bytes
  char name[kDirEntName];  // zero-filled; not terminated when the name takes all of it
  char zero[4];            // always 0, so that such a name reads as terminated
} FindDataDirEnt;

// An open search, allocated with malloc. Callers treat it as opaque.
typedef struct DirEntSlot {
  DIR* stream;                    // of the directory
  char pattern[kDirEntName + 1];  // what names are matched with
  char prefix[kDirEntName + 1];   // what goes before an entry's name to make its path
} DirEntSlot;

// The open searches, null where a place is free; for reading only. A place is filled under the
// library's lock and emptied without it, both atomically.
extern ORB_EXPORT DirEntSlot* pDirEntTable[kDirEntSlots];

// Begins a search and finds its first entry. `path` is a directory and, behind its last "/", a
// pattern for voxWildCardMatch; both are cut to 260 bytes. Without a "/" the directory is the
// working one.
// Returns the search, 1 to 50, with `*findData` as voxFindNextDirEnt fills it; the caller closes it
// with voxFindCloseDirEnt. Returns -1, `*findData` untouched and nothing left open, when the
// directory cannot be opened (errno tells why, nErrno is untouched), when 50 searches are open or
// there is no memory (35 in nErrno), when no entry matches (no error word), and for a null argument
// (22 in nErrno). The very first call empties the table.
// Quirk: an empty pattern matches every entry.
// Quirk: without a "/" the entries' paths are "." and the name with no slash between them:
// attributes, times and size of "name" are those of a file ".name", and 0 when there is none; the
// entry "." has those of the parent directory.
ORB_EXPORT int voxFindFirstDirEnt(const char* path, FindDataDirEnt* findData);

// Finds the next entry that matches the search's pattern, "." and ".." among them, and fills
// `*findData` by voxSetFindDataDirEnt with the search's prefix: what is told of an entry is what
// its path leads to now, be the directory moved or replaced meanwhile. Returns 1; 0 with
// `*findData` untouched at the end of the directory (nErrno untouched), and for a number that is no
// open search or a null `findData` (22 in nErrno).
ORB_EXPORT int voxFindNextDirEnt(int handle, FindDataDirEnt* findData);

// Ends a search and frees its place. Returns 1; 0 when the system cannot close the directory (no
// error word, the search is over all the same) and for a number that is no open search (22 in
// nErrno).
ORB_EXPORT int voxFindCloseDirEnt(int handle);

// Fills `*findData` for `entry`: its name, cut to 260 bytes, and, with symbolic links followed, the
// rest of the path made of `prefix` and the name; 0 where that path cannot be examined. Returns
// `findData`. A null `entry` or `prefix` leaves the whole record 0.
// Quirk: the path is cut to 259 bytes and what lies there is told, whatever it is.
ORB_EXPORT FindDataDirEnt* voxSetFindDataDirEnt(FindDataDirEnt* findData,
                                                const struct dirent* entry, const char* prefix);

// Compares `name` with `pattern`, byte by byte and with regard to case: 0 when they match, 1 when
// not. "?" stands for any one byte, "*" for any number of bytes; nothing else is special. A null
// `name` is an empty one. The time grows with the product of both lengths at most, the stack not at
// all.
// Quirk: a pattern matches every name that begins with what it matches: "abc" and "*.txt" match
// "abcd" and "a.txt.bak". So a null or empty pattern matches every name.
// Quirk: a "*" that is reached at the end of the name matches whatever follows it: "a*b" matches
// "a".
ORB_EXPORT int voxWildCardMatch(const char* pattern, const char* name);

// voxFindFirstDirEnt, with 0 in place of -1.
ORB_EXPORT int voxcomn_findfirstA(const char* path, FindDataDirEnt* findData);

// voxFindNextDirEnt; true when that gives 1.
ORB_EXPORT bool voxcomn_findnextA(int handle, FindDataDirEnt* findData);

// voxFindCloseDirEnt.
ORB_EXPORT int voxcomn_findclose(int handle);

ORB_EXTERN_C_END
