// tests/fileutil/resolver_test.cpp: the regular file that a path leads to.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>

#include "fileutil/paths.h"
#include "tests/support/faults.h"
#include "tests/support/mount_namespace.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/private_root.h"
#include "tests/support/scoped_error_word.h"
#include "tests/support/scoped_file_user.h"
#include "tests/support/scoped_working_folder.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using orbtest::Failing;
using orbtest::MemoryFaults;
using orbtest::ScopedWorkingFolder;

constexpr unsigned kFailed = 0x80000008;

std::optional<std::string> resolved(const std::string& path) {
  FileNameResolver resolver(path);
  std::string out = "untouched";
  if (resolver.GetAbsolutePath(out)) return out;
  EXPECT_EQ("untouched", out);
  return std::nullopt;
}

class Resolver : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(orbtest::ScopedErrorWord::kUntouched, word_.stored()) << "no error word";
    EXPECT_EQ(descriptors_, orbtest::open_descriptors());
  }

  std::string path(const std::string& name) const { return root_ + "/" + name; }
  void link(const std::string& target, const std::string& name) const {
    ASSERT_EQ(0, symlink(target.c_str(), path(name).c_str()));
  }

  // `count` links in a row that lead to "file"; the first one is "link1".
  void chain(int count) const {
    for (int each = 1; each < count; ++each)
      link("link" + std::to_string(each + 1), "link" + std::to_string(each));
    link("file", "link" + std::to_string(count));
  }

  orbtest::TempDir folder_;
  const std::string root_ = fs::canonical(folder_.path());
  orbtest::ScopedErrorWord word_;
  std::set<std::string> descriptors_ = orbtest::open_descriptors();
};

struct ResolveCase {
  const char* name;
  const char* path;                    // below the folder
  std::optional<std::string> reached;  // below the folder
};

TEST_F(Resolver, FollowsItsRules) {
  folder_.write("file", "");
  folder_.write("in/file", "");
  folder_.make_dir("folder");
  link("file", "near");
  link("in/file", "below");
  link("../file", "in/above");
  link(path("in/file"), "absolute");
  link("./in/../in//file", "wordy");
  link("near", "twice");
  link("folder", "to_folder");
  link("missing", "dangling");
  link("in", "folder_link");
  link("folder_link/file", "through");
  link("folder_link/../file", "textual");
  link("self", "self");
  link("pong", "ping");
  link("ping", "pong");
  link("near/", "slashed");
  ASSERT_EQ(0, mkfifo(path("pipe").c_str(), 0600));
  link("pipe", "to_pipe");
  link("/dev/null", "to_device");
  const ResolveCase cases[] = {
      {"a regular file is itself", "file", "file"},
      {"the path is flattened", "in/.././file", "file"},
      {"a slash at the end is dropped", "file/", "file"},
      {"a link leads to its file", "near", "file"},
      {"a slash behind a link is dropped", "near/", "file"},
      {"a link's text is read against the link's folder", "below", "in/file"},
      {"a link's text may climb", "in/above", "file"},
      {"a link's text may be absolute", "absolute", "in/file"},
      {"a link's text is flattened, slashes kept", "wordy", "in//file"},
      {"a slash at the end of a link's text is dropped", "slashed", "file"},
      {"links are followed one after the other", "twice", "file"},
      {"a link on the way stays in the path", "folder_link/file", "folder_link/file"},
      {"a link on the way of a link's text stays", "through", "folder_link/file"},
      {"'..' takes back a link as a step of the text", "folder_link/../file", "file"},
      {"'..' takes back a link in a link's text", "textual", "file"},
      {"nothing is no result", "missing", std::nullopt},
      {"a folder is no result", "folder", std::nullopt},
      {"a link to a folder is no result", "to_folder", std::nullopt},
      {"a dangling link is no result", "dangling", std::nullopt},
      {"a pipe is no result", "pipe", std::nullopt},
      {"a link to a pipe is no result", "to_pipe", std::nullopt},
      {"a link to a device is no result", "to_device", std::nullopt},
      {"a link to itself is no result", "self", std::nullopt},
      {"links in a circle are no result", "ping", std::nullopt},
      {"a file is no folder", "file/below", std::nullopt},
  };
  for (const ResolveCase& each : cases) {
    std::optional<std::string> expected;
    if (each.reached) expected = path(*each.reached);
    EXPECT_EQ(expected, resolved(path(each.path))) << each.name;
  }
}

TEST_F(Resolver, ASocketIsNoResult) {
  const int number = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(path("socket").size(), sizeof address.sun_path);
  path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(0, bind(number, reinterpret_cast<const sockaddr*>(&address), sizeof address));
  EXPECT_EQ(std::nullopt, resolved(path("socket")));
  close(number);
}

