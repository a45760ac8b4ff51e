// tests/darwin/darwin_values_test.cpp: mask lengths and character tables on a scripted Mac.
#include <ctype.h>
#include <sys/socket.h>

#include "platform/values.h"
#include "tests/darwin/scripted_macos.h"

namespace orbtest {
namespace {

namespace seam = quillon_com::orb::platform;

using MacValues = MacTest;

TEST_F(MacValues, AMaskHasTheLengthThatItStatesWhateverItsFamily) {
  sockaddr_storage mask{};
  const auto* address = reinterpret_cast<const sockaddr*>(&mask);
  for (const uint8_t length : std::initializer_list<uint8_t>{0, 5, 6, 7, 16, 28, 128}) {
    mask.ss_len = length;
    EXPECT_EQ(length, seam::stated_length(address, AF_INET));
    EXPECT_EQ(length, seam::stated_length(address, AF_INET6));
  }
}

TEST_F(MacValues, AMaskIsNeverLongerThanTheLargestAddress) {
  sockaddr_storage mask{};
  mask.ss_len = 255;
  EXPECT_EQ(128u, seam::stated_length(reinterpret_cast<const sockaddr*>(&mask), AF_INET));
}

TEST_F(MacValues, ClassesAndCasesAreThoseOfTheTables) {
  struct Row {
    int c;
    bool alnum, space;
    int lower, upper;
  };
  const Row rows[] = {
      {'a', true, false, 'a', 'A'},  {'Z', true, false, 'z', 'Z'},  {'0', true, false, '0', '0'},
      {'9', true, false, '9', '9'},  {' ', false, true, ' ', ' '},  {'\t', false, true, '\t', '\t'},
      {'\v', false, true, 11, 11},   {'_', false, false, '_', '_'}, {0, false, false, 0, 0},
      {'@', false, false, '@', '@'}, {255, false, false, 255, 255},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.alnum, seam::table_is_alnum(row.c)) << row.c;
    EXPECT_EQ(row.space, seam::table_is_space(row.c)) << row.c;
    EXPECT_EQ(row.lower, seam::table_to_lower(row.c)) << row.c;
    EXPECT_EQ(row.upper, seam::table_to_upper(row.c)) << row.c;
  }
}

TEST_F(MacValues, ValuesOutsideTheTablesAreInNoClassAndMapToThemselves) {
  for (const int c : {-1, -128, 256, 0x1F600, INT32_MAX, INT32_MIN}) {
    EXPECT_FALSE(seam::table_is_alnum(c)) << c;
    EXPECT_FALSE(seam::table_is_space(c)) << c;
    EXPECT_EQ(c, seam::table_to_lower(c));
    EXPECT_EQ(c, seam::table_to_upper(c));
  }
}

}  // namespace
}  // namespace orbtest
