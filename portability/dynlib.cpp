// portability/dynlib.cpp: the table of loaded libraries, their entry points and their symbols.
#include "portability/dynlib.h"

#include <dlfcn.h>
#include <pthread.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "fileutil/conversions.h"
#include "portability/handleparts.h"

_voxDynamicLibrary_t* pDynamicLibraryList[kDynamicLibraries];

namespace quillon_com::orb::portability {
namespace {

constexpr size_t kMessageSize = 512;
constexpr size_t kLongestLoaderText = 510;
constexpr size_t kPathSize = sizeof(_voxDynamicLibrary_t::path);

pthread_mutex_t MutexDynamicLibraryList = PTHREAD_MUTEX_INITIALIZER;

// The buffers' own lock: failing callers of several threads write them at once.
pthread_mutex_t message_lock = PTHREAD_MUTEX_INITIALIZER;

// Empties a function's message and publishes its address.
void begin_message(char* message, char** out) {
  pthread_mutex_lock(&message_lock);
  *message = '\0';
  pthread_mutex_unlock(&message_lock);
  if (out != nullptr) *out = message;
}

void set_message(char* message, const char* text) {
  pthread_mutex_lock(&message_lock);
  const size_t length = strnlen(text, kLongestLoaderText);
  memcpy(message, text, length);
  message[length] = '\0';
  pthread_mutex_unlock(&message_lock);
}

// The loader's last text of this thread.
const char* loader_text() {
  const char* text = dlerror();
  return text == nullptr ? "" : text;
}

// Places of the table, under MutexDynamicLibraryList; kDynamicLibraries when there is none.
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
  __atomic_store_n(&pDynamicLibraryList[place], entry, __ATOMIC_RELEASE);
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
  if (library == nullptr) return nullptr;
  memcpy(entry->path, path, strnlen(path, kPathSize));
  entry->library = library;
  entry->references = 1;
  put(place, entry);
  return library;
}

void* load(const char* path, char* message) {
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
}  // namespace quillon_com::orb::portability

using namespace quillon_com::orb::portability;

void* voxLoadLibrary(const char* path, char** errorText) {
  static char message[kMessageSize];
  begin_message(message, errorText);
  if (path == nullptr) {
    store_error(kErrInvalid);
    return nullptr;
  }
  if (pthread_mutex_lock(&MutexDynamicLibraryList) != 0) {
    store_error(kErrBusy);
    set_message(message, "locked");
    return nullptr;
  }
  void* library = load(path, message);
  pthread_mutex_unlock(&MutexDynamicLibraryList);
  return library;
}

int voxFreeLibrary(void* library) {
  if (pthread_mutex_lock(&MutexDynamicLibraryList) != 0) {
    store_error(kErrBusy);
    return 0;
  }
  int result = 1;
  const size_t place = place_of_library(library);
  if (place == kDynamicLibraries) {
    store_error(kErrInvalid);
    result = 0;
  } else if (--pDynamicLibraryList[place]->references < 1) {
    result = unload(place);
  }
  pthread_mutex_unlock(&MutexDynamicLibraryList);
  return result;
}

void* voxGetProcAddress(void* library, const char* name, char** errorText) {
  static char message[kMessageSize];
  begin_message(message, errorText);
  void* address = dlsym(library, name);
  if (address == nullptr) set_message(message, loader_text());
  return address;
}

int voxDisableThreadLibraryCalls(void* library) {
  if (library == nullptr || pthread_mutex_lock(&MutexDynamicLibraryList) != 0) return 0;
  const size_t place = place_of_library(library);
  if (place != kDynamicLibraries) pDynamicLibraryList[place]->threadCallsDisabled = 1;
  pthread_mutex_unlock(&MutexDynamicLibraryList);
  return place != kDynamicLibraries ? 1 : 0;
}
