// tests/platform/linux_processor_test.cpp: processors, clocks and chassis of machines of every
// kind.
#include <gtest/gtest.h>

#include <string>

#include "platform/linux_system.h"
#include "tests/support/machine_roots.h"

namespace {

using namespace quillon_com::orb::platform;
using orbtest::TempDir;
using namespace std::string_literals;

struct MachineCase {
  const char* name;
  void (*build)(const TempDir&);
  int count;
  const char *architecture, *model;
  std::optional<uint64_t> clock_hz;
  Chassis chassis;
};

class Processor : public testing::TestWithParam<MachineCase> {};

TEST_P(Processor, OfAMachine) {
  TempDir root;
  GetParam().build(root);
  const LinuxSystem system(root.path());
  int count = 0;
  EXPECT_TRUE(system.processor_count(&count));
  EXPECT_EQ(GetParam().count, count);
  ProcessorTexts texts;
  EXPECT_TRUE(system.processor_texts(&texts));
  EXPECT_EQ(GetParam().architecture, texts.architecture);
  EXPECT_EQ(GetParam().model, texts.model);
  EXPECT_EQ(GetParam().clock_hz, texts.clock_hz);
  EXPECT_EQ(GetParam().chassis, system.chassis());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, Processor,
    testing::Values(MachineCase{"Laptop", orbtest::x86_laptop, 8, "x86_64",
                                "Intel(R) Core(TM) i7-8565U CPU @ 1.80GHz", 2000000000,
                                Chassis::portable},
                    MachineCase{"VirtualMachineWithoutDmi", orbtest::x86_virtual_machine, 2,
                                "x86_64", "AMD EPYC", 2596138000, Chassis::stationary},
                    MachineCase{"ArmServer", orbtest::arm_server, 64, "aarch64", "Neoverse-N1",
                                std::nullopt, Chassis::stationary},
                    MachineCase{"RaspberryPi", orbtest::raspberry_pi, 4, "aarch64", "Cortex-A72",
                                1500000000, Chassis::unknown},
                    MachineCase{"Container", orbtest::container, 4, "x86_64",
                                "AMD EPYC 7R13 Processor", 2650000000, Chassis::unknown},
                    MachineCase{"Mainframe", orbtest::mainframe, 2, "s390x", "3906", 5208000000,
                                Chassis::unknown}),
    [](const auto& row) { return row.param.name; });

TEST(ProcessorModel, OfAnUnknownCoreIsTheDeviceTrees) {
  TempDir root;
  orbtest::raspberry_pi(root);
  root.write("/proc/cpuinfo", "CPU implementer\t: 0x41\nCPU part\t: 0xfff\n");
  ProcessorTexts texts;
  EXPECT_TRUE(LinuxSystem(root.path()).processor_texts(&texts));
  EXPECT_EQ("Raspberry Pi 4 Model B Rev 1.4", texts.model);
}

TEST(ProcessorModel, OfManyProcessorsIsTheFirstOnes) {
  TempDir root;
  std::string text;
  for (int i = 0; i < 4096; ++i) {
    text += "model name\t: Core " + std::to_string(i) + "\nflags\t\t: fpu vme\n\n";
  }
  root.write("/proc/cpuinfo", text);
  ProcessorTexts texts;
  EXPECT_TRUE(LinuxSystem(root.path()).processor_texts(&texts));
  EXPECT_EQ("Core 0", texts.model);
}

// The sources of the clock in their order; each row takes the one before it away.
TEST(Clock, FirstSourceThatExists) {
  TempDir root;
  const std::string folder = "/sys/devices/system/cpu/cpu0/cpufreq/";
  root.write(folder + "base_frequency", "1000000\n");
  root.write("/proc/cpuinfo", "model name\t: X @ 2.00GHz\ncpu MHz\t\t: 4000.000\n");
  root.write(folder + "cpuinfo_max_freq", "3000000\n");
  root.write("/proc/device-tree/cpus/cpu@0/clock-frequency", "\x2A\x05\xF2\x00\x00"s.substr(0, 4));
  const LinuxSystem system(root.path());
  const auto clock = [&] {
    ProcessorTexts texts;
    EXPECT_TRUE(system.processor_texts(&texts));
    return texts.clock_hz;
  };
  EXPECT_EQ(1000000000u, clock());
  root.write(folder + "base_frequency", "0\n");
  EXPECT_EQ(2000000000u, clock());
  root.write(folder + "base_frequency", "<unknown>\n");
  EXPECT_EQ(2000000000u, clock());
  root.write("/proc/cpuinfo", "model name\t: X\ncpu MHz\t\t: 4000.000\n");
  EXPECT_EQ(3000000000u, clock());
  root.write(folder + "cpuinfo_max_freq", "18446744073709552\n");  // its hertz pass 64 bits
  EXPECT_EQ(4000000000u, clock());
  root.write(folder + "cpuinfo_max_freq", "99999999999999999999\n");
  EXPECT_EQ(4000000000u, clock());
  root.write("/proc/cpuinfo", "model name\t: X\n");
  EXPECT_EQ(0x2A05F200u, clock());
  root.write("/proc/device-tree/cpus/cpu@0/clock-frequency", "\0\0\0\0"s);
  EXPECT_EQ(std::nullopt, clock());
  root.write("/proc/device-tree/cpus/cpu@1/clock-frequency", "\0\0\0\1\0\0\0\0"s);
  EXPECT_EQ(0x100000000u, clock());
  root.write(folder + "base_frequency", "18446744073709552\n");  // its hertz pass 64 bits
  EXPECT_EQ(0x100000000u, clock());
}

struct ChassisCase {
  const char* name;
  const char *dmi, *flags, *device_tree, *profile;  // null: no such file
  Chassis chassis;
};

class ChassisRule : public testing::TestWithParam<ChassisCase> {};

TEST_P(ChassisRule, Decides) {
  TempDir root;
  if (GetParam().dmi) root.write("/sys/class/dmi/id/chassis_type", GetParam().dmi);
  if (GetParam().flags) root.write("/proc/cpuinfo", "flags : "s + GetParam().flags + "\n");
  if (GetParam().device_tree) {
    root.write("/proc/device-tree/chassis-type", GetParam().device_tree + "\0"s);
  }
  if (GetParam().profile) root.write("/sys/firmware/acpi/pm_profile", GetParam().profile);
  EXPECT_EQ(GetParam().chassis, LinuxSystem(root.path()).chassis());
}

INSTANTIATE_TEST_SUITE_P(
    Witnesses, ChassisRule,
    testing::Values(
        ChassisCase{"Nobody", nullptr, nullptr, nullptr, nullptr, Chassis::unknown},
        ChassisCase{"DmiPortable", "9\n", nullptr, nullptr, nullptr, Chassis::portable},
        ChassisCase{"DmiDetachable", "32\n", nullptr, nullptr, nullptr, Chassis::portable},
        ChassisCase{"DmiDesktop", "3\n", nullptr, nullptr, nullptr, Chassis::stationary},
        ChassisCase{"DmiOther", "1\n", nullptr, nullptr, nullptr, Chassis::stationary},
        ChassisCase{"DmiBeforeTheHypervisor", "10\n", "hypervisor", "desktop", "1",
                    Chassis::portable},
        ChassisCase{"DmiBeforeTheProfile", "3\n", nullptr, "laptop", "2", Chassis::stationary},
        ChassisCase{"DmiZeroIsNone", "0\n", nullptr, nullptr, "2", Chassis::portable},
        ChassisCase{"DmiNoNumber", "laptop\n", nullptr, nullptr, "2", Chassis::portable},
        ChassisCase{"Hypervisor", nullptr, "fpu hypervisor", nullptr, "0", Chassis::stationary},
        ChassisCase{"HypervisorBeforeTheDeviceTree", nullptr, "hypervisor", "laptop", "2",
                    Chassis::stationary},
        ChassisCase{"DeviceTreeLaptop", nullptr, "fpu", "laptop", nullptr, Chassis::portable},
        ChassisCase{"DeviceTreeTablet", nullptr, nullptr, "tablet", nullptr, Chassis::portable},
        ChassisCase{"DeviceTreeConvertible", nullptr, nullptr, "convertible", nullptr,
                    Chassis::portable},
        ChassisCase{"DeviceTreeHandset", nullptr, nullptr, "handset", "1", Chassis::portable},
        ChassisCase{"DeviceTreeServer", nullptr, nullptr, "server", "2", Chassis::stationary},
        ChassisCase{"ProfileMobile", nullptr, nullptr, nullptr, "2\n", Chassis::portable},
        ChassisCase{"ProfileTablet", nullptr, nullptr, nullptr, "8\n", Chassis::portable},
        ChassisCase{"ProfileDesktop", nullptr, nullptr, nullptr, "1\n", Chassis::stationary},
        ChassisCase{"ProfileServer", nullptr, nullptr, nullptr, "4\n", Chassis::stationary},
        ChassisCase{"ProfileNotStated", nullptr, nullptr, nullptr, "0\n", Chassis::unknown}),
    [](const auto& row) { return row.param.name; });

}  // namespace
