// tests/fileutil/dirent_entries_test.cpp: what searches find in real folders.
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>

#include "tests/fileutil/search_scope.h"
#include "tests/support/scoped_file_user.h"
#include "tests/support/scoped_working_folder.h"

namespace {

using orbtest::find_all;
using orbtest::is_name_alone;
using orbtest::is_stained;
using orbtest::names;
using orbtest::stained_record;
using Names = std::set<std::string>;

constexpr int64_t kUntouched = orbtest::ScopedErrorWord::kUntouched;

class DirEntEntries : public orbtest::Searching {
 protected:
  // The errno of a search that must fail in the system.
  int failure_of(const std::string& path) {
    FindDataDirEnt record = stained_record();
    errno = 0;
    const int search = voxFindFirstDirEnt(path.c_str(), &record);
    const int error = errno;
    EXPECT_EQ(-1, search) << path;
    EXPECT_TRUE(is_stained(record)) << path;
    EXPECT_EQ(kUntouched, word_.stored()) << path;
    return error;
  }
};

TEST_F(DirEntEntries, StarFindsAllAndTheFolderItselfAndItsParent) {
  folder_.write("a", "1");
  folder_.write(".hidden", "22");
  folder_.make_dir("sub");
  const auto records = find_all(pattern("*"));
  ASSERT_EQ((Names{".", "..", ".hidden", "a", "sub"}), names(pattern("*")));
  for (const char* folder : {".", "..", "sub"}) EXPECT_EQ(16u, records.at(folder).attributes);
  for (const char* file : {"a", ".hidden"}) EXPECT_EQ(0u, records.at(file).attributes);
  EXPECT_EQ(2, records.at(".hidden").size);
}

TEST_F(DirEntEntries, EmptyFolderHasTheTwo) {
  EXPECT_EQ((Names{".", ".."}), names(pattern("*")));
  EXPECT_EQ((Names{".", ".."}), names(pattern(".")));
  EXPECT_EQ((Names{".."}), names(pattern("..")));
  EXPECT_EQ((Names{}), names(pattern("a*")));
}

TEST_F(DirEntEntries, PatternChooses) {
  for (const char* name : {"a.txt", "b.txt", "b.log", "c"}) folder_.write(name, "");
  EXPECT_EQ((Names{"a.txt", "b.txt"}), names(pattern("*.txt")));
  EXPECT_EQ((Names{"b.log", "b.txt"}), names(pattern("b*")));
  EXPECT_EQ((Names{"a.txt", "b.txt"}), names(pattern("?.txt")));
  EXPECT_EQ((Names{"c"}), names(pattern("c")));
}

TEST_F(DirEntEntries, QuirkPatternFindsNamesThatItIsAPrefixOf) {
  for (const char* name : {"a.txt", "a.txt.bak", "a.tx"}) folder_.write(name, "");
  EXPECT_EQ((Names{"a.txt", "a.txt.bak"}), names(pattern("*.txt")));
  EXPECT_EQ((Names{"a.txt", "a.txt.bak", "a.tx"}), names(pattern("a.tx")));
}

TEST_F(DirEntEntries, QuirkEmptyPatternFindsAll) {
  folder_.write("a", "");
  EXPECT_EQ((Names{".", "..", "a"}), names(pattern("")));
}

TEST_F(DirEntEntries, RootIsSearched) {
  const auto records = find_all("/*");
  EXPECT_EQ(16u, records.at("proc").attributes);
  EXPECT_EQ(16u, records.at("..").attributes);
  EXPECT_EQ(1u, find_all("/proc").count("proc"));
  EXPECT_LE(3u, find_all("/").size()) << "an empty pattern";
}

TEST_F(DirEntEntries, SlashesAndDotsOfTheFolderAreTheSystems) {
  folder_.write("sub/file", "12");
  for (const char* path : {"sub/file", "sub//file", "./sub/../sub/./file"})
    EXPECT_EQ(2, find_all(pattern(path)).at("file").size) << path;
}

TEST_F(DirEntEntries, FolderBehindALinkIsSearched) {
  folder_.write("sub/file", "12");
  std::filesystem::create_symlink("sub", folder_.path("link"));
  EXPECT_EQ((Names{".", "..", "file"}), names(pattern("link/*")));
  const auto records = find_all(pattern("l*"));
  ASSERT_EQ(1u, records.size()) << "the link itself is an entry";
  EXPECT_EQ(16u, records.at("link").attributes);
}

TEST_F(DirEntEntries, EveryKindOfEntry) {
  folder_.make_dir("sub");
  folder_.write("file", "12345");
  std::filesystem::create_symlink("file", folder_.path("to_file"));
  std::filesystem::create_symlink("sub", folder_.path("to_sub"));
  std::filesystem::create_symlink("nowhere", folder_.path("dangling"));
  std::filesystem::create_symlink("circle", folder_.path("circle"));
  ASSERT_EQ(0, mkfifo(folder_.path("fifo").c_str(), 0600));
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  folder_.path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(0, bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address));
  close(listener);
  const auto records = find_all(pattern("*"));
  EXPECT_EQ(10u, records.size());
  for (const char* folder : {"sub", "to_sub"}) EXPECT_EQ(16u, records.at(folder).attributes);
  for (const char* file : {"file", "to_file"}) EXPECT_EQ(5, records.at(file).size);
  for (const char* other : {"fifo", "socket"}) {
    EXPECT_EQ(0u, records.at(other).attributes);
    EXPECT_NE(0, records.at(other).modified);
  }
  for (const char* broken : {"dangling", "circle"}) EXPECT_TRUE(is_name_alone(records.at(broken)));
}

