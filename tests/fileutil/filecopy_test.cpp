// tests/fileutil/filecopy_test.cpp: copies of files.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "fileutil/filetree.h"
#include "tests/fileutil/io_script.h"
#include "tests/support/faults.h"
#include "tests/support/forked_child.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/peak_memory.h"
#include "tests/support/scoped_error_word.h"
#include "tests/support/scoped_file_user.h"
#include "tests/support/scoped_working_folder.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using orbtest::Failing;
using orbtest::IoScript;
using orbtest::MemoryFaults;

std::string bytes_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// `size` bytes in which no block is like another.
std::string text_of(size_t size) {
  std::string text(size, '\0');
  uint32_t state = 1;
  for (char& byte : text) byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  return text;
}

class FileCopy : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(orbtest::ScopedErrorWord::kUntouched, word_.stored()) << "no error word";
    EXPECT_EQ(descriptors_, orbtest::open_descriptors());
  }

  std::string path(const std::string& name) const { return folder_.path(name); }
  bool copy(const std::string& source, const std::string& destination, int overwrite = 0) const {
    return voxcomn_copy_file(path(source).c_str(), path(destination).c_str(), overwrite);
  }

  orbtest::TempDir folder_;
  orbtest::ScopedErrorWord word_;
  std::set<std::string> descriptors_ = orbtest::open_descriptors();
};

TEST_F(FileCopy, CopiesEverySizeExactly) {
  for (const size_t size : {0, 1, 511, 512, 513, 1024, 5120, 65535, 65536, 65537, 131072, 200001}) {
    const std::string text = text_of(size);
    folder_.write("source", text);
    EXPECT_TRUE(copy("source", "destination", 1)) << size;
    EXPECT_TRUE(text == bytes_of(path("destination"))) << size;
    EXPECT_TRUE(text == bytes_of(path("source"))) << size;
  }
}

struct OverwriteCase {
  const char* name;
  bool exists;
  int overwrite;
  bool copied;
};

TEST_F(FileCopy, OverwritesWhenItMay) {
  const OverwriteCase cases[] = {
      {"a new file needs no leave", false, 0, true},
      {"a new file with leave", false, 1, true},
      {"an existing file needs leave", true, 0, false},
      {"an existing file with leave", true, 1, true},
      {"any other number is leave", true, -1, true},
  };
  folder_.write("source", "new");
  for (const OverwriteCase& each : cases) {
    for (const bool windows : {false, true}) {
      fs::remove(path("file"));
      if (each.exists) folder_.write("file", "old and longer");
      const bool copied = windows ? voxCopyFile(path("source").c_str(), path("file").c_str(),
                                                each.overwrite == 0 ? 7 : 0) == 1
                                  : copy("source", "file", each.overwrite);
      EXPECT_EQ(each.copied, copied) << each.name;
      EXPECT_EQ(each.copied ? "new" : "old and longer", bytes_of(path("file"))) << each.name;
    }
  }
}

TEST_F(FileCopy, TheWindowsStyleNameGives1And0) {
  folder_.write("source", "new");
  EXPECT_EQ(1, voxCopyFile(path("source").c_str(), path("file").c_str(), 1));
  EXPECT_EQ(0, voxCopyFile(path("source").c_str(), path("file").c_str(), 1));
  EXPECT_EQ(0, voxCopyFile(nullptr, path("file").c_str(), 0));
  EXPECT_EQ(0, voxCopyFile(path("source").c_str(), nullptr, 0));
}

TEST_F(FileCopy, NullArgumentsDoNothing) {
  const std::string source = folder_.write("source", "new");
  EXPECT_FALSE(voxcomn_copy_file(nullptr, path("parent/file").c_str(), 1));
  EXPECT_FALSE(voxcomn_copy_file(source.c_str(), nullptr, 1));
  EXPECT_FALSE(fs::exists(path("parent"))) << "not even a parent";
}

TEST_F(FileCopy, MakesParents) {
  folder_.write("source", "new");
  EXPECT_TRUE(copy("source", "one/two/three/file"));
  EXPECT_EQ("new", bytes_of(path("one/two/three/file")));
}

