// portability/libraryimages.cpp: libraries outside the table, wide paths and texts kept in
// libraries.
#include <dlfcn.h>

#include <cstring>
#include <cwchar>
#include <new>
#include <string>

#include "fileutil/conversions.h"
#include "fileutil/utf8.h"
#include "portability/dynlib.h"
#include "portability/dynlibparts.h"
#include "portability/forks.h"
#include "portability/handleparts.h"

using namespace quillon_com::orb::portability;
using quillon_com::orb::encode_utf8;
using quillon_com::orb::voxcomn_ansi_to_wide;

namespace {

constexpr size_t kWideMessageSize = 512;

using LoadString = int32_t (*)(void* module, uint32_t id, char* buffer, int32_t size);

ProcessMutex wide_message_lock;

// Puts as much of `text` into `message` as it holds, terminated.
void set_wide_message(wchar_t* message, const std::wstring& text) {
  const Hold hold(wide_message_lock);
  wcsncpy(message, text.c_str(), kWideMessageSize - 1);
  message[kWideMessageSize - 1] = L'\0';
}

// Turns the narrow function's message into the wide one; without memory it stays empty.
void widen_message(const char* narrow, wchar_t* message) {
  char copy[kMessageSize];
  copy_message(narrow, copy);
  set_wide_message(message, voxcomn_ansi_to_wide(copy));
}

// The path as UTF-8; false without memory, which an empty path would hide: it names the program.
bool narrow_path(const wchar_t* path, std::string* out) {
  try {
    const size_t length = wcslen(path);
    out->resize(length * 4);
    out->resize(encode_utf8(path, length, out->data()));
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace

void* voxLoadLibraryW(const wchar_t* path, wchar_t** errorText) {
  static wchar_t message[kWideMessageSize];
  set_wide_message(message, L"");
  if (errorText != nullptr) *errorText = message;
  if (path == nullptr) {
    store_error(kErrInvalid);
    return nullptr;
  }
  std::string narrow;
  if (!narrow_path(path, &narrow)) {
    store_error(kErrNoMemory);
    return nullptr;
  }
  char* narrow_message = nullptr;
  void* library = voxLoadLibrary(narrow.c_str(), &narrow_message);
  if (errorText != nullptr) widen_message(narrow_message, message);
  return library;
}

int load_shared_object_image(void** handle, const char* path, char* message) {
  if (handle == nullptr || path == nullptr) return 0;
  *handle = dlopen(path, RTLD_LAZY);
  if (*handle != nullptr) return 1;
  if (message != nullptr) strncat(message, loader_text(), kLongestLoaderText);
  return 0;
}

int unload_shared_object_image(void* handle) {
  return handle != nullptr && dlclose(handle) == 0 ? 1 : 0;
}

int32_t voxLoadString(void* module, uint32_t id, char* buffer, int32_t size) {
  if (module == nullptr) return 0;
  const auto load_string = reinterpret_cast<LoadString>(dlsym(module, "loadString"));
  return load_string == nullptr ? 0 : load_string(module, id, buffer, size);
}

int voxTranslateMessage(const void*) { return 1; }
