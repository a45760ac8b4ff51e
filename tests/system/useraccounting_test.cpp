// tests/system/useraccounting_test.cpp: the logged-on users by a user-accounting file at its place.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utmpx.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <set>
#include <sstream>
#include <string>

#include "session/loggedonusers.h"
#include "tests/support/mount_namespace.h"

namespace {

using namespace quillon_com::orb::session;
using namespace orbtest;
using Names = std::set<std::string>;

constexpr char kAccountingFile[] = "/var/run/utmp";

// Fills a field whole when `text` is long enough, and then without a terminator.
template <size_t N>
void fill(char (&field)[N], const std::string& text) {
  std::memcpy(field, text.data(), std::min(N, text.size()));
}

std::string record(short type, const std::string& id, const std::string& user,
                   const std::string& line) {
  utmpx entry{};
  entry.ut_type = type;
  entry.ut_pid = 4242;
  fill(entry.ut_id, id);
  fill(entry.ut_user, user);
  fill(entry.ut_line, line);
  return std::string(reinterpret_cast<const char*>(&entry), sizeof(entry));
}

const std::string kFullName(sizeof(utmpx::ut_user), 'U');
const std::string kFullLine(sizeof(utmpx::ut_line), 'L');

std::string accounting_records() {
  return record(BOOT_TIME, "~~", "reboot", "~") + record(LOGIN_PROCESS, "tty1", "LOGIN", "tty1") +
         record(USER_PROCESS, "1", "Jane", "tty1") + record(USER_PROCESS, "ts/0", "Jane", "pts/0") +
         record(USER_PROCESS, "ts/1", kFullName, kFullLine) +
         record(DEAD_PROCESS, "ts/2", "ghost", "pts/2") +
         record(USER_PROCESS, "ts/3", "corpuser", "pts/3");
}

void print_users() {
  Names network;
  Names local;
  CollectLoggedonUsers(network, local, false);
  for (const std::string& name : network) std::printf("network %s\n", name.c_str());
  for (const std::string& name : local) std::printf("local %s\n", name.c_str());
}

const std::string kFirstLine = "Some changes happen in the logon sessions.\n";
const std::string kLastLine = "Coming out from the logon session collections.\n";

// What print_users writes for accounting_records, all of them local but for `corp_lines`.
std::string expected_users(const std::string& corp_lines, const std::string& members) {
  const std::string low(kFullName.size(), 'u');
  return kFirstLine +
         "2  ~~  reboot  ~ \n"
         "6  tty1  LOGIN  tty1 \n"
         "7  1  Jane  tty1 \nLocal User Logged on jane \n"
         "7  ts/0  Jane  pts/0 \nLocal User Logged on jane \n"
         "7  ts/1  " +
         kFullName + "  " + kFullLine + " \nLocal User Logged on " + low +
         " \n"
         "8  ts/2  ghost  pts/2 \n"
         "7  ts/3  corpuser  pts/3 \n" +
         corp_lines + kLastLine + members;
}

#define EXPECT_WRITES(expected, body)                              \
  do {                                                             \
    const auto written = in_mount_namespace(body);                 \
    if (!written) GTEST_SKIP() << "needs root and its own mounts"; \
    EXPECT_EQ(expected, *written);                                 \
  } while (false)

TEST(UserAccounting, RecordsAtTheirRealPlaceAreSeenByEveryCall) {
  const std::string low(kFullName.size(), 'u');
  const std::string once = expected_users("Local User Logged on corpuser \n",
                                          "local corpuser\nlocal jane\nlocal " + low + "\n");
  EXPECT_WRITES(once + once, [] {
    if (!cover_folder("/var/run")) return false;
    write_file(kAccountingFile, accounting_records());
    print_users();
    print_users();
    return true;
  });
}

TEST(UserAccounting, ARecordCutShortEndsTheScan) {
  EXPECT_WRITES(
      kFirstLine + "7  1  Jane  tty1 \nLocal User Logged on jane \n" + kLastLine + "local jane\n",
      [] {
        if (!cover_folder("/var/run")) return false;
        const std::string second = record(USER_PROCESS, "2", "cut", "tty2");
        write_file(kAccountingFile,
                   record(USER_PROCESS, "1", "Jane", "tty1") + second.substr(0, second.size() - 1));
        print_users();
        return true;
      });
}

TEST(UserAccounting, AnEmptyFileIsNobody) {
  EXPECT_WRITES(kFirstLine + kLastLine, [] {
    if (!cover_folder("/var/run")) return false;
    write_file(kAccountingFile, "");
    print_users();
    return true;
  });
}

TEST(UserAccounting, WithoutAFileAndWithoutSessionsThereIsNobody) {
  EXPECT_WRITES(kFirstLine + kLastLine + "[]\n", [] {
    if (!cover_folder("/var/run")) return false;
    std::string users = "old";
    CollectAllLoggedonUsers(users);
    std::printf("[%s]\n", users.c_str());
    return true;
  });
}

TEST(UserAccounting, SessionManagersFilesStandInForAMissingFile) {
  EXPECT_WRITES(
      kFirstLine + "7  c7  Jane  tty2 \nLocal User Logged on jane \n" + kLastLine + "local jane\n",
      [] {
        if (!cover_folder("/run")) return false;
        mkdir("/run/systemd", 0755);
        mkdir("/run/systemd/sessions", 0755);
        write_file("/run/systemd/sessions/c7",
                   "UID=1000\nUSER=Jane\nACTIVE=1\nSTATE=active\nTTY=tty2\nCLASS=user\n");
        print_users();
        return true;
      });
}

TEST(UserAccounting, GroupMethodReadsTheAccountsOfTheMachine) {
  const std::string low(kFullName.size(), 'u');
  EXPECT_WRITES(
      expected_users("found group struct corp. \nNetwork User logged on corp\\corpuser \n",
                     "network corp\\corpuser\nlocal jane\nlocal " + low + "\n"),
      [] {
        if (!cover_folder("/var/run")) return false;
        if (!replace_file("/etc/passwd", "/var/run/passwd",
                          "root:x:0:0::/root:/bin/sh\njane:x:1000:100::/:/bin/sh\n"
                          "corpuser:x:1001:70000::/:/bin/sh\n") ||
            !replace_file("/etc/group", "/var/run/group",
                          "root:x:0:\nusers:x:100:\nCORP\\Domain Users:x:70000:\n")) {
          return false;
        }
        write_file(kAccountingFile, accounting_records());
        print_users();
        return true;
      });
}

TEST(UserAccounting, ListsAndLineAreMadeOnTheMachine) {
  const std::string frame = kFirstLine +
                            "7  1  Zoe  tty1 \n%7  2  CorpUser  tty2 \n"
                            "found group struct corp. \nNetwork User logged on corp\\corpuser \n" +
                            kLastLine;
  const auto scan = [&frame](const std::string& local_line) {
    return std::string(frame).replace(frame.find('%'), 1, local_line);
  };
  const std::string local_line = "Local User Logged on zoe \n";
  EXPECT_WRITES(
      "found group struct corp. \n1 corp\n0 corp\n" + scan(local_line) + "corp\\corpuser;zoe\n" +
          scan("") + "corp\\corpuser;kept\n" + scan(local_line) + "corp\\corpuser,zoe\n",
      [] {
        if (!cover_folder("/var/run") ||
            !replace_file("/etc/passwd", "/var/run/passwd",
                          "root:x:0:0::/root:/bin/sh\nCorpUser:x:1001:70000::/:/bin/sh\n") ||
            !replace_file("/etc/group", "/var/run/group", "Corp\\domain users:x:70000:\n")) {
          return false;
        }
        write_file(kAccountingFile, record(USER_PROCESS, "1", "Zoe", "tty1") +
                                        record(USER_PROCESS, "2", "CorpUser", "tty2"));
        std::string domain;
        bool found = FindDomainName("CorpUser", domain);
        std::printf("%d %s\n", found, domain.c_str());
        found = FindDomainName("nobody-of-this-name", domain);
        std::printf("%d %s\n", found, domain.c_str());
        std::string network;
        std::string local = "kept";
        CollectComaSepLoggedonUsers(network, local, false);
        std::printf("%s;%s\n", network.c_str(), local.c_str());
        local = "kept";
        CollectComaSepLoggedonUsers(network, local, true);
        std::printf("%s;%s\n", network.c_str(), local.c_str());
        std::string all;
        CollectAllLoggedonUsers(all);
        std::printf("%s\n", all.c_str());
        return true;
      });
}

// A directory-service command at its real path, over the machine's own programs.
TEST(UserAccounting, DirectoryServiceIsAskedThroughTheShell) {
  const std::string lines = "7  1  CorpUser  tty1 \n";
  EXPECT_WRITES(
      kFirstLine + lines +
          "Network User logged on b.example\\corpuser \n"
          "Network User logged on a.example\\corpuser \n" +
          kLastLine + "network a.example\\corpuser\nnetwork b.example\\corpuser\n",
      [] {
        if (!cover_folder("/var/run")) return false;
        mkdir("/var/run/upper", 0755);
        mkdir("/var/run/work", 0755);
        write_file("/var/run/upper/dscl",
                   "#!/bin/sh\n"
                   "test \"$*\" = '/Search read /Users/CorpUser' || exit 1\n"
                   "echo 'RealName: Corp User'\n"
                   "echo 'userPrincipalName: corpuser@B.example'\n"
                   "echo 'userPrincipalName: corpuser@A.example'\n");
        chmod("/var/run/upper/dscl", 0755);
        if (mount("overlay", "/usr/bin", "overlay", 0,
                  "lowerdir=/usr/bin,upperdir=/var/run/upper,workdir=/var/run/work") != 0) {
          return false;
        }
        write_file(kAccountingFile, record(USER_PROCESS, "1", "CorpUser", "tty1"));
        print_users();
        return true;
      });
}

// The second source: who(1) on the same file names the same users.
TEST(UserAccounting, AgreesWithWho) {
  if (access("/usr/bin/who", X_OK) != 0) GTEST_SKIP() << "needs /usr/bin/who";
  const auto written = in_mount_namespace([] {
    if (!cover_folder("/var/run")) return false;
    write_file(kAccountingFile, accounting_records());
    Names network;
    Names local;
    CollectLoggedonUsers(network, local, false);
    std::printf("users");
    for (const std::string& name : local) std::printf(" %s", name.c_str());
    std::printf("\n");
    std::fflush(stdout);
    return std::system("LC_ALL=C /usr/bin/who /var/run/utmp | sed 's/^/who /'") == 0;
  });
  if (!written) GTEST_SKIP() << "needs root and its own mounts";
  Names ours;
  Names theirs;
  std::istringstream lines(*written);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string word;
    words >> word;
    if (word == "users") {
      while (words >> word) ours.insert(word);
    } else if (word == "who") {
      words >> word;
      toLower(word);
      theirs.insert(word);
    }
  }
  EXPECT_EQ(3U, theirs.size());
  EXPECT_EQ(theirs, ours);
}

}  // namespace
