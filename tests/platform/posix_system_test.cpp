// tests/platform/posix_system_test.cpp: platform/posix_system.h on the running machine.
#include "platform/posix_system.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/times.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>

#include "platform/linux_system.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/temp_dir.h"

namespace {

using quillon_com::orb::platform::host;
using quillon_com::orb::platform::KernelNames;
using quillon_com::orb::platform::program_exists;
using quillon_com::orb::platform::read_descriptor;
using quillon_com::orb::platform::System;
using quillon_com::orb::platform::TickCount;
using namespace std::string_literals;

std::string output_of(const std::string& command, size_t limit = 1024) {
  std::string output = "untouched";
  return host().command_output(command, limit, &output) ? output : "false, " + output;
}

size_t open_descriptors() {
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    ++count;
  }
  return count;
}

TEST(CommandOutput, IsReadToItsEnd) { EXPECT_EQ("one\ntwo\n", output_of("printf 'one\\ntwo\\n'")); }

TEST(CommandOutput, EndsAtTheLimit) {
  EXPECT_EQ("abc", output_of("printf abcdef", 3));
  EXPECT_EQ("abcdef", output_of("printf abcdef", 6));
  EXPECT_EQ("", output_of("printf abcdef", 0));
}

TEST(CommandOutput, ComesFromTheShell) { EXPECT_EQ("B\n", output_of("echo a  |  tr a B")); }

TEST(CommandOutput, HoldsZeroBytes) { EXPECT_EQ("a\0b"s, output_of("printf 'a\\0b'")); }

TEST(CommandOutput, FailingCommandHasBeenStarted) {
  EXPECT_EQ("", output_of("false"));
  EXPECT_EQ("x", output_of("printf x; exit 3"));
}

TEST(CommandOutput, CommandThatKeepsPrintingIsEnded) {
  EXPECT_EQ("y\ny\n", output_of("yes", 4));
  EXPECT_EQ("y\ny\n", output_of("yes | cat", 4));
}

TEST(CommandOutput, CommandThatKeepsPrintingIsEndedWhereThePipeSignalIsIgnored) {
  const auto before = signal(SIGPIPE, SIG_IGN);
  EXPECT_EQ("y\ny\n", output_of("yes 2>/dev/null", 4));
  signal(SIGPIPE, before);
}

TEST(CommandOutput, LeavesNoChildAndNoDescriptor) {
  const size_t before = open_descriptors();
  for (int i = 0; i < 20; ++i) output_of("yes", 4);
  EXPECT_EQ(before, open_descriptors());
  EXPECT_EQ(-1, waitpid(-1, nullptr, WNOHANG));
  EXPECT_EQ(ECHILD, errno);
}

TEST(CommandOutput, MissingProgramStartsNoShell) {
  // A shell would run the second command.
  EXPECT_EQ("false, untouched", output_of("/nowhere/at-all read | printf started"));
  EXPECT_EQ("false, untouched", output_of("no-such-program-anywhere; printf started"));
  EXPECT_EQ("false, untouched", output_of(""));
}

TEST(ProgramExists, PathOrWordAlongPath) {
  orbtest::TempDir folder;
  const std::string program = folder.write("bin/tool", "#!/bin/sh\n");
  chmod(program.c_str(), 0755);
  const std::string plain = folder.write("bin/plain", "text");
  chmod(plain.c_str(), 0644);
  folder.make_dir("bin/folder");
  orbtest::ScopedEnvironment path("PATH", "/nowhere:" + folder.path("bin"));
  EXPECT_TRUE(program_exists(program));
  EXPECT_TRUE(program_exists(program + " read x"));
  EXPECT_TRUE(program_exists("tool"));
  EXPECT_TRUE(program_exists("  tool -x"));
  EXPECT_TRUE(program_exists("tool|grep x"));
  EXPECT_TRUE(program_exists("tool;x"));
  EXPECT_FALSE(program_exists("plain"));
  EXPECT_FALSE(program_exists(plain));
  EXPECT_FALSE(program_exists("folder"));
  EXPECT_FALSE(program_exists("tools"));
  EXPECT_FALSE(program_exists("bin/tool"));  // a path is not sought along PATH
  EXPECT_FALSE(program_exists(""));
  EXPECT_FALSE(program_exists("   "));
  EXPECT_FALSE(program_exists("| tool"));
}

TEST(ProgramExists, WithoutPathTheUsualFolders) {
  orbtest::ScopedEnvironment path("PATH", std::nullopt);
  EXPECT_TRUE(program_exists("sh"));
}

TEST(ProgramExists, EmptyPathMemberIsTheWorkingFolder) {
  orbtest::TempDir folder;
  chmod(folder.write("tool-here", "#!/bin/sh\n").c_str(), 0755);
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  orbtest::ScopedEnvironment path("PATH", "/nowhere:");
  EXPECT_TRUE(program_exists("tool-here"));
  std::filesystem::current_path(before);
}

