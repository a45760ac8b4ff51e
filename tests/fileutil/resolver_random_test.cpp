// tests/fileutil/resolver_random_test.cpp: random folders of links beside the plain rules.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <optional>
#include <random>
#include <string>

#include "fileutil/paths.h"
#include "tests/support/plain_flatten.h"
#include "tests/support/scoped_working_folder.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 50;

bool is_kind(const std::string& path, mode_t kind) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && (status.st_mode & S_IFMT) == kind;
}

// The rules of the resolver written down as they are told, in the working folder `here`.
std::optional<std::string> plain_resolve(const std::string& path, const std::string& here) {
  std::optional<std::string> current = orbtest::plain_flatten(path, here);
  for (int links = 0; current && is_kind(*current, S_IFLNK); ++links) {
    if (links == kMostLinks) return std::nullopt;
    const std::string text = fs::read_symlink(*current);
    const std::string folder = current->substr(0, current->rfind('/'));
    const auto base = orbtest::plain_flatten(folder, here);
    current = base ? orbtest::plain_flatten(text, *base) : std::nullopt;
  }
  if (!current || !is_kind(*current, S_IFREG)) return std::nullopt;
  return current;
}

// A path of up to four steps, now and then absolute below `root` or with a slash at its end.
std::string random_path(std::mt19937& random, const std::string& root) {
  static constexpr const char* kSteps[] = {"a", "b", "..", ".", "f", "g",
                                           "h", "f", "g",  "h", "",  "missing"};
  std::string path = random() % 5 == 0 ? root + "/" : "";
  for (size_t steps = 1 + random() % 4; steps > 0; --steps) {
    path += kSteps[random() % std::size(kSteps)];
    if (steps > 1 || random() % 6 == 0) path += "/";
  }
  return path;
}

// Makes four folders in the working folder, and files and links in it and in each of them.
void make_entries(std::mt19937& random, const std::string& root) {
  fs::create_directories("a/b");
  fs::create_directories("b/a");
  for (const char* folder : {"./", "a/", "a/b/", "b/", "b/a/"}) {
    for (const char* name : {"f", "g", "h"}) {
      const std::string entry = std::string(folder) + name;
      const size_t kind = random() % 5;
      if (kind < 2) {
        ASSERT_EQ(0, mknod(entry.c_str(), S_IFREG | 0600, 0));
      } else if (kind < 4) {
        const std::string text = random_path(random, root);
        ASSERT_EQ(0, symlink(text.empty() ? "f" : text.c_str(), entry.c_str()));
      }
    }
  }
}

TEST(ResolverPlain, RandomFoldersAgree) {
  std::mt19937 random(20241121);
  int found = 0, none = 0;
  for (int round = 0; round < 100; ++round) {
    const orbtest::TempDir folder;
    const orbtest::ScopedWorkingFolder inside(folder.path());
    const std::string here = fs::current_path();
    make_entries(random, here);
    for (int turn = 0; turn < 300; ++turn) {
      const std::string path = random_path(random, here);
      const std::optional<std::string> expected = plain_resolve(path, here);
      FileNameResolver resolver(path);
      std::string reached = "untouched";
      ASSERT_EQ(expected.has_value(), resolver.GetAbsolutePath(reached)) << path;
      ASSERT_EQ(expected.value_or("untouched"), reached) << path;
      ++(expected ? found : none);
    }
  }
  EXPECT_LT(1000, found);
  EXPECT_LT(1000, none);
}

}  // namespace
