// tests/platform/linux_volumes_test.cpp: the volumes of scripted machines, and who is asked.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "platform/linux_system.h"
#include "tests/support/machine_roots.h"

namespace {

using namespace quillon_com::orb::platform;
using orbtest::TempDir;

// A machine whose file systems' figures are scripted by mount point; it notes whom it was asked
// for.
class ScriptedStorage : public LinuxSystem {
 public:
  explicit ScriptedStorage(const TempDir& root) : LinuxSystem(root.path()) {}

  std::map<std::string, StorageFigures> figures;
  mutable std::string asked;

 protected:
  bool storage_figures(const std::string& point, StorageFigures* out) const override {
    asked += point + " ";
    const auto found = figures.find(point);
    if (found == figures.end()) return false;
    *out = found->second;
    return true;
  }
};

StorageFigures of_size(uint64_t blocks, uint64_t files = 0) {
  return {4096, 4096, blocks, blocks / 2, files};
}

std::string points(const std::vector<Volume>& volumes) {
  std::string text;
  for (const Volume& volume : volumes) text += volume.mount_point + " ";
  return text;
}

TEST(Volumes, LaptopAsksNeitherNetworkNorAutomounterNorImages) {
  TempDir root;
  orbtest::x86_laptop(root);
  ScriptedStorage system(root);
  system.figures = {
      {"/", of_size(100)}, {"/boot/efi", of_size(10)}, {"/media/ada/My Disk", of_size(1000)}};
  EXPECT_EQ("/ /boot/efi /media/ada/My Disk ", points(system.volumes()));
  EXPECT_EQ("/ /boot/efi /media/ada/My Disk ", system.asked);
}

TEST(Volumes, AnswerIsPassedOn) {
  TempDir root;
  root.write("/proc/self/mountinfo", "27 1 254:0 / / rw - ext4 /dev/vda rw\n");
  ScriptedStorage system(root);
  system.figures["/"] = {1024, 4096, uint64_t{1} << 40, (uint64_t{1} << 33) + 1, 5};
  const auto volumes = system.volumes();
  ASSERT_EQ(1u, volumes.size());
  EXPECT_TRUE(volumes[0].local);
  EXPECT_EQ(1024u, volumes[0].block_size);
  EXPECT_EQ(uint64_t{1} << 40, volumes[0].blocks);
  EXPECT_EQ((uint64_t{1} << 33) + 1, volumes[0].free_blocks);
}

TEST(Volumes, BlockSizeWhereNoFragmentSizeIsStated) {
  TempDir root;
  root.write("/proc/self/mountinfo", "27 1 254:0 / / rw - ext4 /dev/vda rw\n");
  ScriptedStorage system(root);
  system.figures["/"] = {0, 512, 10, 5, 5};
  ASSERT_EQ(1u, system.volumes().size());
  EXPECT_EQ(512u, system.volumes()[0].block_size);
}

TEST(Volumes, EveryNetworkFileSystemStaysUnasked) {
  TempDir root;
  std::string table = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n";
  int number = 100;
  for (const char* mount :
       {"nfs server:/x", "nfs4 server:/x", "cifs //server/x", "smb3 //server/x", "afs AFS",
        "auristorfs x", "ceph mon:/", "fuse.glusterfs server:/x", "fuse.sshfs u@h:", "9p share",
        "lustre 10.0.0.1@tcp:/x", "gpfs x", "beegfs x", "coda x", "ocfs2 /dev/sdz", "autofs -hosts",
        "unheard-of server:/x", "unheard-of //server/x"}) {
    const std::string id = std::to_string(++number);
    // With a device number, so that nothing but type and source keeps it from being asked.
    table += id + " 1 9:" + id + " / /net/" + id + " rw - " + mount + " rw\n";
  }
  root.write("/proc/self/mountinfo", table);
  ScriptedStorage system(root);
  system.volumes();
  EXPECT_EQ("/ ", system.asked);
}

TEST(Volumes, ContainerCountsItsOverlayAndNotTheDiskBelowIt) {
  TempDir root;
  orbtest::container(root);
  ScriptedStorage system(root);
  system.figures = {{"/", of_size(5000, 300)}, {"/data", of_size(5000, 300)}};
  EXPECT_EQ("/ ", points(system.volumes()));
}

struct OverlayCase {
  const char* name;
  StorageFigures data;
  const char* points;
};

class OverlayRoot : public testing::TestWithParam<OverlayCase> {};

TEST_P(OverlayRoot, CountsAnotherDiskToo) {
  TempDir root;
  orbtest::container(root);
  ScriptedStorage system(root);
  system.figures = {{"/", {4096, 4096, 5000, 2500, 300}}, {"/data", GetParam().data}};
  EXPECT_EQ(GetParam().points, points(system.volumes()));
}

INSTANTIATE_TEST_SUITE_P(
    Figures, OverlayRoot,
    testing::Values(OverlayCase{"Equal", {4096, 4096, 5000, 2500, 300}, "/ "},
                    OverlayCase{"FreeBlocksMayMove", {4096, 4096, 5000, 1, 300}, "/ "},
                    OverlayCase{"OtherBlocks", {4096, 4096, 5001, 2500, 300}, "/ /data "},
                    OverlayCase{"OtherBlockSize", {4096, 1024, 5000, 2500, 300}, "/ /data "},
                    OverlayCase{"OtherFiles", {4096, 4096, 5000, 2500, 301}, "/ /data "}),
    [](const auto& row) { return row.param.name; });

TEST(Volumes, EqualDisksBesideARootOfItsOwnBothCount) {
  TempDir root;
  root.write("/proc/self/mountinfo",
             "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n2 1 8:2 / /b rw - ext4 /dev/sda2 rw\n");
  ScriptedStorage system(root);
  system.figures = {{"/", of_size(7, 7)}, {"/b", of_size(7, 7)}};
  EXPECT_EQ("/ /b ", points(system.volumes()));
}

TEST(Volumes, SubvolumesCountOnceAsTheShortestPoint) {
  TempDir root;
  orbtest::mainframe(root);
  ScriptedStorage system(root);
  system.figures = {{"/", of_size(9)}, {"/var", of_size(9)}, {"/home", of_size(9)}};
  EXPECT_EQ("/ ", points(system.volumes()));
  EXPECT_EQ("/ ", system.asked);
}

TEST(Volumes, PointThatDoesNotAnswerGivesWayToTheNextOfItsDevice) {
  TempDir root;
  orbtest::container(root);
  ScriptedStorage system(root);
  system.figures = {{"/", of_size(1)}, {"/etc/resolv.conf", of_size(2)}};
  EXPECT_EQ("/ /etc/resolv.conf ", points(system.volumes()));
  EXPECT_EQ("/ /data /etc/hosts /etc/resolv.conf ", system.asked);
}

TEST(Volumes, PoolCountsOnce) {
  TempDir root;
  root.write("/proc/self/mountinfo",
             "1 0 0:30 / / rw - zfs rpool/ROOT/os rw\n2 1 0:31 / /home rw - zfs rpool/home rw\n"
             "3 1 0:32 / /tank rw - zfs tank rw\n");
  ScriptedStorage system(root);
  system.figures = {{"/", of_size(1)}, {"/home", of_size(2)}, {"/tank", of_size(3)}};
  EXPECT_EQ("/ /tank ", points(system.volumes()));
}

// From here on the figures are those of the folders below the root.

TEST(RealFigures, BindsOfFilesAreNoVolumes) {
  TempDir root;
  orbtest::container(root);
  root.write("/proc/self/mountinfo",
             "703 700 259:2 /docker/c/hosts /etc/hosts rw - ext4 /dev/nvme0n1p2 rw\n"
             "704 700 259:2 /docker/volumes/v /data rw - ext4 /dev/nvme0n1p2 rw\n"
             "705 700 259:3 /x /etc/resolv.conf rw - ext4 /dev/nvme0n1p3 rw\n"
             "706 700 259:4 / /absent rw - ext4 /dev/nvme0n1p4 rw\n");
  EXPECT_EQ("/data ", points(LinuxSystem(root.path()).volumes()));
}

TEST(RealFigures, TableCutByTheLimitLosesItsLastLine) {
  TempDir root;
  const std::string good = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n";
  // A table one byte longer than what is read, whose last line is cut inside its source.
  constexpr size_t kLimit = size_t{4} << 20;
  const std::string cut = "2 0 8:2 / /b rw - ext4 /dev/sda2 rw";
  std::string table = good + std::string(kLimit - good.size() - 30, '\n') + cut + "\n";
  root.write("/proc/self/mountinfo", table);
  ScriptedStorage system(root);
  system.figures["/"] = of_size(1);
  EXPECT_EQ("/ ", points(system.volumes()));
  EXPECT_EQ("/ ", system.asked);
}

}  // namespace
