// tests/fileutil/treeremoval_test.cpp: removal of trees: kinds of entries, limits and failures.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "fileutil/filetree.h"
#include "tests/fileutil/directory_faults.h"
#include "tests/fileutil/tree_scope.h"
#include "tests/support/faults.h"
#include "tests/support/forked_child.h"
#include "tests/support/peak_memory.h"
#include "tests/support/scoped_file_user.h"
#include "tests/support/scoped_working_folder.h"

namespace {

namespace fs = std::filesystem;
using orbtest::Failing;
using orbtest::MemoryFaults;
using Names = std::set<std::string>;

class TreeRemoval : public orbtest::Trees {
 protected:
  void make_sample(const std::string& at) const {
    folder_.write(at + "/file", "text");
    folder_.write(at + "/.hidden", "");
    folder_.write(at + "/in/deep/er/file", "");
    folder_.write(at + "/in/other", "");
    folder_.make_dir(at + "/empty");
  }
};

TEST_F(TreeRemoval, RemovesATree) {
  make_sample("tree");
  folder_.write("beside", "");
  remove("tree");
  EXPECT_EQ(Names{"beside"}, left());
  EXPECT_EQ(word_.kUntouched, word_.stored());
}

TEST_F(TreeRemoval, RemovesWhatIsBelowATree) {
  make_sample("tree");
  folder_.write("beside", "");
  voxcomn_delsubtree(path("tree").c_str());
  EXPECT_EQ((Names{"beside", "tree"}), left());
}

TEST_F(TreeRemoval, EntriesWithoutATypeAreLookedAt) {
  make_sample("tree");
  folder_.write("target/file", "");
  link("../target", "tree/link");
  link("missing", "tree/dangling");
  const orbtest::UntypedEntries untyped;
  remove("tree");
  EXPECT_EQ((Names{"target", "tree", "tree/link"}), left());
}

TEST_F(TreeRemoval, AnEntryThatCannotBeExaminedIsTakenForAFile) {
  folder_.write("tree/file", "");
  folder_.write("tree/in/file", "");
  const orbtest::UntypedEntries untyped(false);
  remove("tree");
  EXPECT_EQ((Names{"tree", "tree/in", "tree/in/file"}), left());
}

TEST_F(TreeRemoval, AnEmptyDirectoryGoes) {
  folder_.make_dir("tree");
  remove("tree");
  EXPECT_EQ(Names{}, left());
}

TEST_F(TreeRemoval, SlashesAtTheEndMakeNoDifference) {
  make_sample("tree");
  remove("tree//");
  EXPECT_EQ(Names{}, left());
}

TEST_F(TreeRemoval, ARelativePathIsReadAgainstTheWorkingFolder) {
  make_sample("tree");
  const orbtest::ScopedWorkingFolder inside(folder_.path());
  voxcomn_delsubtree("tree");
  EXPECT_EQ(Names{"tree"}, left());
  make_sample("tree");
  voxcomn_delsubtree(".");
  EXPECT_EQ(Names{}, left());
}

// An empty path that was taken for one would be "/": the folder is the root meanwhile.
TEST_F(TreeRemoval, NullAndEmptyPathsDoNothing) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root, to change the root folder";
  make_sample("tree");
  const Names before = left();
  EXPECT_EQ("", orbtest::outcome_in_child([&] {
              if (chroot(folder_.path().c_str()) != 0 || chdir("/tree") != 0) _exit(2);
              voxcomn_deltree(nullptr);
              voxcomn_delsubtree(nullptr);
              voxcomn_deltree("");
              voxcomn_delsubtree("");
            }));
  EXPECT_EQ(before, left());
}

TEST_F(TreeRemoval, WhatIsNoDirectoryStays) {
  folder_.write("file", "");
  remove("file");
  remove("missing");
  voxcomn_delsubtree(path("file").c_str());
  EXPECT_EQ(Names{"file"}, left());
}

TEST_F(TreeRemoval, EveryKindOfFileGoes) {
  folder_.make_dir("tree");
  ASSERT_EQ(0, mkfifo(path("tree/pipe").c_str(), 0600));
  const int number = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path("tree/socket").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(0, bind(number, reinterpret_cast<const sockaddr*>(&address), sizeof address));
  close(number);
  if (geteuid() == 0) {
    EXPECT_EQ(0, mknod(path("tree/device").c_str(), S_IFCHR | 0600, makedev(1, 3)));
  }
  link("missing", "tree/dangling");
  link("dangling", "tree/twice");
  link("self", "tree/self");
  folder_.write("tree/shut", "");
  ASSERT_EQ(0, chmod(path("tree/shut").c_str(), 0));
  remove("tree");
  EXPECT_EQ(Names{}, left());
}

