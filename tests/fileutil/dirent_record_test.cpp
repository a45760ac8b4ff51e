// tests/fileutil/dirent_record_test.cpp: the record that is told of an entry.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstddef>
#include <vector>

#include "tests/fileutil/search_scope.h"

namespace {

using orbtest::is_name_alone;
using orbtest::stained_record;

static_assert(offsetof(FindDataDirEnt, attributes) == 0 &&
              offsetof(FindDataDirEnt, reserved) == 8 && offsetof(FindDataDirEnt, accessed) == 16 &&
              offsetof(FindDataDirEnt, modified) == 24 && offsetof(FindDataDirEnt, size) == 32 &&
              offsetof(FindDataDirEnt, name) == 40 && sizeof(FindDataDirEnt::name) == 260 &&
              offsetof(FindDataDirEnt, zero) == 300);
static_assert(sizeof(FindDataDirEnt::attributes) == 4 && sizeof(FindDataDirEnt::reserved) == 8 &&
              sizeof(FindDataDirEnt::accessed) == 8 && sizeof(FindDataDirEnt::modified) == 8 &&
              sizeof(FindDataDirEnt::size) == 8);
static_assert(offsetof(DirEntSlot, stream) == 0 && offsetof(DirEntSlot, pattern) == sizeof(void*) &&
              sizeof(DirEntSlot::pattern) == 261 &&
              offsetof(DirEntSlot, prefix) == sizeof(void*) + 261 &&
              sizeof(DirEntSlot::prefix) == 261);

// A directory entry of any name, even one that is longer than its array.
class Entry {
 public:
  explicit Entry(const std::string& name)
      : storage_((sizeof(dirent) + name.size()) / sizeof(std::max_align_t) + 1) {
    memcpy(reinterpret_cast<char*>(storage_.data()) + offsetof(dirent, d_name), name.c_str(),
           name.size() + 1);
  }
  operator const dirent*() const { return reinterpret_cast<const dirent*>(storage_.data()); }

 private:
  std::vector<std::max_align_t> storage_;
};

class DirEntRecord : public orbtest::Searching {
 protected:
  // The record of `name` in the folder.
  FindDataDirEnt record_of(const std::string& name) { return record_of(name, pattern("")); }
  FindDataDirEnt record_of(const std::string& name, const std::string& prefix) {
    FindDataDirEnt record = stained_record();
    EXPECT_EQ(&record, voxSetFindDataDirEnt(&record, Entry(name), prefix.c_str()));
    return record;
  }
  void set_times(const std::string& name, time_t accessed, time_t modified) {
    const timespec times[] = {{accessed, 999'999'999}, {modified, 1}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, folder_.path(name).c_str(), times, 0));
  }
};

