// tests/platform/linux_cpuinfo_test.cpp: platform/linux_cpuinfo.h on processors of every kind.
#include "platform/linux_cpuinfo.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace quillon_com::orb::platform;
using namespace std::string_literals;

struct ModelCase {
  const char* name;
  std::string text;
  const char* model;
};

class ProcessorModel : public testing::TestWithParam<ModelCase> {};

TEST_P(ProcessorModel, IsTaken) {
  EXPECT_EQ(GetParam().model, processor_model(cpu_info(GetParam().text)));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ProcessorModel,
    testing::Values(
        ModelCase{"X86",
                  "processor\t: 0\nvendor_id\t: AuthenticAMD\ncpu family\t: 25\nmodel\t\t: 17\n"
                  "model name\t: AMD EPYC 7R13 Processor\nstepping\t: 1\ncpu MHz\t\t: 2650.000\n",
                  "AMD EPYC 7R13 Processor"},
        ModelCase{"FirstProcessorCounts",
                  "model name\t: First\n\nprocessor\t: 1\nmodel name\t: Second\n", "First"},
        ModelCase{"S390Machine",
                  "vendor_id       : IBM/S390\n# processors    : 2\nbogomips per cpu: 3033.00\n"
                  "processor 0: version = FF,  identification = 0133E8,  machine = 2964\n"
                  "processor 1: version = FF,  identification = 0133E8,  machine = 2965\n",
                  "2964"},
        ModelCase{"PowerCpu",
                  "processor\t: 0\ncpu\t\t: POWER9 (architected), altivec supported\n"
                  "clock\t\t: 2750.000000MHz\n",
                  "POWER9 (architected), altivec supported"},
        ModelCase{"NeoverseServer",
                  "processor\t: 0\nBogoMIPS\t: 243.75\nFeatures\t: fp asimd\n"
                  "CPU implementer\t: 0x41\nCPU architecture: 8\nCPU variant\t: 0x3\n"
                  "CPU part\t: 0xd0c\nCPU revision\t: 1\n",
                  "Neoverse-N1"},
        ModelCase{"FirstCoreOfTwoKinds",
                  "CPU implementer\t: 0x41\nCPU part\t: 0xd03\n\n"
                  "CPU implementer\t: 0x41\nCPU part\t: 0xd08\n",
                  "Cortex-A53"},
        ModelCase{"UpperCaseHexadecimal", "CPU implementer : 0x4E\nCPU part : 0x004\n", "Carmel"},
        ModelCase{"UnknownPart", "CPU implementer : 0x41\nCPU part : 0xfff\n", ""},
        ModelCase{"UnknownImplementer", "CPU implementer : 0x00\nCPU part : 0xd0c\n", ""},
        ModelCase{"CutBeforeThePart", "CPU implementer : 0x41\nCPU pa", ""},
        ModelCase{"ModelNameBeforeTheCore",
                  "model name : ARMv7 Processor rev 3 (v7l)\nCPU implementer : 0x41\n"
                  "CPU part : 0xd08\n",
                  "ARMv7 Processor rev 3 (v7l)"},
        ModelCase{"EmptyModelName", "model name\t: \nmodel name\t: Second\n", "Second"},
        ModelCase{"CutInTheName", "model name\t: AMD EP", "AMD EP"},
        ModelCase{"ZeroByteEndsTheLine", "model name\t: AMD\0EPYC\n"s, "AMD"},
        ModelCase{"NumberTooLong", "CPU implementer : 0x000000041\nCPU part : 0xd0c\n", ""},
        ModelCase{"NumberWithoutItsPrefix", "CPU implementer : 41\nCPU part : 0xd0c\n", ""},
        ModelCase{"SignInANumber", "CPU implementer : 0x4:\nCPU part : 0xd0c\n", ""},
        ModelCase{"S390WithoutAMachine", "processor 0: version = FF,  identification = 0133E8\n",
                  ""},
        ModelCase{"NotHexadecimal", "CPU implementer : 0x4g\nCPU part : 0xd0c\n", ""},
        ModelCase{"DigitsMissing", "CPU implementer : 0x\nCPU part : 0xd0c\n", ""},
        ModelCase{"Empty", "", ""}),
    [](const auto& row) { return row.param.name; });

TEST(ArmCores, OfEveryImplementer) {
  EXPECT_EQ("Neoverse-V2", arm_core_name(0x41, 0xd4f));
  EXPECT_EQ("Cortex-A76", arm_core_name(0x41, 0xd0b));
  EXPECT_EQ("ThunderX2", arm_core_name(0x43, 0x0af));
  EXPECT_EQ("A64FX", arm_core_name(0x46, 0x001));
  EXPECT_EQ("Kunpeng-920", arm_core_name(0x48, 0xd01));
  EXPECT_EQ("X-Gene", arm_core_name(0x50, 0x000));
  EXPECT_EQ("Falkor", arm_core_name(0x51, 0xc00));
  EXPECT_EQ("Apple M1", arm_core_name(0x61, 0x022));
  EXPECT_EQ("Ampere-1", arm_core_name(0xc0, 0xac3));
  EXPECT_EQ("", arm_core_name(0x69, 0xd0c));
}