TEST_F(TreeRemoval, NamesHoldAnyByte) {
  for (int byte = 1; byte < 256; ++byte) {
    if (byte == '/') continue;
    folder_.write("tree/x" + std::string(1, static_cast<char>(byte)), "");
    folder_.make_dir("tree/y" + std::string(1, static_cast<char>(byte)));
  }
  for (const char* name : {"*", "?", "...", "..a", ".a", " ", "\\", "-rf", "~"})
    folder_.write(std::string("tree/") + name, "");
  remove("tree");
  EXPECT_EQ(Names{}, left());
}

TEST_F(TreeRemoval, ManyEntriesGo) {
  folder_.make_dir("tree/in");
  for (int each = 0; each < 5000; ++each) touch("tree/in/" + std::to_string(each));
  remove("tree");
  EXPECT_EQ(Names{}, left());
}

// Searches: one a level.

struct DepthCase {
  const char* name;
  int held;    // searches open elsewhere
  int levels;  // of the tree, the top one included
  bool goes;
};

TEST_F(TreeRemoval, QuirkALevelTakesASearch) {
  const DepthCase cases[] = {
      {"50 levels take all searches", 0, 50, true},
      {"51 levels are too many", 0, 51, false},
      {"searches held elsewhere count", 30, 20, true},
      {"one level less can go then", 30, 21, false},
      {"with all held nothing goes", 50, 1, false},
  };
  for (const DepthCase& each : cases) {
    word_.clear();
    std::vector<int> held;
    FindDataDirEnt found;
    for (int search = 0; search < each.held; ++search)
      held.push_back(voxFindFirstDirEnt("/*", &found));
    nest("", each.levels);
    remove("d");
    const Names rest = left();
    EXPECT_EQ(each.goes, rest.empty()) << each.name;
    EXPECT_EQ(each.goes ? word_.kUntouched : 35, word_.stored()) << each.name;
    if (!each.goes) {
      // All levels stay, and of the files those that no search was left for.
      const size_t searched = static_cast<size_t>(50 - each.held);
      const size_t levels = static_cast<size_t>(each.levels);
      EXPECT_EQ(levels + (levels - searched), rest.size()) << each.name;
    }
    for (const int search : held) voxFindCloseDirEnt(search);
    remove("d");
    fs::remove_all(path("d"));
  }
}

TEST_F(TreeRemoval, ADirectoryThatIsNotSearchedGoesWhenItIsEmpty) {
  const std::string last = nest("", 50);
  folder_.make_dir(last + "/empty");
  remove("d");
  EXPECT_EQ(Names{}, left());
  EXPECT_EQ(35, word_.stored()) << "no search was left for it";
}

TEST_F(TreeRemoval, QuirkATreeOf300LevelsLosesItsUpper50) {
  nest("tree", 299);
  folder_.write("tree/beside/file", "");
  remove("tree");
  const Names rest = left();
  EXPECT_EQ(300u + 250, rest.size()) << "every level, and the files from the 51st on";
  EXPECT_EQ(0u, rest.count("tree/d/f"));
  EXPECT_EQ(0u, rest.count("tree/beside"));
  EXPECT_EQ(35, word_.stored());
  remove("tree");
  EXPECT_EQ(300u + 250, left().size()) << "once more";
}

// Paths: 259 bytes.

TEST_F(TreeRemoval, QuirkAnEntryBeyond259BytesStays) {
  const std::string in = "tree/" + std::string(100, 'a') + "/";
  const size_t room = 259 - path(in).size();
  const std::string fits(room, 'b');
  const std::string beyond(room + 1, 'b');
  folder_.write(in + fits, "");
  folder_.write(in + beyond, "");
  folder_.write(in + std::string(room, 'c') + "c", "");
  folder_.make_dir(in + std::string(room, 'd'));
  folder_.make_dir(in + std::string(room, 'd') + "d");
  folder_.write(in + "short", "");
  const std::string above = "tree/" + std::string(100, 'a');
  for (int round = 0; round < 2; ++round) {
    remove("tree");
    EXPECT_EQ((Names{"tree", above, in + beyond, in + std::string(room + 1, 'c'),
                     in + std::string(room + 1, 'd')}),
              left());
  }
}

TEST_F(TreeRemoval, QuirkADirectoryOfSo257To259BytesIsRemovedWhenItIsEmpty) {
  for (const size_t length : {257, 258, 259}) {
    const std::string in = "tree/" + std::string(100, 'a') + "/";
    const std::string last = in + std::string(length - path(in).size(), 'b');
    folder_.make_dir(last);
    ASSERT_EQ(length, path(last).size());
    remove("tree");
    EXPECT_EQ(Names{}, left()) << length;
    folder_.write(last + "/f", "");
    remove("tree");
    EXPECT_EQ(length == 257, left().empty()) << length << ": with an entry of one byte";
    fs::remove_all(path("tree"));
  }
}

