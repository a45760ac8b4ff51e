// tests/session/domains_test.cpp: the domain by the primary group and by the directory service.
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "session/collect.h"
#include "session/loggedonusers.h"
#include "tests/session/scripted_users.h"
#include "tests/support/fake_system.h"

namespace {

using namespace quillon_com::orb::session;
using namespace orbtest;

struct GroupCase {
  const char* name;
  std::optional<std::string> group;
  bool found;
  const char* domain;  // afterwards; it held "old"
  const char* lines;
};

class DomainByGroup : public testing::TestWithParam<GroupCase> {};

TEST_P(DomainByGroup, Finds) {
  FakeSystem system;
  if (GetParam().group) system.groups["JDoe"] = *GetParam().group;
  CapturedStream lines;
  std::string domain = "old";
  EXPECT_EQ(GetParam().found, find_domain_by_group(system, lines.get(), "JDoe", &domain));
  EXPECT_EQ(GetParam().domain, domain);
  EXPECT_EQ(GetParam().lines, lines.text());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DomainByGroup,
    testing::Values(GroupCase{"NoAccountOrGroup", std::nullopt, false, "old", ""},
                    GroupCase{"LocalGroup", "staff", false, "old", ""},
                    GroupCase{"EmptyGroup", "", false, "old", ""},
                    GroupCase{"DomainUsers", "CORP\\Domain Users", true, "corp",
                              "found group struct corp. \n"},
                    GroupCase{"AnyCase", "Corp.Example\\DOMAIN USERS", true, "corp.example",
                              "found group struct corp.example. \n"},
                    GroupCase{"WithoutBackslash", "domain users", false, "old", ""},
                    GroupCase{"AnotherGroupOfADomain", "CORP\\Engineers", false, "old", ""},
                    GroupCase{"WordsAnywhere", "the domain users\\x", true, "the domain users",
                              "found group struct the domain users. \n"},
                    GroupCase{"FirstPartOfSeveral", "a\\b\\domain users", true, "a",
                              "found group struct a. \n"},
                    GroupCase{"EmptyDomain", "\\domain users", true, "", "found group struct . \n"},
                    GroupCase{"TwoBlanksAreOtherWords", "CORP\\domain  users", false, "old", ""}),
    [](const auto& row) { return row.param.name; });

// A machine whose look-ups throw.
template <class Exception>
class ThrowingSystem : public FakeSystem {
 public:
  explicit ThrowingSystem(Exception exception) : exception_(exception) {}
  bool primary_group(const std::string&, std::string*) const override { throw exception_; }
  bool command_output(const std::string&, size_t, std::string*) const override { throw exception_; }

