// tests/fileutil/filetree_test.cpp: sizes, free space, text helpers and chains of directories.
#include "fileutil/filetree.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <set>
#include <string>

#include "tests/support/scoped_error_word.h"
#include "tests/support/scoped_working_folder.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

constexpr uint32_t kFailed = 0x80000008;

TEST(FileSize, TellsTheBytes) {
  const orbtest::TempDir folder;
  folder.write("file", "abc");
  fs::create_symlink("file", folder.path("link"));
  fs::create_symlink("missing", folder.path("dangling"));
  folder.write("large", "");
  ASSERT_EQ(0, truncate(folder.path("large").c_str(), 8589934591));
  const struct {
    const char* name;
    const char* file;
    uint64_t size;
    uint32_t status;
  } cases[] = {
      {"a file", "file", 3, 0},
      {"a link's target", "link", 3, 0},
      {"more than 32 bits", "large", 8589934591, 0},
      {"nothing", "missing", 0, kFailed},
      {"a dangling link", "dangling", 0, kFailed},
      {"below a file", "file/below", 0, kFailed},
  };
  for (const auto& each : cases) {
    uint64_t size = 7;
    EXPECT_EQ(each.status, voxcomn_get_file_sizeA(folder.path(each.file).c_str(), &size))
        << each.name;
    if (each.status == 0) {
      EXPECT_EQ(each.size, size) << each.name;
    }
  }
}

TEST(FileSize, TellsWhatTheSystemTellsOfADirectory) {
  const orbtest::TempDir folder;
  struct stat status {};
  ASSERT_EQ(0, stat(folder.path().c_str(), &status));
  uint64_t size = 7;
  EXPECT_EQ(0u, voxcomn_get_file_sizeA(folder.path().c_str(), &size));
  EXPECT_EQ(static_cast<uint64_t>(status.st_size), size);
}

TEST(FileSize, RefusesNullArguments) {
  uint64_t size = 7;
  EXPECT_EQ(kFailed, voxcomn_get_file_sizeA(nullptr, &size));
  EXPECT_EQ(kFailed, voxcomn_get_file_sizeA("/", nullptr));
  EXPECT_EQ(7u, size);
}

TEST(FreeSpace, FailureLeavesTheFigureAlone) {
  uint64_t space = 7;
  EXPECT_EQ(kFailed, voxcomn_get_disk_free_spaceA("/missing/folder", &space));
  EXPECT_EQ(kFailed, voxcomn_get_disk_free_spaceA("", &space));
  EXPECT_EQ(kFailed, voxcomn_get_disk_free_spaceA(nullptr, &space));
  EXPECT_EQ(kFailed, voxcomn_get_disk_free_spaceA("/", nullptr));
  EXPECT_EQ(7u, space);
}

TEST(FreeSpace, AFileSystemWithoutBlocksHasNone) {
  uint64_t space = 7;
  EXPECT_EQ(0u, voxcomn_get_disk_free_spaceA("/proc", &space));
  EXPECT_EQ(0u, space);
}

TEST(ChopSemicolon, CutsAtTheFirst) {
  const struct {
    const char* name;
    const char *text, *left;
    int at;  // -1 for null
  } cases[] = {
      {"one", "ab;cd", "ab", 2},     {"two: the first counts", "a;b;c", "a", 1},
      {"at the start", ";a", "", 0}, {"at the end", "a;", "a", 1},
      {"alone", ";", "", 0},         {"none", "ab", "ab", -1},
      {"empty", "", "", -1},         {"a colon is none", "a:b", "a:b", -1},
  };
  for (const auto& each : cases) {
    char text[16] = "";
    strcpy(text, each.text);
    EXPECT_EQ(each.at < 0 ? nullptr : text + each.at, voxcomn_chop_semicolon(text)) << each.name;
    EXPECT_STREQ(each.left, text) << each.name;
  }
  EXPECT_EQ(nullptr, voxcomn_chop_semicolon(nullptr));
}