TEST_F(FileCopy, QuirkParentsStayWhenTheCopyFails) {
  folder_.write("source", "new");
  EXPECT_FALSE(copy("missing", "one/file"));
  EXPECT_TRUE(fs::is_directory(path("one")));
  EXPECT_FALSE(fs::exists(path("one/file")));
}

TEST_F(FileCopy, QuirkAParentWithinFourBytesIsNotMade) {
  const std::string source = folder_.write("source", "new");
  const orbtest::ScopedWorkingFolder inside(folder_.path());
  EXPECT_FALSE(voxcomn_copy_file(source.c_str(), "abc/file", 0));
  EXPECT_TRUE(voxcomn_copy_file(source.c_str(), "abcd/file", 0));
}

TEST_F(FileCopy, AMissingSourceLeavesTheDestinationAlone) {
  folder_.write("file", "old");
  EXPECT_FALSE(copy("missing", "file", 1));
  EXPECT_EQ("old", bytes_of(path("file")));
}

TEST_F(FileCopy, NewFilesHaveMode0666LessTheUmask) {
  folder_.write("source", "new");
  ASSERT_EQ(0, chmod(path("source").c_str(), 0700));
  for (const mode_t mask : {0u, 027u}) {
    fs::remove(path("file"));
    const mode_t before = umask(mask);
    EXPECT_TRUE(copy("source", "file"));
    umask(before);
    struct stat status {};
    ASSERT_EQ(0, stat(path("file").c_str(), &status));
    EXPECT_EQ(0666u & ~mask, status.st_mode & 07777);
  }
}

TEST_F(FileCopy, AnExistingFileKeepsItsModeAndItsNode) {
  folder_.write("source", "new");
  folder_.write("file", "old");
  ASSERT_EQ(0, chmod(path("file").c_str(), 0640));
  fs::create_hard_link(path("file"), path("other_name"));
  EXPECT_TRUE(copy("source", "file", 1));
  struct stat status {};
  ASSERT_EQ(0, stat(path("file").c_str(), &status));
  EXPECT_EQ(0640u, status.st_mode & 07777);
  EXPECT_EQ("new", bytes_of(path("other_name")));
}

TEST_F(FileCopy, FollowsLinksOnBothSides) {
  folder_.write("source", "new");
  fs::create_symlink("source", path("from"));
  fs::create_symlink("target", path("to"));
  EXPECT_TRUE(copy("from", "to")) << "a dangling link is no file yet";
  EXPECT_EQ("new", bytes_of(path("target")));
  EXPECT_TRUE(fs::is_symlink(path("to")));
  EXPECT_FALSE(copy("from", "to")) << "now it is";
}

TEST_F(FileCopy, ADirectoryIsNoDestination) {
  folder_.write("source", "new");
  folder_.make_dir("folder");
  EXPECT_FALSE(copy("source", "folder", 0));
  EXPECT_FALSE(copy("source", "folder", 1));
  EXPECT_FALSE(copy("source", "folder/", 1));
}

TEST_F(FileCopy, QuirkADirectoryGivesAnEmptyFile) {
  folder_.make_dir("folder");
  folder_.write("folder/entry", "");
  EXPECT_TRUE(copy("folder", "file"));
  EXPECT_EQ(0u, fs::file_size(path("file")));
}

TEST_F(FileCopy, QuirkAReadErrorIsTheEnd) {
  EXPECT_TRUE(voxcomn_copy_file("/proc/self/mem", path("file").c_str(), 0)) << "no byte at 0";
  EXPECT_EQ("", bytes_of(path("file")));
  folder_.write("source", "abcdef");
  IoScript script;
  script.reads = {{0, 4}, {EIO, 0}};
  EXPECT_TRUE(copy("source", "file", 1));
  EXPECT_EQ("abcd", bytes_of(path("file")));
  EXPECT_TRUE(script.reads.empty());
}

TEST_F(FileCopy, QuirkAFileCopiedOverItselfIsEmptied) {
  folder_.write("file", "text");
  EXPECT_FALSE(copy("file", "file", 0));
  EXPECT_EQ("text", bytes_of(path("file")));
  EXPECT_TRUE(copy("file", "file", 1));
  EXPECT_EQ("", bytes_of(path("file")));
}

