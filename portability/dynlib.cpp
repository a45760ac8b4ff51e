// portability/dynlib.cpp: the table of loaded libraries, their entry points and their symbols.
#include "portability/dynlib.h"

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>

#include "portability/cancellation.h"
#include "portability/dynlibparts.h"
#include "portability/forks.h"
#include "portability/handleparts.h"

_voxDynamicLibrary_t* pDynamicLibraryList[kDynamicLibraries];

namespace quillon_com::orb::portability {
namespace {

constexpr size_t kPathSize = sizeof(_voxDynamicLibrary_t::path);

// Serialises loads and releases; held while an entry point runs.
ForeignCodeMutex MutexDynamicLibraryList;

// Guards the table and its records for those who look without MutexDynamicLibraryList, as an entry
// point may; never held while foreign code runs.
ProcessMutex table_lock;

// The buffers' own lock: failing callers of several threads write them at once.
ProcessMutex message_lock;

bool first_call = true;  // guarded by MutexDynamicLibraryList

// Empties a function's message and publishes its address.
void begin_message(char* message, char** out) {
  {
    const Hold hold(message_lock);
    *message = '\0';
  }
  if (out != nullptr) *out = message;
}

void set_message(char* message, const char* text) {
  const Hold hold(message_lock);
  const size_t length = strnlen(text, kLongestLoaderText);
  memcpy(message, text, length);
  message[length] = '\0';
}

// Places of the table, under one of its two locks; kDynamicLibraries when there is none.
size_t place_of_path(const char* path) {
  for (size_t place = 0; place < kDynamicLibraries; ++place) {
    const _voxDynamicLibrary_t* entry = pDynamicLibraryList[place];
    if (entry != nullptr && strncmp(entry->path, path, kPathSize) == 0) return place;
  }
  return kDynamicLibraries;
}

size_t place_of_library(const void* library) {
  for (size_t place = 0; place < kDynamicLibraries; ++place) {
    const _voxDynamicLibrary_t* entry = pDynamicLibraryList[place];
    if (entry != nullptr && entry->library == library) return place;
  }
  return kDynamicLibraries;
}

size_t free_place() {
  size_t place = 0;
  while (place < kDynamicLibraries && pDynamicLibraryList[place] != nullptr) ++place;
  return place;
}

void put(size_t place, _voxDynamicLibrary_t* entry) {
  const Hold hold(table_lock);
  pDynamicLibraryList[place] = entry;
}

bool is_loaded(const void* library) {
  const Hold hold(table_lock);
  return place_of_library(library) != kDynamicLibraries;
}

void clear_table_once() {
  if (!first_call) return;
  first_call = false;
  for (size_t place = 0; place < kDynamicLibraries; ++place) put(place, nullptr);
}

// Opens the library and asks its entry point. Null with a message when either refuses.
void* open_library(const char* path, _voxDynamicLibrary_t* entry, char* message) {
  void* library = dlopen(path, RTLD_LAZY);
  if (library == nullptr) {
    set_message(message, loader_text());
    return nullptr;  // the record stays allocated: see the header
  }
  entry->entryPoint = reinterpret_cast<voxDllMain>(dlsym(library, "DllMain"));
  if (entry->entryPoint != nullptr && entry->entryPoint(library, 1, nullptr) != 1) {
    free(entry);
    set_message(message, "dllmain returned false");
    return nullptr;
  }
  return library;
}

// Loads a library that is not in the table, under the lock.
void* load_new(const char* path, char* message) {
  const size_t place = free_place();
  if (place == kDynamicLibraries) {
    store_error(kErrNoMemory);
    set_message(message, "library list full");
    return nullptr;
  }
  auto* entry = static_cast<_voxDynamicLibrary_t*>(calloc(1, sizeof(_voxDynamicLibrary_t)));
  if (entry == nullptr) {
    store_error(kErrNoMemory);
    set_message(message, "out of memory");
    return nullptr;
  }
  void* library = open_library(path, entry, message);
  // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the record of a failed load stays: see the header
  if (library == nullptr) return nullptr;
  memcpy(entry->path, path, strnlen(path, kPathSize));
  entry->library = library;
  entry->references = 1;
  put(place, entry);
  return library;
}

void* load(const char* path, char* message) {
  clear_table_once();
  const size_t place = place_of_path(path);
  if (place == kDynamicLibraries) return load_new(path, message);
  ++pDynamicLibraryList[place]->references;
  return pDynamicLibraryList[place]->library;
}

// The last release of the library at `place`, under the lock.
int unload(size_t place) {
  _voxDynamicLibrary_t* entry = pDynamicLibraryList[place];
  if (entry->entryPoint != nullptr) entry->entryPoint(entry->library, 0, nullptr);
  const bool closed = dlclose(entry->library) == 0;
  put(place, nullptr);
  free(entry);
  return closed ? 1 : 0;
}

}  // namespace

void copy_message(const char* message, char (&copy)[kMessageSize]) {
  const Hold hold(message_lock);
  memcpy(copy, message, kMessageSize);
}

void forget_loader_text() { dlerror(); }

const char* loader_text() {
  const char* text = dlerror();
  return text == nullptr ? "" : text;
}

}  // namespace quillon_com::orb::portability

using namespace quillon_com::orb::portability;

void* voxLoadLibrary(const char* path, char** errorText) {
  static char message[kMessageSize];
  begin_message(message, errorText);
  if (path == nullptr) {
    store_error(kErrInvalid);
    return nullptr;
  }
  const CancellationShield shield;
  const Hold hold(MutexDynamicLibraryList);
  if (!hold) {
    store_error(kErrBusy);
    set_message(message, "locked");
    return nullptr;
  }
  return load(path, message);
}

int voxFreeLibrary(void* library) {
  if (!is_loaded(library)) {
    store_error(kErrInvalid);
    return 0;
  }
  const CancellationShield shield;
  const Hold hold(MutexDynamicLibraryList);
  if (!hold) {
    store_error(kErrBusy);
    return 0;
  }
  const size_t place = place_of_library(library);
  if (place == kDynamicLibraries) {  // released by another thread meanwhile
    store_error(kErrInvalid);
    return 0;
  }
  return --pDynamicLibraryList[place]->references < 1 ? unload(place) : 1;
}

void* voxGetProcAddress(void* library, const char* name, char** errorText) {
  static char message[kMessageSize];
  begin_message(message, errorText);
  if (name == nullptr) {
    store_error(kErrInvalid);
    return nullptr;
  }
  forget_loader_text();
  void* address = dlsym(library, name);
  if (address == nullptr) set_message(message, loader_text());
  return address;
}

int voxDisableThreadLibraryCalls(void* library) {
  if (library == nullptr) return 0;
  const Hold hold(table_lock);
  const size_t place = place_of_library(library);
  if (place == kDynamicLibraries) return 0;
  pDynamicLibraryList[place]->threadCallsDisabled = 1;
  return 1;
}
