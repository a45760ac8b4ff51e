// tests/platform/linux_sessions_test.cpp: the accounting file, the session files and the cursor.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utmpx.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

#include "platform/linux_system.h"
#include "tests/support/temp_dir.h"

namespace {

using orbtest::TempDir;
using quillon_com::orb::platform::LinuxSystem;
using quillon_com::orb::platform::SessionEntry;

constexpr char kAccounting[] = "/var/run/utmp";

utmpx record_of(int type, const std::string& id, const std::string& user, const std::string& line) {
  utmpx record{};
  record.ut_type = static_cast<short>(type);
  std::memcpy(record.ut_id, id.data(), id.size());  // without terminator when it is full
  std::memcpy(record.ut_user, user.data(), user.size());
  std::memcpy(record.ut_line, line.data(), line.size());
  std::memset(record.ut_host, 'h', sizeof record.ut_host);
  return record;
}

std::string bytes_of(const std::vector<utmpx>& records) {
  return {reinterpret_cast<const char*>(records.data()), records.size() * sizeof(utmpx)};
}

std::string all_of(const LinuxSystem& system) {
  std::string text;
  SessionEntry entry;
  while (system.next_session_entry(&entry)) {
    text += std::to_string(entry.type) + "," + entry.id + "," + entry.user + "," + entry.line + " ";
  }
  return text;
}

void write_session(const TempDir& root, const std::string& id, const std::string& user) {
  root.write("/run/systemd/sessions/" + id,
             "USER=" + user + "\nSTATE=active\nCLASS=user\nTTY=tty" + id + "\n");
}

TEST(AccountingFile, EntriesInOrder) {
  TempDir root;
  root.write(kAccounting, bytes_of({record_of(BOOT_TIME, "~~", "reboot", "~"),
                                    record_of(USER_PROCESS, "1", "ada", "tty1"),
                                    record_of(DEAD_PROCESS, "2", "", "pts/0")}));
  const LinuxSystem system(root.path());
  EXPECT_EQ("2,~~,reboot,~ 7,1,ada,tty1 8,2,,pts/0 ", all_of(system));
}

TEST(AccountingFile, FullFieldsWithoutTerminator) {
  TempDir root;
  const std::string user(sizeof utmpx{}.ut_user, 'u');
  const std::string line(sizeof utmpx{}.ut_line, 'l');
  root.write(kAccounting, bytes_of({record_of(USER_PROCESS, "ts/1", user, line)}));
  EXPECT_EQ("7,ts/1," + user + "," + line + " ", all_of(LinuxSystem(root.path())));
}

TEST(AccountingFile, EndStaysTheEndUntilTheRewind) {
  TempDir root;
  root.write(kAccounting, bytes_of({record_of(USER_PROCESS, "1", "ada", "tty1")}));
  const LinuxSystem system(root.path());
  EXPECT_EQ("7,1,ada,tty1 ", all_of(system));
  EXPECT_EQ("", all_of(system));
  system.rewind_sessions();
  EXPECT_EQ("7,1,ada,tty1 ", all_of(system));
}

TEST(AccountingFile, CutRecordIsNone) {
  TempDir root;
  const std::string whole = bytes_of(
      {record_of(USER_PROCESS, "1", "ada", "tty1"), record_of(USER_PROCESS, "2", "bob", "tty2")});
  root.write(kAccounting, whole.substr(0, whole.size() - 1));
  EXPECT_EQ("7,1,ada,tty1 ", all_of(LinuxSystem(root.path())));
}

TEST(AccountingFile, IsEachMachinesOwn) {
  TempDir one;
  TempDir two;
  one.write(kAccounting, bytes_of({record_of(USER_PROCESS, "1", "ada", "tty1")}));
  two.write(kAccounting, bytes_of({record_of(USER_PROCESS, "2", "bob", "tty2")}));
  const LinuxSystem first(one.path());
  const LinuxSystem second(two.path());
  EXPECT_EQ("7,1,ada,tty1 ", all_of(first));
  EXPECT_EQ("7,2,bob,tty2 ", all_of(second));
  first.rewind_sessions();
  EXPECT_EQ("7,1,ada,tty1 ", all_of(first));
}

TEST(SessionFiles, WhereThereIsNoAccountingFile) {
  TempDir root;
  write_session(root, "3", "bob");
  write_session(root, "1", "ada");
  root.write("/run/systemd/sessions/2", "USER=gdm\nSTATE=active\nCLASS=greeter\n");
  const LinuxSystem system(root.path());
  EXPECT_EQ("7,1,ada,tty1 7,3,bob,tty3 ", all_of(system));
  EXPECT_EQ("", all_of(system));
  system.rewind_sessions();
  EXPECT_EQ("7,1,ada,tty1 7,3,bob,tty3 ", all_of(system));
}

TEST(SessionFiles, AreReadAnewAfterTheRewind) {
  TempDir root;
  write_session(root, "1", "ada");
  const LinuxSystem system(root.path());
  EXPECT_EQ("7,1,ada,tty1 ", all_of(system));
  std::filesystem::remove(root.path("/run/systemd/sessions/1"));
  write_session(root, "2", "bob");
  system.rewind_sessions();
  EXPECT_EQ("7,2,bob,tty2 ", all_of(system));
}

TEST(SessionFiles, AreNotReadBesideAnAccountingFile) {
  TempDir root;
  write_session(root, "1", "ada");
  root.write(kAccounting, "");
  EXPECT_EQ("", all_of(LinuxSystem(root.path())));
  root.write(kAccounting, bytes_of({record_of(BOOT_TIME, "~~", "reboot", "~")}));
  EXPECT_EQ("2,~~,reboot,~ ", all_of(LinuxSystem(root.path())));
}

TEST(SessionFiles, PipesAndFoldersArePassedOver) {
  TempDir root;
  write_session(root, "1", "ada");
  ASSERT_EQ(0, mkfifo(root.path("/run/systemd/sessions/1.ref").c_str(), 0600));
  root.make_dir("/run/systemd/sessions/folder");
  EXPECT_EQ("7,1,ada,tty1 ", all_of(LinuxSystem(root.path())));
}

TEST(SessionFiles, OfAMegabyteAreReadInPart) {
  TempDir root;
  root.write("/run/systemd/sessions/1",
             "CLASS=user\nUSER=ada\n" + std::string(1 << 20, '#') + "\nTTY=tty9\n");
  EXPECT_EQ("7,1,ada, ", all_of(LinuxSystem(root.path())));
}

TEST(Threads, ShareTheCursor) {
  TempDir root;
  std::vector<utmpx> records(400, record_of(USER_PROCESS, "1", "ada", "tty1"));
  root.write(kAccounting, bytes_of(records));
  const LinuxSystem system(root.path());
  size_t counts[3] = {};
  auto walk = [&](size_t* count) {
    SessionEntry entry;
    while (system.next_session_entry(&entry)) {
      EXPECT_EQ("ada", entry.user);
      ++*count;
    }
  };
  std::thread one(walk, &counts[0]), two(walk, &counts[1]), three(walk, &counts[2]);
  one.join();
  two.join();
  three.join();
  EXPECT_EQ(records.size(), counts[0] + counts[1] + counts[2]);
}

}  // namespace