TEST_F(Resolver, ReadsARelativePathAgainstTheWorkingFolder) {
  folder_.write("in/file", "");
  link("in/file", "link");
  const ScopedWorkingFolder inside(path("in"));
  EXPECT_EQ(path("in/file"), resolved("file"));
  EXPECT_EQ(path("in/file"), resolved("../link"));
  EXPECT_EQ(std::nullopt, resolved(""));
  EXPECT_EQ(std::nullopt, resolved("/"));
}

TEST_F(Resolver, FollowsFiftyLinks) {
  folder_.write("file", "");
  chain(50);
  EXPECT_EQ(path("file"), resolved(path("link1")));
}

TEST_F(Resolver, FailsAfterFiftyLinks) {
  folder_.write("file", "");
  chain(51);
  EXPECT_EQ(std::nullopt, resolved(path("link1")));
  EXPECT_EQ(path("file"), resolved(path("link2")));
}

TEST_F(Resolver, ALinkThatClimbsAboveTheRootFails) {
  folder_.write("file", "");
  std::string target;
  for (const char each : path("")) target += each == '/' ? "../" : "";
  link(target + path("file").substr(1), "high");
  ASSERT_TRUE(fs::exists(path("high"))) << "the system stops at the root";
  EXPECT_EQ(std::nullopt, resolved(path("high")));
}

TEST_F(Resolver, QuirkALinksTextIsCutTo1024Bytes) {
  folder_.write("abcd", "");
  folder_.write("abcdefgh", "");
  std::string target;
  while (target.size() < 1020) target += "./";
  link(target + "abcd", "whole");
  link(target + "abcdefgh", "cut");
  EXPECT_EQ(path("abcd"), resolved(path("whole"))) << "1024 bytes are read";
  EXPECT_EQ(path("abcd"), resolved(path("cut")));
}

TEST_F(Resolver, AFolderWithoutTheRightToSearchItFails) {
  folder_.write("shut/file", "");
  ASSERT_EQ(0, chmod(path("shut").c_str(), 0700));
  ASSERT_EQ(0, chmod(root_.c_str(), 0755));
  EXPECT_EQ(path("shut/file"), resolved(path("shut/file")));
  ASSERT_EQ(0, chmod(path("shut").c_str(), 0600));
  {
    const orbtest::ScopedFileUser other;
    EXPECT_EQ(std::nullopt, resolved(path("shut/file")));
  }
  ASSERT_EQ(0, chmod(path("shut").c_str(), 0700));
}

TEST_F(Resolver, NamesHoldAnyByte) {
  std::string name;
  for (int byte = 1; byte < 256; ++byte)
    if (byte != '/') name += static_cast<char>(byte);
  ASSERT_EQ(254u, name.size());
  folder_.write(name, "");
  folder_.write(std::string(255, 'n'), "");
  link(name, "any");
  EXPECT_EQ(path(name), resolved(path("any")));
  EXPECT_EQ(path(std::string(255, 'n')), resolved(path(std::string(255, 'n'))));
  EXPECT_EQ(std::nullopt, resolved(path(std::string(256, 'n')))) << "too long for a name";
}

TEST_F(Resolver, AZeroByteNamesNothing) {
  folder_.write("file", "");
  EXPECT_EQ(std::nullopt, resolved(path("file") + std::string("\0more", 5)));
}

TEST_F(Resolver, APathBeyondTheSystemsLimitFails) {
  EXPECT_EQ(std::nullopt, resolved("/" + std::string(2 * PATH_MAX, 'a')));
}

// The folder before the slash of "/link" is empty, and an empty base is the working folder.
TEST(ResolverAtTheRoot, QuirkARelativeTextIsReadAgainstTheWorkingFolder) {
  const auto written = orbtest::in_mount_namespace([] {
    if (!orbtest::enter_private_root()) return false;
    fs::create_directory("/orbtest_work");
    orbtest::write_file("/file", "");
    orbtest::write_file("/orbtest_work/file", "");
    fs::create_symlink("file", "/relative");
    fs::create_symlink("/file", "/absolute");
    const ScopedWorkingFolder inside("/orbtest_work");
    std::printf("%s\n", resolved("/relative").value_or("none").c_str());
    std::printf("%s\n", resolved("/absolute").value_or("none").c_str());
    return true;
  });
  if (!written) GTEST_SKIP() << "needs root and a mount name space";
  EXPECT_EQ("/orbtest_work//file\n/file\n", *written);
}

TEST_F(Resolver, WithoutMemoryThereIsNoResult) {
  const std::string name = std::string(60, 'f');
  folder_.write(name, "");
  link(name, "link");
  const size_t requests = orbtest::for_each_memory_fault([&](size_t nth, Failing failing) {
    bool made = false;
    size_t failures = 0;
    std::string out = "untouched";
    {
      const std::string start = path("link");
      MemoryFaults faults(nth, failing);
      FileNameResolver resolver(start);
      made = resolver.GetAbsolutePath(out);
      failures = faults.failures();
    }
    EXPECT_EQ(failures == 0, made) << nth;
    EXPECT_EQ(made ? path(name) : "untouched", out) << nth;
    return failures;
  });
  EXPECT_GT(requests, 5u);
}

