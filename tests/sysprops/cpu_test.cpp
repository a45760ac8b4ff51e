// tests/sysprops/cpu_test.cpp: the processor record and the portable test on scripted machines.
#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <string>

#include "sysprops/collect.h"
#include "sysprops/collectors.h"
#include "tests/support/command_text.h"
#include "tests/support/fake_system.h"

namespace quillon_com::orb::sysprops {
namespace {

using orbtest::FakeSystem;
using platform::Chassis;

constexpr uint32_t kClock = 0x70636C6B;         // 'pclk'
constexpr uint32_t kArchitecture = 0x73797361;  // 'sysa'
constexpr uint32_t kModel = 0x63707574;         // 'cput'
constexpr int32_t kX86 = 0x69787878;            // 'ixxx'

struct CpuCase {
  const char* name;
  void (*script)(FakeSystem& system);
  bool ok;
  const wchar_t *type, *speed, *count, *portable;
};

class Cpu : public testing::TestWithParam<CpuCase> {};

TEST_P(Cpu, FillsTheRecord) {
  FakeSystem system;
  GetParam().script(system);
  CPUInformation record;
  record.cpuType = record.cpuSpeed = record.numOfCPU = record.isPortable = L"old";
  EXPECT_EQ(GetParam().ok, collect_cpu(system, record));
  EXPECT_EQ(GetParam().type, record.cpuType);
  EXPECT_EQ(GetParam().speed, record.cpuSpeed);
  EXPECT_EQ(GetParam().count, record.numOfCPU);
  EXPECT_EQ(GetParam().portable, record.isPortable);
  EXPECT_EQ(L"N/A", record.cpuSerialNumber);
}

void answers(FakeSystem& system, int32_t clock, int32_t architecture, int32_t model) {
  system.gestalts = {{kClock, clock}, {kArchitecture, architecture}, {kModel, model}};
}

// A count of 32 bits as the selector's signed response carries it.
constexpr int32_t hertz(uint32_t count) { return static_cast<int32_t>(count); }

INSTANTIATE_TEST_SUITE_P(
    BySelectors, Cpu,
    testing::Values(CpuCase{"NothingAnswersGivesClockZeroAndNoNames", [](FakeSystem&) {}, false,
                            L"", L"0 MHz", L"old", L"old"},
                    CpuCase{"BothNamesAreJoinedByOneBlank",
                            [](FakeSystem& s) {
                              s.processors = 8;
                              s.model = "MacPro5,1";
                              answers(s, 2000000000, 10, kX86);
                            },
                            true, L"Intel X86", L"2000 MHz", L"8", L"0"},
                    CpuCase{"ArchitectureAlone", [](FakeSystem& s) { answers(s, 1000000, 10, 5); },
                            true, L"Intel", L"1 MHz", L"old", L"-1"},
                    CpuCase{"ModelAlone", [](FakeSystem& s) { answers(s, 1000000, 20, 0x10C); },
                            true, L"G4", L"1 MHz", L"old", L"-1"},
                    CpuCase{"NeitherNameLeavesThePortableFlag",
                            [](FakeSystem& s) {
                              s.processors = 2;
                              s.model = "MacBook5,1";
                              answers(s, 5000000, 20, 0x61726D20);
                            },
                            false, L"", L"5 MHz", L"2", L"old"},
                    CpuCase{"ClockAboveTwoToThe31IsNotNegative",
                            [](FakeSystem& s) { answers(s, hertz(2400000000U), 10, kX86); }, true,
                            L"Intel X86", L"2400 MHz", L"old", L"-1"},
                    CpuCase{"ClockIsCut",
                            [](FakeSystem& s) { answers(s, hertz(2399999999U), 10, kX86); }, true,
                            L"Intel X86", L"2399 MHz", L"old", L"-1"},
                    CpuCase{"LargestClock", [](FakeSystem& s) { answers(s, -1, 10, kX86); }, true,
                            L"Intel X86", L"4294 MHz", L"old", L"-1"},
                    CpuCase{"QuirkFailedArchitectureSeesTheClock",
                            [](FakeSystem& s) {
                              s.gestalts = {{kClock, 10}, {kModel, kX86}};
                            },
                            true, L"Intel X86", L"0 MHz", L"old", L"-1"},
                    CpuCase{"QuirkFailedArchitectureWithARealClockIsUnknown",
                            [](FakeSystem& s) {
                              s.gestalts = {{kClock, 1000000000}, {kModel, kX86}};
                            },
                            true, L"X86", L"1000 MHz", L"old", L"-1"},
                    CpuCase{"FailedModelStartsFromZero",
                            [](FakeSystem& s) {
                              s.gestalts = {{kClock, 1000000}, {kArchitecture, 1}};
                            },
                            true, L"MC680x0 68000", L"1 MHz", L"old", L"-1"},
                    CpuCase{"BookInTheModelIsPortable",
                            [](FakeSystem& s) {
                              answers(s, 1000000, 10, kX86);
                              s.model = "MacBookPro16,1";
                            },
                            true, L"Intel X86", L"1 MHz", L"old", L"1"}),
    [](const auto& row) { return std::string(row.param.name); });

void texts(FakeSystem& system, const char* architecture, const char* model,
           std::optional<uint64_t> clock) {
  system.processor = platform::ProcessorTexts{architecture, model, clock};
}

INSTANTIATE_TEST_SUITE_P(
    ByTexts, Cpu,
    testing::Values(
        CpuCase{"ArchitectureAndModel",
                [](FakeSystem& s) {
                  s.processors = 4;
                  s.chassis_fact = Chassis::stationary;
                  texts(s, "x86_64", "AMD EPYC 7763", 2450000000);
                },
                true, L"x86_64 AMD EPYC 7763", L"2450 MHz", L"4", L"0"},
        CpuCase{"SelectorsAreNotAsked",
                [](FakeSystem& s) {
                  texts(s, "aarch64", "", std::nullopt);
                  answers(s, 1000000, 10, kX86);
                },
                true, L"aarch64", L"old", L"old", L"-1"},
        CpuCase{"UnknownClockIsLeft",
                [](FakeSystem& s) { texts(s, "aarch64", "Neoverse-N1", std::nullopt); }, true,
                L"aarch64 Neoverse-N1", L"old", L"old", L"-1"},
        CpuCase{"ClockOfZeroIsUnknown", [](FakeSystem& s) { texts(s, "riscv64", "", 0); }, true,
                L"riscv64", L"old", L"old", L"-1"},
        CpuCase{"ClockBelowOneMegahertzIsUnknown",
                [](FakeSystem& s) { texts(s, "riscv64", "", 999999); }, true, L"riscv64", L"old",
                L"old", L"-1"},
        CpuCase{"ClockOfOneMegahertz", [](FakeSystem& s) { texts(s, "riscv64", "", 1000000); },
                true, L"riscv64", L"1 MHz", L"old", L"-1"},
        CpuCase{"ClockAboveTwoToThe32",
                [](FakeSystem& s) { texts(s, "x86_64", "Fast", 5700999999); }, true, L"x86_64 Fast",
                L"5700 MHz", L"old", L"-1"},
        CpuCase{"ModelAlone", [](FakeSystem& s) { texts(s, "", "POWER9", std::nullopt); }, true,
                L"POWER9", L"old", L"old", L"-1"},
        CpuCase{"NeitherNameIsAFailure",
                [](FakeSystem& s) {
                  s.processors = 1;
                  s.chassis_fact = Chassis::portable;
                  texts(s, "", "", 1000000000);
                },
                false, L"", L"1000 MHz", L"1", L"old"},
        CpuCase{"ModelOfUtf8", [](FakeSystem& s) { texts(s, "x86_64", "\xC2\xB5P", 1000000); },
                true, L"x86_64 \u00B5P", L"1 MHz", L"old", L"-1"},
        CpuCase{"PortableCase",
                [](FakeSystem& s) {
                  texts(s, "x86_64", "i7", std::nullopt);
                  s.chassis_fact = Chassis::portable;
                },
                true, L"x86_64 i7", L"old", L"old", L"1"}),
    [](const auto& row) { return std::string(row.param.name); });

// Counts what is asked of the machine.
class CountingSystem : public FakeSystem {
 public:
  mutable int counts = 0;
  mutable int names = 0;
  mutable int cases = 0;

