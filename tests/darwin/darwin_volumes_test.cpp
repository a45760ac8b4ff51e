// tests/darwin/darwin_volumes_test.cpp: the mount table of a scripted Mac.
#include "platform/darwin_system.h"
#include "tests/darwin/scripted_macos.h"

namespace orbtest {
namespace {

namespace seam = quillon_com::orb::platform;
using Table = std::vector<struct statfs>;

// `count` volumes, called "/0", "/1", …
Table volumes_of(size_t count) {
  Table table;
  for (size_t i = 0; i < count; ++i) {
    table.push_back(mounted_volume("/" + std::to_string(i), MNT_LOCAL, 4096, 100 + i, i));
  }
  return table;
}

// The mount points that the system reports.
std::vector<std::string> reported() {
  std::vector<std::string> names;
  for (const seam::Volume& volume : seam::DarwinSystem().volumes()) {
    names.push_back(volume.mount_point);
  }
  return names;
}

std::vector<std::string> names_of(size_t count) {
  std::vector<std::string> names;
  for (size_t i = 0; i < count; ++i) names.push_back("/" + std::to_string(i));
  return names;
}

using MacVolumes = MacTest;

TEST_F(MacVolumes, FiguresComeInTheTablesOrderAndWidths) {
  mac().mounts = {Table{
      mounted_volume("/", MNT_LOCAL | MNT_ROOTFS | MNT_RDONLY, 4096, 122061322, 5000000),
      mounted_volume("/dev", MNT_LOCAL | MNT_DONTBROWSE, 512, 373, 0),
      mounted_volume("/Volumes/share", 0, 1048576, uint64_t{1} << 40, uint64_t{1} << 33),
      mounted_volume("/big", MNT_LOCAL, 0xffffffff, ~uint64_t{0}, ~uint64_t{0} - 1),
  }};
  const auto volumes = seam::DarwinSystem().volumes();
  ASSERT_EQ(4u, volumes.size());
  EXPECT_EQ("/", volumes[0].mount_point);
  EXPECT_TRUE(volumes[0].local);
  EXPECT_EQ(4096u, volumes[0].block_size);
  EXPECT_EQ(122061322u, volumes[0].blocks);
  EXPECT_EQ(5000000u, volumes[0].free_blocks);
  EXPECT_EQ("/dev", volumes[1].mount_point);
  EXPECT_TRUE(volumes[1].local);
  EXPECT_EQ(373u, volumes[1].blocks);
  EXPECT_EQ("/Volumes/share", volumes[2].mount_point);
  EXPECT_FALSE(volumes[2].local);
  EXPECT_EQ(uint64_t{1} << 40, volumes[2].blocks);
  EXPECT_EQ(uint64_t{1} << 33, volumes[2].free_blocks);
  EXPECT_EQ(0xffffffffu, volumes[3].block_size);
  EXPECT_EQ(~uint64_t{0}, volumes[3].blocks);
  EXPECT_EQ(~uint64_t{0} - 1, volumes[3].free_blocks);
}

TEST_F(MacVolumes, OnlyTheLocalFlagMakesAVolumeLocal) {
  mac().mounts = {Table{mounted_volume("/a", ~uint32_t{MNT_LOCAL}, 512, 1, 1),
                        mounted_volume("/b", MNT_LOCAL, 512, 1, 1),
                        mounted_volume("/c", 0, 512, 1, 1)}};
  const auto volumes = seam::DarwinSystem().volumes();
  ASSERT_EQ(3u, volumes.size());
  EXPECT_FALSE(volumes[0].local);
  EXPECT_TRUE(volumes[1].local);
  EXPECT_FALSE(volumes[2].local);
}

TEST_F(MacVolumes, AMountPointThatFillsItsFieldEndsThere) {
  mac().mounts = {Table{mounted_volume(std::string(1024, '/'), MNT_LOCAL, 512, 1, 1)}};
  EXPECT_EQ(std::vector<std::string>{std::string(1024, '/')}, reported());
}

TEST_F(MacVolumes, ATableThatCannotBeReadIsEmpty) {
  EXPECT_EQ(names_of(0), reported());
  mac().mounts = {volumes_of(3), std::nullopt};
  mac().mount_calls = 0;
  EXPECT_EQ(names_of(0), reported());
}

TEST_F(MacVolumes, AnEmptyTableIsAskedForOnce) {
  mac().mounts = {Table{}};
  EXPECT_EQ(names_of(0), reported());
  EXPECT_EQ(1u, mac().mount_calls);
}

TEST_F(MacVolumes, ATableThatStaysIsReadTwice) {
  mac().mounts = {volumes_of(5)};
  EXPECT_EQ(names_of(5), reported());
  EXPECT_EQ(2u, mac().mount_calls);
}

struct ChangeRow {
  const char* name;
  std::vector<size_t> counts;  // at each call; the last one stays
  size_t reported;
};

TEST_F(MacVolumes, TheSecondCountHolds) {
  const ChangeRow rows[] = {
      {"OneUnmounted", {5, 4}, 4},
      {"AllUnmounted", {5, 0}, 0},
      {"OneMounted", {5, 6}, 6},
      {"AsManyMountedAsThereIsRoomFor", {5, 12}, 12},
      {"MoreMountedThanThereIsRoomFor", {5, 13}, 13},
      {"ManyMounted", {5, 40}, 40},
      {"MountedAtEveryCall", {5, 14, 30, 40}, 40},
      {"MountedThenUnmounted", {5, 20, 3}, 3},
  };
  for (const bool overstated : {false, true}) {
    for (const ChangeRow& row : rows) {
      mac() = Mac();
      mac().mounts_overstated = overstated;
      for (const size_t count : row.counts) mac().mounts.push_back(volumes_of(count));
      EXPECT_EQ(names_of(row.reported), reported()) << row.name << overstated;
    }
  }
}

TEST_F(MacVolumes, ATableThatKeepsGrowingIsGivenUpWithWhatFits) {
  for (size_t count = 1; count < 1000; count += 50) mac().mounts.push_back(volumes_of(count));
  const auto names = reported();
  EXPECT_LE(mac().mount_calls, 10u);
  EXPECT_GT(names.size(), 0u);
  EXPECT_EQ(names_of(names.size()), names);
}

}  // namespace
}  // namespace orbtest
