// tests/torture/machine.cpp: the files of the tortured machine, and the stand-in of host().
#include "tests/torture/machine.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/linux_system.h"
#include "tests/support/temp_dir.h"
#include "tests/torture/machine_calls.h"

namespace orbtest {
namespace {

namespace seam = quillon_com::orb::platform;

// Files of the folder, all else of the kernel.
class RootedSystem : public seam::LinuxSystem {
 public:
  using LinuxSystem::LinuxSystem;

 protected:
  bool is_running_machine() const override { return true; }
};

void write_files(const TempDir& root) {
  root.write("/proc/cpuinfo",
             "processor\t: 0\nmodel name\t: Model Q\ncpu MHz\t\t: 1200.000\nflags\t\t: fpu\n");
  root.write("/proc/meminfo", "MemTotal:  16777216 kB\nMemFree:  1048576 kB\n");
  root.write("/proc/self/mountinfo",
             "28 1 8:1 / / rw - ext4 /dev/sda1 rw\n30 28 8:2 / /data rw - ext4 /dev/sda2 rw\n");
  root.make_dir("/data");
  root.write("/sys/class/dmi/id/chassis_type", "10\n");
  root.write("/sys/devices/system/cpu/cpu0/cpufreq/base_frequency", "2400000\n");
  root.write("/etc/os-release", "NAME=\"Debian GNU/Linux\"\nID=debian\nVERSION_ID=\"12\"\n");
  root.write("/etc/debian_version", "12.5\n");
}

// One of each for the whole program.
const TempDir& root_folder() {
  static const TempDir root;
  return root;
}

const seam::System& rooted_system() {
  static const RootedSystem system(root_folder().path());
  return system;
}

// Before any row: what is made when the machine is first met belongs to none.
class Preparation : public testing::Environment {
 public:
  void SetUp() override {
    write_files(root_folder());
    const Machine machine;
  }
};

testing::Environment* const preparation = testing::AddGlobalTestEnvironment(new Preparation);

}  // namespace

Machine::Machine() {
  if (machine_answers) abort();
  machine_answers = true;
  seam::host().rewind_sessions();  // from now on the C library's entries are this machine's
}

Machine::~Machine() {
  machine_answers = false;
  seam::host().rewind_sessions();
}

}  // namespace orbtest

extern "C" {

using quillon_com::orb::platform::System;

// platform::host().
const System& __real__ZN11quillon_com3orb8platform4hostEv();
const System& __wrap__ZN11quillon_com3orb8platform4hostEv();
const System& __wrap__ZN11quillon_com3orb8platform4hostEv() {
  if (!orbtest::machine_answers) return __real__ZN11quillon_com3orb8platform4hostEv();
  return orbtest::rooted_system();
}

}  // extern "C"