TEST(ChopSemicolon, LeavesWhatFollows) {
  char text[] = "a;b;c";
  voxcomn_chop_semicolon(text);
  EXPECT_EQ(std::string("a\0b;c", 5), std::string(text, 5));
}

TEST(AppendSlash, EndsWithOneSlash) {
  const struct {
    const char* name;
    const char *path, *result;
    uint64_t index;
  } cases[] = {
      {"none is written", "ab", "ab/", 2},
      {"one is kept", "ab/", "ab/", 2},
      {"two are kept", "ab//", "ab//", 3},
      {"the root is kept", "/", "/", 0},
      {"an empty path has no last character", "", "/", 0},
      {"Quirk: a backslash is none", "ab\\", "ab\\/", 3},
  };
  for (const auto& each : cases) {
    char path[16];
    memset(path, '#', sizeof path);
    strcpy(path, each.path);
    EXPECT_EQ(each.index, voxcomn_append_backslash_check(path)) << each.name;
    EXPECT_STREQ(each.result, path) << each.name;
    EXPECT_EQ('#', path[strlen(each.result) + 1]) << each.name << ": one character more at most";
  }
  EXPECT_EQ(0u, voxcomn_append_backslash_check(nullptr));
}

// Chains of directories, in an empty working folder so that each byte of the paths counts.

class DirectoryChain : public testing::Test {
 protected:
  static std::set<std::string> made() {
    std::set<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator("."))
      paths.insert(entry.path().lexically_relative(".").string());
    return paths;
  }

  orbtest::TempDir folder_;
  orbtest::ScopedWorkingFolder inside_{folder_.path()};
  orbtest::ScopedErrorWord word_;
};

struct ChainCase {
  const char* name;
  const char* path;
  std::set<std::string> made;
};

TEST_F(DirectoryChain, MakesEachLevelInFrontOfASlash) {
  const ChainCase cases[] = {
      {"each level", "abcd/ef/gh/", {"abcd", "abcd/ef", "abcd/ef/gh"}},
      {"Quirk: not what stands behind the last slash", "abcd/ef", {"abcd"}},
      {"Quirk: nothing without a slash", "abcdef", {}},
      {"Quirk: a slash at index 4 makes a directory", "abcd/", {"abcd"}},
      {"Quirk: a slash at index 3 makes none", "abc/", {}},
      {"Quirk: so what is below it fails", "abc/def/", {}},
      {"Quirk: a slash at index 1 makes none", "a/bcd/", {}},
      {"slashes in a row", "abcd//ef/", {"abcd", "abcd/ef"}},
      {"'.' and '..' are steps of the system", "abcd/./../efg/", {"abcd", "efg"}},
      {"an empty path", "", {}},
      {"slashes alone", "//////", {}},
      {"bytes above 127", "\xC3\xA4\xC3\xB6/\xFF/", {"\xC3\xA4\xC3\xB6", "\xC3\xA4\xC3\xB6/\xFF"}},
  };
  for (const ChainCase& each : cases) {
    for (const auto& entry : fs::directory_iterator(".")) fs::remove_all(entry);
    EXPECT_EQ(kFailed, voxcomn_MakeRecursiveDirectoryA(each.path)) << "Quirk: " << each.name;
    EXPECT_EQ(each.made, made()) << each.name;
  }
  EXPECT_EQ(word_.kUntouched, word_.stored());
}

TEST_F(DirectoryChain, AnAbsolutePathIsMadeToItsLastSlash) {
  const std::string path = folder_.path() + "/a/b";
  EXPECT_EQ(kFailed, voxcomn_MakeRecursiveDirectoryA(path.c_str()));
  EXPECT_EQ(std::set<std::string>{"a"}, made());
  EXPECT_EQ(kFailed, voxcomn_MakeRecursiveDirectoryA((path + "/").c_str()));
  EXPECT_EQ((std::set<std::string>{"a", "a/b"}), made());
}

