// tests/session/loggedonusers_test.cpp: the scan for users and the lists, on a scripted machine.
#include "session/loggedonusers.h"

#include <gtest/gtest.h>

#include <new>
#include <set>
#include <string>

#include "session/collect.h"
#include "tests/session/scripted_users.h"
#include "tests/support/fake_system.h"

namespace {

using namespace quillon_com::orb::session;
using namespace orbtest;
using Names = std::set<std::string>;

const std::string kFirstLine = "Some changes happen in the logon sessions.\n";
const std::string kLastLine = "Coming out from the logon session collections.\n";

struct Users {
  Names network, local;
  std::string lines;
};

Users collect(const FakeSystem& system, bool skip_local = false) {
  Users users;
  CapturedStream lines;
  collect_logged_on_users(system, lines.get(), &users.network, &users.local, skip_local);
  users.lines = lines.text();
  return users;
}

std::string collect_line(const FakeSystem& system) {
  CapturedStream lines;
  std::string result = "old";
  collect_all_users(system, lines.get(), &result);
  return result;
}

FakeSystem machine_with(const std::vector<std::string>& users) {
  FakeSystem system;
  for (const std::string& user : users) system.sessions.push_back(session_of(user));
  return system;
}

TEST(Collect, NobodyWritesTheFrameAlone) {
  const FakeSystem system;
  const Users users = collect(system);
  EXPECT_EQ(Names{}, users.network);
  EXPECT_EQ(Names{}, users.local);
  EXPECT_EQ(kFirstLine + kLastLine, users.lines);
  EXPECT_EQ(1U, system.rewinds);
}

TEST(Collect, EveryEntryHasItsLineAndOnlyType7IsAUser) {
  FakeSystem system;
  system.sessions = {{2, "~~", "reboot", "~"},      {1, "~~", "runlevel", "~"},
                     {6, "tty1", "LOGIN", "tty1"},  {7, "ts/0", "Jane", "pts/0"},
                     {8, "ts/1", "ghost", "pts/1"}, {0, "", "", ""},
                     {-3, "x", "odd", "y"},         {9, "a", "acct", "b"}};
  const Users users = collect(system);
  EXPECT_EQ(Names{}, users.network);
  EXPECT_EQ(Names{"jane"}, users.local);
  EXPECT_EQ(kFirstLine +
                "2  ~~  reboot  ~ \n"
                "1  ~~  runlevel  ~ \n"
                "6  tty1  LOGIN  tty1 \n"
                "7  ts/0  Jane  pts/0 \n"
                "Local User Logged on jane \n"
                "8  ts/1  ghost  pts/1 \n"
                "0       \n"
                "-3  x  odd  y \n"
                "9  a  acct  b \n" +
                kLastLine,
            users.lines);
}

TEST(Collect, TwoSessionsOfALocalUserAreOneMemberAndTwoLines) {
  FakeSystem system;
  system.sessions = {session_of("jane", "tty1"), session_of("JANE", "pts/0")};
  const Users users = collect(system);
  EXPECT_EQ(Names{"jane"}, users.local);
  EXPECT_EQ(kFirstLine +
                "7  ts/0  jane  tty1 \nLocal User Logged on jane \n"
                "7  ts/0  JANE  pts/0 \nLocal User Logged on jane \n" +
                kLastLine,
            users.lines);
}

TEST(Collect, GroupMethodNamesTheNetworkUser) {
  FakeSystem system = machine_with({"JDoe", "JDoe"});
  system.groups["JDoe"] = "CORP\\Domain Users";
  const Users users = collect(system);
  EXPECT_EQ(Names{"corp\\jdoe"}, users.network);
  EXPECT_EQ(Names{}, users.local);
  const std::string lines =
      "7  ts/0  JDoe  pts/0 \nfound group struct corp. \n"
      "Network User logged on corp\\jdoe \n";
  EXPECT_EQ(kFirstLine + lines + lines + kLastLine, users.lines);
  EXPECT_TRUE(system.commands_run.empty());
}

TEST(Collect, FirstMethodThatFindsEndsTheChain) {
  FakeSystem system = machine_with({"u"});
  const std::string principal = directory_query("u", kPrincipal);
  const std::string authority = directory_query("u", kAuthority);
  system.commands[authority] = "u@third;\n";
  EXPECT_EQ(Names{"third\\u"}, collect(system).network);
  EXPECT_EQ((std::vector<std::string>{principal, authority}), system.commands_run);

  system.commands_run.clear();
  system.commands[principal] = "u@second\n";
  EXPECT_EQ(Names{"second\\u"}, collect(system).network);
  EXPECT_EQ(std::vector<std::string>{principal}, system.commands_run);

  system.commands_run.clear();
  system.groups["u"] = "first\\domain users";
  EXPECT_EQ(Names{"first\\u"}, collect(system).network);
  EXPECT_TRUE(system.commands_run.empty());
}

TEST(Collect, EachDomainGivesAName) {
  FakeSystem system = machine_with({"U"});
  system.commands[directory_query("U", kPrincipal)] = "u@B.example\nu@a.example\n";
  const Users users = collect(system);
  EXPECT_EQ((Names{"a.example\\u", "b.example\\u"}), users.network);
  EXPECT_EQ(kFirstLine +
                "7  ts/0  U  pts/0 \nNetwork User logged on b.example\\u \n"
                "Network User logged on a.example\\u \n" +
                kLastLine,
            users.lines);
}

TEST(Collect, EmptyPartsGiveNamesToo) {
  FakeSystem system = machine_with({"u", "v"});
  system.commands[directory_query("u", kPrincipal)] = "u@a||b\n";
  system.commands[directory_query("v", kAuthority)] = "v@-;\n";
  EXPECT_EQ((Names{"a\\u", "\\u", "b\\u", "\\v"}), collect(system).network);
}

TEST(Collect, SkippedLocalUsersLeaveNoTrace) {
  FakeSystem system = machine_with({"jane", "u"});
  system.groups["u"] = "corp\\domain users";
  const Users users = collect(system, true);
  EXPECT_EQ(Names{"corp\\u"}, users.network);
  EXPECT_EQ(Names{}, users.local);
  EXPECT_EQ(std::string::npos, users.lines.find("Local User"));
  EXPECT_NE(std::string::npos, users.lines.find("7  ts/0  jane  pts/0 \n"));
}

TEST(Collect, AddsToWhatTheSetsHold) {
  const FakeSystem system = machine_with({"jane"});
  Names network{"corp\\old"};
  Names local{"zoe"};
  CapturedStream lines;
  collect_logged_on_users(system, lines.get(), &network, &local, false);
  EXPECT_EQ(Names{"corp\\old"}, network);
  EXPECT_EQ((Names{"jane", "zoe"}), local);
}

TEST(Collect, ScanStartsAtTheCursorAndRewindsBehind) {
  const FakeSystem system = machine_with({"first", "second"});
  quillon_com::orb::platform::SessionEntry taken;
  ASSERT_TRUE(system.next_session_entry(&taken));
  EXPECT_EQ(Names{"second"}, collect(system).local);
  EXPECT_EQ(1U, system.rewinds);
  EXPECT_EQ((Names{"first", "second"}), collect(system).local);
  EXPECT_EQ(2U, system.rewinds);
}

TEST(Collect, AScanThatAnExceptionEndsRewindsToo) {
  class Failing : public FakeSystem {
   public:
    bool command_output(const std::string&, size_t, std::string*) const override {
      throw std::bad_alloc();
    }
  };
  Failing system;
  system.sessions = {session_of("first"), session_of("second")};
  EXPECT_THROW(collect(system), std::bad_alloc);
  EXPECT_EQ(1U, system.rewinds);
}

TEST(Collect, QuirkASessionWithoutNameIsTheLocalUserWithoutName) {
  const FakeSystem system = machine_with({""});
  const Users users = collect(system);
  EXPECT_EQ(Names{""}, users.local);
  EXPECT_EQ(kFirstLine + "7  ts/0    pts/0 \nLocal User Logged on  \n" + kLastLine, users.lines);
  EXPECT_TRUE(system.commands_run.empty());
}

TEST(Collect, NamesAShellActsOnAreLocalUsers) {
  const FakeSystem system = machine_with({"x;reboot", "$(id)", "a b"});
  EXPECT_EQ((Names{"x;reboot", "$(id)", "a b"}), collect(system).local);
  EXPECT_TRUE(system.commands_run.empty());
}

TEST(Collect, FormatCharactersAndHighBytesComeThrough) {
  const FakeSystem system = machine_with({"%s%n", "\xC3\xA9t\xC3\xA9\xFF"});
  const Users users = collect(system);
  EXPECT_EQ((Names{"%s%n", "\xC3\xA9t\xC3\xA9\xFF"}), users.local);
  EXPECT_NE(std::string::npos, users.lines.find("Local User Logged on %s%n \n"));
}

TEST(Collect, ExceptionInTheGroupMethodGoesOnToTheNext) {
  class Throwing : public FakeSystem {
   public:
    bool primary_group(const std::string&, std::string*) const override { throw std::bad_alloc(); }
  };
  Throwing system;
  system.sessions = {session_of("u")};
  system.commands[directory_query("u", kPrincipal)] = "u@a\n";
  const Users users = collect(system);
  EXPECT_EQ(Names{"a\\u"}, users.network);
  EXPECT_EQ(kFirstLine +
                "7  ts/0  u  pts/0 \nDomain name can't not be found.\n"
                "Network User logged on a\\u \n" +
                kLastLine,
            users.lines);
}

TEST(Lists, AreSortedByBytes) {
  FakeSystem system = machine_with({"zoe", "Bob", "a_b", "a-b", "\xC3\xA9", "n2", "n1"});
  system.groups["n1"] = "corp\\domain users";
  system.groups["n2"] = "apex\\domain users";
  CapturedStream lines;
  std::string network = "old";
  std::string local = "old";
  collect_user_lists(system, lines.get(), &network, &local, false);
  EXPECT_EQ("apex\\n2,corp\\n1", network);
  EXPECT_EQ("a-b,a_b,bob,zoe,\xC3\xA9", local);
}

TEST(Lists, QuirkEmptySetsLeaveTheirListAsPassed) {
  const FakeSystem nobody;
  CapturedStream lines;
  std::string network = "kept";
  std::string local = "kept too";
  collect_user_lists(nobody, lines.get(), &network, &local, false);
  EXPECT_EQ("kept", network);
  EXPECT_EQ("kept too", local);
}

TEST(Lists, QuirkSkippedLocalListIsNotTouched) {
  FakeSystem system = machine_with({"jane", "u"});
  system.groups["u"] = "corp\\domain users";
  CapturedStream lines;
  std::string network = "old";
  std::string local = "kept";
  collect_user_lists(system, lines.get(), &network, &local, true);
  EXPECT_EQ("corp\\u", network);
  EXPECT_EQ("kept", local);
}

TEST(Line, NobodyIsEmpty) { EXPECT_EQ("", collect_line(FakeSystem())); }

TEST(Line, LocalUsersAlone) { EXPECT_EQ("bob,jane", collect_line(machine_with({"jane", "bob"}))); }

TEST(Line, NetworkUsersComeFirst) {
  FakeSystem system = machine_with({"alice", "zed"});
  system.groups["zed"] = "corp\\domain users";
  EXPECT_EQ("corp\\zed,alice", collect_line(system));
  system.sessions.erase(system.sessions.begin());
  EXPECT_EQ("corp\\zed", collect_line(system));
}

TEST(Line, JoinOf127BytesStays) {
  const std::string name(125, 'b');
  EXPECT_EQ("a," + name, collect_line(machine_with({"a", name})));
}

TEST(Line, QuirkJoinOf128BytesIsCut) {
  EXPECT_EQ("a,...", collect_line(machine_with({"a", std::string(126, 'b')})));
}

TEST(Line, JoinOf129BytesIsCut) {
  EXPECT_EQ("a,...", collect_line(machine_with({"a", std::string(127, 'b')})));
}

TEST(Line, QuirkOneNameOf130BytesHasNoMark) {
  EXPECT_EQ(std::string(128, 'a'), collect_line(machine_with({std::string(130, 'a')})));
}

TEST(Line, LimitCountsNetworkAndLocalUsersTogether) {
  FakeSystem system = machine_with({std::string(60, 'l'), "n"});
  system.groups["n"] = std::string(70, 'd') + "\\domain users";
  EXPECT_EQ(std::string(70, 'd') + "\\n,...", collect_line(system));
}

TEST(Host, StreamIsStandardOutput) { EXPECT_EQ(stdout, myfd()); }

}  // namespace
