// tests/sysprops/gestaltnames_test.cpp: names of processor and architecture codes.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <iterator>
#include <string>

#include "sysprops/collectors.h"

namespace quillon_com::orb::sysprops {
namespace {

using Converter = bool (*)(long, char*);

struct NameCase {
  const char* name;
  Converter convert;
  long code;
  const char* text;  // null: unknown
};

constexpr Converter kModel = ConvertGestaltCPUTypeToString;
constexpr Converter kArchitecture = ConvertGestaltSysArchToString;

class GestaltName : public testing::TestWithParam<NameCase> {};

// The names with their terminators fill at most the bytes that the header asks for.
TEST_P(GestaltName, IsCopiedOrLeftAlone) {
  const size_t room = GetParam().convert == kModel ? 11 : 8;
  char destination[32];
  std::fill(std::begin(destination), std::end(destination), '#');
  const bool known = GetParam().text != nullptr;
  EXPECT_EQ(known, GetParam().convert(GetParam().code, destination));
  const std::string text = known ? GetParam().text : "";
  const std::string written = known ? text + '\0' : "";
  EXPECT_EQ(written + std::string(sizeof destination - written.size(), '#'),
            std::string(destination, sizeof destination));
  EXPECT_LE(written.size(), room);
}

TEST_P(GestaltName, NeedsADestination) {
  EXPECT_FALSE(GetParam().convert(GetParam().code, nullptr));
}

INSTANTIATE_TEST_SUITE_P(
    Models, GestaltName,
    testing::Values(
        NameCase{"M68000", kModel, 0, "68000"}, NameCase{"M68010", kModel, 1, "68010"},
        NameCase{"M68020", kModel, 2, "68020"}, NameCase{"M68030", kModel, 3, "68030"},
        NameCase{"M68040", kModel, 4, "68040"}, NameCase{"P601", kModel, 0x101, "601"},
        NameCase{"P603", kModel, 0x103, "603"}, NameCase{"P604", kModel, 0x104, "604"},
        NameCase{"P603e", kModel, 0x106, "603e"}, NameCase{"P603ev", kModel, 0x107, "603ev"},
        NameCase{"P750", kModel, 0x108, "750"}, NameCase{"P604e", kModel, 0x109, "604e"},
        NameCase{"P604ev", kModel, 0x10A, "604ev"}, NameCase{"G4", kModel, 0x10C, "G4"},
        NameCase{"G47450", kModel, 0x110, "G47450"}, NameCase{"I486", kModel, 0x69343836, "486"},
        NameCase{"I586", kModel, 0x69353836, "Pentium"},
        NameCase{"I5pr", kModel, 0x69357072, "PentiumPro"},
        NameCase{"I5ii", kModel, 0x69356969, "PentiumII"},
        NameCase{"I5iv", kModel, 0x69356976, "Pentium 4"},
        NameCase{"Ixxx", kModel, 0x69787878, "X86"}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(UnknownModels, GestaltName,
                         testing::Values(NameCase{"Negative", kModel, -1, nullptr},
                                         NameCase{"BehindTheFirstRow", kModel, 5, nullptr},
                                         NameCase{"Gap102", kModel, 0x102, nullptr},
                                         NameCase{"Gap10B", kModel, 0x10B, nullptr},
                                         NameCase{"Arm", kModel, 0x61726D20, nullptr},
                                         NameCase{"BeyondThirtyTwoBits", kModel, 0x100000101,
                                                  nullptr},
                                         NameCase{"Largest", kModel, LONG_MAX, nullptr}),
                         [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(Architectures, GestaltName,
                         testing::Values(NameCase{"MC680x0", kArchitecture, 1, "MC680x0"},
                                         NameCase{"PowerPC", kArchitecture, 2, "PowerPC"},
                                         NameCase{"Intel", kArchitecture, 10, "Intel"},
                                         NameCase{"NoneIsZero", kArchitecture, 0, nullptr},
                                         NameCase{"Three", kArchitecture, 3, nullptr},
                                         NameCase{"Arm", kArchitecture, 20, nullptr},
                                         NameCase{"Negative", kArchitecture, -10, nullptr}),
                         [](const auto& row) { return std::string(row.param.name); });

// With no header of ours but sysprops/collectors.h.
TEST(CollectorsHeader, BringsTheCollectorsAndTheirRecords) {
  CPUInformation record;
  ISysProps().GetCPUInformation(record);
  EXPECT_NE(DefaultProp_Val, record.numOfCPU);
  EXPECT_EQ(DefaultProp_Val, record.cpuSerialNumber);
}

}  // namespace
}  // namespace quillon_com::orb::sysprops