TEST_F(TreeRemoval, TheArgumentIsCutTo259Bytes) {
  const std::string above = "tree/" + std::string(100, 'a') + "/";
  const std::string last = above + std::string(259 - path(above).size(), 'b');
  folder_.make_dir(last);
  folder_.write(last + "more/file", "");
  remove(last + "more");
  EXPECT_FALSE(fs::exists(path(last))) << "what the cut path names";
  EXPECT_TRUE(fs::exists(path(last + "more/file")));
  remove(last + std::string(100000, 'x'));
}

TEST_F(TreeRemoval, NamesOf255BytesGo) {
  folder_.write("t/" + std::string(255 - path("t").size() - 1, 'n'), "");
  const orbtest::ScopedWorkingFolder inside(folder_.path());
  folder_.write("t/" + std::string(255, 'n'), "");
  folder_.make_dir("t/" + std::string(255, 'm'));
  voxcomn_deltree("t");
  EXPECT_EQ(Names{}, left()) << "257 bytes with the folder";
}

// Rights and failures.

TEST_F(TreeRemoval, WhatIsShutStays) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root, to look at files as another user";
  folder_.write("tree/shut/file", "");
  folder_.make_dir("tree/shut_empty");
  folder_.write("tree/read_only/file", "");
  folder_.write("tree/unsearchable/file", "");
  folder_.write("tree/open/file", "");
  for (const char* each : {"tree", "tree/open"}) ASSERT_EQ(0, chmod(path(each).c_str(), 0777));
  for (const char* each : {"tree/shut", "tree/shut_empty"})
    ASSERT_EQ(0, chmod(path(each).c_str(), 0700));
  ASSERT_EQ(0, chmod(path("tree/read_only").c_str(), 0755));
  ASSERT_EQ(0, chmod(path("tree/unsearchable").c_str(), 0744));
  ASSERT_EQ(0, chmod(folder_.path().c_str(), 0755));
  {
    const orbtest::ScopedFileUser other;
    remove("tree");
  }
  EXPECT_EQ((Names{"tree", "tree/shut", "tree/shut/file", "tree/read_only", "tree/read_only/file",
                   "tree/unsearchable", "tree/unsearchable/file"}),
            left());
}

TEST_F(TreeRemoval, AFailingReadEndsItsLevel) {
  make_sample("tree");
  {
    const orbtest::DirectoryFaults faults(1, false);
    remove("tree");
    EXPECT_EQ(1u, faults.failures());
  }
  EXPECT_TRUE(fs::exists(path("tree/file")));
  {
    const orbtest::DirectoryFaults faults(0, true);
    remove("tree");
    EXPECT_EQ(5u, faults.failures()) << "one for each directory";
  }
  EXPECT_EQ(Names{}, left()) << "a failing close changes nothing";
}

TEST_F(TreeRemoval, WithoutMemoryALevelStays) {
  const size_t requests = orbtest::for_each_memory_fault([&](size_t nth, Failing failing) {
    make_sample("tree");
    const std::string top = path("tree");
    size_t failures = 0;
    word_.clear();
    {
      MemoryFaults faults(nth, failing);
      voxcomn_deltree(top.c_str());
      failures = faults.failures();
    }
    if (failures == 0) {
      EXPECT_FALSE(fs::exists(top)) << nth;
    }
    EXPECT_EQ(failures > 0 && nth == 1, fs::exists(top + "/file")) << "the top comes first";
    EXPECT_EQ(failures == 0 ? word_.kUntouched : 35, word_.stored()) << nth;
    EXPECT_EQ(0, orbtest::open_searches()) << nth;
    fs::remove_all(top);
    return failures;
  });
  EXPECT_EQ(5u, requests) << "one for each directory";
}

TEST_F(TreeRemoval, MemoryDoesNotGrowWithTheTree) {
  for (int each = 0; each < 20; ++each) folder_.make_dir("tree/" + std::to_string(each));
  for (int each = 0; each < 20000; ++each)
    touch("tree/" + std::to_string(each % 20) + "/" + std::to_string(each));
  EXPECT_EQ("", orbtest::outcome_in_child([&] {
              const std::string top = path("tree");
              const long before = orbtest::peak_of_stopped(getpid());
              voxcomn_deltree(top.c_str());
              EXPECT_GT(before, 0);
              EXPECT_LT(orbtest::peak_of_stopped(getpid()) - before, 2048) << "KiB";
            }));
  EXPECT_EQ(Names{}, left());
}

TEST_F(TreeRemoval, ThreadsRemoveTreesOfTheirOwn) {
  std::vector<std::thread> threads;
  for (int each = 0; each < 8; ++each) nest("tree" + std::to_string(each), 5);
  for (int each = 0; each < 8; ++each)
    threads.emplace_back([this, each] { remove("tree" + std::to_string(each)); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Names{}, left());
}

TEST_F(TreeRemoval, ThreadsRemoveOneTree) {
  for (int each = 0; each < 300; ++each) make_sample("tree/" + std::to_string(each));
  std::vector<std::thread> threads;
  for (int each = 0; each < 4; ++each) threads.emplace_back([this] { remove("tree"); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Names{}, left());
}

}  // namespace