TEST(CpuInfo, HypervisorIsAWordOfTheFlags) {
  EXPECT_TRUE(cpu_info("flags\t\t: fpu hypervisor lahf_lm\n").hypervisor);
  EXPECT_TRUE(cpu_info("flags\t\t: fpu hypervisor").hypervisor);
  EXPECT_TRUE(cpu_info("flags\t\t: hypervisor\n\nflags\t\t: fpu\n").hypervisor);
  EXPECT_FALSE(cpu_info("flags\t\t: fpu hypervisors lahf_lm\n").hypervisor);
  EXPECT_FALSE(cpu_info("bugs\t\t: hypervisor\n").hypervisor);
  EXPECT_FALSE(cpu_info("flags\t\t:\n").hypervisor);
}

TEST(CpuInfo, FirstClockCounts) {
  EXPECT_EQ(2596138000u, cpu_info("cpu MHz\t\t: 2596.138\ncpu MHz\t\t: 800.0\n").clock_hz);
  EXPECT_EQ(5200000000u, cpu_info("cpu MHz dynamic : 5200\n").clock_hz);
  EXPECT_EQ(800000000u, cpu_info("cpu MHz : unknown\ncpu MHz : 800\n").clock_hz);
  EXPECT_EQ(std::nullopt, cpu_info("cpu MHz : 0.000\n").clock_hz);
  EXPECT_EQ(std::nullopt, cpu_info("BogoMIPS : 243.75\n").clock_hz);
}

struct FrequencyCase {
  const char* name;
  const char* text;
  std::optional<uint64_t> hz;
};

class Frequency : public testing::TestWithParam<FrequencyCase> {};

TEST_P(Frequency, IsInHertz) { EXPECT_EQ(GetParam().hz, frequency_hz(GetParam().text)); }

INSTANTIATE_TEST_SUITE_P(
    Texts, Frequency,
    testing::Values(FrequencyCase{"Gigahertz", "3.70GHz", 3700000000},
                    FrequencyCase{"Megahertz", "800MHz", 800000000},
                    FrequencyCase{"BlankBeforeTheUnit", " 2.4 GHz", 2400000000},
                    FrequencyCase{"WithoutUnitMegahertz", "2596.138", 2596138000},
                    FrequencyCase{"BelowOneHertzIsCut", "0.0000019", 1},
                    FrequencyCase{"NothingBehindThePoint", "2.", 2000000},
                    FrequencyCase{"Zero", "0.000", std::nullopt},
                    FrequencyCase{"Empty", "", std::nullopt},
                    FrequencyCase{"UnitAlone", "GHz", std::nullopt},
                    FrequencyCase{"NothingBeforeThePoint", ".5GHz", std::nullopt},
                    FrequencyCase{"TwoPoints", "1.2.3", std::nullopt},
                    FrequencyCase{"OtherUnit", "3 kHz", std::nullopt},
                    FrequencyCase{"Negative", "-3", std::nullopt},
                    FrequencyCase{"Passes64Bits", "18446744073710", std::nullopt},
                    FrequencyCase{"FarTooLong", "99999999999999999999999", std::nullopt}),
    [](const auto& row) { return row.param.name; });

TEST(ClockInModel, StandsBehindTheSign) {
  EXPECT_EQ(2500000000u, clock_in_model("Intel(R) Xeon(R) Platinum 8175M CPU @ 2.50GHz"));
  EXPECT_EQ(2500000000u, clock_in_model("VirtualApple @ 2.50GHz"));
  EXPECT_EQ(800000000u, clock_in_model("Small @ 800MHz"));
  EXPECT_EQ(std::nullopt, clock_in_model("AMD EPYC"));
  EXPECT_EQ(std::nullopt, clock_in_model("made @ home"));
  EXPECT_EQ(std::nullopt, clock_in_model("cut @ 2.5"));
  EXPECT_EQ(std::nullopt, clock_in_model("cut @"));
}

TEST(DeviceTreeNumber, HasFourOrEightBytesTheHighestFirst) {
  EXPECT_EQ(1500000000u, device_tree_number("\x59\x68\x2f\x00"s));
  EXPECT_EQ(0x100000002u, device_tree_number("\0\0\0\1\0\0\0\2"s));
  EXPECT_EQ(std::nullopt, device_tree_number(""));
  EXPECT_EQ(std::nullopt, device_tree_number("\0\0\1"s));
  EXPECT_EQ(std::nullopt, device_tree_number("\0\0\0\0\1"s));
  EXPECT_EQ(std::nullopt, device_tree_number("\0\0\0\0\0\0\0\0\1"s));
}

TEST(Chassis, PortableNumbers) {
  std::string portable;
  for (unsigned type = 0; type < 64; ++type) {
    if (is_portable_chassis(type)) portable += std::to_string(type) + " ";
  }
  EXPECT_EQ("8 9 10 11 14 30 31 32 ", portable);
}

TEST(HugeText, Ends) {
  for (const std::string& part : {"\0"s, ":"s, "flags: hypervisor "s, "model name:\n"s}) {
    std::string text;
    while (text.size() < 1 << 20) text += part;
    EXPECT_EQ("", processor_model(cpu_info(text)));
    EXPECT_EQ(std::nullopt, frequency_hz(text));
  }
}

}  // namespace
