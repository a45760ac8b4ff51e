// tests/portability/libraryimages_test.cpp: wide paths, images outside the table, libraries' texts.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "portability/dynlib.h"
#include "tests/portability/call_script.h"
#include "tests/portability/plugin_hook.h"
#include "tests/support/faults.h"

namespace {

using orbtest::kHookedPlugin;
using orbtest::kPlainPlugin;

std::wstring widened(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

TEST(LibraryImages, WidePathLoadsTheSameLibrary) {
  wchar_t* message = nullptr;
  void* library = voxLoadLibraryW(widened(kPlainPlugin).c_str(), &message);
  ASSERT_NE(nullptr, library);
  EXPECT_STREQ(L"", message);
  EXPECT_EQ(library, voxLoadLibrary(kPlainPlugin, nullptr));
  EXPECT_EQ(1, voxFreeLibrary(library));
  EXPECT_EQ(1, voxFreeLibrary(library));
}

TEST(LibraryImages, WideMessageIsTheNarrowOne) {
  wchar_t* wide = nullptr;
  char* narrow = nullptr;
  EXPECT_EQ(nullptr, voxLoadLibraryW(L"/nowhere.so", &wide));
  EXPECT_EQ(nullptr, voxLoadLibrary("/nowhere.so", &narrow));
  EXPECT_EQ(widened(narrow), wide);
  EXPECT_EQ(nullptr, voxLoadLibraryW(L"/nowhere.so", nullptr));
}

TEST(LibraryImages, WideMessageFitsItsBuffer) {
  const std::wstring path = L"/" + std::wstring(250, L'x') + L"/" + std::wstring(700, L'y');
  wchar_t* message = nullptr;
  EXPECT_EQ(nullptr, voxLoadLibraryW(path.c_str(), &message));
  EXPECT_EQ(path.substr(0, 510), message);
}

TEST(LibraryImages, NullWidePathIsABadArgument) {
  wchar_t* message = nullptr;
  nErrno = 0;
  EXPECT_EQ(nullptr, voxLoadLibraryW(nullptr, &message));
  EXPECT_STREQ(L"", message);
  EXPECT_EQ(22, nErrno);
}

TEST(LibraryImages, WideLoadWithoutMemoryGivesNull) {
  const std::wstring path = widened(kPlainPlugin);
  const size_t requests = orbtest::for_each_memory_fault([&](size_t nth, orbtest::Failing failing) {
    wchar_t* message = nullptr;
    void* library = nullptr;
    size_t failures = 0;
    nErrno = 0;
    {
      orbtest::MemoryFaults faults(nth, failing);
      library = voxLoadLibraryW(path.c_str(), &message);
      failures = faults.failures();
    }
    EXPECT_EQ(failures != 0, library == nullptr) << nth;
    EXPECT_EQ(failures != 0 ? 12 : 0, nErrno) << nth;
    EXPECT_EQ(failures != 0 ? 0 : 1, voxFreeLibrary(library)) << nth;
    EXPECT_EQ(0, voxFreeLibrary(library)) << "nothing stays loaded " << nth;
    return failures;
  });
  EXPECT_EQ(2u, requests);  // the narrow path and the table's record
}

TEST(LibraryImages, ThreadsFailTogether) {
  std::vector<std::thread> threads;
  for (int each = 0; each < 4; ++each) {
    threads.emplace_back([] {
      for (int round = 0; round < 100; ++round) {
        wchar_t* message = nullptr;
        ASSERT_EQ(nullptr, voxLoadLibraryW(L"/nowhere.so", &message));
        ASSERT_NE(nullptr, message);
      }
    });
  }
  for (auto& thread : threads) thread.join();
}

TEST(LibraryImages, ImageIsLoadedOutsideTheTable) {
  void* handle = nullptr;
  char message[600] = "kept";
  ASSERT_EQ(1, load_shared_object_image(&handle, kPlainPlugin, message));
  EXPECT_NE(nullptr, dlsym(handle, "plain_number"));
  EXPECT_STREQ("kept", message);
  EXPECT_EQ(nullptr, pDynamicLibraryList[0]);
  EXPECT_EQ(1, unload_shared_object_image(handle));
  EXPECT_EQ(nullptr, dlopen(kPlainPlugin, RTLD_LAZY | RTLD_NOLOAD));
}

TEST(LibraryImages, MissingImageAppendsTheLoadersText) {
  void* handle = &handle;
  char message[600] = "before: ";
  EXPECT_EQ(0, load_shared_object_image(&handle, "/nowhere.so", message));
  EXPECT_EQ(nullptr, handle);
  EXPECT_EQ(nullptr, dlopen("/nowhere.so", RTLD_LAZY));
  EXPECT_EQ(std::string("before: ") + dlerror(), message);
  EXPECT_EQ(0, load_shared_object_image(&handle, "/nowhere.so", nullptr));
}

TEST(LibraryImages, AppendedTextIsCutAt510Bytes) {
  const std::string path = "/" + std::string(250, 'x') + "/" + std::string(400, 'y');
  void* handle = nullptr;
  char message[600] = "before: ";
  EXPECT_EQ(0, load_shared_object_image(&handle, path.c_str(), message));
  EXPECT_EQ("before: " + path.substr(0, 510), message);
}

TEST(LibraryImages, NullArgumentsGiveZero) {
  void* handle = nullptr;
  char message[] = "kept";
  EXPECT_EQ(0, load_shared_object_image(nullptr, kPlainPlugin, message));
  EXPECT_EQ(0, load_shared_object_image(&handle, nullptr, message));
  EXPECT_STREQ("kept", message);
  EXPECT_EQ(0, unload_shared_object_image(nullptr));
}

TEST(LibraryImages, FailedUnloadGivesZero) {
  void* handle = nullptr;
  ASSERT_EQ(1, load_shared_object_image(&handle, kPlainPlugin, nullptr));
  orbtest::CallScript script;
  script.dlclose_fails = true;
  EXPECT_EQ(0, unload_shared_object_image(handle));
}

TEST(LibraryImages, TextsComeFromTheLibrary) {
  char buffer[32] = "";
  void* library = voxLoadLibrary(kPlainPlugin, nullptr);
  EXPECT_EQ(7, voxLoadString(library, 42, buffer, sizeof buffer));
  EXPECT_STREQ("text 42", buffer);
  EXPECT_EQ(7, voxLoadString(library, 42, buffer, 5));
  EXPECT_STREQ("text", buffer) << "the size is passed on";
  EXPECT_EQ(-7, voxLoadString(library, 0, buffer, sizeof buffer)) << "so is the module";
  EXPECT_EQ(1, voxFreeLibrary(library));
}

TEST(LibraryImages, LibraryWithoutTextsGivesZero) {
  char buffer[] = "kept";
  void* library = voxLoadLibrary(kHookedPlugin, nullptr);
  ASSERT_NE(nullptr, library);
  EXPECT_EQ(0, voxLoadString(library, 1, buffer, sizeof buffer));
  EXPECT_STREQ("kept", buffer);
  EXPECT_EQ(1, voxFreeLibrary(library));
  EXPECT_EQ(0, voxLoadString(nullptr, 1, buffer, sizeof buffer));
}

TEST(LibraryImages, TranslateMessageGivesOne) { EXPECT_EQ(1, voxTranslateMessage(nullptr)); }

}  // namespace