TEST(File, SizeAndBytes) {
  orbtest::TempDir folder;
  const std::string path = folder.write("file", "0123456789");
  uint64_t size = 0;
  std::string bytes = "old";
  EXPECT_TRUE(host().file_size(path, &size));
  EXPECT_EQ(10u, size);
  EXPECT_TRUE(host().file_bytes(path, 4, &bytes));
  EXPECT_EQ("0123", bytes);
  EXPECT_TRUE(host().file_bytes(path, 10, &bytes));
  EXPECT_EQ("0123456789", bytes);
  EXPECT_TRUE(host().file_bytes(path, SIZE_MAX, &bytes));
  EXPECT_EQ("0123456789", bytes);
  EXPECT_TRUE(host().file_bytes(path, 0, &bytes));
  EXPECT_EQ("", bytes);
}

TEST(File, LargerThanOneReadIsWhole) {
  orbtest::TempDir folder;
  std::string whole;
  for (int i = 0; whole.size() < 300000; ++i) whole += std::to_string(i);
  std::string bytes;
  EXPECT_TRUE(host().file_bytes(folder.write("file", whole), 1 << 20, &bytes));
  EXPECT_EQ(whole, bytes);
  EXPECT_TRUE(host().file_bytes(folder.path("file"), 100001, &bytes));
  EXPECT_EQ(whole.substr(0, 100001), bytes);
}

TEST(File, AbsentLeavesTheResultsAlone) {
  uint64_t size = 5;
  std::string bytes = "old";
  EXPECT_FALSE(host().file_size("/nowhere/at-all", &size));
  EXPECT_FALSE(host().file_bytes("/nowhere/at-all", 10, &bytes));
  EXPECT_FALSE(host().file_size("", &size));
  EXPECT_EQ(5u, size);
  EXPECT_EQ("old", bytes);
}

TEST(File, FolderIsOpenedAndGivesNothing) {
  orbtest::TempDir folder;
  std::string bytes = "old";
  EXPECT_TRUE(host().file_bytes(folder.path(), 10, &bytes));
  EXPECT_EQ("", bytes);
}

TEST(File, PipeThatNobodyWritesToDoesNotBlock) {
  orbtest::TempDir folder;
  ASSERT_EQ(0, mkfifo(folder.path("pipe").c_str(), 0600));
  std::string bytes = "old";
  EXPECT_TRUE(host().file_bytes(folder.path("pipe"), 10, &bytes));
  EXPECT_EQ("", bytes);
}

TEST(File, LeavesNoDescriptor) {
  orbtest::TempDir folder;
  const std::string path = folder.write("file", "0123456789");
  const size_t before = open_descriptors();
  std::string bytes;
  for (int i = 0; i < 50; ++i) host().file_bytes(path, 4, &bytes);
  for (int i = 0; i < 50; ++i) host().file_bytes(folder.path(), 4, &bytes);
  EXPECT_EQ(before, open_descriptors());
}

TEST(ReadDescriptor, AppendsAndStopsAtAnError) {
  std::string bytes = "before,";
  read_descriptor(-1, 10, &bytes);
  EXPECT_EQ("before,", bytes);
  int ends[2];
  ASSERT_EQ(0, pipe2(ends, O_CLOEXEC));
  ASSERT_EQ(5, write(ends[1], "after", 5));
  close(ends[1]);
  read_descriptor(ends[0], 100, &bytes);
  close(ends[0]);
  EXPECT_EQ("before,after", bytes);
}

TEST(Family, UsableOrNot) {
  EXPECT_TRUE(host().family_usable(AF_INET));
  EXPECT_TRUE(host().family_usable(AF_UNIX));
  EXPECT_FALSE(host().family_usable(-1));
  EXPECT_FALSE(host().family_usable(4711));
  const size_t before = open_descriptors();
  for (int i = 0; i < 50; ++i) host().family_usable(AF_INET);
  EXPECT_EQ(before, open_descriptors());
}

TEST(Zone, NumericAddressesOnly) {
  const unsigned loopback = if_nametoindex("lo");
  EXPECT_TRUE(host().zone_accepted("fe80::1%" + std::to_string(loopback)));
  EXPECT_TRUE(host().zone_accepted("fe80::1%lo"));
  EXPECT_TRUE(host().zone_accepted("fe80::1"));
  EXPECT_FALSE(host().zone_accepted("fe80::1%no-such-interface"));
  EXPECT_FALSE(host().zone_accepted("fe80:zz%1"));
  EXPECT_FALSE(host().zone_accepted("localhost"));
  EXPECT_FALSE(host().zone_accepted(""));
}

TEST(InterfaceIndex, OfAName) {
  EXPECT_EQ(if_nametoindex("lo"), host().interface_index("lo"));
  EXPECT_NE(0u, host().interface_index("lo"));
  EXPECT_EQ(0u, host().interface_index("no-such-interface"));
  EXPECT_EQ(0u, host().interface_index(""));
}