TEST_F(DirectoryChain, GoesOnBehindWhatIsThere) {
  folder_.make_dir("abcd/ef");
  folder_.write("abcd/file", "");
  fs::create_symlink("abcd", "linked");
  EXPECT_EQ(kFailed, voxcomn_MakeRecursiveDirectoryA("abcd/ef/gh/"));
  EXPECT_TRUE(fs::is_directory("abcd/ef/gh"));
  EXPECT_EQ(kFailed, voxcomn_MakeRecursiveDirectoryA("linked/new/"));
  EXPECT_TRUE(fs::is_directory("abcd/new")) << "links are followed";
  EXPECT_EQ(kFailed, voxcomn_MakeRecursiveDirectoryA("abcd/file/below/"));
  EXPECT_TRUE(fs::is_regular_file("abcd/file")) << "a file in the way stays";
}

TEST_F(DirectoryChain, ModeIs0700LessTheUmask) {
  for (const mode_t mask : {0u, 0300u}) {
    const mode_t before = umask(mask);
    fs::remove_all("abcd");
    voxcomn_MakeRecursiveDirectoryA("abcd/");
    umask(before);
    struct stat status {};
    ASSERT_EQ(0, stat("abcd", &status));
    EXPECT_EQ(0700u & ~mask, status.st_mode & 0777);
  }
}

// The 259th byte is the last one that is looked at.
TEST_F(DirectoryChain, PathsAreCutTo259Bytes) {
  const std::string name = std::string(128, 'a') + "/";
  for (const size_t slash : {258, 259}) {
    fs::remove_all(std::string(128, 'a'));
    const std::string inner(slash - name.size(), 'b');
    const std::string path = name + inner + "/more/" + std::string(100000, 'c') + "/";
    ASSERT_EQ('/', path[slash]);
    EXPECT_EQ(kFailed, voxcomn_MakeRecursiveDirectoryA(path.c_str()));
    EXPECT_EQ(slash == 258, fs::exists(name + inner)) << slash;
    EXPECT_TRUE(fs::exists(name)) << slash;
    const std::wstring wide(path.begin(), path.end());
    fs::remove_all(std::string(128, 'a'));
    EXPECT_EQ(kFailed, voxcomn_MakeRecursiveDirectoryW(wide.c_str()));
    EXPECT_EQ(slash == 258, fs::exists(name + inner)) << slash;
  }
}

struct WideChainCase {
  const char* name;
  const wchar_t* path;
  std::set<std::string> made;
};

TEST_F(DirectoryChain, WidePathsAreMadeTheSame) {
  const WideChainCase cases[] = {
      {"each level", L"abcd/ef/gh", {"abcd", "abcd/ef"}},
      {"Quirk: a slash at index 3 makes none", L"abc/", {}},
      {"Quirk: low bytes are taken", L"\x161\x262\x363\x464/", {"abcd"}},
      {"Quirk: a low byte above 127 is no UTF-8", L"abc\xE4/", {"abc\xE4"}},
      {"Quirk: a low byte may be a slash",
       L"abcd\x12F\x12F"
       L"ef/",
       {"abcd", "abcd/ef"}},
      {"Quirk: a low byte of zero ends what is made", L"abcd\x100zz/", {"abcd"}},
      {"an empty path", L"", {}},
  };
  for (const WideChainCase& each : cases) {
    for (const auto& entry : fs::directory_iterator(".")) fs::remove_all(entry);
    EXPECT_EQ(kFailed, voxcomn_MakeRecursiveDirectoryW(each.path)) << "Quirk: " << each.name;
    EXPECT_EQ(each.made, made()) << each.name;
  }
}

TEST_F(DirectoryChain, NullIsAFailure) {
  EXPECT_EQ(kFailed, voxcomn_MakeRecursiveDirectoryA(nullptr));
  EXPECT_EQ(kFailed, voxcomn_MakeRecursiveDirectoryW(nullptr));
  EXPECT_TRUE(made().empty());
}

}  // namespace