TEST_F(FileCopy, AFileThatStatesNoSizeIsCopiedWhole) {
  EXPECT_TRUE(voxcomn_copy_file("/proc/version", path("file").c_str(), 0));
  EXPECT_EQ(bytes_of("/proc/version"), bytes_of(path("file")));
  EXPECT_NE("", bytes_of(path("file")));
}

TEST_F(FileCopy, APipeIsCopiedToItsEnd) {
  ASSERT_EQ(0, mkfifo(path("pipe").c_str(), 0600));
  const std::string text = text_of(3000);
  std::thread writer([&] {
    const int end = open(path("pipe").c_str(), O_WRONLY | O_CLOEXEC);
    for (const char& byte : text) EXPECT_EQ(1, write(end, &byte, 1));
    close(end);
  });
  EXPECT_TRUE(copy("pipe", "file"));
  writer.join();
  EXPECT_TRUE(text == bytes_of(path("file")));
}

TEST_F(FileCopy, APipeInTheWayIsFoundWithoutWaiting) {
  folder_.write("source", "new");
  ASSERT_EQ(0, mkfifo(path("pipe").c_str(), 0600));
  EXPECT_EQ("", orbtest::outcome_in_child([&] { EXPECT_FALSE(copy("source", "pipe", 0)); }));
}

TEST_F(FileCopy, RightsDecide) {
  if (geteuid() != 0) GTEST_SKIP() << "needs root, to look at files as another user";
  folder_.write("source", "new");
  folder_.write("secret", "secret");
  folder_.write("write_only", "old");
  ASSERT_EQ(0, chmod(path("").c_str(), 0777));
  ASSERT_EQ(0, chmod(path("source").c_str(), 0644));
  ASSERT_EQ(0, chmod(path("secret").c_str(), 0600));
  ASSERT_EQ(0, chmod(path("write_only").c_str(), 0622));
  {
    const orbtest::ScopedFileUser other;
    EXPECT_TRUE(copy("source", "mine"));
    EXPECT_FALSE(copy("secret", "stolen")) << "the source cannot be read";
    EXPECT_FALSE(copy("source", "secret", 0)) << "nor is the file there, which cannot be opened";
    EXPECT_FALSE(copy("source", "secret", 1));
    EXPECT_FALSE(copy("source", "write_only", 1)) << "reading is asked for as well";
  }
  EXPECT_EQ("secret", bytes_of(path("secret")));
  EXPECT_FALSE(fs::exists(path("stolen")));
}

TEST_F(FileCopy, ADeviceThatIsFullFails) {
  folder_.write("source", "new");
  folder_.write("empty", "");
  EXPECT_FALSE(voxcomn_copy_file(path("source").c_str(), "/dev/full", 1));
  EXPECT_TRUE(voxcomn_copy_file(path("empty").c_str(), "/dev/full", 1)) << "nothing to write";
}

TEST_F(FileCopy, AShortWriteIsGoneOnWith) {
  folder_.write("source", "abcdef");
  IoScript script;
  script.writes = {{0, 2}, {0, 1}};
  EXPECT_TRUE(copy("source", "file"));
  EXPECT_EQ("abcdef", bytes_of(path("file")));
  EXPECT_TRUE(script.writes.empty());
}

TEST_F(FileCopy, AFailingWriteLeavesWhatWasWritten) {
  folder_.write("source", "abcdef");
  IoScript script;
  script.writes = {{0, 2}, {ENOSPC, 0}};
  EXPECT_FALSE(copy("source", "file"));
  EXPECT_EQ("ab", bytes_of(path("file")));
}

TEST_F(FileCopy, AWriteThatTakesNothingFails) {
  folder_.write("source", "abcdef");
  IoScript script;
  script.writes = {{0, 0}};
  EXPECT_FALSE(copy("source", "file"));
}

TEST_F(FileCopy, ASignalInBetweenIsNoError) {
  folder_.write("source", "abcdef");
  IoScript script;
  script.reads = {{EINTR, 0}, {0, 3}, {EINTR, 0}};
  script.writes = {{EINTR, 0}, {EINTR, 0}, {0, 1}, {EINTR, 0}};
  EXPECT_TRUE(copy("source", "file"));
  EXPECT_EQ("abcdef", bytes_of(path("file")));
  EXPECT_TRUE(script.reads.empty() && script.writes.empty());
}

