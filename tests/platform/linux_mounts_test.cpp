// tests/platform/linux_mounts_test.cpp: platform/linux_mounts.h on mount tables.
#include "platform/linux_mounts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using namespace quillon_com::orb::platform;
using namespace std::string_literals;

TEST(MountTable, AllFieldsOfALine) {
  const auto mounts = mounts_of(
      "36 35 98:3 /sub /mnt/usb rw,noatime master:1 shared:2 - ext3 /dev/root "
      "rw,errors=continue\n");
  ASSERT_EQ(1u, mounts.size());
  EXPECT_EQ(98u, mounts[0].major);
  EXPECT_EQ(3u, mounts[0].minor);
  EXPECT_EQ("/sub", mounts[0].root);
  EXPECT_EQ("/mnt/usb", mounts[0].point);
  EXPECT_EQ("ext3", mounts[0].type);
  EXPECT_EQ("/dev/root", mounts[0].source);
  EXPECT_FALSE(mounts[0].read_only);
}

struct LineCase {
  const char* name;
  std::string line;
  const char* summary;  // "point type source", with ",ro"; empty when the line is passed over
};

class MountLine : public testing::TestWithParam<LineCase> {};

TEST_P(MountLine, IsRead) {
  std::string summary;
  for (const Mount& mount : mounts_of(GetParam().line)) {
    summary += mount.point + " " + mount.type + " " + mount.source;
    if (mount.read_only) summary += ",ro";
  }
  EXPECT_EQ(GetParam().summary, summary);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, MountLine,
    testing::Values(
        LineCase{"WithoutOptionalFields", "1 0 8:1 / / rw - ext4 /dev/sda1 rw", "/ ext4 /dev/sda1"},
        LineCase{"ManyOptionalFields",
                 "1 0 8:1 / / rw shared:1 master:2 propagate_from:3 unbindable - ext4 /dev/sda1 rw",
                 "/ ext4 /dev/sda1"},
        LineCase{"OctalEscapes", "1 0 8:1 / /a\\040b\\011c\\012d\\134e rw - ext4 /dev/s\\040a rw",
                 "/a b\tc\nd\\e ext4 /dev/s a"},
        LineCase{"OtherBackslashStays", "1 0 8:1 / /a\\04 rw - ext4 /dev/sda rw",
                 "/a\\04 ext4 /dev/sda"},
        LineCase{"OtherBytesBehindABackslashStay",
                 "1 0 8:1 / /a\\x40\\-40\\0x0\\0-0\\04x rw - ext4 /dev/sda rw",
                 "/a\\x40\\-40\\0x0\\0-0\\04x ext4 /dev/sda"},
        LineCase{"DashInAName", "1 0 8:1 / /a-b rw - ext4 /dev/sda rw", "/a-b ext4 /dev/sda"},
        LineCase{"ReadOnlyMount", "1 0 8:1 / / ro,relatime - ext4 /dev/sda rw",
                 "/ ext4 /dev/sda,ro"},
        LineCase{"ReadOnlyFileSystem", "1 0 8:1 / / rw - ext4 /dev/sda ro,x", "/ ext4 /dev/sda,ro"},
        LineCase{"OptionThatStartsWithRo", "1 0 8:1 / / rw,rootcontext=x - ext4 /dev/sda rw",
                 "/ ext4 /dev/sda"},
        LineCase{"EmptySource", "1 0 0:5 / /x rw - tmpfs  rw", "/x tmpfs "},
        LineCase{"CutAfterTheType", "1 0 8:1 / / rw - ext4", "/ ext4 "},
        LineCase{"CutBeforeTheType", "1 0 8:1 / / rw - ", ""},
        LineCase{"CutBeforeTheSeparator", "1 0 8:1 / / rw,relatime", ""},
        LineCase{"CutInThePoint", "1 0 8:1 / /mn", ""}, LineCase{"Empty", "", ""},
        LineCase{"BlankLines", "\n\n   \n", ""},
        LineCase{"DeviceWithoutColon", "1 0 81 / / rw - ext4 /dev/sda rw", ""},
        LineCase{"DeviceNoNumber", "1 0 a:b / / rw - ext4 /dev/sda rw", ""},
        LineCase{"SecondPartOfTheDeviceNoNumber", "1 0 8:b / / rw - ext4 /dev/sda rw", ""},
        LineCase{"DeviceTooLarge", "1 0 4294967296:0 / / rw - ext4 /dev/sda rw", ""},
        LineCase{"PointNotAbsolute", "1 0 8:1 / mnt rw - ext4 /dev/sda rw", ""},
        LineCase{"PointWithAZeroByte", "1 0 8:1 / /m\\000nt rw - ext4 /dev/sda rw", ""},
        LineCase{"SecondLineIsReadAfterABadOne", "bad\n1 0 8:1 / / rw - ext4 /dev/sda rw\n",
                 "/ ext4 /dev/sda"}),
    [](const auto& row) { return row.param.name; });

