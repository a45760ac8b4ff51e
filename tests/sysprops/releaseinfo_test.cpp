// tests/sysprops/releaseinfo_test.cpp: operating systems by their release files.
#include "sysprops/releaseinfo.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace quillon_com::orb::sysprops {
namespace {

using platform::ReleaseTexts;
using Texts = std::map<std::string, std::string>;

constexpr char kKernel[] = "6.1.0-18-amd64";

struct ReleaseCase {
  const char* name;
  ReleaseTexts texts;
  const char *system, *version, *patch;
  bool server;
};

class Release : public testing::TestWithParam<ReleaseCase> {};

TEST_P(Release, IsIdentified) {
  const ReleaseCase& row = GetParam();
  EXPECT_EQ(row.system, release_name(row.texts));
  const std::string version = release_version(row.texts, kKernel);
  EXPECT_EQ(row.version, version);
  EXPECT_EQ(row.patch, release_patch(row.texts, version));
  EXPECT_EQ(row.server, release_is_server(row.texts));
}

ReleaseTexts files(Texts fields, std::string debian_version = "", int chassis = 0) {
  return {std::move(fields), "", std::move(debian_version), chassis};
}

// A system without os-release, named by an older file.
ReleaseTexts legacy(std::string name) { return {{}, std::move(name), "", 0}; }

ReleaseTexts fedora(const char* variant, const char* id) {
  return files({{"NAME", "Fedora Linux"},
                {"VERSION", std::string("39 (") + variant + ")"},
                {"ID", "fedora"},
                {"VERSION_ID", "39"},
                {"VARIANT", variant},
                {"VARIANT_ID", id}});
}

INSTANTIATE_TEST_SUITE_P(
    Distributions, Release,
    testing::Values(
        ReleaseCase{"DebianTakesItsOwnVersionFile",
                    files({{"NAME", "Debian GNU/Linux"},
                           {"VERSION", "12 (bookworm)"},
                           {"ID", "debian"},
                           {"VERSION_ID", "12"}},
                          "12.5"),
                    "Debian GNU/Linux", "12.5", "", false},
        ReleaseCase{"DebianTestingHasTheKernelsRelease",
                    files({{"NAME", "Debian GNU/Linux"}, {"ID", "debian"}}, "trixie/sid"),
                    "Debian GNU/Linux", "6.1.0-18-amd64", "0-18-amd64", false},
        ReleaseCase{"DebianTestingWithVersionKeepsIt",
                    files({{"NAME", "Debian GNU/Linux"}, {"ID", "debian"}, {"VERSION_ID", "13"}},
                          "trixie/sid"),
                    "Debian GNU/Linux", "13", "", false},
        ReleaseCase{"DebianVersionOfAnotherReleaseIsIgnored",
                    files({{"NAME", "D"}, {"ID", "debian"}, {"VERSION_ID", "1"}}, "12.5"), "D", "1",
                    "", false},
        ReleaseCase{"DebianVersionEqualToTheIdAddsNothing",
                    files({{"NAME", "D"}, {"ID", "debian"}, {"VERSION_ID", "12"}}, "12"), "D", "12",
                    "", false},
        ReleaseCase{"DebianFileOfADerivativeIsIgnored",
                    files({{"NAME", "Kin"}, {"ID", "kin"}, {"VERSION_ID", "12"}}, "12.5"), "Kin",
                    "12", "", false},
        ReleaseCase{"UbuntuTakesTheTripleOfVersion",
                    files({{"NAME", "Ubuntu"},
                           {"VERSION", "22.04.4 LTS (Jammy Jellyfish)"},
                           {"ID", "ubuntu"},
                           {"VERSION_ID", "22.04"}},
                          "bookworm/sid"),
                    "Ubuntu", "22.04.4", "4", false},
        ReleaseCase{"UbuntuWithoutPointReleaseKeepsTheId",
                    files({{"NAME", "Ubuntu"},
                           {"VERSION", "24.04 LTS (Noble Numbat)"},
                           {"ID", "ubuntu"},
                           {"VERSION_ID", "24.04"}}),
                    "Ubuntu", "24.04", "", false},
        ReleaseCase{"UbuntuTripleEndsAtTheDigits",
                    files({{"NAME", "Ubuntu"},
                           {"VERSION", "22.04.12.1"},
                           {"ID", "ubuntu"},
                           {"VERSION_ID", "22.04"}}),
                    "Ubuntu", "22.04.12", "12", false},
        ReleaseCase{"UbuntuTripleNeedsItsThirdNumber",
                    files({{"NAME", "Ubuntu"},
                           {"VERSION", "22.04. LTS"},
                           {"ID", "ubuntu"},
                           {"VERSION_ID", "22.04"}}),
                    "Ubuntu", "22.04", "", false},
        ReleaseCase{
            "UbuntuTripleNeedsItsDots",
            files(
                {{"NAME", "Ubuntu"}, {"VERSION", "22"}, {"ID", "ubuntu"}, {"VERSION_ID", "22.04"}}),
            "Ubuntu", "22.04", "", false},
        ReleaseCase{"TripleOfOthersIsIgnored",
                    files({{"NAME", "Mint"},
                           {"VERSION", "21.3.1 (Virginia)"},
                           {"ID", "linuxmint"},
                           {"VERSION_ID", "21.3"}}),
                    "Mint", "21.3", "", false},
        ReleaseCase{"FedoraServer", fedora("Server Edition", "server"), "Fedora Linux", "39", "",
                    true},
        ReleaseCase{"FedoraWorkstation", fedora("Workstation Edition", "workstation"),
                    "Fedora Linux", "39", "", false},
        ReleaseCase{"VariantWordAlone", fedora("Server Edition", "other"), "Fedora Linux", "39", "",
                    true},
        ReleaseCase{"VariantIdAlone", fedora("Headless", "server"), "Fedora Linux", "39", "", true},
        ReleaseCase{"VariantIdIsTheWholeWord", fedora("Headless", "servers"), "Fedora Linux", "39",
                    "", false},
        ReleaseCase{"RedHatEnterpriseIsAServer",
                    files({{"NAME", "Red Hat Enterprise Linux"},
                           {"VERSION", "9.3 (Plow)"},
                           {"ID", "rhel"},
                           {"VERSION_ID", "9.3"}}),
                    "Red Hat Enterprise Linux", "9.3", "", true},
        ReleaseCase{"SuseServerWithServicePack",
                    files({{"NAME", "SLES"},
                           {"VERSION", "15-SP5"},
                           {"ID", "sles"},
                           {"ID_LIKE", "suse"},
                           {"VERSION_ID", "15.5"},
                           {"PRETTY_NAME", "SUSE Linux Enterprise Server 15 SP5"}}),
                    "SLES", "15.5", "5", true},
        ReleaseCase{"SuseDesktopIsNoServerThoughEnterprise",
                    files({{"NAME", "SLED Enterprise Desktop"},
                           {"VERSION", "12-SP10"},
                           {"ID", "sled"},
                           {"VERSION_ID", "12.10"},
                           {"PRETTY_NAME", "SUSE Linux Enterprise Desktop 12 SP10"}}),
                    "SLED Enterprise Desktop", "12.10", "10", false},
        ReleaseCase{"SuseWithoutServicePack",
                    files({{"NAME", "openSUSE Tumbleweed"},
                           {"ID", "opensuse-tumbleweed"},
                           {"ID_LIKE", "opensuse suse"},
                           {"VERSION_ID", "20240301"}}),
                    "openSUSE Tumbleweed", "20240301", "", false},
        ReleaseCase{"SuseServicePackNeedsItsNumber",
                    files({{"NAME", "SLES"},
                           {"VERSION", "15-SPx"},
                           {"ID", "sles"},
                           {"VERSION_ID", "15.4.7"}}),
                    "SLES", "15.4.7", "7", false},
        ReleaseCase{"SuseByItsKinAlone",
                    files({{"NAME", "Other Enterprise OS"},
                           {"ID", "other"},
                           {"ID_LIKE", "suse opensuse"},
                           {"VERSION", "1-SP2"},
                           {"VERSION_ID", "1.2"}}),
                    "Other Enterprise OS", "1.2", "2", false},
        ReleaseCase{"ServicePackOfOthersIsIgnored",
                    files({{"NAME", "Other"}, {"VERSION", "1-SP2"}, {"VERSION_ID", "1.2"}}),
                    "Other", "1.2", "", false},
        ReleaseCase{"RollingReleaseHasItsBuild",
                    files({{"NAME", "Arch Linux"}, {"ID", "arch"}, {"BUILD_ID", "rolling"}}),
                    "Arch Linux", "rolling", "", false},
        ReleaseCase{"VersionComesBeforeTheBuild",
                    files({{"NAME", "X"}, {"VERSION_ID", "3"}, {"BUILD_ID", "20240301.4"}}), "X",
                    "3", "", false},
        ReleaseCase{"ThirdComponentOfAnyVersion",
                    files({{"NAME", "Alpine Linux"}, {"VERSION_ID", "3.19.1"}}), "Alpine Linux",
                    "3.19.1", "1", false},
        ReleaseCase{"ThirdComponentEndsAtTheNextDot",
                    files({{"NAME", "X"}, {"VERSION_ID", "1.2.3.4"}}), "X", "1.2.3.4", "3", false},
        ReleaseCase{"LegacyRedHatNamesTheServer", legacy("Red Hat Enterprise Linux AS"),
                    "Red Hat Enterprise Linux AS", "6.1.0-18-amd64", "0-18-amd64", true},
        ReleaseCase{"LegacyCentosIsNone", legacy("CentOS"), "CentOS", "6.1.0-18-amd64",
                    "0-18-amd64", false},
        ReleaseCase{"LegacySuseServer", legacy("SUSE Linux Enterprise Server 11 (x86_64)"),
                    "SUSE Linux Enterprise Server 11 (x86_64)", "6.1.0-18-amd64", "0-18-amd64",
                    true},
        ReleaseCase{"LegacySuseDesktop", legacy("SUSE Linux Enterprise Desktop 11 (x86_64)"),
                    "SUSE Linux Enterprise Desktop 11 (x86_64)", "6.1.0-18-amd64", "0-18-amd64",
                    false},
        ReleaseCase{"NameComesBeforeTheLegacyName",
                    {{{"NAME", "New"}}, "Old", "", 0},
                    "New",
                    "6.1.0-18-amd64",
                    "0-18-amd64",
                    false},
        ReleaseCase{"EmptyFieldsCountAsAbsent",
                    {{{"NAME", ""}, {"VERSION_ID", ""}, {"BUILD_ID", ""}}, "Old", "", 0},
                    "Old",
                    "6.1.0-18-amd64",
                    "0-18-amd64",
                    false},
        ReleaseCase{"NothingAtAll", {}, "", "6.1.0-18-amd64", "0-18-amd64", false}),
    [](const auto& row) { return std::string(row.param.name); });

struct WordCase {
  const char* name;
  const char* system;
  bool server;
};

class ServerWord : public testing::TestWithParam<WordCase> {};

TEST_P(ServerWord, StandsAloneInBlanks) {
  EXPECT_EQ(GetParam().server, release_is_server(files({{"NAME", GetParam().system}})));
}

INSTANTIATE_TEST_SUITE_P(
    Names, ServerWord,
    testing::Values(WordCase{"Server", "Oracle Linux Server", true},
                    WordCase{"Enterprise", "Some Enterprise OS", true},
                    WordCase{"As", "Linux AS 4", true}, WordCase{"Es", "ES", true},
                    WordCase{"Ws", "Linux WS", true}, WordCase{"First", "Server OS", true},
                    WordCase{"PartOfAWord", "Serverless OS", false},
                    WordCase{"EndOfAWord", "MyServer OS", false},
                    WordCase{"LetterCaseCounts", "Oracle Linux server", false},
                    WordCase{"InBrackets", "Linux (Server)", false},
                    WordCase{"SuseHasFewerWords", "openSUSE Enterprise", false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ServerByChassis, IsOneMadeForServers) {
  for (int chassis = 0; chassis <= 40; ++chassis) {
    const bool server = chassis == 17 || chassis == 23 || chassis == 28 || chassis == 29;
    EXPECT_EQ(server, release_is_server(files({{"NAME", "Debian GNU/Linux"}}, "", chassis)))
        << "chassis " << chassis;
  }
}

TEST(ReleaseWithoutKernel, HasNoVersion) { EXPECT_EQ("", release_version({}, "")); }

struct MachineCase {
  const char* machine;
  const char* mode;
};

class BitMode : public testing::TestWithParam<MachineCase> {};

TEST_P(BitMode, IsThatOfTheMachineName) {
  EXPECT_EQ(GetParam().mode, release_bit_mode(GetParam().machine));
}

INSTANTIATE_TEST_SUITE_P(Machines, BitMode,
                         testing::Values(MachineCase{"x86_64", "1"}, MachineCase{"aarch64", "1"},
                                         MachineCase{"ppc64le", "1"}, MachineCase{"riscv64", "1"},
                                         MachineCase{"mips64", "1"}, MachineCase{"s390x", "1"},
                                         MachineCase{"loongarch64", "1"}, MachineCase{"s390", "0"},
                                         MachineCase{"i386", "0"}, MachineCase{"i686", "0"},
                                         MachineCase{"armv7l", "0"}, MachineCase{"armv8l", "0"},
                                         MachineCase{"ppc", "0"}),
                         [](const auto& row) { return std::string(row.param.machine); });

}  // namespace
}  // namespace quillon_com::orb::sysprops