  bool processor_count(int* out) const override {
    ++counts;
    return FakeSystem::processor_count(out);
  }
  bool processor_texts(platform::ProcessorTexts* out) const override {
    ++names;
    return FakeSystem::processor_texts(out);
  }
  Chassis chassis() const override {
    ++cases;
    return FakeSystem::chassis();
  }
};

struct FieldCase {
  const char* name;
  Fields fields;
  int counts, names, cases;
};

class CpuFields : public testing::TestWithParam<FieldCase> {};

TEST_P(CpuFields, AskOnlyForWhatTheyNeed) {
  CountingSystem system;
  system.processors = 4;
  system.chassis_fact = Chassis::portable;
  texts(system, "x86_64", "Model", 3000000000);
  CPUInformation whole;
  collect_cpu(system, whole);
  system.counts = system.names = system.cases = 0;

  CPUInformation part;
  collect_cpu(system, part, GetParam().fields);
  EXPECT_EQ(GetParam().counts, system.counts);
  EXPECT_EQ(GetParam().names, system.names);
  EXPECT_EQ(GetParam().cases, system.cases);
  const auto asked = [](Fields field) { return (GetParam().fields & field) != 0; };
  EXPECT_TRUE(!asked(kCpuType) || part.cpuType == whole.cpuType);
  EXPECT_TRUE(!asked(kCpuSpeed) || part.cpuSpeed == whole.cpuSpeed);
  EXPECT_TRUE(!asked(kCpuCount) || part.numOfCPU == whole.numOfCPU);
  EXPECT_TRUE(!asked(kCpuPortable) || part.isPortable == whole.isPortable);
}

INSTANTIATE_TEST_SUITE_P(Each, CpuFields,
                         testing::Values(FieldCase{"None", 0, 0, 0, 0},
                                         FieldCase{"Type", kCpuType, 0, 1, 0},
                                         FieldCase{"Speed", kCpuSpeed, 0, 1, 0},
                                         FieldCase{"Count", kCpuCount, 1, 0, 0},
                                         FieldCase{"Portable", kCpuPortable, 0, 1, 1},
                                         FieldCase{"All", kAllFields, 1, 1, 1}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CpuPortableField, StaysWhereNoNameIsKnown) {
  FakeSystem system;
  system.chassis_fact = Chassis::portable;
  texts(system, "", "", std::nullopt);
  CPUInformation record;
  collect_cpu(system, record, kCpuPortable);
  EXPECT_EQ(L"", record.isPortable);
}

struct PortableCase {
  const char* name;
  Chassis chassis;
  std::optional<std::string> model;
  bool ok, portable;
};

class Portable : public testing::TestWithParam<PortableCase> {};

TEST_P(Portable, Tells) {
  FakeSystem system;
  system.chassis_fact = GetParam().chassis;
  system.model = GetParam().model;
  bool portable = !GetParam().portable;
  EXPECT_EQ(GetParam().ok, portable_computer(system, portable));
  EXPECT_EQ(GetParam().portable, portable);
}

INSTANTIATE_TEST_SUITE_P(
    Machines, Portable,
    testing::Values(
        PortableCase{"CaseIsPortable", Chassis::portable, std::nullopt, true, true},
        PortableCase{"CaseIsStationary", Chassis::stationary, std::nullopt, true, false},
        PortableCase{"CaseDecidesBeforeTheModel", Chassis::stationary, "MacBook1,1", true, false},
        PortableCase{"UnknownCaseIsAFailure", Chassis::unknown, "MacBook1,1", false, false},
        PortableCase{"NoModelIsAFailure", Chassis::not_stated, std::nullopt, false, false},
        PortableCase{"BookInMixedCase", Chassis::not_stated, "MacBookAir10,1", true, true},
        PortableCase{"BookInCapitals", Chassis::not_stated, "POWERBOOK6,8", true, true},
        PortableCase{"BookInSmallLetters", Chassis::not_stated, "xbook", true, true},
        PortableCase{"BookAlone", Chassis::not_stated, "book", true, true},
        PortableCase{"NoBook", Chassis::not_stated, "Mac14,2", true, false},
        PortableCase{"AlmostBook", Chassis::not_stated, "iMacBoo k", true, false},
        PortableCase{"EmptyModel", Chassis::not_stated, "", true, false},
        PortableCase{"BookBehindAZeroByte", Chassis::not_stated, std::string("Mac\0book", 8), true,
                     false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CpuOfThisMachine, CountIsThatOfNproc) {
  CPUInformation record;
  ASSERT_TRUE(ISysProps().GetCPUInformation(record));
  EXPECT_EQ(orbtest::command_text("getconf _NPROCESSORS_ONLN"), record.numOfCPU);
}

TEST(CpuOfThisMachine, TypeStartsWithTheMachineName) {
  CPUInformation record;
  ASSERT_TRUE(ISysProps().GetCPUInformation(record));
  EXPECT_EQ(0u, record.cpuType.find(orbtest::command_text("uname -m"))) << "type and uname differ";
  EXPECT_EQ(L"N/A", record.cpuSerialNumber);
}

TEST(CpuOfThisMachine, PortableAnswersAgree) {
  CPUInformation record;
  ASSERT_TRUE(ISysProps().GetCPUInformation(record));
  bool portable = true;
  const bool known = IsPortableComputer(portable);
  EXPECT_EQ(!known ? L"-1" : portable ? L"1" : L"0", record.isPortable);
}

}  // namespace
}  // namespace quillon_com::orb::sysprops
