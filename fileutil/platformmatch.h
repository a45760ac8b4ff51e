// fileutil/platformmatch.h: platform lists, the software identifier, version stamps and names of
// the machine.
//
// Every function may be called from several threads at once, but for voxcomn_get_user_name. None
// throws. Buffers are the caller's.
#pragma once

#include <stdint.h>
#include <wchar.h>

#include "platform/export.h"

ORB_EXTERN_C_BEGIN

// Whether `platform`, "NAME" or "NAME:MAJOR:MINOR:BUILD", is in `list`: entries separated by "|",
// each a name, alone or with a range of versions, "NAME:MAJOR:MINOR:BUILD-MAJOR:MINOR:BUILD", both
// bounds included. Blanks count nowhere. Numbers are decimal and may carry a sign; of one that does
// not fit its low 32 bits count. Entries are looked at until one matches.
// Returns 0 when an entry names the platform and its range, if it has one, holds the platform's
// version, of which missing numbers are 0; 1 when entries name the platform but none holds its
// version; 0x80000008 when no entry names it or an argument is null. Of each argument the first 259
// characters that are no blanks count.
// Quirk: an entry names a platform whose name its own name occurs in, "MAC" in "MACX"; an empty
// name, as in ":10:0:0", names every platform.
// Quirk: versions are compared as MAJOR x 2^48 + MINOR x 2^16 + BUILD modulo 2^64, so that minor
// and build overlap: 1:0:65536 equals 1:1:0. Negative numbers are widened with their sign.
// Quirk: a bound's numbers that an entry does not state are those of the entries before it that
// name the platform; they begin as 0:0:0 and 65535:-1:65535.
ORB_EXPORT uint32_t voxcomn_IsPlatformMatch(const char* platform, const char* list);

// The identifier of this software, "HUBAGENT", the digits of the library's version (major, minor,
// patch, 0) and "MACX": 16 characters, written to `out` of `size` characters when `size` is greater
// than that; else, and when `out` is null, nothing is written.
// Quirk: the narrow form writes at most `size` - 1 bytes, those behind the identifier zero: with a
// `size` of 17 it is not terminated. The wide form always is.
ORB_EXPORT void voxcomn_get_agent_softwareid(char* out, unsigned size);
ORB_EXPORT void voxcomn_get_agent_softwareid_W(wchar_t* out, unsigned size);

// Writes the users who have a session on the machine, as CollectAllLoggedonUsers of
// session/loggedonusers.h lists them, to `out` of `size` bytes and returns 0; "NA" when there are
// none. Returns 0x80000008, with nothing written, when `out` is null, when the text with its
// terminator does not fit, or when memory runs out. Like that function it writes diagnostic lines
// to standard output. Calls from several threads, and with the functions of that header, are the
// caller's to serialise.
ORB_EXPORT uint32_t voxcomn_get_user_name(char* out, unsigned size);

// The version of the plug-in library at `path`: what its export "HBPLUGIN_GetVersion" stores
// through four pointers to uint16_t (major, minor, sub-minor, build), returning 0. Clears the
// `size` bytes of `out`, loads the library with voxLoadLibrary, asks it, and frees it again.
// Returns 1 with the version in `out`: sixteen lower-case hexadecimal digits, four for each number;
// or the numbers in decimal, "1.2.3.4". Returns 0, with `out` cleared, when the library cannot be
// loaded, lacks the export or refuses; 0 for a null `out`. A null `path` also stores 22 in nErrno.
// Quirk: a text that does not fit is cut and then not terminated.
ORB_EXPORT int voxcomn_GetFileResourceVersionStamp(const char* path, char* out, unsigned size);
ORB_EXPORT int voxcomn_GetFileResourceStringVersionStamp(const char* path, char* out,
                                                         unsigned size);

// Writes the node name of the machine to `out` of `*size` bytes, sets `*size` to its length without
// terminator and returns 1. Returns 0, with both untouched, when an argument is null, the name is
// not known, or `*size` is not greater than its length.
ORB_EXPORT int voxGetComputerName(char* out, unsigned long* size);

// Writes the fixed path "/Library", or "/usr", to `out` of `size` bytes, the rest of which is
// cleared, and returns the path's length. Returns that length plus 1, with nothing written, when
// `size` is not greater than the length or `out` is null.
ORB_EXPORT unsigned voxGetWindowsDirectory(char* out, unsigned size);
ORB_EXPORT unsigned voxGetSystemDirectory(char* out, unsigned size);

// Modules have no file names here: returns 0 and writes nothing.
ORB_EXPORT unsigned voxGetModuleFileName(void* module, char* out, unsigned size);

// Files have no version resources here: both return 0, whatever they are asked, and write nothing.
// A plug-in's version is told by voxcomn_GetFileResourceVersionStamp.
ORB_EXPORT int voxGetFileVersionInfo(const void* subject, ...);
ORB_EXPORT int voxVerQueryValue(const void* subject, ...);

ORB_EXTERN_C_END
