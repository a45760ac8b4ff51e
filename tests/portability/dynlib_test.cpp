// tests/portability/dynlib_test.cpp: the table of loaded libraries, entry points and symbols.
#include "portability/dynlib.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/portability/call_script.h"
#include "tests/portability/plugin_hook.h"
#include "tests/support/callfaults.h"
#include "tests/support/faults.h"
#include "tests/support/temp_dir.h"

namespace {

using orbtest::kHookedPlugin;
using orbtest::kPlainPlugin;

static_assert(offsetof(_voxDynamicLibrary_t, library) == 264 &&
              offsetof(_voxDynamicLibrary_t, entryPoint) == 272 &&
              offsetof(_voxDynamicLibrary_t, references) == 280 &&
              offsetof(_voxDynamicLibrary_t, threadCallsDisabled) == 284);

class DynLib : public testing::Test {
 protected:
  void SetUp() override { nErrno = 0; }
  void TearDown() override { EXPECT_EQ(0u, loaded()) << "the table is empty again"; }

  static size_t loaded() {
    size_t count = 0;
    for (const auto* entry : pDynamicLibraryList) count += entry != nullptr ? 1 : 0;
    return count;
  }
  // A copy of the plain library under `name`.
  std::string copy(const std::string& name) {
    const std::string path = folder_.path(name);
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::filesystem::copy_file(kPlainPlugin, path);
    return path;
  }

