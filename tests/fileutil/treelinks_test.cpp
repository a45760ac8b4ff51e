// tests/fileutil/treelinks_test.cpp: removal of trees that hold links to directories.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "fileutil/filetree.h"
#include "tests/fileutil/tree_scope.h"
#include "tests/support/faults.h"
#include "tests/support/forked_child.h"

namespace {

namespace fs = std::filesystem;
using orbtest::Failing;
using orbtest::MemoryFaults;
using Names = std::set<std::string>;

class TreeLinks : public orbtest::Trees {};

TEST_F(TreeLinks, ALinkToAFileGoesAlone) {
  folder_.write("target", "text");
  folder_.make_dir("tree");
  link("../target", "tree/link");
  remove("tree");
  EXPECT_EQ(Names{"target"}, left());
  EXPECT_EQ(4u, fs::file_size(path("target")));
}

TEST_F(TreeLinks, QuirkTheTargetOfALinkIsEmptied) {
  folder_.write("target/file", "");
  folder_.write("target/in/file", "");
  folder_.write("tree/in/file", "");
  folder_.write("tree/beside/file", "");
  link("../../target", "tree/in/link");
  remove("tree");
  EXPECT_EQ((Names{"target", "tree", "tree/in", "tree/in/link"}), left());
}

TEST_F(TreeLinks, QuirkALinkAsTheArgumentIsFollowed) {
  folder_.write("target/in/file", "");
  link("target", "link");
  remove("link");
  EXPECT_EQ((Names{"target", "link"}), left());
  folder_.write("target/file", "");
  voxcomn_delsubtree(path("link").c_str());
  EXPECT_EQ((Names{"target", "link"}), left());
}

TEST_F(TreeLinks, QuirkALinkWithinTheTreeKeepsItsWay) {
  folder_.write("tree/a/file", "");
  folder_.write("tree/b/file", "");
  link("../b", "tree/a/link");
  remove("tree");
  const Names rest = left();
  // The target is a directory of the tree itself: it goes, unless the link still stands; which of
  // the two is met first is the file system's affair.
  EXPECT_EQ(0u, rest.count("tree/a/file") + rest.count("tree/b/file"));
  EXPECT_TRUE(rest.count("tree/a/link") == 0 ? rest.empty()
                                             : rest == (Names{"tree", "tree/a", "tree/a/link"}))
      << rest.size();
}

TEST_F(TreeLinks, ALinkToItsOwnDirectoryEnds) {
  folder_.write("tree/in/file", "");
  link(".", "tree/self");
  link("..", "tree/in/up");
  link("../..", "tree/in/top");
  folder_.write("beside", "");
  remove("tree");
  EXPECT_EQ((Names{"tree", "tree/self", "tree/in", "tree/in/up", "tree/in/top"}), left())
      << "the link to the top empties that as well";
}

// Without care this is 2 to the power of 40 ways through the same directories.
TEST_F(TreeLinks, ManyLinksToOneAnotherEnd) {
  EXPECT_EQ("", orbtest::outcome_in_child([&] {
              Names expected;
              for (int each = 0; each < 60; ++each) {
                const std::string at = "tree/" + std::to_string(each);
                folder_.write(at + "/file", "");
                expected.insert(at);
                for (const int other : {each + 1, each + 2, each + 7}) {
                  const std::string name = at + "/" + std::to_string(other - each);
                  link("../" + std::to_string(other % 60), name);
                  expected.insert(name);
                }
              }
              expected.insert("tree");
              remove("tree");
              EXPECT_EQ(expected, left());
            }));
}

TEST_F(TreeLinks, ManyLinksToTheirOwnDirectoryEnd) {
  EXPECT_EQ("", orbtest::outcome_in_child([&] {
              folder_.write("tree/file", "");
              for (int each = 0; each < 100; ++each) link(".", "tree/" + std::to_string(each));
              remove("tree");
              EXPECT_EQ(101u, left().size());
            }));
}

TEST_F(TreeLinks, ATargetDeepInTheTreeIsReached) {
  const std::string last = nest("target", 60);
  folder_.make_dir("tree");
  link("../" + last.substr(0, std::string("target/d").size() + 2 * 29), "tree/link");
  remove("tree");
  const Names rest = left();
  EXPECT_EQ(0u, rest.count(last)) << "31 levels below the link go";
  EXPECT_EQ(1u, rest.count("target/d/f")) << "those above do not";
}

TEST_F(TreeLinks, QuirkALinkTakesASearchAsWell) {
  folder_.write("target/in/file", "");
  const std::string last = nest("", 49);
  link(path("target"), last + "/link");
  remove("d");
  EXPECT_TRUE(fs::exists(path("target/in/file"))) << "no search was left for its level";
  EXPECT_EQ(35, word_.stored());
}

TEST_F(TreeLinks, ATargetThatNoSearchWasLeftForIsEmptiedFromALevelLessDeep) {
  folder_.write("target/file", "");
  folder_.make_dir("tree/x");
  folder_.make_dir("tree/y");
  // The deep link stands in the folder that is worked on first.
  const std::string first = fs::directory_iterator(path("tree"))->path().filename();
  const std::string last = nest("tree/" + first, 48);
  link(path("target"), last + "/link");
  const std::string near = first == "x" ? "tree/y/link" : "tree/x/link";
  link(path("target"), near);
  remove("tree");
  EXPECT_EQ(35, word_.stored()) << "the deep link is on the 50th level";
  EXPECT_FALSE(fs::exists(path("target/file")));
  EXPECT_TRUE(fs::is_symlink(path(near)));
}

TEST_F(TreeLinks, WithoutMemoryALinkIsNotFollowed) {
  size_t kept = 0;
  const size_t requests = orbtest::for_each_memory_fault([&](size_t nth, Failing failing) {
    folder_.write("target/file", "");
    folder_.make_dir("tree");
    if (!fs::is_symlink(path("tree/link"))) link("../target", "tree/link");
    const std::string top = path("tree");
    size_t failures = 0;
    {
      MemoryFaults faults(nth, failing);
      voxcomn_deltree(top.c_str());
      failures = faults.failures();
    }
    EXPECT_EQ(failures > 0, fs::exists(path("target/file"))) << nth;
    EXPECT_TRUE(fs::is_symlink(path("tree/link"))) << nth;
    kept += failures;
    return failures;
  });
  EXPECT_EQ(3u, requests);  // the tree's search, the target's note and its search
  EXPECT_GT(kept, 0u);
}

}  // namespace
