// tests/support/machine_roots.h: the files of whole Linux machines, below a folder of the test's.
//
// Each function fills an empty folder; a LinuxSystem on it then answers as that machine would.
#pragma once

#include <string>

#include "tests/support/temp_dir.h"

namespace orbtest {

// "aarch64", "pi" and "6.1.0" as the kernel of the machine states them.
inline void write_kernel(const TempDir& root, const std::string& machine, const std::string& node,
                         const std::string& release, const std::string& domain = "(none)") {
  root.write("/proc/sys/kernel/arch", machine + "\n");
  root.write("/proc/sys/kernel/hostname", node + "\n");
  root.write("/proc/sys/kernel/osrelease", release + "\n");
  root.write("/proc/sys/kernel/domainname", domain + "\n");
}

inline void write_memory(const TempDir& root, const std::string& total_kb,
                         const std::string& free_kb) {
  root.write("/proc/meminfo", "MemTotal:       " + total_kb + " kB\nMemFree:        " + free_kb +
                                  " kB\nMemAvailable:   1 kB\nSwapTotal:       0 kB\n");
}

// A notebook: DMI, cpufreq, a session of the login manager, snap images, an automounter, NFS.
inline void x86_laptop(const TempDir& root) {
  write_kernel(root, "x86_64", "notebook", "6.1.0-18-amd64");
  write_memory(root, "16252928", "8126464");
  std::string processors;
  for (int i = 0; i < 8; ++i) {
    processors += "processor\t: " + std::to_string(i) +
                  "\nvendor_id\t: GenuineIntel\n"
                  "model name\t: Intel(R) Core(TM) i7-8565U CPU @ 1.80GHz\ncpu MHz\t\t: 799.902\n"
                  "flags\t\t: fpu vme de pse tsc\n\n";
  }
  root.write("/proc/cpuinfo", processors);
  root.write("/sys/devices/system/cpu/online", "0-7\n");
  root.write("/sys/devices/system/cpu/cpu0/cpufreq/base_frequency", "2000000\n");
  root.write("/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq", "4600000\n");
  root.write("/sys/class/dmi/id/chassis_type", "10\n");
  root.write("/sys/firmware/acpi/pm_profile", "2\n");
  root.write("/etc/os-release",
             "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nNAME=\"Debian GNU/Linux\"\n"
             "VERSION_ID=\"12\"\nVERSION=\"12 (bookworm)\"\nID=debian\n");
  root.write("/etc/debian_version", "12.5\n");
  root.write("/run/systemd/sessions/2",
             "UID=1000\nUSER=ada\nACTIVE=1\nSTATE=active\nCLASS=user\nTTY=tty2\n");
  root.write("/run/systemd/sessions/c1", "UID=116\nUSER=gdm\nSTATE=online\nCLASS=greeter\n");
  root.write("/proc/self/mountinfo",
             "22 28 0:21 / /proc rw - proc proc rw\n"
             "28 1 259:2 / / rw,relatime shared:1 - ext4 /dev/nvme0n1p2 rw\n"
             "30 28 259:1 / /boot/efi rw shared:2 - vfat /dev/nvme0n1p1 rw\n"
             "31 28 7:3 / /snap/core/1 ro,nodev shared:3 - squashfs /dev/loop3 ro\n"
             "32 28 0:40 / /misc rw shared:4 - autofs /etc/auto.misc rw\n"
             "33 28 0:41 / /home/ada/net rw shared:5 - nfs4 server:/export rw\n"
             "34 28 8:17 / /media/ada/My\\040Disk rw shared:6 - exfat /dev/sdb1 rw\n"
             "35 28 0:42 / /tmp rw - tmpfs tmpfs rw\n");
  root.make_dir("/boot/efi");
  root.make_dir("/media/ada/My Disk");
}

// A virtual machine without DMI: the hypervisor's flag is the only witness.
inline void x86_virtual_machine(const TempDir& root) {
  write_kernel(root, "x86_64", "vm", "6.18.44");
  write_memory(root, "24682416", "24000000");
  root.write("/proc/cpuinfo",
             "processor\t: 0\nvendor_id\t: AuthenticAMD\nmodel name\t: AMD EPYC\n"
             "cpu MHz\t\t: 2596.138\nflags\t\t: fpu vme hypervisor lahf_lm\n");
  root.write("/sys/devices/system/cpu/online", "0-1\n");
  root.write("/sys/firmware/acpi/pm_profile", "0\n");
  root.write("/usr/lib/os-release", "NAME=Fedora\nVERSION_ID=40\nVARIANT_ID=server\nID=fedora\n");
  root.write("/proc/self/mountinfo", "27 1 254:0 / / rw - ext4 /dev/vda rw\n");
}

// A rack server with a generic Arm core: no model name, no clock in the processor's text.
inline void arm_server(const TempDir& root) {
  write_kernel(root, "aarch64", "graviton", "5.15.0-1056-aws", "corp.example");
  write_memory(root, "130560000", "100000000");
  std::string processors;
  for (int i = 0; i < 64; ++i) {
    processors += "processor\t: " + std::to_string(i) +
                  "\nBogoMIPS\t: 243.75\nFeatures\t: fp asimd evtstrm\n"
                  "CPU implementer\t: 0x41\nCPU architecture: 8\nCPU variant\t: 0x3\n"
                  "CPU part\t: 0xd0c\nCPU revision\t: 1\n\n";
  }
  root.write("/proc/cpuinfo", processors);
  root.write("/sys/devices/system/cpu/online", "0-63\n");
  root.write("/sys/class/dmi/id/chassis_type", "23\n");
  root.write("/etc/os-release",
             "NAME=\"Ubuntu\"\nID=ubuntu\nVERSION_ID=\"22.04\"\n"
             "VERSION=\"22.04.4 LTS (Jammy Jellyfish)\"\n");
  root.write("/proc/self/mountinfo",
             "29 1 259:1 / / rw shared:1 - ext4 /dev/nvme0n1p1 rw\n"
             "90 29 0:50 / /scratch rw - lustre 10.0.0.1@tcp:/scratch rw\n");
}

// A single-board computer: the device tree tells model and clock.
inline void raspberry_pi(const TempDir& root) {
  using namespace std::string_literals;
  write_kernel(root, "aarch64", "pi", "6.6.20+rpt-rpi-v8");
  write_memory(root, "3884508", "1024");
  root.write("/proc/cpuinfo",
             "processor\t: 0\nBogoMIPS\t: 108.00\nCPU implementer\t: 0x41\nCPU part\t: 0xd08\n\n"
             "Revision\t: c03114\nModel\t\t: Raspberry Pi 4 Model B Rev 1.4\n");
  root.write("/proc/device-tree/model", "Raspberry Pi 4 Model B Rev 1.4\0"s);
  root.write("/proc/device-tree/cpus/#address-cells", "\0\0\0\1"s);
  root.write("/proc/device-tree/cpus/cpu@0/device_type", "cpu\0"s);
  root.write("/proc/device-tree/cpus/cpu@1/clock-frequency", "\x59\x68\x2f\x00"s);  // 1.5 GHz
  root.write("/sys/devices/system/cpu/online", "0-3\n");
  root.write("/etc/os-release", "NAME='Debian GNU/Linux'\nID=debian\nVERSION_ID='12'\n");
  root.write("/proc/self/mountinfo",
             "20 1 179:2 / / rw,noatime - ext4 /dev/mmcblk0p2 rw\n"
             "40 20 179:1 / /boot/firmware rw - vfat /dev/mmcblk0p1 rw\n");
  root.make_dir("/boot/firmware");
}

// A container: an overlay at "/", files bound from the host's disk, a limited memory table.
inline void container(const TempDir& root) {
  write_kernel(root, "x86_64", "0a1b2c3d4e5f", "6.1.0-18-amd64");
  root.write("/proc/meminfo", "MemTotal:        1048575 kB\nMemFree:          524287 kB\n");
  root.write("/proc/cpuinfo", "model name\t: AMD EPYC 7R13 Processor\ncpu MHz\t\t: 2650.000\n");
  root.write("/sys/devices/system/cpu/online", "0-3\n");
  root.write("/etc/os-release", "NAME=\"Alpine Linux\"\nID=alpine\nVERSION_ID=3.19.1\n");
  root.write("/etc/hosts", "127.0.0.1 localhost\n");
  root.write("/etc/resolv.conf", "nameserver 10.0.0.2\n");
  root.make_dir("/data");
  root.write("/proc/self/mountinfo",
             "700 600 0:60 / / rw,relatime master:30 - overlay overlay rw,lowerdir=/l\n"
             "701 700 0:61 / /proc rw - proc proc rw\n"
             "702 700 0:62 / /dev rw - tmpfs tmpfs rw\n"
             "703 700 259:2 /docker/c/resolv.conf /etc/resolv.conf rw - ext4 /dev/nvme0n1p2 rw\n"
             "704 700 259:2 /docker/c/hosts /etc/hosts rw - ext4 /dev/nvme0n1p2 rw\n"
             "705 700 259:2 /docker/volumes/v /data rw - ext4 /dev/nvme0n1p2 rw\n");
}

// A mainframe: the machine's number is its processor's model.
inline void mainframe(const TempDir& root) {
  write_kernel(root, "s390x", "z14", "5.14.21-150400.24-default");
  write_memory(root, "8245248", "4000000");
  root.write("/proc/cpuinfo",
             "vendor_id       : IBM/S390\n# processors    : 2\nbogomips per cpu: 3033.00\n"
             "features\t: esan3 zarch\n"
             "processor 0: version = FF,  identification = 0133E8,  machine = 3906\n"
             "processor 1: version = FF,  identification = 0133E8,  machine = 3906\n\n"
             "cpu number      : 0\ncpu MHz dynamic : 5208\ncpu MHz static  : 5200\n");
  root.write("/sys/devices/system/cpu/online", "0-1\n");
  root.write("/etc/os-release",
             "NAME=\"SLES\"\nVERSION=\"15-SP4\"\nVERSION_ID=\"15.4\"\nID=\"sles\"\n");
  root.write("/proc/self/mountinfo",
             "25 1 0:30 /@/.snapshots/1/snapshot / rw - btrfs /dev/dasda2 rw,subvolid=1\n"
             "50 25 0:30 /@/var /var rw - btrfs /dev/dasda2 rw,subvolid=2\n"
             "51 25 0:30 /@/home /home rw - btrfs /dev/dasda2 rw,subvolid=3\n");
}

// Every file that a Linux machine is asked for, each with `bytes` in it.
inline void every_file_holds(const TempDir& root, const std::string& bytes) {
  for (const char* file : {"/proc/sys/kernel/arch",
                           "/proc/sys/kernel/hostname",
                           "/proc/sys/kernel/osrelease",
                           "/proc/sys/kernel/domainname",
                           "/proc/meminfo",
                           "/proc/cpuinfo",
                           "/proc/self/mountinfo",
                           "/proc/device-tree/model",
                           "/proc/device-tree/chassis-type",
                           "/proc/device-tree/cpus/cpu@0/clock-frequency",
                           "/sys/devices/system/cpu/online",
                           "/sys/devices/system/cpu/cpu0/cpufreq/base_frequency",
                           "/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq",
                           "/sys/class/dmi/id/chassis_type",
                           "/sys/firmware/acpi/pm_profile",
                           "/etc/os-release",
                           "/usr/lib/os-release",
                           "/etc/lsb-release",
                           "/etc/redhat-release",
                           "/etc/SuSE-release",
                           "/etc/debian_version",
                           "/run/systemd/sessions/1"}) {
    root.write(file, bytes);
  }
}

}  // namespace orbtest
