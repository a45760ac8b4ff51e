// tests/fileutil/versionstamp_test.cpp: versions of real plug-in libraries.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "fileutil/platformmatch.h"
#include "portability/dynlib.h"
#include "tests/support/scoped_error_word.h"
#include "tests/support/temp_dir.h"

namespace {

using Stamp = int (*)(const char* path, char* out, unsigned size);
constexpr Stamp kBoth[] = {voxcomn_GetFileResourceVersionStamp,
                           voxcomn_GetFileResourceStringVersionStamp};

bool is_loaded(const std::string& path) {
  void* const library = dlopen(path.c_str(), RTLD_NOLOAD | RTLD_NOW);
  if (library != nullptr) dlclose(library);
  return library != nullptr;
}

struct PluginCase {
  const char* name;
  std::string path;
  int result;
  const char* hexadecimal;
  const char* decimal;
};

class VersionStamp : public testing::TestWithParam<PluginCase> {
 protected:
  void TearDown() override {
    EXPECT_FALSE(is_loaded(GetParam().path)) << "released again";
    for (const auto* entry : pDynamicLibraryList) EXPECT_EQ(nullptr, entry);
  }
};

TEST_P(VersionStamp, FillsTheBuffer) {
  const std::string path = GetParam().path;
  const char* const expected[] = {GetParam().hexadecimal, GetParam().decimal};
  for (size_t i = 0; i < 2; ++i) {
    std::string buffer(40, '#');
    EXPECT_EQ(GetParam().result, kBoth[i](path.c_str(), buffer.data(), 30));
    std::string text = expected[i];
    text.resize(30);  // zeros behind the text
    EXPECT_EQ(text + std::string(10, '#'), buffer);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Plugins, VersionStamp,
    testing::Values(PluginCase{"SmallNumbers", ORB_SMALL_PLUGIN, 1, "0001000200030004", "1.2.3.4"},
                    PluginCase{"LargestNumbers", ORB_LARGE_PLUGIN, 1, "ffffabcd0000ffff",
                               "65535.43981.0.65535"},
                    PluginCase{"ARefusalIsAFailure", ORB_REFUSING_PLUGIN, 0, "", ""},
                    PluginCase{"ANegativeResultIsAFailure", ORB_NEGATIVE_PLUGIN, 0, "", ""},
                    PluginCase{"WithoutTheExport", ORB_SILENT_PLUGIN, 0, "", ""},
                    PluginCase{"NoSuchFile", "/no/such/library.so", 0, "", ""},
                    PluginCase{"AFolder", "/etc", 0, "", ""},
                    PluginCase{"AnotherKindOfFile", "/etc/passwd", 0, "", ""}),
    [](const auto& test) { return test.param.name; });

TEST(VersionStamps, QuirkATextThatDoesNotFitIsNotTerminated) {
  const char* const path = ORB_SMALL_PLUGIN;
  const std::string texts[] = {"0001000200030004", "1.2.3.4"};
  for (size_t i = 0; i < 2; ++i) {
    for (const size_t size :
         {size_t{0}, size_t{1}, texts[i].size() - 1, texts[i].size(), texts[i].size() + 1}) {
      std::string buffer(20, '#');
      EXPECT_EQ(1, kBoth[i](path, buffer.data(), static_cast<unsigned>(size)));
      std::string expected = (texts[i] + '\0').substr(0, size);
      expected.resize(20, '#');
      EXPECT_EQ(expected, buffer) << size;
    }
  }
}

TEST(VersionStamps, NullArgumentsFail) {
  const char* const path = ORB_SMALL_PLUGIN;
  for (const Stamp stamp : kBoth) {
    const orbtest::ScopedErrorWord word;
    EXPECT_EQ(0, stamp(path, nullptr, 20));
    EXPECT_EQ(orbtest::ScopedErrorWord::kUntouched, word.stored());
    char text[4] = "old";
    EXPECT_EQ(0, stamp(nullptr, text, 3));
    EXPECT_EQ(kErrInvalid, word.stored());
    EXPECT_EQ(std::string(4, '\0'), std::string(text, 4));
  }
}

TEST(VersionStamps, ALibraryInUseStaysLoaded) {
  const char* const path = ORB_SMALL_PLUGIN;
  void* const library = voxLoadLibrary(path, nullptr);
  ASSERT_NE(nullptr, library);
  char text[17];
  EXPECT_EQ(1, voxcomn_GetFileResourceVersionStamp(path, text, sizeof text));
  ASSERT_NE(nullptr, pDynamicLibraryList[0]);
  EXPECT_EQ(1, pDynamicLibraryList[0]->references);
  EXPECT_TRUE(is_loaded(path));
  EXPECT_EQ(1, voxFreeLibrary(library));
}

TEST(VersionStamps, WithAFullTableOfLibrariesFail) {
  const orbtest::TempDir folder;
  std::vector<void*> libraries;
  for (int i = 0; i < kDynamicLibraries; ++i) {
    const std::string path = folder.path("copy" + std::to_string(i));
    std::filesystem::copy_file(ORB_SILENT_PLUGIN, path);
    libraries.push_back(voxLoadLibrary(path.c_str(), nullptr));
    ASSERT_NE(nullptr, libraries.back());
  }
  const char* const path = ORB_SMALL_PLUGIN;
  char text[17] = "old";
  EXPECT_EQ(0, voxcomn_GetFileResourceVersionStamp(path, text, sizeof text));
  EXPECT_STREQ("", text);
  for (void* library : libraries) EXPECT_EQ(1, voxFreeLibrary(library));
  EXPECT_EQ(1, voxcomn_GetFileResourceVersionStamp(path, text, sizeof text));
}

TEST(VersionStamps, FromSeveralThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([i] {
      const char* const small = ORB_SMALL_PLUGIN;
      const char* const large = ORB_LARGE_PLUGIN;
      for (int turn = 0; turn < 100; ++turn) {
        char text[30];
        EXPECT_EQ(1, kBoth[i % 2](small, text, sizeof text));
        EXPECT_STREQ(i % 2 == 0 ? "0001000200030004" : "1.2.3.4", text);
        EXPECT_EQ(1, kBoth[i % 2](large, text, sizeof text));
        EXPECT_STREQ(i % 2 == 0 ? "ffffabcd0000ffff" : "65535.43981.0.65535", text);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

// The record of a library that the loader refuses stays allocated, by the interface's own rule.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:load_new\n"; }
