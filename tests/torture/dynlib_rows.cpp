// tests/torture/dynlib_rows.cpp: portability/dynlib.h under torture.
#include "portability/dynlib.h"

#include <dlfcn.h>

#include "tests/portability/plugin_hook.h"
#include "tests/support/torture.h"

namespace {

using orbtest::Fault;
using orbtest::kHookedPlugin;
using orbtest::kPlainPlugin;
using orbtest::kUntouched;
using orbtest::Trial;

// A library of the table, given back behind the scope.
class Loaded {
 public:
  explicit Loaded(const char* path) : library_(voxLoadLibrary(path, nullptr)) {}
  ~Loaded() {
    if (library_ != nullptr) voxFreeLibrary(library_);
  }
  Loaded(const Loaded&) = delete;
  Loaded& operator=(const Loaded&) = delete;
  void* get() const { return library_; }
  void release() { library_ = nullptr; }

 private:
  void* library_;
};

template <const char* const& path>
void load(Trial& trial) {
  char* message = nullptr;
  void* library = trial.call([&] { return voxLoadLibrary(path, &message); });
  trial.answer(orbtest::answer_text(library) + " " + message);
  if (library != nullptr) voxFreeLibrary(library);
}

std::vector<Fault> loading() {
  return {{"pthread_mutex_lock", "made "},
          {"pthread_mutex_lock#2", "null locked", 16},
          {"pthread_mutex_lock#1 onwards", "null locked", 16},
          {"pthread_mutex_unlock", "made "},
          {"pthread_mutex_unlock#1 onwards", "null locked", 16},
          {"malloc", "null out of memory", 12},
          {"dlopen", "null ", kUntouched, 1},  // Quirk: the record stays
          {"dlsym", "made "}};                 // it has no entry point then
}

void free_library(Trial& trial) {
  Loaded library(kPlainPlugin);
  const int freed = trial.call([&] { return voxFreeLibrary(library.get()); });
  const bool locked_out = freed == 0 && trial.error_word() == 16;
  if (!locked_out) library.release();
}

const orbtest::Tortures rows({
    {"voxLoadLibrary", "without entry point", "made ", load<kPlainPlugin>, loading()},
    {"voxLoadLibrary",
     "loaded before",
     "made ",
     [](Trial& trial) {
       const Loaded before(kPlainPlugin);
       load<kPlainPlugin>(trial);
     },
     {{"pthread_mutex_lock", "made "},
      {"pthread_mutex_lock#2", "null locked", 16},
      {"pthread_mutex_lock#1 onwards", "null locked", 16},
      {"pthread_mutex_unlock", "made "},
      {"pthread_mutex_unlock#1 onwards", "null locked", 16}}},
    {"voxLoadLibraryW",
     "",
     "made ",
     [](Trial& trial) {
       const std::string narrow = kPlainPlugin;
       const std::wstring path(narrow.begin(), narrow.end());
       wchar_t* message = nullptr;
       void* library = trial.call([&] { return voxLoadLibraryW(path.c_str(), &message); });
       const std::wstring text = message;
       trial.answer(orbtest::answer_text(library) + " " + std::string(text.begin(), text.end()));
       if (library != nullptr) voxFreeLibrary(library);
     },
     // Locked in turn: the wide message, the narrow one, the list. What fails with all behind it
     // leaves no memory for the path.
     {{"operator new", "null ", 12},
      {"malloc", "null out of memory", 12},
      {"malloc onwards", "null ", 12},
      {"dlopen", "null ", kUntouched, 1},
      {"dlsym", "made "},
      {"pthread_mutex_lock", "made "},
      {"pthread_mutex_lock#1 onwards", "null ", 12},
      {"pthread_mutex_lock#2 onwards", "null ", 16},
      {"pthread_mutex_lock#3", "null locked", 16},
      {"pthread_mutex_lock#3 onwards", "null ", 16},
      {"pthread_mutex_unlock", "made "},
      {"pthread_mutex_unlock#1 onwards", "null ", 12},
      {"pthread_mutex_unlock#2 onwards", "null ", 16}}},
    {"voxFreeLibrary",
     "",
     "1",
     free_library,
     {{"pthread_mutex_lock", "1"},
      {"pthread_mutex_lock#2", "0", 16},
      {"pthread_mutex_lock#1 onwards", "0", 16},
      {"pthread_mutex_unlock", "1"},
      {"pthread_mutex_unlock#1 onwards", "0", 16},
      {"dlclose", "0"}}},
    {"voxGetProcAddress",
     "",
     "made",
     [](Trial& trial) {
       const Loaded library(kPlainPlugin);
       trial.call([&] { return voxGetProcAddress(library.get(), "loadString", nullptr); });
     },
     {{"pthread_mutex_lock", "made"},
      {"pthread_mutex_lock#1 onwards", "null"},
      {"pthread_mutex_unlock", "made"},
      {"pthread_mutex_unlock#1 onwards", "null"},
      {"dlsym", "null"}}},
    {"load_shared_object_image",
     "",
     "1",
     [](Trial& trial) {
       void* library = nullptr;
       char message[512] = "";
       trial.call([&] { return load_shared_object_image(&library, kPlainPlugin, message); });
       if (library != nullptr) dlclose(library);
     },
     {{"dlopen", "0"}}},
    {"unload_shared_object_image",
     "",
     "1",
     [](Trial& trial) {
       void* library = dlopen(kPlainPlugin, RTLD_LAZY);
       trial.call([&] { return unload_shared_object_image(library); });
     },
     {{"dlclose", "0"}}},
    {"voxLoadString",
     "",
     "6",
     [](Trial& trial) {
       const Loaded library(kPlainPlugin);
       char text[100] = "";
       trial.call([&] { return voxLoadString(library.get(), 7, text, sizeof text); });
     },
     {{"dlsym", "0"}}},
    {"voxTranslateMessage", "", "1",
     [](Trial& trial) { trial.call([] { return voxTranslateMessage(nullptr); }); }},
    {"voxDisableThreadLibraryCalls",
     "",
     "1",
     [](Trial& trial) {
       const Loaded library(kPlainPlugin);
       trial.call([&] { return voxDisableThreadLibraryCalls(library.get()); });
     },
     {{"pthread_mutex_lock", "1"}, {"pthread_mutex_unlock", "1"}}},
});

}  // namespace