  orbtest::TempDir folder_;
};

TEST_F(DynLib, FirstLoadFillsTheRecord) {
  char* message = nullptr;
  void* library = voxLoadLibrary(kPlainPlugin, &message);
  ASSERT_NE(nullptr, library) << message;
  EXPECT_STREQ("", message);
  const _voxDynamicLibrary_t* entry = pDynamicLibraryList[0];
  ASSERT_NE(nullptr, entry);
  EXPECT_STREQ(kPlainPlugin, entry->path);
  EXPECT_EQ(library, entry->library);
  EXPECT_EQ(nullptr, entry->entryPoint);
  EXPECT_EQ(1, entry->references);
  EXPECT_EQ(0, entry->threadCallsDisabled);
  EXPECT_EQ(1, voxFreeLibrary(library));
  EXPECT_EQ(nullptr, pDynamicLibraryList[0]);
  EXPECT_EQ(0, nErrno);
}

TEST_F(DynLib, FunctionsAreResolvedWhenTheyAreCalled) {
  EXPECT_EQ(nullptr, dlopen(ORB_LAZY_PLUGIN, RTLD_NOW)) << "the test's library is complete";
  void* library = voxLoadLibrary(ORB_LAZY_PLUGIN, nullptr);
  ASSERT_NE(nullptr, library);
  EXPECT_NE(nullptr, voxGetProcAddress(library, "call_what_is_missing", nullptr));
  EXPECT_EQ(1, voxFreeLibrary(library));
  ASSERT_EQ(1, load_shared_object_image(&library, ORB_LAZY_PLUGIN, nullptr));
  EXPECT_EQ(1, unload_shared_object_image(library));
}

TEST_F(DynLib, EntryPointIsCalledByTheFirstLoadAndTheLastRelease) {
  struct Call {
    void* library;
    uint32_t reason;
    void* reserved;
  };
  std::vector<Call> calls;
  const orbtest::PluginHook hook([&](void* library, uint32_t reason, void* reserved) {
    calls.push_back({library, reason, reserved});
    return reason == 1 ? 1 : 0;
  });
  void* library = voxLoadLibrary(kHookedPlugin, nullptr);
  ASSERT_NE(nullptr, library);
  EXPECT_EQ(library, voxLoadLibrary(kHookedPlugin, nullptr));
  ASSERT_EQ(1u, calls.size());
  EXPECT_EQ(library, calls[0].library);
  EXPECT_EQ(1u, calls[0].reason);
  EXPECT_EQ(nullptr, calls[0].reserved);
  EXPECT_EQ(2, pDynamicLibraryList[0]->references);
  EXPECT_EQ(dlsym(library, "DllMain"), reinterpret_cast<void*>(pDynamicLibraryList[0]->entryPoint));
  EXPECT_EQ(1, voxFreeLibrary(library));
  EXPECT_EQ(1u, calls.size());
  EXPECT_EQ(1, pDynamicLibraryList[0]->references);
  EXPECT_EQ(1, voxFreeLibrary(library));
  ASSERT_EQ(2u, calls.size());
  EXPECT_EQ(library, calls[1].library);
  EXPECT_EQ(0u, calls[1].reason);
  EXPECT_EQ(nullptr, calls[1].reserved);
  EXPECT_EQ(nullptr, dlopen(kHookedPlugin, RTLD_LAZY | RTLD_NOLOAD)) << "unloaded";
  EXPECT_EQ(0, voxFreeLibrary(library));
}

TEST_F(DynLib, QuirkRefusedLibraryStaysLoaded) {
  for (const int32_t answer : {0, 2, -1}) {
    const orbtest::PluginHook hook([&](void*, uint32_t, void*) { return answer; });
    char* message = nullptr;
    EXPECT_EQ(nullptr, voxLoadLibrary(kHookedPlugin, &message)) << answer;
    EXPECT_STREQ("dllmain returned false", message);
    EXPECT_EQ(0u, loaded());
    EXPECT_EQ(0, nErrno);
  }
  void* still = dlopen(kHookedPlugin, RTLD_LAZY | RTLD_NOLOAD);
  EXPECT_NE(nullptr, still);
  for (int open = 0; open < 4; ++open) dlclose(still);
}

TEST_F(DynLib, EntryPointMayLookAtTheTable) {
  std::vector<int> disabled;
  const orbtest::PluginHook hook([&](void* library, uint32_t, void*) {
    disabled.push_back(voxDisableThreadLibraryCalls(library));
    EXPECT_NE(nullptr, voxGetProcAddress(library, "DllMain", nullptr));
    EXPECT_EQ(0, voxFreeLibrary(&disabled)) << "an unknown handle needs no lock";
    return 1;
  });
  void* library = voxLoadLibrary(kHookedPlugin, nullptr);
  ASSERT_NE(nullptr, library);
  EXPECT_EQ(1, voxFreeLibrary(library));
  EXPECT_EQ((std::vector<int>{0, 1}), disabled) << "known once it accepted";
}

TEST_F(DynLib, The51stLibraryFindsNoPlace) {
  std::vector<void*> libraries;
  for (int each = 0; each < 50; ++each) {
    libraries.push_back(voxLoadLibrary(copy(std::to_string(each) + ".so").c_str(), nullptr));
    ASSERT_NE(nullptr, libraries.back());
    EXPECT_EQ(libraries.back(), pDynamicLibraryList[each]->library);
  }
  char* message = nullptr;
  EXPECT_EQ(nullptr, voxLoadLibrary(copy("50.so").c_str(), &message));
  EXPECT_STREQ("library list full", message);
  EXPECT_EQ(12, nErrno);
  EXPECT_EQ(libraries[7], voxLoadLibrary(folder_.path("7.so").c_str(), nullptr)) << "known one";
  EXPECT_EQ(1, voxFreeLibrary(libraries[7]));
  EXPECT_EQ(1, voxFreeLibrary(libraries[30]));
  EXPECT_EQ(1, voxFreeLibrary(libraries[3]));
  libraries[3] = voxLoadLibrary(folder_.path("50.so").c_str(), nullptr);
  ASSERT_NE(nullptr, libraries[3]);
  EXPECT_EQ(libraries[3], pDynamicLibraryList[3]->library) << "the lowest empty place";
  EXPECT_EQ(nullptr, pDynamicLibraryList[30]);
  for (int each = 0; each < 50; ++each)
    EXPECT_EQ(each == 30 ? 0 : 1, voxFreeLibrary(libraries[static_cast<size_t>(each)])) << each;
}

TEST_F(DynLib, AnotherSpellingTakesASecondPlace) {
  const std::string path = copy("one.so");
  std::filesystem::create_symlink(path, folder_.path("two.so"));
  void* one = voxLoadLibrary(path.c_str(), nullptr);
  void* two = voxLoadLibrary(folder_.path("two.so").c_str(), nullptr);
  EXPECT_NE(nullptr, one);
  EXPECT_EQ(one, two) << "the loader knows the file";
  EXPECT_EQ(2u, loaded());
  EXPECT_EQ(1, pDynamicLibraryList[0]->references);
  EXPECT_EQ(1, pDynamicLibraryList[1]->references);
  EXPECT_EQ(1, voxFreeLibrary(one));
  EXPECT_EQ(1, voxFreeLibrary(two));
}

// A folder below `folder` whose path has exactly `length` bytes.
std::string folder_of_length(const std::string& folder, size_t length) {
  std::string path = folder;
  while (path.size() + 102 < length) path += "/" + std::string(99, 'd');
  return path + "/" + std::string(length - path.size() - 1, 'e');
}

TEST_F(DynLib, PathsOf260BytesAndMoreAreKnownByTheirFirst260) {
  const std::string deep = folder_of_length(folder_.path(), 255);  // + "/long" is 260
  const std::string first = copy((deep + "/longA").substr(folder_.path().size()));
  const std::string second = copy((deep + "/longB").substr(folder_.path().size()));
  void* library = voxLoadLibrary(first.c_str(), nullptr);
  ASSERT_NE(nullptr, library);
  EXPECT_EQ(first.substr(0, 260), std::string(pDynamicLibraryList[0]->path, 260));
  EXPECT_EQ(library, voxLoadLibrary(second.c_str(), nullptr));
  EXPECT_EQ(2, pDynamicLibraryList[0]->references);
  const std::string shorter = copy((deep + "/lon").substr(folder_.path().size()));
  void* other = voxLoadLibrary(shorter.c_str(), nullptr);
  EXPECT_NE(library, other);
  EXPECT_STREQ(shorter.c_str(), pDynamicLibraryList[1]->path) << "259 bytes are terminated";
  EXPECT_EQ(1, voxFreeLibrary(library));
  EXPECT_EQ(1, voxFreeLibrary(library));
  EXPECT_EQ(1, voxFreeLibrary(other));
}

TEST_F(DynLib, LoadersTextIsTheMessage) {
  const std::string missing = folder_.path("missing.so");
  char* message = nullptr;
  EXPECT_EQ(nullptr, voxLoadLibrary(missing.c_str(), &message));
  const std::string told = message;
  EXPECT_EQ(nullptr, dlopen(missing.c_str(), RTLD_LAZY));
  EXPECT_EQ(std::string(dlerror()), told);
  EXPECT_NE(std::string::npos, told.find("missing.so"));
  EXPECT_EQ(0, nErrno);
  EXPECT_EQ(0u, loaded());
}

TEST_F(DynLib, LoadersTextIsCutAt510Bytes) {
  const std::string missing = "/" + std::string(250, 'x') + "/" + std::string(400, 'y');
  char* message = nullptr;
  EXPECT_EQ(nullptr, voxLoadLibrary(missing.c_str(), &message));
  EXPECT_EQ(missing.substr(0, 510), message);
}

TEST_F(DynLib, EachCallEmptiesItsMessageAndKeepsItsBuffer) {
  char *failed = nullptr, *loaded_well = nullptr, *symbol = nullptr;
  voxLoadLibrary("/nowhere.so", &failed);
  EXPECT_STRNE("", failed);
  void* library = voxLoadLibrary(kPlainPlugin, &loaded_well);
  EXPECT_EQ(failed, loaded_well);
  EXPECT_STREQ("", failed);
  voxGetProcAddress(library, "no_such_symbol", &symbol);
  EXPECT_NE(failed, symbol) << "a buffer of its own";
  EXPECT_STRNE("", symbol);
  EXPECT_STREQ("", failed);
  EXPECT_EQ(1, voxFreeLibrary(library));
}

TEST_F(DynLib, LoadWithoutMemoryTellsSo) {
  char* message = nullptr;
  void* library = nullptr;
  {
    orbtest::MemoryFaults faults(1);
    library = voxLoadLibrary(kPlainPlugin, &message);
  }
  EXPECT_EQ(nullptr, library);
  EXPECT_STREQ("out of memory", message);
  EXPECT_EQ(12, nErrno);
  EXPECT_EQ(nullptr, dlopen(kPlainPlugin, RTLD_LAZY | RTLD_NOLOAD)) << "never opened";
}

TEST_F(DynLib, NullPathIsABadArgument) {
  char* message = nullptr;
  EXPECT_EQ(nullptr, voxLoadLibrary(nullptr, &message));
  EXPECT_STREQ("", message);
  EXPECT_EQ(22, nErrno);
}

TEST_F(DynLib, ReleaseOfAnUnknownHandleIsABadArgument) {
  int stranger = 0;
  for (void* handle : {static_cast<void*>(nullptr), static_cast<void*>(&stranger)}) {
    nErrno = 0;
    EXPECT_EQ(0, voxFreeLibrary(handle));
    EXPECT_EQ(22, nErrno);
  }
}

TEST_F(DynLib, ReleaseWhoseUnloadFailsForgetsTheLibrary) {
  void* library = voxLoadLibrary(kPlainPlugin, nullptr);
  orbtest::CallScript script;
  script.dlclose_fails = true;
  EXPECT_EQ(0, voxFreeLibrary(library));
  EXPECT_EQ(0u, loaded());
  EXPECT_EQ(0, nErrno);
}

// The other thread has found the library in the table when this one takes it out.
TEST_F(DynLib, ALibraryThatAnotherThreadReleasesMeanwhileIsABadArgument) {
  std::atomic<bool> found{false};
  std::thread other;
  void* library = nullptr;
  int freed = -1;
  const orbtest::PluginHook hook([&](void*, uint32_t reason, void*) {
    if (reason == 1) return 1;
    other = std::thread([&] {
      const orbtest::AfterCall after("pthread_mutex_unlock", [&] { found = true; });
      freed = voxFreeLibrary(library);
    });
    while (!found) std::this_thread::yield();
    return 1;
  });
  library = voxLoadLibrary(kHookedPlugin, nullptr);
  EXPECT_EQ(1, voxFreeLibrary(library));
  other.join();
  EXPECT_EQ(0, freed);
  EXPECT_EQ(22, nErrno);
}

TEST_F(DynLib, SymbolsAreLookedUp) {
  char* message = nullptr;
  void* library = voxLoadLibrary(kPlainPlugin, nullptr);
  const auto number =
      reinterpret_cast<int (*)()>(voxGetProcAddress(library, "plain_number", &message));
  ASSERT_NE(nullptr, number);
  EXPECT_EQ(4711, number());
  EXPECT_STREQ("", message);
  EXPECT_EQ(nullptr, voxGetProcAddress(library, "no_such_symbol", &message));
  const std::string told = message;
  EXPECT_EQ(nullptr, dlsym(library, "no_such_symbol"));
  EXPECT_EQ(std::string(dlerror()), told);
  EXPECT_EQ(0, nErrno);
  EXPECT_EQ(nullptr, voxGetProcAddress(library, nullptr, &message));
  EXPECT_STREQ("", message);
  EXPECT_EQ(22, nErrno);
  EXPECT_EQ(1, voxFreeLibrary(library));
}

TEST_F(DynLib, ThreadCallsAreDisabledInTheRecord) {
  int stranger = 0;
  void* library = voxLoadLibrary(kPlainPlugin, nullptr);
  EXPECT_EQ(0, voxDisableThreadLibraryCalls(nullptr));
  EXPECT_EQ(0, voxDisableThreadLibraryCalls(&stranger));
  EXPECT_EQ(0, pDynamicLibraryList[0]->threadCallsDisabled);
  EXPECT_EQ(1, voxDisableThreadLibraryCalls(library));
  EXPECT_EQ(1, pDynamicLibraryList[0]->threadCallsDisabled);
  EXPECT_EQ(1, voxFreeLibrary(library));
  EXPECT_EQ(0, nErrno);
}

// The second lock that a load or a release takes is the list's.
TEST_F(DynLib, LockThatCannotBeTakenStores16) {
  char* message = nullptr;
  void* refused = nullptr;
  {
    const orbtest::CallFaults faults("pthread_mutex_lock", EBUSY, 2);
    refused = voxLoadLibrary(kPlainPlugin, &message);
  }
  EXPECT_EQ(nullptr, refused);
  EXPECT_STREQ("locked", message);
  EXPECT_EQ(16, nErrno);
  void* library = voxLoadLibrary(kPlainPlugin, nullptr);
  nErrno = 0;
  int released = 1;
  {
    const orbtest::CallFaults faults("pthread_mutex_lock", EBUSY, 2);
    released = voxFreeLibrary(library);
  }
  EXPECT_EQ(0, released);
  EXPECT_EQ(16, nErrno);
  EXPECT_EQ(1u, loaded());
  {
    const orbtest::CallFaults faults("pthread_mutex_lock", EBUSY, 2);
    released = voxFreeLibrary(&nErrno);
  }
  EXPECT_EQ(0, released);
  EXPECT_EQ(22, nErrno) << "looked for before the lock";
  EXPECT_EQ(1, voxFreeLibrary(library));
}

}  // namespace