// The functions around it.

TEST_F(Resolver, HandsOutThePathByItsSize) {
  const std::string file = folder_.write("file", "");
  const int needed = static_cast<int>(path("file").size()) + 1;
  void* resolver = nullptr;
  ASSERT_EQ(0u, voxcomn_filenameresolver_create(file.c_str(), &resolver));
  ASSERT_NE(nullptr, resolver);
  const struct {
    const char* name;
    int size;
    unsigned status;
  } cases[] = {
      {"no room tells what is needed", 0, kFailed},
      {"a negative room tells what is needed", -1, kFailed},
      {"the least room is no room", INT_MIN, kFailed},
      {"one byte short tells what is needed", needed - 1, kFailed},
      {"the room needed is enough", needed, 0},
      {"more room is told what was used", needed + 1, 0},
      {"the largest room", INT_MAX, 0},
  };
  for (const auto& each : cases) {
    std::string buffer(path("file").size() + 3, '#');
    int size = each.size;
    EXPECT_EQ(each.status,
              voxcomn_filenameresolver_get_absolute_filename(resolver, buffer.data(), &size))
        << each.name;
    EXPECT_EQ(needed, size) << each.name;
    const std::string expected =
        each.status == 0 ? path("file") + std::string("\0##", 3) : std::string(buffer.size(), '#');
    EXPECT_EQ(expected, buffer) << each.name;
  }
  EXPECT_EQ(0u, voxcomn_filenameresolver_destroy(resolver));
}

TEST_F(Resolver, IsMadeForAPathThatLeadsNowhere) {
  for (const char* path : {"", "/", "/missing/file", "/.."}) {
    void* resolver = nullptr;
    EXPECT_EQ(0u, voxcomn_filenameresolver_create(path, &resolver)) << path;
    ASSERT_NE(nullptr, resolver) << path;
    char buffer[4] = "###";
    int size = 4;
    EXPECT_EQ(kFailed, voxcomn_filenameresolver_get_absolute_filename(resolver, buffer, &size));
    EXPECT_EQ(4, size) << path;
    EXPECT_STREQ("###", buffer) << path;
    EXPECT_EQ(0u, voxcomn_filenameresolver_destroy(resolver)) << path;
  }
}

TEST_F(Resolver, RefusesNullArguments) {
  const std::string file = folder_.write("file", "");
  int stays = 0;
  void* resolver = &stays;
  EXPECT_EQ(kFailed, voxcomn_filenameresolver_create(nullptr, &resolver));
  EXPECT_EQ(&stays, resolver);
  EXPECT_EQ(kFailed, voxcomn_filenameresolver_create(file.c_str(), nullptr));
  ASSERT_EQ(0u, voxcomn_filenameresolver_create(file.c_str(), &resolver));
  char buffer[1] = {'#'};
  int size = 4096;
  EXPECT_EQ(kFailed, voxcomn_filenameresolver_get_absolute_filename(nullptr, buffer, &size));
  EXPECT_EQ(kFailed, voxcomn_filenameresolver_get_absolute_filename(resolver, nullptr, &size));
  EXPECT_EQ(kFailed, voxcomn_filenameresolver_get_absolute_filename(resolver, buffer, nullptr));
  EXPECT_EQ(4096, size);
  EXPECT_EQ('#', buffer[0]);
  EXPECT_EQ(0u, voxcomn_filenameresolver_destroy(resolver));
  EXPECT_EQ(0u, voxcomn_filenameresolver_destroy(nullptr));
}

TEST_F(Resolver, CreationWithoutMemoryFailsOrLeadsNowhere) {
  const std::string file = folder_.write(std::string(60, 'f'), "");
  size_t refused = 0;
  const size_t requests = orbtest::for_each_memory_fault([&](size_t nth, Failing failing) {
    void* resolver = nullptr;
    unsigned made = 0;
    unsigned told = 0;
    int size = 0;
    char buffer[4096];
    size_t failures = 0;
    {
      MemoryFaults faults(nth, failing);
      made = voxcomn_filenameresolver_create(file.c_str(), &resolver);
      size = sizeof buffer;
      told = voxcomn_filenameresolver_get_absolute_filename(resolver, buffer, &size);
      failures = faults.failures();
    }
    EXPECT_EQ(made == 0, resolver != nullptr) << nth;
    EXPECT_EQ(failures == 0 ? 0 : kFailed, told) << nth;
    refused += made == 0 ? 0 : 1;
    voxcomn_filenameresolver_destroy(resolver);
    return failures;
  });
  EXPECT_GT(requests, 5u);
  EXPECT_GT(refused, 0u);
}

}  // namespace