TEST_F(DirEntRecord, FileHasTimesAndSize) {
  folder_.write("report.txt", "seven b");
  set_times("report.txt", 1'000'000'001, 1'234'567'890);
  const FindDataDirEnt record = record_of("report.txt");
  EXPECT_EQ(0u, record.attributes);
  EXPECT_EQ(0, record.reserved);
  EXPECT_EQ(1'000'000'001, record.accessed) << "whole seconds";
  EXPECT_EQ(1'234'567'890, record.modified);
  EXPECT_EQ(7, record.size);
  EXPECT_STREQ("report.txt", record.name);
}

TEST_F(DirEntRecord, RecordIsZeroBehindTheName) {
  folder_.write("x", "");
  const FindDataDirEnt record = record_of("x");
  EXPECT_EQ(std::string(259 + sizeof record.zero, '\0'), std::string(record.name + 1, 263));
}

TEST_F(DirEntRecord, TimesBefore1970AreNegative) {
  folder_.write("old", "");
  set_times("old", -1'000'000'000, -86'400);
  const FindDataDirEnt record = record_of("old");
  EXPECT_EQ(-1'000'000'000, record.accessed);
  EXPECT_EQ(-86'400, record.modified);
}

TEST_F(DirEntRecord, SizesAndTimesBeyond32Bits) {
  std::filesystem::resize_file(folder_.write("big", ""), 5'000'000'000);
  set_times("big", 4'300'000'000, 5'000'000'000);
  const FindDataDirEnt record = record_of("big");
  EXPECT_EQ(5'000'000'000, record.size);
  EXPECT_EQ(4'300'000'000, record.accessed);
  EXPECT_EQ(5'000'000'000, record.modified);
}

TEST_F(DirEntRecord, DirectoryHasAttribute16) {
  folder_.make_dir("sub");
  set_times("sub", 1'000'000'000, 1'100'000'000);
  const FindDataDirEnt record = record_of("sub");
  EXPECT_EQ(16u, record.attributes);
  EXPECT_EQ(1'100'000'000, record.modified);
}

TEST_F(DirEntRecord, LinksAreFollowed) {
  folder_.make_dir("sub");
  folder_.write("file", "12345");
  std::filesystem::create_symlink("sub", folder_.path("to_sub"));
  std::filesystem::create_symlink("file", folder_.path("to_file"));
  EXPECT_EQ(16u, record_of("to_sub").attributes);
  EXPECT_EQ(0u, record_of("to_file").attributes);
  EXPECT_EQ(5, record_of("to_file").size);
}

TEST_F(DirEntRecord, EntryThatCannotBeExaminedHasItsNameAlone) {
  std::filesystem::create_symlink("nowhere", folder_.path("dangling"));
  std::filesystem::create_symlink("circle", folder_.path("circle"));
  for (const char* name : {"missing", "dangling", "circle"}) {
    const FindDataDirEnt record = record_of(name);
    EXPECT_STREQ(name, record.name);
    EXPECT_TRUE(is_name_alone(record)) << name;
  }
}

TEST_F(DirEntRecord, FifoIsNotOpened) {
  ASSERT_EQ(0, mkfifo(folder_.path("fifo").c_str(), 0600));
  set_times("fifo", 1'000'000'000, 1'100'000'000);
  const FindDataDirEnt record = record_of("fifo");
  EXPECT_EQ(0u, record.attributes);
  EXPECT_EQ(1'100'000'000, record.modified);
}

TEST_F(DirEntRecord, DeviceIsNoDirectory) {
  EXPECT_EQ(0u, record_of("null", "/dev/").attributes);
  EXPECT_EQ(16u, record_of("dev", "/").attributes);
}

TEST_F(DirEntRecord, PrefixAndNameAreJoinedAsTheyAre) {
  folder_.write("joined", "123");
  EXPECT_EQ(3, record_of("ned", pattern("joi")).size);
  EXPECT_TRUE(is_name_alone(record_of("joined", folder_.path()))) << "no slash is added";
  EXPECT_EQ(3, record_of("joined", pattern("/")).size);
  EXPECT_EQ(16u, record_of("/", "").attributes) << "an empty prefix";
}

TEST_F(DirEntRecord, NullArguments) {
  EXPECT_EQ(nullptr, voxSetFindDataDirEnt(nullptr, Entry("x"), "/"));
  FindDataDirEnt record = stained_record();
  EXPECT_EQ(&record, voxSetFindDataDirEnt(&record, nullptr, "/"));
  EXPECT_TRUE(is_name_alone(record));
  EXPECT_STREQ("", record.name);
  record = stained_record();
  EXPECT_EQ(&record, voxSetFindDataDirEnt(&record, Entry("x"), nullptr));
  EXPECT_TRUE(is_name_alone(record));
  EXPECT_STREQ("", record.name);
}

struct LongName {
  const char* rule;
  size_t length, kept;
};

class DirEntLongName : public testing::TestWithParam<LongName> {};

TEST_P(DirEntLongName, ReadsAsTerminated) {
  std::string name(GetParam().length, 'n');
  if (name.size() > 260) name[260] = 'X';
  FindDataDirEnt record = stained_record();
  voxSetFindDataDirEnt(&record, Entry(name), "/");
  EXPECT_EQ(std::string(GetParam().kept, 'n'),
            std::string(record.name, strnlen(record.name, sizeof record - 40)));
  EXPECT_EQ(std::string(4, '\0'), std::string(record.zero, 4));
}

INSTANTIATE_TEST_SUITE_P(Names, DirEntLongName,
                         testing::Values(LongName{"259BytesAreKept", 259, 259},
                                         LongName{"260BytesFillTheField", 260, 260},
                                         LongName{"261BytesAreCut", 261, 260},
                                         LongName{"1000BytesAreCut", 1000, 260}),
                         [](const auto& row) { return row.param.rule; });

// A folder whose path, with a slash behind it, has exactly `length` bytes.
std::string folder_of_length(const orbtest::TempDir& top, size_t length) {
  std::string path = top.path();
  while (path.size() + 102 < length) path += "/" + std::string(99, 'd');
  path += "/" + std::string(length - path.size() - 2, 'e');
  std::filesystem::create_directories(path);
  return path + "/";
}

TEST_F(DirEntRecord, PathOf259BytesIsWhole) {
  const std::string prefix = folder_of_length(folder_, 257);
  folder_.write(prefix.substr(folder_.path().size()) + "ab", "123");
  EXPECT_EQ(3, record_of("ab", prefix).size);
}

TEST_F(DirEntRecord, QuirkPathIsCutTo259BytesAndWhatLiesThereIsTold) {
  const std::string prefix = folder_of_length(folder_, 257);
  const std::string below = prefix.substr(folder_.path().size());
  folder_.write(below + "abc", "123456");
  EXPECT_TRUE(is_name_alone(record_of("abc", prefix))) << "nothing lies at ab";
  folder_.write(below + "ab", "123");
  const FindDataDirEnt record = record_of("abc", prefix);
  EXPECT_STREQ("abc", record.name);
  EXPECT_EQ(3, record.size) << "what is told of ab";
}

TEST_F(DirEntRecord, QuirkPrefixOf259BytesAndMoreLeavesNoRoomForTheName) {
  const std::string prefix = folder_of_length(folder_, 259);
  folder_.write(prefix.substr(folder_.path().size()) + "file", "123");
  EXPECT_EQ(16u, record_of("file", prefix).attributes) << "what is told of the folder";
  EXPECT_EQ(16u, record_of("file", prefix + "whatever/else/").attributes);
}

}  // namespace