TEST_F(DirEntEntries, FolderThatIsNone) {
  folder_.write("file", "");
  ASSERT_EQ(0, mkfifo(folder_.path("fifo").c_str(), 0600));
  std::filesystem::create_symlink("nowhere", folder_.path("dangling"));
  EXPECT_EQ(ENOENT, failure_of(pattern("missing/*")));
  EXPECT_EQ(ENOENT, failure_of(pattern("dangling/*")));
  EXPECT_EQ(ENOTDIR, failure_of(pattern("file/*")));
  EXPECT_EQ(ENOTDIR, failure_of(pattern("fifo/*"))) << "and no wait for a writer";
}

TEST_F(DirEntEntries, FolderThatMayNotBeRead) {
  const std::string sub = folder_.make_dir("sub");
  ASSERT_EQ(0, chmod(folder_.path().c_str(), 0755));
  ASSERT_EQ(0, chmod(sub.c_str(), 0111));
  {
    const orbtest::ScopedFileUser user;
    EXPECT_EQ(EACCES, failure_of(pattern("sub/*")));
  }
  ASSERT_EQ(0, chmod(sub.c_str(), 0755));
}

TEST_F(DirEntEntries, FolderThatMayNotBeEnteredGivesNamesAlone) {
  folder_.write("sub/file", "123");
  const std::string sub = folder_.path("sub");
  ASSERT_EQ(0, chmod(folder_.path().c_str(), 0755));
  ASSERT_EQ(0, chmod(sub.c_str(), 0444));
  {
    const orbtest::ScopedFileUser user;
    const orbtest::ScopedWorkingFolder here(folder_.path());
    for (const std::string& path : {pattern("sub/*"), std::string("sub/*")}) {
      const auto records = find_all(path);
      EXPECT_EQ(3u, records.size());
      for (const auto& [name, record] : records) EXPECT_TRUE(is_name_alone(record)) << name;
    }
  }
  ASSERT_EQ(0, chmod(sub.c_str(), 0755));
}

TEST_F(DirEntEntries, RelativeFolder) {
  folder_.write("sub/file", "123");
  const orbtest::ScopedWorkingFolder here(folder_.path());
  const auto records = find_all("sub/*");
  EXPECT_EQ(3u, records.size());
  EXPECT_EQ(3, records.at("file").size);
  EXPECT_EQ(16u, records.at("..").attributes);
  EXPECT_EQ(3, find_all("./sub/f").at("file").size);
}

TEST_F(DirEntEntries, RelativePathsFollowTheWorkingFolder) {
  for (const char* name : {"one/sub/a", "one/sub/b"}) folder_.write(name, "1");
  for (const char* name : {"two/sub/a", "two/sub/b"}) folder_.write(name, "22");
  const orbtest::ScopedWorkingFolder one(folder_.path("one"));
  FindDataDirEnt record;
  const int search = voxFindFirstDirEnt("sub/?", &record);
  ASSERT_EQ(1, search);
  std::map<std::string, int64_t> sizes;
  {
    const orbtest::ScopedWorkingFolder two(folder_.path("two"));
    while (voxFindNextDirEnt(search, &record) == 1) sizes[record.name] = record.size;
  }
  EXPECT_EQ(1, voxFindCloseDirEnt(search));
  sizes.erase(".");
  sizes.erase("..");
  ASSERT_LE(1u, sizes.size());
  for (const auto& [name, size] : sizes) EXPECT_EQ(2, size) << name;
}

TEST_F(DirEntEntries, EntriesOfAFolderThatWasMovedHaveTheirNamesAlone) {
  for (const char* name : {"one/a", "one/b", "one/c"}) folder_.write(name, "1");
  FindDataDirEnt record;
  const int search = voxFindFirstDirEnt(pattern("one/*").c_str(), &record);
  ASSERT_EQ(1, search);
  std::filesystem::rename(folder_.path("one"), folder_.path("two"));
  int found = 0;
  for (; voxFindNextDirEnt(search, &record) == 1; ++found)
    EXPECT_TRUE(is_name_alone(record)) << record.name;
  EXPECT_EQ(4, found);
  EXPECT_EQ(1, voxFindCloseDirEnt(search));
}

