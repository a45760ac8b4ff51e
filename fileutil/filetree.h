// fileutil/filetree.h: copies of files, chains of directories, removal of trees, sizes and small
// text helpers.
//
// Paths are narrow byte strings. No function here stores an error word of its own, and none undoes
// what it has done when it fails half-way. Everything may be called from several threads at once; a
// tree that others change meanwhile is removed as far as it is found.
#pragma once

#include <stdbool.h>
#include <stdint.h>
#include <wchar.h>

#include "platform/export.h"

ORB_EXTERN_C_BEGIN

// Stores the size in bytes of what `path` leads to in `*size` and returns 0. Returns 0x80000008
// when it cannot be examined, with a meaningless `*size`; a null argument too, nothing stored.
ORB_EXPORT uint32_t voxcomn_get_file_sizeA(const char* path, uint64_t* size);

// Stores the room for unprivileged users on the file system that holds `path` in `*space` and
// returns 0. Returns 0x80000008, `*space` untouched, when the system does not tell or for a null
// argument.
// Quirk: the figure is the free bytes times 1000, modulo 2^64.
ORB_EXPORT uint32_t voxcomn_get_disk_free_spaceA(const char* path, uint64_t* space);

// Ends `text` at its first ";" and returns a pointer to the new terminator. Returns null, `text`
// untouched, when it has none or is null.
ORB_EXPORT char* voxcomn_chop_semicolon(char* text);

// Makes sure that `path` ends with "/" and returns the index of that slash; one that is missing is
// written behind the path, which has room for it. An empty path becomes "/"; null gives 0.
// Quirk: despite the name it knows forward slashes alone: "a\" becomes "a\/".
ORB_EXPORT uint64_t voxcomn_append_backslash_check(char* path);

// Makes every directory on the way of `path`, cut to 259 bytes, with mode 0700 less the umask; each
// level is tried whatever became of the one before.
// Quirk: what stands behind the last "/" is not made: "/tmp/a/b" makes "/tmp/a".
// Quirk: a "/" among the first four bytes makes no directory: "/tm/a/" makes "/tm/a" at most.
// Quirk: the result is 0x80000008 always, also when every directory was made.
ORB_EXPORT uint32_t voxcomn_MakeRecursiveDirectoryA(const char* path);

// The same for a wide path, up to its zero element.
// Quirk: of each character its low byte is taken: only ASCII paths come out right.
ORB_EXPORT uint32_t voxcomn_MakeRecursiveDirectoryW(const wchar_t* path);

// Copies the bytes of `source` to the file `destination`, which is made (mode 0666 less the umask)
// or emptied first; links are followed on both sides. Returns whether all was written. False for a
// null argument with nothing done, when `overwrite` is 0 and the destination can be opened for
// reading, when either file cannot be opened (the source first: the destination stays as it was),
// and when a write or the destination's close fails: what was written stays.
// Quirk: the destination's parent directories are made first, by the rules above, and stay when the
// copy fails.
// Quirk: a read error counts as the end of the source: a directory gives an empty file and true.
// Quirk: a file copied over itself is emptied, with true.
ORB_EXPORT bool voxcomn_copy_file(const char* source, const char* destination, int overwrite);

// voxcomn_copy_file with the last argument turned round; 1 for success, 0 for failure.
ORB_EXPORT int voxCopyFile(const char* source, const char* target, int failIfExists);

// Removes `directory`, cut to 259 bytes, and all below it, as far as the system allows; nothing for
// a null or empty path. Memory and open descriptors do not grow with the number of entries.
// Quirk: a link to a directory is followed: what that directory holds is removed, the directory and
// the link stay, and with the link the directories above it. Each such directory is emptied once.
// Quirk: every level takes one of the searches of fileutil/dirent.h while it is worked on. Where
// none is left the level's entries stay (35 in nErrno), and so do the directories above them.
// Quirk: an entry whose path has more than 259 bytes stays, and so do the directories above it.
ORB_EXPORT void voxcomn_deltree(const char* directory);

// The same for all below `directory`, which itself stays.
ORB_EXPORT void voxcomn_delsubtree(const char* directory);

ORB_EXTERN_C_END