TEST(MountTable, LaterLineReplacesAnEarlierOneOfTheSamePoint) {
  const auto mounts = mounts_of(
      "1 0 0:1 / / rw - rootfs rootfs rw\n"
      "2 1 0:5 / /dev/shm rw - tmpfs old rw\n"
      "3 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
      "4 1 0:6 / /dev/shm rw - tmpfs new rw\n");
  ASSERT_EQ(2u, mounts.size());
  EXPECT_EQ("ext4", mounts[0].type);
  EXPECT_EQ("new", mounts[1].source);
}

struct KindCase {
  const char* name;
  Mount mount;
  bool remote;
  bool storage;
};

Mount device(const char* type, const char* source, const char* point = "/mnt") {
  return {8, 1, "/", point, type, source, false};
}

Mount nodev(const char* type, const char* source, const char* point = "/mnt") {
  return {0, 40, "/", point, type, source, false};
}

Mount read_only(Mount mount) {
  mount.read_only = true;
  return mount;
}

class MountKind : public testing::TestWithParam<KindCase> {};

TEST_P(MountKind, IsTold) {
  EXPECT_EQ(GetParam().remote, is_remote(GetParam().mount));
  EXPECT_EQ(GetParam().storage, is_storage(GetParam().mount));
}

INSTANTIATE_TEST_SUITE_P(
    Network, MountKind,
    testing::Values(KindCase{"Nfs", nodev("nfs", "server:/export"), true, false},
                    KindCase{"Nfs4", nodev("nfs4", "server:/export"), true, false},
                    KindCase{"NfsAtRoot", nodev("nfs", "server:/root", "/"), true, false},
                    KindCase{"Cifs", nodev("cifs", "//server/share"), true, false},
                    KindCase{"Smb3", nodev("smb3", "//server/share"), true, false},
                    KindCase{"Smbfs", nodev("smbfs", "//server/share"), true, false},
                    KindCase{"Afs", nodev("afs", "AFS"), true, false},
                    KindCase{"Auristorfs", nodev("auristorfs", "x"), true, false},
                    KindCase{"Ceph", nodev("ceph", "mon1,mon2:/"), true, false},
                    KindCase{"Glusterfs", nodev("fuse.glusterfs", "server:/volume"), true, false},
                    KindCase{"GlusterfsByItsOwnName", nodev("glusterfs", "x"), true, false},
                    KindCase{"FuseWithoutDevice", nodev("fuse.sshfs", "user@host"), true, false},
                    KindCase{"PlainFuse", nodev("fuse", "portal"), true, false},
                    KindCase{"FuseOnADevicePath", nodev("fuse.x", "/dev/fuse"), false, false},
                    KindCase{"NineP", nodev("9p", "share"), true, false},
                    KindCase{"Lustre", nodev("lustre", "10.0.0.1@tcp:/scratch"), true, false},
                    KindCase{"Gpfs", nodev("gpfs", "gpfs0"), true, false},
                    KindCase{"Beegfs", nodev("beegfs", "beegfs_nodev"), true, false},
                    KindCase{"Coda", nodev("coda", "coda"), true, false},
                    KindCase{"Ocfs2OnADevice", device("ocfs2", "/dev/sdb1"), true, false},
                    KindCase{"Autofs", nodev("autofs", "/etc/auto.misc"), true, false},
                    KindCase{"HostsMap", nodev("other", "-hosts"), true, false},
                    KindCase{"SourceWithColon", nodev("other", "server:/x"), true, false},
                    KindCase{"SourceWithTwoSlashes", nodev("other", "//server/x"), true, false},
                    KindCase{"DeviceTypeOfANamedHost", device("other", "server:/x"), true, false}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Local, MountKind,
    testing::Values(
        KindCase{"BlockDevice", device("ext4", "/dev/sda1"), false, true},
        KindCase{"ReadOnlyBlockDevice", read_only(device("ext4", "/dev/sda1")), false, true},
        KindCase{"DevicePathWithColon", device("ext4", "/dev/disk/by-path/pci-0000:00:1f.2-ata-1"),
                 false, true},
        KindCase{"FuseBlock", device("fuseblk", "/dev/sdb1"), false, true},
        KindCase{"Btrfs", nodev("btrfs", "/dev/sda2"), false, true},
        KindCase{"Zfs", nodev("zfs", "tank/user:1"), false, true},
        KindCase{"Bcachefs", nodev("bcachefs", "/dev/sda:/dev/sdb"), false, true},
        KindCase{"Ubifs", nodev("ubifs", "ubi0:rootfs"), false, true},
        KindCase{"Tmpfs", nodev("tmpfs", "tmpfs", "/tmp"), false, false},
        KindCase{"Devtmpfs", nodev("devtmpfs", "udev", "/dev"), false, false},
        KindCase{"Ramfs", nodev("ramfs", "ramfs"), false, false},
        KindCase{"Proc", nodev("proc", "proc", "/proc"), false, false},
        KindCase{"Overlay", nodev("overlay", "overlay", "/var/lib/x/merged"), false, false},
        KindCase{"Virtiofs", nodev("virtiofs", "share"), false, false}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Images, MountKind,
    testing::Values(
        KindCase{
            "Squashfs", {7, 3, "/", "/snap/core/1", "squashfs", "/dev/loop3", true}, false, false},
        KindCase{"Erofs", device("erofs", "/dev/sdc"), false, false},
        KindCase{"Iso9660", device("iso9660", "/dev/sr0", "/media/cd"), false, false},
        KindCase{"Composefs", device("composefs", "x"), false, false},
        KindCase{"ReadOnlyLoop", {7, 1, "/", "/mnt", "ext4", "/dev/loop1", true}, false, false},
        KindCase{"ReadOnlyLoopPartition",
                 {259, 4, "/", "/mnt", "ext4", "/dev/loop1p1", true},
                 false,
                 false},
        KindCase{"WritableLoop", {7, 1, "/", "/mnt", "ext4", "/dev/loop1", false}, false, true},
        KindCase{"SquashfsAtRoot", {7, 0, "/", "/", "squashfs", "/dev/loop0", true}, false, true},
        KindCase{"ReadOnlyLoopAtRoot", {7, 0, "/", "/", "ext4", "/dev/loop0", true}, false, true}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    AtRoot, MountKind,
    testing::Values(
        KindCase{"Overlay", nodev("overlay", "overlay", "/"), false, true},
        KindCase{"Tmpfs", nodev("tmpfs", "tmpfs", "/"), false, true},
        KindCase{"NineP", nodev("9p", "C:\\", "/"), false, true},
        KindCase{"Virtiofs", nodev("virtiofs", "root", "/"), false, true},
        KindCase{"FuseOverlay", nodev("fuse.fuse-overlayfs", "fuse-overlayfs", "/"), false, true},
        KindCase{"CephStaysRemote", nodev("ceph", "mon:/", "/"), true, false},
        KindCase{"NamedHostStaysRemote", nodev("other", "server:/x", "/"), true, false}),
    [](const auto& row) { return row.param.name; });

std::string groups_of(const char* table) {
  std::string text;
  for (const auto& group : storage_groups(mounts_of(table))) {
    for (const Mount& mount : group) text += mount.point + " ";
    text += "| ";
  }
  return text;
}

TEST(StorageGroups, OneForEachDeviceInTableOrder) {
  EXPECT_EQ("/ | /home | /boot | ", groups_of("1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
                                              "2 1 8:3 / /home rw - ext4 /dev/sda3 rw\n"
                                              "3 1 0:5 / /tmp rw - tmpfs tmpfs rw\n"
                                              "4 1 8:2 / /boot rw - vfat /dev/sda2 rw\n"));
}

TEST(StorageGroups, WholeFileSystemBeforeABind) {
  EXPECT_EQ("/longer/path /a | ", groups_of("1 0 8:1 /sub /a rw - ext4 /dev/sda1 rw\n"
                                            "2 1 8:1 / /longer/path rw - ext4 /dev/sda1 rw\n"));
}

TEST(StorageGroups, ShorterPointAmongSubvolumes) {
  EXPECT_EQ("/ /srv /home | ", groups_of("1 0 0:30 /@home /home rw - btrfs /dev/sda2 rw\n"
                                         "2 1 0:30 /@srv /srv rw - btrfs /dev/sda2 rw\n"
                                         "3 1 0:30 /@ / rw - btrfs /dev/sda2 rw\n"));
}

TEST(StorageGroups, FirstLineAmongPointsOfOneLength) {
  EXPECT_EQ("/b /a | ", groups_of("1 0 8:1 /x /b rw - ext4 /dev/sda1 rw\n"
                                  "2 1 8:1 /x /a rw - ext4 /dev/sda1 rw\n"));
}

TEST(StorageGroups, OneForEachPool) {
  EXPECT_EQ("/ /var | /tank /tank/a | ", groups_of("1 0 0:30 / /var rw - zfs rpool/var rw\n"
                                                   "2 1 0:31 / / rw - zfs rpool/ROOT/os rw\n"
                                                   "3 1 0:32 / /tank/a rw - zfs tank/a rw\n"
                                                   "4 1 0:33 / /tank rw - zfs tank rw\n"));
}

TEST(StorageGroups, SameMinorOfAnotherMajorIsAnotherDevice) {
  EXPECT_EQ("/a | /b | ", groups_of("1 0 8:1 / /a rw - ext4 /dev/sda1 rw\n"
                                    "2 1 259:1 / /b rw - ext4 /dev/nvme0n1p1 rw\n"));
}

TEST(HugeTable, IsReadInOnePass) {
  std::string table;
  for (int i = 0; i < 50000; ++i) {
    const std::string number = std::to_string(i);
    table += number + " 1 8:" + number + " / /m" + number + " rw - ext4 /dev/sda rw\n";
  }
  EXPECT_EQ(50000u, storage_groups(mounts_of(table)).size());
  EXPECT_TRUE(mounts_of(std::string(1 << 20, ' ')).empty());
  EXPECT_TRUE(mounts_of(std::string(1 << 20, '\0')).empty());
}

}  // namespace
