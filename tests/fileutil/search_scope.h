// tests/fileutil/search_scope.h: what the tests of directory searches share.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <string>

#include "fileutil/dirent.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/scoped_error_word.h"
#include "tests/support/temp_dir.h"

namespace orbtest {

// The number of searches in the table.
inline long open_searches() {
  return std::count_if(std::begin(pDirEntTable), std::end(pDirEntTable), [](DirEntSlot*& place) {
    return __atomic_load_n(&place, __ATOMIC_ACQUIRE) != nullptr;
  });
}

// A record that no search could have made, to see what is written and what is left alone.
inline FindDataDirEnt stained_record() {
  FindDataDirEnt record;
  memset(&record, 0x5A, sizeof record);
  return record;
}

inline bool is_stained(const FindDataDirEnt& record) {
  const FindDataDirEnt stained = stained_record();
  return memcmp(&record, &stained, sizeof record) == 0;
}

// The records that a search of `path` finds, by name; a name found twice fails the test. Closes the
// search; nothing found gives an empty map.
inline std::map<std::string, FindDataDirEnt> find_all(const std::string& path) {
  std::map<std::string, FindDataDirEnt> records;
  FindDataDirEnt record = stained_record();
  const int handle = voxFindFirstDirEnt(path.c_str(), &record);
  if (handle == -1) return records;
  do {
    EXPECT_TRUE(records.emplace(record.name, record).second) << record.name << " twice";
    record = stained_record();
  } while (voxFindNextDirEnt(handle, &record) == 1);
  EXPECT_TRUE(is_stained(record)) << "the end leaves the record alone";
  EXPECT_EQ(1, voxFindCloseDirEnt(handle));
  return records;
}

// The names alone.
inline std::set<std::string> names(const std::string& path) {
  std::set<std::string> result;
  for (const auto& [name, record] : find_all(path)) result.insert(name);
  return result;
}

// Whether a record holds a name and nothing else.
inline bool is_name_alone(const FindDataDirEnt& record) {
  FindDataDirEnt expected;
  memset(&expected, 0, sizeof expected);
  memcpy(expected.name, record.name, sizeof expected.name);
  return memcmp(&record, &expected, sizeof record) == 0;
}

// A folder to search; after each test the table is empty and no descriptor is left open.
class Searching : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(0, open_searches());
    EXPECT_EQ(descriptors_, open_descriptors());
  }

  std::string pattern(const std::string& text) const { return folder_.path() + "/" + text; }

  TempDir folder_;
  ScopedErrorWord word_;
  std::set<std::string> descriptors_ = open_descriptors();
};

}  // namespace orbtest
