// tests/darwin/darwin_freespace_test.cpp: platform/darwin_freespace.cpp on a scripted Mac.
#include <gtest/gtest.h>

#include "fileutil/filetree.h"
#include "platform/freespace.h"
#include "tests/darwin/scripted_macos.h"

namespace {

using orbtest::mac;
using orbtest::mounted_volume;

class DarwinFreeSpace : public testing::Test {
 protected:
  void SetUp() override { mac() = {}; }
  void TearDown() override { mac() = {}; }
};

// The scripted table leaves half of the free blocks to users without privileges.
TEST_F(DarwinFreeSpace, CountsUsersBlocksOfTheFundamentalSize) {
  mac().mounts = {{{mounted_volume("/", MNT_LOCAL, 4096, 100, 20)}}};
  uint64_t blocks = 0;
  uint64_t size = 0;
  ASSERT_TRUE(quillon_com::orb::platform::available_blocks("/", &blocks, &size));
  EXPECT_EQ(10u, blocks);
  EXPECT_EQ(4096u, size);
}

TEST_F(DarwinFreeSpace, QuirkIsTimes1000) {
  mac().mounts = {{{mounted_volume("/", MNT_LOCAL, 4096, 100, 20)}}};
  uint64_t space = 7;
  EXPECT_EQ(0u, voxcomn_get_disk_free_spaceA("/", &space));
  EXPECT_EQ(40960000u, space);
}

TEST_F(DarwinFreeSpace, CountsAbove32Bits) {
  mac().mounts = {{{mounted_volume("/", MNT_LOCAL, 4096, 1ULL << 36, 1ULL << 35)}}};
  uint64_t space = 0;
  EXPECT_EQ(0u, voxcomn_get_disk_free_spaceA("/", &space));
  EXPECT_EQ((1ULL << 46) * 1000, space);
}

TEST_F(DarwinFreeSpace, FailureLeavesTheFigureAlone) {
  uint64_t space = 7;
  EXPECT_EQ(0x80000008u, voxcomn_get_disk_free_spaceA("/missing", &space));
  EXPECT_EQ(7u, space);
}

}  // namespace
