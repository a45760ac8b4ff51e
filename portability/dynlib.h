// portability/dynlib.h: Windows-style loading of shared libraries.
//
// Loads and releases of all threads are serialised by one lock, and a library's entry point runs
// while it is held: it must not load or free libraries (the other functions it may call). A thread
// is not cancelled while it loads or frees one. The message buffers are static, one per function,
// shared by all threads and overwritten by the next call. Results are 1 for success and 0 for
// failure unless a comment says otherwise.
#pragma once

#include <stdint.h>
#include <wchar.h>

#include "platform/export.h"
#include "portability/errorwords.h"

ORB_EXTERN_C_BEGIN

// A library's optional export "DllMain": called with its handle, 1 after the first load and 0
// before the last release, and null. Anything but 1 refuses the load.
typedef int32_t (*voxDllMain)(void* library, uint32_t reason, void* reserved);

// What a loaded library is known by.
typedef struct _voxDynamicLibrary_t {
  char path[260];               // as given, cut to its 260 bytes and not terminated then
  void* library;                // the loader's handle, which callers get
  voxDllMain entryPoint;        // null when the library has none
  int32_t references;           // loads that were not released
  int32_t threadCallsDisabled;  // 1 after voxDisableThreadLibraryCalls; nothing reads it
} _voxDynamicLibrary_t;

// The loaded libraries, null where a place is free; kept under the lock and for reading only.
enum { kDynamicLibraries = 50 };
extern ORB_EXPORT _voxDynamicLibrary_t* pDynamicLibraryList[kDynamicLibraries];

// Loads the library at `path`, or counts one more load of it: the same library is told by the same
// spelling of its path in its first 260 bytes.
// Returns its handle, to be given back to voxFreeLibrary; null on failure. When `errorText` is not
// null it receives the address of the message, which is empty after a success; the texts are
// "locked" (16 in nErrno), "library list full" (12 in nErrno), "out of memory" (12 in nErrno), the
// loader's own, cut at 510 bytes, and "dllmain returned false". A null `path` stores 22 in nErrno,
// with an empty message. Quirk: when the loader fails, the record made for the library stays
// allocated; when the entry point refuses, the library stays loaded.
ORB_EXPORT void* voxLoadLibrary(const char* path, char** errorText);

// The same for a wide path, which is converted to UTF-8; 12 in nErrno, with an empty message, when
// there is no memory for that. When `errorText` is not null it receives the address of a wide
// message buffer of 512 characters, the message cut to what it holds.
ORB_EXPORT void* voxLoadLibraryW(const wchar_t* path, wchar_t** errorText);

// Releases one load; with the last one the entry point is called with reason 0 and the library is
// unloaded. An unknown handle stores 22 in nErrno and gives 0; so does a failing lock with 16, and
// a failing unload without an error word, although the library is forgotten then.
ORB_EXPORT int voxFreeLibrary(void* library);

// The address of the export `name`, good until the library is unloaded; null when there is none,
// with the loader's text as the message. `library` goes to the loader as it is; whether it is
// loaded is not looked at. A null `name` stores 22 in nErrno and gives null, with an empty message.
ORB_EXPORT void* voxGetProcAddress(void* library, const char* name, char** errorText);

// Loads the library at `path` without the table and the entry point, and stores its handle, which
// the caller gives back to unload_shared_object_image, in `*handle`. A null `handle` or `path`
// gives 0. When the loader fails, `*handle` is null and its text, cut at 510 bytes, is appended to
// `message`, whose room is the caller's affair, unless that is null. No error word.
ORB_EXPORT int load_shared_object_image(void** handle, const char* path, char* message);

// Unloads what load_shared_object_image loaded. Null, or a failing loader, gives 0. No error word.
ORB_EXPORT int unload_shared_object_image(void* handle);

// Asks the export "loadString" of `module` for text `id`, to be written into `buffer` of `size`
// characters; both are passed on as they are. Returns its result; 0, with nothing written, when
// there is no such export or `module` is null. No error word.
ORB_EXPORT int32_t voxLoadString(void* module, uint32_t id, char* buffer, int32_t size);

// Does nothing and returns 1.
ORB_EXPORT int voxTranslateMessage(const void* message);

// Marks a loaded library. Null or an unknown handle gives 0, without an error word; a library's
// handle is unknown until its entry point has accepted the load.
ORB_EXPORT int voxDisableThreadLibraryCalls(void* library);

ORB_EXTERN_C_END
