// tests/fileutil/dirent_names_test.cpp: names of every kind, and the limits of 260 bytes.
#include <gtest/gtest.h>

#include "tests/fileutil/search_scope.h"
#include "tests/support/scoped_working_folder.h"

namespace {

using orbtest::find_all;
using orbtest::is_name_alone;
using orbtest::names;
using Names = std::set<std::string>;

class DirEntNames : public orbtest::Searching {
 protected:
  // Makes a folder whose path, without a slash behind it, has exactly `length` bytes.
  std::string folder_of_length(size_t length) const {
    std::string path = folder_.path();
    while (path.size() + 102 < length) path += "/" + std::string(99, 'd');
    path += "/" + std::string(length - path.size() - 1, 'e');
    std::filesystem::create_directories(path);
    return path;
  }
  void write(const std::string& path, const char* bytes) const {
    folder_.write(path.substr(folder_.path().size()), bytes);
  }
};

TEST_F(DirEntNames, NamesOfEveryByte) {
  Names made;
  for (int byte = 1; byte < 256; ++byte) {
    if (byte == '/') continue;
    const std::string name = std::string(1, static_cast<char>(byte)) + "name";
    folder_.write(name, name);
    made.insert(name);
  }
  ASSERT_EQ(254u, made.size());
  EXPECT_EQ(made, names(pattern("?name")));
  for (const auto& name : made) {
    const auto records = find_all(pattern(name));
    ASSERT_EQ(name[0] == '?' || name[0] == '*' ? 254u : 1u, records.size()) << name;
    EXPECT_EQ(5, records.at(name).size) << name;
  }
}

TEST_F(DirEntNames, NamesOf255Bytes) {
  const std::string longest(255, 'n');
  const std::string wide = "\xE6\x97\xA5" + std::string(252, 'w');
  folder_.write(longest, "123");
  folder_.write(wide, "1234");
  const auto records = find_all(pattern("*"));
  EXPECT_EQ(4u, records.size());
  EXPECT_TRUE(is_name_alone(records.at(longest))) << "the path is longer than what is looked at";
  EXPECT_TRUE(is_name_alone(records.at(wide)));
  const orbtest::ScopedWorkingFolder here(folder_.path());
  EXPECT_EQ(3, find_all("./*").at(longest).size);
  EXPECT_EQ(4, find_all("./*").at(wide).size);
  EXPECT_EQ((Names{longest}), names(pattern(longest)));
  EXPECT_EQ((Names{longest}), names(pattern(std::string(255, '?').replace(0, 1, "n"))));
}

TEST_F(DirEntNames, ThousandsOfEntriesAreFoundOnce) {
  for (int each = 0; each < 2000; ++each) folder_.write(std::to_string(each), "");
  EXPECT_EQ(2002u, find_all(pattern("*")).size());
  EXPECT_EQ(111u, find_all(pattern("4")).size()) << "4, 4? and 4??";
}

TEST_F(DirEntNames, PatternOf260BytesIsWhole) {
  folder_.write("axx", "");
  EXPECT_EQ((Names{}), names(pattern("a" + std::string(258, '*') + "b")));
}

TEST_F(DirEntNames, PatternIsCutTo260Bytes) {
  folder_.write("axx", "");
  const std::string path = pattern("a" + std::string(259, '*') + "b");
  EXPECT_EQ((Names{"axx"}), names(path));
  FindDataDirEnt record;
  ASSERT_EQ(1, voxFindFirstDirEnt(path.c_str(), &record));
  EXPECT_EQ("a" + std::string(259, '*'), pDirEntTable[0]->pattern);
  EXPECT_EQ(1, voxFindCloseDirEnt(1));
}

TEST_F(DirEntNames, PatternWithoutASlashIsCutTo260Bytes) {
  folder_.write("axx", "");
  const orbtest::ScopedWorkingFolder here(folder_.path());
  EXPECT_EQ((Names{"axx"}), names("a" + std::string(259, '*') + "b"));
  EXPECT_EQ((Names{}), names("a" + std::string(258, '*') + "b"));
}

// What is told of entries "ab" (3 bytes) and "abc" (6 bytes) of a folder whose path has `length`
// bytes with its slash, both in absolute and in relative searches.
struct Limit {
  const char* rule;
  size_t length;
  int64_t size_of_ab, size_of_abc;  // 0 when nothing is told
};

class DirEntLimits : public DirEntNames, public testing::WithParamInterface<Limit> {};

TEST_P(DirEntLimits, Absolute) {
  const std::string prefix = folder_of_length(GetParam().length - 1) + "/";
  write(prefix + "ab", "123");
  write(prefix + "abc", "123456");
  const auto records = find_all(prefix + "ab");
  ASSERT_EQ(2u, records.size());
  EXPECT_EQ(GetParam().size_of_ab, records.at("ab").size);
  EXPECT_EQ(GetParam().size_of_abc, records.at("abc").size);
}

TEST_P(DirEntLimits, Relative) {
  const orbtest::ScopedWorkingFolder here(folder_.path());
  std::string prefix;
  while (prefix.size() + 102 < GetParam().length) prefix += std::string(99, 'd') + "/";
  prefix += std::string(GetParam().length - prefix.size() - 1, 'e') + "/";
  folder_.write(prefix + "ab", "123");
  folder_.write(prefix + "abc", "123456");
  const auto records = find_all(prefix + "ab");
  ASSERT_EQ(2u, records.size());
  EXPECT_EQ(GetParam().size_of_ab, records.at("ab").size);
  EXPECT_EQ(GetParam().size_of_abc, records.at("abc").size);
}

INSTANTIATE_TEST_SUITE_P(Paths, DirEntLimits,
                         testing::Values(Limit{"PathOf259BytesIsWhole", 256, 3, 6},
                                         Limit{"QuirkPathOf260BytesIsCut", 257, 3, 3},
                                         Limit{"QuirkPathIsCutToNothing", 258, 0, 0}),
                         [](const auto& row) { return row.param.rule; });

TEST_F(DirEntNames, QuirkPrefixOf259And260BytesTellsOfTheFolder) {
  for (const size_t length : {258, 259}) {  // without the slash
    const std::string folder = folder_of_length(length);
    write(folder + "/file", "123");
    const auto records = find_all(folder + "/*");
    EXPECT_EQ(3u, records.size()) << length;
    for (const auto& [name, record] : records) EXPECT_EQ(16u, record.attributes) << name;
    std::filesystem::remove_all(folder);
  }
}

TEST_F(DirEntNames, QuirkLongPrefixIsCutTo260BytesAndOpensWhatLiesThere) {
  const std::string folder = folder_of_length(260);
  write(folder + "/in_the_cut_one", "123");
  write(folder + "longer/in_the_long_one", "123");
  const auto records = find_all(folder + "longer/*");
  ASSERT_EQ(1u, records.count("in_the_cut_one"));
  EXPECT_EQ(3u, records.size());
  for (const auto& [name, record] : records) EXPECT_TRUE(is_name_alone(record)) << name;
  FindDataDirEnt record;
  ASSERT_EQ(1, voxFindFirstDirEnt((folder + "longer/*").c_str(), &record));
  EXPECT_EQ(folder, pDirEntTable[0]->prefix);
  EXPECT_EQ(1, voxFindCloseDirEnt(1));
}

TEST_F(DirEntNames, LongPrefixThatLeadsNowhereWhenCut) {
  const std::string folder = folder_of_length(270);
  write(folder + "/file", "123");
  EXPECT_EQ((Names{}), names(folder + "/*"));
  const std::string slashes = std::string(100'000, '/') + "missing/";
  EXPECT_EQ(1u, names(slashes + "proc").count("proc")) << "260 slashes are left";
}

}  // namespace
