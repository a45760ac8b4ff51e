// tests/network/hostnames_test.cpp: network/hostnames.h on a scripted machine.
#include "network/hostnames.h"

#include <gtest/gtest.h>

#include "tests/support/fake_system.h"

namespace {

using quillon_com::orb::network::HostNames;
using Text = std::optional<std::string>;

struct NameCase {
  const char* name;
  Text kernel_domain;  // absent: cannot be read
  Text host;
  Text official;  // of the host name; absent: does not resolve
  Text domain;    // getdomainname's
  std::wstring domain_name, fqdn;
};

void PrintTo(const NameCase& row, std::ostream* out) { *out << row.name; }

class Names : public testing::TestWithParam<NameCase> {
 protected:
  void SetUp() override {
    system.nis_domain = GetParam().kernel_domain;
    system.host = GetParam().host;
    system.domain = GetParam().domain;
    if (GetParam().host && GetParam().official)
      system.officials[GetParam().host->substr(0, 2047)] = *GetParam().official;
  }
  orbtest::FakeSystem system;
};

TEST_P(Names, Domain) { EXPECT_EQ(GetParam().domain_name, HostNames(system).domain_name()); }

TEST_P(Names, FullName) { EXPECT_EQ(GetParam().fqdn, HostNames(system).fqdn()); }

TEST_P(Names, BothFromOneObjectWithOneLookUpInEitherOrder) {
  HostNames domain_first(system);
  EXPECT_EQ(GetParam().domain_name, domain_first.domain_name());
  EXPECT_EQ(GetParam().fqdn, domain_first.fqdn());
  EXPECT_LE(system.look_ups.size(), 1u);
  system.look_ups.clear();
  HostNames name_first(system);
  EXPECT_EQ(GetParam().fqdn, name_first.fqdn());
  EXPECT_EQ(GetParam().domain_name, name_first.domain_name());
  EXPECT_EQ(GetParam().fqdn, name_first.fqdn());
  EXPECT_LE(system.look_ups.size(), 1u);
}

const Text kNone;
const Text kEmpty = "";

const NameCase kRows[] = {
    {"KernelDomainIsTheDomain", "example.com", "box", "box.other.org", "x", L"example.com",
     L"box.other.org"},
    {"KernelDomainNeedsNoHostName", "example.com", kNone, kNone, kNone, L"example.com", L"N/A"},
    {"KernelDomainNeedsNoDot", "corp", "box", kNone, "corp", L"corp", L"box.corp"},
    {"UnreadableKernelDomainLeavesTheOfficialName", kNone, "box", "box.example.com", kNone,
     L"example.com", L"box.example.com"},
    {"EmptyKernelDomainLeavesTheOfficialName", kEmpty, "box", "box.example.com", "nis",
     L"example.com", L"box.example.com"},
    {"DomainBehindTheFirstDotOnly", kEmpty, "box", "box.a.b.c", kNone, L"a.b.c", L"box.a.b.c"},
    {"UnreadableHostName", kEmpty, kNone, kNone, "example.com", L"N/A", L"N/A"},
    {"OfficialNameWithoutDot", kEmpty, "box", "box", "example.com", L"N/A", L"box"},
    {"OfficialNameOtherThanTheHostName", kEmpty, "box", "alias.example.org", kNone, L"example.org",
     L"alias.example.org"},
    {"OfficialNameBeginsWithADot", kEmpty, "box", ".example.com", kNone, L"example.com",
     L".example.com"},
    {"OfficialNameEndsWithADot", kEmpty, "box", "box.example.com.", kNone, L"example.com.",
     L"box.example.com."},
    {"OfficialNameWithNothingBehindItsOnlyDot", kEmpty, "box", "box.", kNone, L"", L"box."},
    {"OfficialNameOfOneDot", kEmpty, "box", ".", kNone, L"", L"."},
    {"EmptyOfficialName", kEmpty, "box", kEmpty, "example.com", L"N/A", L""},
    {"NoLookUpDomainAppended", kEmpty, "box", kNone, "example.com", L"N/A", L"box.example.com"},
    {"QuirkNoLookUpEmptyDomainEndsInADot", kEmpty, "box", kNone, kEmpty, L"N/A", L"box."},
    {"NoLookUpUnreadableDomainAddsNothing", kEmpty, "box", kNone, kNone, L"N/A", L"box"},
    {"NoLookUpHostNameWithDotsTellsNoDomain", kEmpty, "box.example.com", kNone, kNone, L"N/A",
     L"box.example.com"},
    {"EmptyHostNameIsLookedUpToo", kEmpty, kEmpty, "x.example.com", kNone, L"example.com",
     L"x.example.com"},
    {"EmptyHostNameThatDoesNotResolve", kEmpty, kEmpty, kNone, "d", L"N/A", L".d"},
    {"TextsAreUtf8", kEmpty, "b\xc3\xb6x", kNone, "\xe2\x82\xac.eu", L"N/A", L"b\u00f6x.\u20ac.eu"},
    {"TextsEndBeforeTheFirstByteThatIsNoUtf8", "good\xffrest", "box", "b.x\xff", kNone, L"good",
     L"b.x"},
    {"KernelDomainCutTo2047", std::string(3000, 'k'), "box", "box.x", kNone,
     std::wstring(2047, L'k'), L"box.x"},
    {"HostNameAndDomainCutTo2047Each", kEmpty, std::string(2048, 'h'), kNone,
     std::string(2048, 'd'), L"N/A", std::wstring(2047, L'h') + L"." + std::wstring(2047, L'd')},
    {"OfficialNameOfAnyLength", kEmpty, "box", "box." + std::string(5000, 'o'), kNone,
     std::wstring(5000, L'o'), L"box." + std::wstring(5000, L'o')},
};

INSTANTIATE_TEST_SUITE_P(Rules, Names, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

TEST(HostNames, NoLookUpForTheDomainWhenTheKernelHasOne) {
  orbtest::FakeSystem system;
  system.nis_domain = "example.com";
  system.host = "box";
  EXPECT_EQ(L"example.com", HostNames(system).domain_name());
  EXPECT_TRUE(system.look_ups.empty());
}

TEST(HostNames, NoLookUpWithoutAHostName) {
  orbtest::FakeSystem system;
  HostNames names(system);
  EXPECT_EQ(L"N/A", names.domain_name());
  EXPECT_EQ(L"N/A", names.fqdn());
  EXPECT_TRUE(system.look_ups.empty());
}

TEST(HostNames, LooksUpTheHostNameOnceWhetherItResolvesOrNot) {
  for (bool resolves : {true, false}) {
    orbtest::FakeSystem system;
    system.host = "box";
    if (resolves) system.officials["box"] = "box.example.com";
    HostNames names(system);
    names.domain_name();
    names.fqdn();
    names.domain_name();
    EXPECT_EQ(std::vector<std::string>{"box"}, system.look_ups) << resolves;
  }
}

TEST(HostNames, ANewObjectAsksAgain) {
  orbtest::FakeSystem system;
  system.host = "box";
  HostNames(system).fqdn();
  system.officials["box"] = "box.example.com";
  EXPECT_EQ(L"box.example.com", HostNames(system).fqdn());
  EXPECT_EQ(2u, system.look_ups.size());
}

}  // namespace
