// tests/fileutil/systemtime_test.cpp: the record of the current time.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "fileutil/clock.h"
#include "fileutil/timestamp.h"
#include "tests/support/broken_down.h"
#include "tests/support/fake_system.h"

namespace {

using namespace quillon_com::orb;
using orbtest::broken_down;
using orbtest::FakeSystem;

TEST(SystemTime, FillsEveryField) {
  static_assert(sizeof(voxSystemTime) == 16);
  FakeSystem system;
  system.broken_down = broken_down(2024, 3, 5, 7, 8, 9);
  system.broken_down->tm_wday = 2;
  uint16_t fields[8];
  memset(fields, 0xEE, sizeof fields);
  voxSystemTime record;
  memcpy(&record, fields, sizeof record);
  EXPECT_EQ(&record, fill_system_time(system, &record));
  memcpy(fields, &record, sizeof record);
  EXPECT_EQ((std::vector<uint16_t>{2024, 3, 2, 5, 7, 8, 9, 0}),
            std::vector<uint16_t>(fields, fields + 8));
}

TEST(SystemTime, SundayIsZeroAndDecemberTwelve) {
  FakeSystem system;
  system.broken_down = broken_down(2023, 12, 31, 23, 59, 60);
  voxSystemTime record;
  fill_system_time(system, &record);
  EXPECT_EQ(0, record.dayOfWeek);
  EXPECT_EQ(12, record.month);
  EXPECT_EQ(60, record.second);
}

TEST(SystemTime, AYearBeyondSixteenBitsWraps) {
  FakeSystem system;
  system.broken_down = broken_down(65537, 1, 1, 0, 0, 0);
  voxSystemTime record;
  EXPECT_EQ(1, fill_system_time(system, &record)->year);
}

TEST(SystemTime, ATimeThatCannotBeBrokenDownIsAllZero) {
  voxSystemTime record;
  memset(&record, 0xEE, sizeof record);
  const voxSystemTime zero{};
  EXPECT_EQ(&record, fill_system_time(FakeSystem(), &record));
  EXPECT_EQ(0, memcmp(&zero, &record, sizeof record));
}

TEST(SystemTime, NullIsGivenBack) { EXPECT_EQ(nullptr, voxGetSystemTime(nullptr)); }

}  // namespace