 private:
  Exception exception_;
};

template <class Exception>
void expect_caught(Exception exception) {
  const ThrowingSystem<Exception> system(exception);
  CapturedStream lines;
  std::string domain = "old";
  EXPECT_FALSE(find_domain_by_group(system, lines.get(), "jdoe", &domain));
  EXPECT_EQ("old", domain);
  EXPECT_EQ("Domain name can't not be found.\n", lines.text());
}

TEST(DomainByGroupFailures, QuirkExceptionsBecomeALineAndFalse) {
  expect_caught(std::bad_alloc());
  expect_caught(std::length_error("too long"));
  expect_caught(std::out_of_range("position"));
}

TEST(DomainByDirectoryFailures, ExceptionsPass) {
  const ThrowingSystem<std::bad_alloc> system{std::bad_alloc()};
  std::string domain = "old";
  EXPECT_THROW(FindDomainNameViaDscl(system, "jdoe", kPrincipal, &domain), std::bad_alloc);
}

struct DirectoryCase {
  const char* name;
  const char* attribute;
  std::optional<std::string> answer;
  bool found;
  const char* domain;  // afterwards; it held "old"
};

class DomainByDirectory : public testing::TestWithParam<DirectoryCase> {};

TEST_P(DomainByDirectory, Finds) {
  FakeSystem system;
  const std::string query = directory_query("jdoe", GetParam().attribute);
  if (GetParam().answer) system.commands[query] = *GetParam().answer;
  std::string domain = "old";
  EXPECT_EQ(GetParam().found, FindDomainNameViaDscl(system, "jdoe", GetParam().attribute, &domain));
  EXPECT_EQ(GetParam().domain, domain);
  EXPECT_EQ(std::vector<std::string>{query}, system.commands_run);
}

std::string principal_line(size_t length) {
  const std::string start = "userPrincipalName: jdoe@";
  return start + std::string(length - start.size(), 'x');
}

INSTANTIATE_TEST_SUITE_P(
    Principal, DomainByDirectory,
    testing::Values(
        DirectoryCase{"CannotRun", kPrincipal, std::nullopt, false, "old"},
        DirectoryCase{"NoOutput", kPrincipal, "", false, "old"},
        DirectoryCase{"ZeroByteFirstIsNoOutput", kPrincipal, std::string("\0a@b", 4), false, "old"},
        DirectoryCase{"OutputWithoutAt", kPrincipal, "name: eDSRecordNotFound\n", false, ""},
        DirectoryCase{"OneName", kPrincipal, "userPrincipalName: JDoe@Corp.Example\n", true,
                      "corp.example"},
        DirectoryCase{"OneLineWithoutEnd", kPrincipal, "userPrincipalName: j@a.example", true,
                      "a.example"},
        DirectoryCase{"TwoNames", kPrincipal, "upn: u@a.example\nupn: u@b.example\n", true,
                      "a.example|b.example"},
        DirectoryCase{"OrderAndDoublesStay", kPrincipal, "u@b\nu@a\nu@b\n", true, "b|a|b"},
        DirectoryCase{"LinesWithoutAtAreLeftOut", kPrincipal, "x\nu@a\ny\n", true, "a"},
        DirectoryCase{"LinesAreTrimmed", kPrincipal, "  (u@a.example) \r\n", true, "a.example"},
        DirectoryCase{"FirstAtDivides", kPrincipal, "u@a@b\n", true, "a@b"},
        DirectoryCase{"AtTheEndIsTrimmedOff", kPrincipal, "u@\n", false, ""},
        DirectoryCase{"AtTheStartIsTrimmedOff", kPrincipal, "@corp\n", false, ""},
        DirectoryCase{"NothingBehindAZeroByte", kPrincipal, std::string("u@a\0\nu@b", 8), true,
                      "a"},
        DirectoryCase{"HighBytesAtTheEndsAreTrimmed", kPrincipal, "u@corp\xC3\xA9\n", true, "corp"},
        DirectoryCase{"InnerHighBytesStay", kPrincipal, "u@c\xC3\xA9p\n", true, "c\xC3\xA9p"},
        DirectoryCase{"QuirkSeparatorInAName", kPrincipal, "u@a|b\n", true, "a|b"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Authority, DomainByDirectory,
    testing::Values(
        DirectoryCase{"CannotRun", kAuthority, std::nullopt, false, "old"},
        DirectoryCase{"Realm", kAuthority, "OAA: ;Kerberosv5;;jdoe@CORP.EXAMPLE;CORP;\n", true,
                      "corp.example"},
        DirectoryCase{"WithoutSemicolonBehindAt", kAuthority, ";a;jdoe@corp.example\n", false, ""},
        DirectoryCase{"NothingBetween", kAuthority, "jdoe@;corp\n", false, ""},
        DirectoryCase{"FirstAtAndNextSemicolon", kAuthority, "u@a;v@b;\n", true, "a"},
        DirectoryCase{"RealmIsTrimmed", kAuthority, "u@ a.example. ;\n", true, "a.example"},
        DirectoryCase{"SemicolonOnALaterLine", kAuthority, "u@a\nb;\n", true, "a\nb"},
        DirectoryCase{"WithoutAt", kAuthority, ";basic;\n", false, ""},
        DirectoryCase{"QuirkNoLetterOrDigitIsAnEmptyDomain", kAuthority, "u@...;\n", true, ""}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(Other, DomainByDirectory,
                         testing::Values(DirectoryCase{"AttributeGivesNothing", "RealName",
                                                       "u@a;b\n", false, ""},
                                         DirectoryCase{"AttributeInAnotherCase",
                                                       "userprincipalname", "u@a;\n", false, ""}),
                         [](const auto& row) { return row.param.name; });

TEST(DomainByDirectoryLimits, OneThousandAndTwentyFourBytesCount) {
  FakeSystem system;
  const std::string query = directory_query("jdoe", kPrincipal);
  std::string domain;
  system.commands[query] = principal_line(1024);
  EXPECT_TRUE(FindDomainNameViaDscl(system, "jdoe", kPrincipal, &domain));
  EXPECT_EQ(std::string(1000, 'x'), domain);
  system.commands[query] = principal_line(1023) + "yz";
  EXPECT_TRUE(FindDomainNameViaDscl(system, "jdoe", kPrincipal, &domain));
  EXPECT_EQ(std::string(999, 'x') + "y", domain);
}

TEST(DomainByDirectoryLimits, QuirkCommandIsCutAt255Bytes) {
  const std::string whole = directory_query("", kPrincipal);
  for (size_t length : {255 - whole.size(), 256 - whole.size(), size_t{300}}) {
    FakeSystem system;
    const std::string user(length, 'u');
    const std::string command = directory_query(user, kPrincipal).substr(0, 255);
    system.commands[command] = "u@a\n";
    std::string domain;
    EXPECT_TRUE(FindDomainNameViaDscl(system, user, kPrincipal, &domain)) << length;
    EXPECT_EQ(std::vector<std::string>{command}, system.commands_run);
  }
}

TEST(DomainByDirectory, NamesKeepTheirCaseInTheCommand) {
  FakeSystem system;
  system.commands[directory_query("JDoe", kPrincipal)] = "u@a\n";
  std::string domain;
  EXPECT_TRUE(FindDomainNameViaDscl(system, "JDoe", kPrincipal, &domain));
}

TEST(Command, NamesThatAShellLeavesAlone) {
  for (const char* name : {"jdoe", "J.Doe", "j_doe-2", "a+b", "u@corp.example", "x", "0", "...",
                           ".hidden", "+", "\xC3\xA9t\xC3\xA9", "a-"}) {
    EXPECT_TRUE(fit_for_command(name)) << name;
  }
}

TEST(Command, NamesThatAShellOrAPathActsOnAreNeverPutIntoOne) {
  for (const char* name : {"", ".", "..", "-", "-rf", "--help", "corp\\jdoe", "a b", "../root"}) {
    EXPECT_FALSE(fit_for_command(name)) << name;
  }
  const std::string passed = "._-+@";
  for (int value = 0; value < 128; ++value) {
    const char byte = static_cast<char>(value);
    const bool alnum = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                       (byte >= '0' && byte <= '9');
    const bool fit = alnum || (byte != '\0' && passed.find(byte) != std::string::npos);
    EXPECT_EQ(fit, fit_for_command(std::string("a") + byte + "b")) << value;
    EXPECT_EQ(fit, fit_for_command(std::string("a") + byte)) << value;
  }
}

TEST(Command, UnfitNamesRunNothing) {
  for (const std::string& user :
       {std::string("x;reboot"), std::string("$(id)"), std::string("`id`"), std::string("a\nb"),
        std::string("a|b"), std::string(), std::string("a\0b", 3), std::string("'")}) {
    FakeSystem system;
    std::string domain = "old";
    EXPECT_FALSE(FindDomainNameViaDscl(system, user, kPrincipal, &domain)) << user;
    EXPECT_FALSE(FindDomainNameViaDscl(system, "jdoe", user, &domain)) << user;
    EXPECT_EQ("old", domain);
    EXPECT_TRUE(system.commands_run.empty()) << user;
  }
}

}  // namespace