struct KernelCase {
  const char* name;
  std::deque<orbtest::IoAnswer> answers;
  bool writes_fail;
};

TEST_F(FileCopy, WhereTheKernelStopsTheCopyGoesOn) {
  const KernelCase cases[] = {
      {"it cannot copy at all", {{EINVAL, 0}, {EINVAL, 0}, {EINVAL, 0}, {EINVAL, 0}}, false},
      {"a signal stops it", {{EINTR, 0}, {0, 1000}, {EINTR, 0}}, false},
      {"it copies a part and fails", {{0, 70000}, {EIO, 0}}, false},
      {"it copies nothing", {{0, 0}, {0, 0}, {0, 0}, {0, 0}}, false},
      {"the disk is full", {{0, 70000}, {ENOSPC, 0}}, true},
  };
  const std::string text = text_of(300001);
  folder_.write("source", text);
  for (const KernelCase& each : cases) {
    IoScript script;
    script.kernel_copies = each.answers;
    if (each.writes_fail) script.writes = {{0, 65536}, {ENOSPC, 0}};
    EXPECT_EQ(!each.writes_fail, copy("source", "file", 1)) << each.name;
    EXPECT_TRUE(script.kernel_copies.empty()) << each.name;
    const size_t written = each.writes_fail ? 65536 + 70000 : text.size();
    EXPECT_TRUE(text.substr(0, written) == bytes_of(path("file"))) << each.name;
  }
}

TEST_F(FileCopy, AFailingCloseOfTheDestinationFails) {
  folder_.write("source", "abcdef");
  IoScript script;
  script.closes = {{ENOSPC, 0}, {EIO, 0}};  // the destination's comes first
  EXPECT_FALSE(copy("source", "file", 1));
  EXPECT_TRUE(script.closes.empty()) << "both are closed";
  script.closes = {{0, 0}, {EIO, 0}};
  EXPECT_TRUE(copy("source", "file", 1)) << "nothing hangs on the source's";
}

TEST_F(FileCopy, WithoutMemoryTheCopyIsTheSame) {
  const std::string text = text_of(70001);
  const std::string source = folder_.write("source", text);
  const std::string destination = path("file");
  const size_t requests = orbtest::for_each_memory_fault([&](size_t nth, Failing failing) {
    bool copied = false;
    size_t failures = 0;
    {
      MemoryFaults faults(nth, failing);
      copied = voxcomn_copy_file(source.c_str(), destination.c_str(), 1);
      failures = faults.failures();
    }
    EXPECT_TRUE(copied) << nth;
    EXPECT_TRUE(text == bytes_of(destination)) << nth;
    return failures;
  });
  EXPECT_EQ(1u, requests);
}

TEST_F(FileCopy, WithoutDescriptorsItFails) {
  folder_.write("source", "new");
  EXPECT_EQ("", orbtest::outcome_in_child([&] {
              rlimit limit{};
              ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &limit));
              limit.rlim_cur = static_cast<rlim_t>(dup(0)) + 1;  // all taken, this one included
              ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &limit));
              EXPECT_FALSE(copy("source", "file"));
              close(static_cast<int>(limit.rlim_cur) - 1);
              EXPECT_FALSE(copy("source", "file")) << "one is not enough";
            }));
}

TEST_F(FileCopy, MemoryDoesNotGrowWithTheFile) {
  constexpr off_t kSize = 64 << 20;
  folder_.write("source", "");
  ASSERT_EQ(0, truncate(path("source").c_str(), kSize));
  EXPECT_EQ("", orbtest::outcome_in_child([&] {
              const long before = orbtest::peak_of_stopped(getpid());
              EXPECT_TRUE(copy("source", "file"));
              EXPECT_GT(before, 0);
              EXPECT_LT(orbtest::peak_of_stopped(getpid()) - before, 4096) << "KiB";
            }));
  EXPECT_EQ(static_cast<uintmax_t>(kSize), fs::file_size(path("file")));
}

}  // namespace