TEST(InterfaceIndexes, AreThoseOfEachNameInOrder) {
  const std::vector<std::string> names = {
      "no-such", "lo", "", std::string(15, 'x'), std::string(16, 'x'), std::string(2000, 'x'),
      "lo:1",    "lo"};
  std::vector<unsigned> expected;
  for (const std::string& name : names) expected.push_back(if_nametoindex(name.c_str()));
  EXPECT_NE(0u, expected[1]);
  EXPECT_EQ(expected, host().interface_indexes(names));
  EXPECT_EQ(std::vector<unsigned>(), host().interface_indexes({}));
}

TEST(Names, OfTheKernel) {
  utsname kernel{};
  ASSERT_EQ(0, uname(&kernel));
  KernelNames names;
  EXPECT_TRUE(host().kernel_names(&names));
  EXPECT_EQ(kernel.nodename, names.node);
  EXPECT_EQ(kernel.machine, names.machine);
  EXPECT_EQ(kernel.release, names.release);
  std::string name;
  EXPECT_TRUE(host().host_name(&name));
  EXPECT_EQ(kernel.nodename, name);
}

TEST(Time, LocalInTheZoneOfTheEnvironment) {
  orbtest::ScopedTimeZone zone("XYZ-2");
  tm time{};
  EXPECT_TRUE(host().local_time(86400, &time));
  EXPECT_EQ(2, time.tm_hour);
  EXPECT_EQ(2, time.tm_mday);
  EXPECT_EQ(70, time.tm_year);
  std::string name;
  EXPECT_TRUE(host().zone_name(&name));
  EXPECT_EQ("XYZ", name);
  EXPECT_TRUE(host().utc_time(86400, &time));
  EXPECT_EQ(0, time.tm_hour);
  EXPECT_EQ(2, time.tm_mday);
  EXPECT_EQ(70, time.tm_year);
}

TEST(Time, ZoneThatTheLibraryHasNoNameOf) {
  orbtest::ScopedTimeZone zone("XYZ-2");
  char* const name = tzname[0];
  tzname[0] = nullptr;
  std::string read = "old";
  EXPECT_FALSE(host().zone_name(&read));
  EXPECT_EQ("old", read);
  tzname[0] = name;
}

TEST(Time, YearThatDoesNotFitIsRefused) {
  tm time{};
  time.tm_hour = 77;
  EXPECT_FALSE(host().local_time(INT64_MAX, &time));
  EXPECT_FALSE(host().utc_time(INT64_MAX, &time));
  EXPECT_EQ(77, time.tm_hour);
}

TEST(Time, WallClockRuns) {
  const time_t before = time(nullptr);
  const time_t now = host().wall_clock();
  EXPECT_LE(before, now);
  EXPECT_LE(now, time(nullptr));
}

TEST(Time, WallTimeIsTheSameClock) {
  timespec before{};
  timespec after{};
  clock_gettime(CLOCK_REALTIME, &before);
  const timeval now = host().wall_time();
  clock_gettime(CLOCK_REALTIME, &after);
  const int64_t microseconds = int64_t{now.tv_sec} * 1000000 + now.tv_usec;
  EXPECT_LE(int64_t{before.tv_sec} * 1000000 + before.tv_nsec / 1000, microseconds);
  EXPECT_LE(microseconds, int64_t{after.tv_sec} * 1000000 + after.tv_nsec / 1000);
  EXPECT_LT(now.tv_usec, 1000000);
}

TEST(Time, TicksAreThoseOfTheProcessTimes) {
  tms used{};
  const clock_t before = times(&used);
  const TickCount count = host().tick_count();
  EXPECT_LE(before, count.ticks);
  EXPECT_LE(count.ticks, times(&used));
  EXPECT_EQ(sysconf(_SC_CLK_TCK), count.per_second);
}

TEST(PrimaryGroup, OfEveryAccount) {
  int accounts = 0;
  setpwent();
  while (const passwd* account = getpwent()) {
    const std::string name = account->pw_name;
    const group* record = getgrgid(account->pw_gid);
    std::string found = "none";
    EXPECT_EQ(record != nullptr, host().primary_group(name, &found)) << name;
    EXPECT_EQ(record != nullptr ? record->gr_name : "none", found) << name;
    ++accounts;
  }
  endpwent();
  EXPECT_GT(accounts, 0);
}

TEST(PrimaryGroup, OfNobodyKnown) {
  std::string found = "old";
  EXPECT_FALSE(host().primary_group("no-such-account", &found));
  EXPECT_FALSE(host().primary_group("", &found));
  EXPECT_FALSE(host().primary_group(std::string(20000, 'x'), &found));
  EXPECT_EQ("old", found);
}

TEST(Threads, EveryFactAtOnce) {
  auto ask = [] {
    for (int i = 0; i < 20; ++i) {
      std::string text;
      KernelNames names;
      tm time{};
      EXPECT_TRUE(host().kernel_names(&names));
      EXPECT_TRUE(host().local_time(0, &time));
      EXPECT_TRUE(host().primary_group("root", &text));
      EXPECT_TRUE(host().family_usable(AF_INET));
      EXPECT_EQ("x", output_of("printf x"));
    }
  };
  std::thread one(ask), two(ask), three(ask);
  one.join();
  two.join();
  three.join();
}

}  // namespace