TEST_F(DirEntEntries, EntriesOfAFolderThatWasReplacedAreThoseOfTheNewOne) {
  for (const char* name : {"a", "b", "c"}) {
    folder_.write(std::string("one/") + name, "1");
    folder_.write(std::string("new/") + name, "22");
  }
  FindDataDirEnt record;
  const int search = voxFindFirstDirEnt(pattern("one/?").c_str(), &record);
  ASSERT_EQ(1, search);
  std::filesystem::rename(folder_.path("one"), folder_.path("two"));
  std::filesystem::rename(folder_.path("new"), folder_.path("one"));
  int described = 0;
  while (voxFindNextDirEnt(search, &record) == 1) {
    if (record.name[0] == '.') continue;
    EXPECT_EQ(2, record.size) << record.name;
    ++described;
  }
  EXPECT_LE(2, described) << "one of the three at most was found before";
  EXPECT_EQ(1, voxFindCloseDirEnt(search));
}

TEST_F(DirEntEntries, EntriesRemovedMeanwhileHaveTheirNamesAlone) {
  for (const char* name : {"a", "b", "c"}) folder_.write(name, "1");
  FindDataDirEnt record;
  const int search = voxFindFirstDirEnt(pattern("?").c_str(), &record);
  ASSERT_EQ(1, search);
  for (const char* name : {"a", "b", "c"}) std::filesystem::remove(folder_.path(name));
  while (voxFindNextDirEnt(search, &record) == 1) {
    EXPECT_TRUE(record.name[0] == '.' || is_name_alone(record)) << record.name;
  }
  EXPECT_EQ(1, voxFindCloseDirEnt(search));
}

TEST_F(DirEntEntries, QuirkWithoutASlashAFileOfADotAndTheNameIsTold) {
  folder_.write("data", "1");
  folder_.write(".data", "22");
  folder_.write("plain", "333");
  folder_.write("folder", "4444");
  folder_.make_dir(".folder");
  folder_.make_dir("sub");
  const orbtest::ScopedWorkingFolder here(folder_.path());
  const auto records = find_all("*");
  EXPECT_EQ(8u, records.size());
  EXPECT_EQ(2, records.at("data").size) << "that of .data";
  EXPECT_EQ(16u, records.at("folder").attributes) << "that of .folder";
  for (const char* name : {"plain", "sub", ".data", ".folder", ".."})
    EXPECT_TRUE(is_name_alone(records.at(name))) << name;
}

TEST_F(DirEntEntries, QuirkWithoutASlashTheEntryDotHasTheParentsTimes) {
  folder_.make_dir("parent/child");
  const timespec times[] = {{1'000'000'000, 0}, {1'100'000'000, 0}};
  ASSERT_EQ(0, utimensat(AT_FDCWD, folder_.path("parent").c_str(), times, 0));
  const orbtest::ScopedWorkingFolder here(folder_.path("parent/child"));
  const auto records = find_all("*");
  EXPECT_EQ(16u, records.at(".").attributes);
  EXPECT_EQ(1'100'000'000, records.at(".").modified);
}

TEST_F(DirEntEntries, QuirkWithoutASlashTheEntryDotDotIsThreeDots) {
  folder_.write("...", "55555");
  const orbtest::ScopedWorkingFolder here(folder_.path());
  const auto records = find_all("..");
  EXPECT_EQ((Names{"..", "..."}), names(".."));
  EXPECT_EQ(5, records.at("..").size);
  EXPECT_TRUE(is_name_alone(records.at("...")));
}

TEST_F(DirEntEntries, WithoutASlashTheWholePathIsThePattern) {
  for (const char* name : {"a.txt", "b.log"}) folder_.write(name, "");
  const orbtest::ScopedWorkingFolder here(folder_.path());
  EXPECT_EQ((Names{"a.txt"}), names("*.txt"));
  EXPECT_EQ((Names{".", "..", "a.txt", "b.log"}), names("")) << "an empty path";
  FindDataDirEnt record;
  ASSERT_EQ(1, voxFindFirstDirEnt("b*", &record));
  EXPECT_STREQ(".", pDirEntTable[0]->prefix);
  EXPECT_STREQ("b*", pDirEntTable[0]->pattern);
  EXPECT_EQ(1, voxFindCloseDirEnt(1));
}

// Beside the system's own list of a folder that nobody changes.
TEST_F(DirEntEntries, AgreesWithTheSystem) {
  for (const char* folder : {"/usr/include/", "/usr/bin/", "/usr/"}) {
    const auto records = find_all(std::string(folder) + "*");
    Names listed;
    DIR* const stream = opendir(folder);
    ASSERT_NE(nullptr, stream);
    while (const dirent* entry = readdir(stream)) {
      listed.insert(entry->d_name);
      struct stat status {};
      const bool examined = stat((std::string(folder) + entry->d_name).c_str(), &status) == 0;
      ASSERT_EQ(1u, records.count(entry->d_name)) << folder << entry->d_name;
      const FindDataDirEnt& record = records.at(entry->d_name);
      EXPECT_EQ(examined && S_ISDIR(status.st_mode) ? 16u : 0u, record.attributes);
      EXPECT_EQ(examined ? status.st_mtime : 0, record.modified) << folder << entry->d_name;
      EXPECT_EQ(examined ? status.st_size : 0, record.size) << folder << entry->d_name;
    }
    closedir(stream);
    EXPECT_EQ(listed.size(), records.size()) << folder;
  }
}

}  // namespace
