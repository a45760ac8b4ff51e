// tests/fileutil/paths_test.cpp: flattening of path texts.
#include "fileutil/paths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <type_traits>

#include "tests/fileutil/io_script.h"
#include "tests/support/faults.h"
#include "tests/support/forked_child.h"
#include "tests/support/plain_flatten.h"
#include "tests/support/scoped_working_folder.h"
#include "tests/support/temp_dir.h"

namespace {

using orbtest::Failing;
using orbtest::MemoryFaults;
using orbtest::ScopedWorkingFolder;

static_assert(!std::is_polymorphic_v<FileNameFlattener> &&
              !std::is_polymorphic_v<FileNameResolver>);
static_assert(std::is_same_v<FileNameFlattener, quillon_com::orb::FileNameFlattener>);
static_assert(std::is_same_v<FileNameResolver, quillon_com::orb::FileNameResolver>);

std::optional<std::string> result_of(FileNameFlattener& flattener) {
  std::string out = "untouched";
  if (flattener.GetFlatPath(out)) return out;
  EXPECT_EQ("untouched", out);
  return std::nullopt;
}

std::optional<std::string> flat(const std::string& path, const std::string& base) {
  FileNameFlattener flattener(path, base);
  return result_of(flattener);
}

std::optional<std::string> flat(const std::string& path) {
  FileNameFlattener flattener(path);
  return result_of(flattener);
}

struct FlattenCase {
  const char* name;
  const char* path;
  std::optional<std::string> flat;  // against the base "/x"
};

TEST(Flattener, FollowsItsRules) {
  const FlattenCase cases[] = {
      {"an absolute path stands for itself", "/a/b", "/a/b"},
      {"a relative path is read against the base", "a", "/x/a"},
      {"'.' steps go", "/a/./b", "/a/b"},
      {"a '.' at the start goes", "./a", "/x/a"},
      {"a '.' at the end goes", "/a/.", "/a"},
      {"a '.' and a slash at the end go", "/a/./b/.", "/a/b"},
      {"several '.' in a row go", "/a/./././b", "/a/b"},
      {"'.' alone is the base", ".", "/x"},
      {"a slash at the end goes", "/a/./b/", "/a/b"},
      {"'..' takes the step before it", "a/b/../c", "/x/a/c"},
      {"'..' at the end takes the step before it", "/a/b/..", "/a"},
      {"several '..' in a row take as many steps", "/a/b/c/../../d", "/a/d"},
      {"'..' apart take one step each", "/a/../b/../c", "/c"},
      {"a '.' between does not count as a step", "/a/b/./../c", "/a/c"},
      {"'..' climbs out of the base", "../a", "/a"},
      {"'..' alone is the folder above the base", "..", ""},
      {"'..' above the root fails", "/../a", std::nullopt},
      {"'..' at the root fails", "/..", std::nullopt},
      {"'..' above the root fails further on", "/a/../../b/c", std::nullopt},
      {"'..' above the root through the base fails", "../../a", std::nullopt},
      {"three dots are a name", "/a/.../b", "/a/.../b"},
      {"a name may begin with a dot", "/a/.b/..c", "/a/.b/..c"},
      {"a name may end with dots", "/a./b../c", "/a./b../c"},
      {"a backslash is a byte like any other", "/a\\..\\b", "/a\\..\\b"},
      {"blanks are kept", " /a", "/x/ /a"},
      {"every byte is kept", "/\x01\x7F\xFF\xC3\xA9", "/\x01\x7F\xFF\xC3\xA9"},
      {"Quirk: runs of slashes are kept", "/a//b", "/a//b"},
      {"Quirk: runs of slashes are kept in front", "///a", "///a"},
      {"Quirk: one slash at the end is dropped, not two", "/a//", "/a/"},
      {"Quirk: '..' takes an empty step", "/a//../b", "/a/b"},
      {"Quirk: '..' takes an empty step at the root", "//../b", "/b"},
      {"Quirk: '.' between slashes leaves them", "/a/.//b", "/a//b"},
      {"Quirk: '/' is empty, so the base and a slash", "/", "/x/"},
      {"Quirk: an empty path is the base and a slash", "", "/x/"},
      {"Quirk: './' is the base", "./", "/x"},
      {"Quirk: '//' is the root", "//", "/"},
      {"Quirk: '/.' is empty", "/.", ""},
      {"Quirk: steps that cancel out leave nothing", "/a/..", ""},
      {"Quirk: nothing is left of '/./'", "/./", ""},
  };
  for (const FlattenCase& each : cases)
    EXPECT_EQ(each.flat, flat(each.path, "/x")) << each.name << ": " << each.path;
}

struct BaseCase {
  const char* name;
  const char *path, *base;
  std::optional<std::string> flat;  // in the working folder "/"
};

TEST(Flattener, FlattensTheBaseFirst) {
  const ScopedWorkingFolder root("/");
  const BaseCase cases[] = {
      {"a slash at the base's end goes", "a", "/x/", "/x/a"},
      {"steps of the base go", "a", "/x/./y/../z", "/x/z/a"},
      {"'..' climbs through the flat base", "../a", "/x/y/..", "/a"},
      {"a base above the root fails", "a", "/..", std::nullopt},
      {"a base above the root fails an absolute path", "/a", "/../x", std::nullopt},
      {"an absolute path takes nothing of the base", "/a", "/x", "/a"},
      {"Quirk: two slashes come from the root folder", "a", "x", "//x/a"},
      {"Quirk: an empty base is the working folder and a slash", "a", "", "///a"},
      {"Quirk: the base '/' counts as empty", "a", "/", "///a"},
      {"Quirk: a base whose steps cancel out is the root", "a", "/x/..", "/a"},
      {"Quirk: the base '//' keeps its slash", "a", "//", "//a"},
  };
  for (const BaseCase& each : cases)
    EXPECT_EQ(each.flat, flat(each.path, each.base)) << each.name << ": " << each.base;
}

TEST(Flattener, ReadsARelativePathAgainstTheWorkingFolder) {
  const orbtest::TempDir folder;
  const ScopedWorkingFolder inside(folder.path());
  const std::string here = std::filesystem::current_path();
  EXPECT_EQ(here + "/a/c", flat("a/b/../c"));
  EXPECT_EQ(here, flat("."));
  EXPECT_EQ(here + "/", flat(""));
  EXPECT_EQ(here + "/", flat("/"));
  EXPECT_EQ("/a", flat("/a"));
  EXPECT_EQ(here + "/base/a", flat("a", "base")) << "and a relative base";
}

TEST(Flattener, QuirkDoublesTheSlashInTheRootFolder) {
  const ScopedWorkingFolder root("/");
  EXPECT_EQ("//a", flat("a"));
  EXPECT_EQ("/", flat("."));
  EXPECT_EQ("", flat("..")) << "the empty step is taken";
  EXPECT_EQ(std::nullopt, flat("../.."));
}

// 1023 bytes and their terminator fill the buffer; one byte more leaves the base empty.
TEST(Flattener, AWorkingFolderBeyond1023BytesCannotBeHad) {
  const orbtest::TempDir folder;
  std::string path = std::filesystem::canonical(folder.path());
  while (path.size() < 1023 - 200) path += "/" + std::string(150, 'd');
  for (const size_t length : {1023, 1024}) {
    const std::string deep = path + "/" + std::string(length - path.size() - 1, 'e');
    std::filesystem::create_directories(deep);
    const ScopedWorkingFolder inside(deep);
    EXPECT_EQ(length == 1023 ? deep + "/a" : "/a", flat("a")) << length;
  }
}

TEST(Flattener, AWorkingFolderOutsideTheRootCannotBeHad) {
  orbtest::IoScript script;
  script.working_folder = "(unreachable)/folder";
  EXPECT_EQ("/a", flat("a"));
}

TEST(Flattener, AWorkingFolderThatIsGoneCannotBeHad) {
  const orbtest::TempDir folder;
  EXPECT_EQ("", orbtest::outcome_in_child([&] {
              ASSERT_EQ(0, chdir(folder.make_dir("gone").c_str()));
              ASSERT_EQ(0, rmdir(folder.path("gone").c_str()));
              EXPECT_EQ("/a", flat("a"));
              EXPECT_EQ(std::nullopt, flat("../a"));
            }));
}

TEST(Flattener, LooksAtNothingOnDisk) {
  const orbtest::TempDir folder;
  folder.make_dir("target/inner");
  std::filesystem::create_symlink("target/inner", folder.path("link"));
  EXPECT_EQ(folder.path("a"), flat(folder.path("link/../a")));
  EXPECT_EQ(folder.path("missing/a"), flat(folder.path("missing/b/../a")));
}

TEST(Flattener, FlattenCanBeRepeated) {
  FileNameFlattener good("a/../b", "/x");
  EXPECT_TRUE(good.Flatten());
  EXPECT_EQ("/x/b", result_of(good));
  FileNameFlattener bad("../..", "/x");
  EXPECT_FALSE(bad.Flatten());
  EXPECT_EQ(std::nullopt, result_of(bad));
}

TEST(Flattener, QuirkFlattenBehindAFailedBaseTakesTheRoot) {
  FileNameFlattener flattener("a", "/..");
  EXPECT_EQ(std::nullopt, result_of(flattener));
  EXPECT_TRUE(flattener.Flatten());
  EXPECT_EQ("/a", result_of(flattener));
}

TEST(Flattener, CopiesKeepTheResult) {
  FileNameFlattener first("a", "/x");
  FileNameFlattener copy = first;
  EXPECT_EQ("/x/a", result_of(copy));
  EXPECT_EQ("/x/a", result_of(first));
}

TEST(Flattener, ZeroBytesAreBytes) {
  EXPECT_EQ(std::string("/x/a\0b", 6), flat(std::string("a\0b", 3), "/x"));
}

// Every text of up to eleven bytes over the two that matter and one that does not.
TEST(Flattener, AgreesWithThePlainRules) {
  constexpr size_t kTexts = (531441 - 3) / 2;  // 3 + 3^2 + ... + 3^11
  size_t failed = 0;
  for (size_t number = 0; number <= kTexts; ++number) {
    const std::string path = orbtest::nth_text(number, "/.a");
    const auto expected = orbtest::plain_flatten(path, "/x/y");
    ASSERT_EQ(expected, flat(path, "/x/y")) << path;
    failed += expected ? 0 : 1;
  }
  EXPECT_GT(failed, 0u);
}

// A search from the start for each step would take minutes here.
TEST(Flattener, LongTextsTakeLinearTime) {
  constexpr size_t kSteps = 2'000'000;
  const auto begin = std::chrono::steady_clock::now();
  std::string dots = "/a";
  std::string up;
  for (size_t step = 0; step < kSteps; ++step) {
    dots += "/.";
    up += "/b";
  }
  for (size_t step = 0; step < kSteps; ++step) up += "/..";
  EXPECT_EQ("/a", flat(dots));
  EXPECT_EQ("", flat(up));
  EXPECT_EQ(std::nullopt, flat(up + "/.."));
  EXPECT_EQ(std::string(kSteps - 1, '/'), flat(std::string(kSteps, '/')));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST(Flattener, WithoutMemoryThereIsNoResult) {
  const std::string path = "a/" + std::string(100, 'b');
  const std::string base = "/x/" + std::string(100, 'y');
  const size_t requests = orbtest::for_each_memory_fault([&](size_t nth, Failing failing) {
    bool made = false;
    size_t failures = 0;
    std::string out = "untouched";
    {
      MemoryFaults faults(nth, failing);
      FileNameFlattener flattener(path, base);
      made = flattener.GetFlatPath(out);
      failures = faults.failures();
    }
    EXPECT_EQ(failures == 0, made) << nth;
    EXPECT_EQ(made ? base + "/" + path : "untouched", out) << nth;
    return failures;
  });
  EXPECT_GT(requests, 5u);
}

}  // namespace
