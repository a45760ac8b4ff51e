// tests/fileutil/machinenames_test.cpp: node names, users and fixed folders, in rooms of every
// size.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "fileutil/machine.h"
#include "session/loggedonusers.h"
#include "tests/support/child_process.h"
#include "tests/support/fake_system.h"
#include "tests/support/faults.h"
#include "tests/support/silent_output.h"

namespace {

using namespace quillon_com::orb;
using orbtest::FakeSystem;

FakeSystem machine_called(const std::string& node) {
  FakeSystem system;
  system.kernel.emplace();
  system.kernel->node = node;
  return system;
}

TEST(ComputerName, IsTheWholeNodeName) {
  for (const std::string& node :
       {std::string("mac"), std::string("mac.corp.example"), std::string(64, 'n'),
        std::string(255, 'n'), std::string(5000, 'n'), std::string("\xC3\xA4 b")}) {
    std::string buffer(6000, '#');
    unsigned long size = 6000;
    EXPECT_EQ(1, computer_name(machine_called(node), buffer.data(), &size));
    EXPECT_EQ(node.size(), size);
    EXPECT_STREQ(node.c_str(), buffer.c_str());
    EXPECT_EQ('#', buffer[node.size() + 1]) << "nothing behind the terminator";
  }
}

TEST(ComputerName, NeedsRoomForItsTerminator) {
  const FakeSystem system = machine_called("mac");
  for (const unsigned long room : {0ul, 1ul, 3ul, 4ul, 5ul, ULONG_MAX}) {
    char name[8] = "#######";
    unsigned long size = room;
    const bool fits = room >= 4;
    EXPECT_EQ(fits ? 1 : 0, computer_name(system, name, &size)) << room;
    EXPECT_EQ(fits ? 3 : room, size);
    EXPECT_STREQ(fits ? "mac" : "#######", name);
  }
}

TEST(ComputerName, AnEmptyOneTakesOneByte) {
  const FakeSystem system = machine_called("");
  char name[2] = "#";
  unsigned long size = 0;
  EXPECT_EQ(0, computer_name(system, name, &size));
  size = 1;
  EXPECT_EQ(1, computer_name(system, name, &size));
  EXPECT_EQ(0u, size);
  EXPECT_STREQ("", name);
}

TEST(ComputerName, IsNotKnownWithoutTheKernel) {
  char name[8] = "old";
  unsigned long size = 8;
  EXPECT_EQ(0, computer_name(FakeSystem(), name, &size));
  EXPECT_STREQ("old", name);
  EXPECT_EQ(8u, size);
}

TEST(ComputerName, NullArgumentsFail) {
  char name[8] = "old";
  unsigned long size = 8;
  EXPECT_EQ(0, voxGetComputerName(nullptr, &size));
  EXPECT_EQ(8u, size);
  EXPECT_EQ(0, voxGetComputerName(name, nullptr));
  EXPECT_EQ(0, voxGetComputerName(nullptr, nullptr));
  EXPECT_STREQ("old", name);
}

TEST(ComputerName, OfTheRunningMachine) {
  utsname kernel{};
  ASSERT_EQ(0, uname(&kernel));
  char name[300];
  unsigned long size = sizeof name;
  EXPECT_EQ(1, voxGetComputerName(name, &size));
  EXPECT_STREQ(kernel.nodename, name);
  EXPECT_EQ(strlen(kernel.nodename), size);
}

TEST(ComputerName, TheLongestThatTheKernelTakes) {
  const std::string longest(64, 'h');
  const std::string outcome = orbtest::text_of_child([&longest]() -> std::string {
    if (unshare(CLONE_NEWUTS) != 0 || sethostname(longest.data(), longest.size()) != 0)
      return "skip";
    char name[65];
    unsigned long size = 64;
    if (voxGetComputerName(name, &size) != 0 || size != 64) return "too small a room";
    size = 65;
    if (voxGetComputerName(name, &size) != 1 || size != 64) return "not known";
    return name;
  });
  if (outcome == "skip") GTEST_SKIP() << "naming a machine takes root";
  EXPECT_EQ(longest, outcome);
}

TEST(ComputerName, WithoutMemoryIsNotKnown) {
  const std::string outcome = orbtest::text_of_child([]() -> std::string {
    const std::string node(60, 'm');  // long enough to need memory
    if (unshare(CLONE_NEWUTS) != 0 || sethostname(node.data(), node.size()) != 0) return "skip";
    size_t requests = orbtest::for_each_memory_fault([](size_t nth, orbtest::Failing failing) {
      char name[65] = "old";
      unsigned long size = sizeof name;
      const orbtest::MemoryFaults faults(nth, failing);
      const int known = voxGetComputerName(name, &size);
      const bool right = faults.failures() == 0
                             ? known == 1 && size == 60
                             : known == 0 && size == sizeof name && strcmp(name, "old") == 0;
      if (!right) _exit(3);
      return faults.failures();
    });
    return requests > 0 ? "as told" : "no requests";
  });
  if (outcome == "skip") GTEST_SKIP() << "naming a machine takes root";
  EXPECT_EQ("as told", outcome);
}

// A machine with a session of each of `users`.
FakeSystem machine_with(const std::vector<std::string>& users) {
  FakeSystem system;
  for (const std::string& user : users) system.sessions.push_back({7, "1", user, "tty1"});
  return system;
}

class UserName : public testing::Test {
 protected:
  uint32_t ask(const FakeSystem& system, char* out, unsigned size) {
    return user_name(system, lines_.get(), out, size);
  }

 private:
  struct Closer {
    void operator()(FILE* file) const { fclose(file); }
  };
  const std::unique_ptr<FILE, Closer> lines_{fopen("/dev/null", "w")};
};

TEST_F(UserName, ListsTheUsers) {
  char text[20];
  EXPECT_EQ(0u, ask(machine_with({"bob", "ada"}), text, sizeof text));
  EXPECT_STREQ("ada,bob", text);
}

TEST_F(UserName, QuirkNobodyIsNaWithoutSlash) {
  char text[20];
  EXPECT_EQ(0u, ask(machine_with({}), text, sizeof text));
  EXPECT_STREQ("NA", text);
}

TEST_F(UserName, NeedsRoomForItsTerminator) {
  struct Row {
    std::vector<std::string> users;
    std::string text;
  };
  for (const Row& row : {Row{{"bob", "ada"}, "ada,bob"}, Row{{}, "NA"}}) {
    const auto length = static_cast<unsigned>(row.text.size());
    for (const unsigned size : {0u, 1u, length, length + 1, length + 2, UINT_MAX}) {
      char text[20] = "###########";
      const bool fits = size > length;
      EXPECT_EQ(fits ? 0u : 0x80000008u, ask(machine_with(row.users), text, size)) << size;
      EXPECT_STREQ(fits ? row.text.c_str() : "###########", text) << size;
    }
  }
}

TEST_F(UserName, ALongListIsCutByItsOwnRule) {
  std::vector<std::string> users;
  for (int i = 10; i < 60; ++i) users.push_back("account" + std::to_string(i));
  char text[200];
  EXPECT_EQ(0u, ask(machine_with(users), text, sizeof text));
  std::string expected;  // twelve whole names of ten bytes each fit
  for (size_t i = 0; i < 12; ++i) expected += users[i] + ",";
  EXPECT_EQ(expected + "...", text);
}

TEST_F(UserName, NullFails) {
  const FakeSystem system = machine_with({"ada"});
  EXPECT_EQ(0x80000008u, ask(system, nullptr, 20));
  EXPECT_EQ(0u, system.session_cursor) << "nobody was asked";
  EXPECT_EQ(0x80000008u, voxcomn_get_user_name(nullptr, 20));
}

TEST_F(UserName, OfTheRunningMachine) {
  std::string users;
  char text[200];
  uint32_t status = 1;
  {
    const orbtest::SilentOutput silent;
    session::CollectAllLoggedonUsers(users);
    status = voxcomn_get_user_name(text, sizeof text);
  }
  EXPECT_EQ(0u, status);
  EXPECT_EQ(users.empty() ? "NA" : users, text);
}

struct FolderCase {
  const char* name;
  unsigned (*ask)(char* out, unsigned size);
  std::string path;
};

class Folder : public testing::TestWithParam<FolderCase> {};

TEST_P(Folder, IsWrittenWhereItFits) {
  const auto& [name, ask, path] = GetParam();
  const auto length = static_cast<unsigned>(path.size());
  for (const unsigned size : {0u, 1u, length - 1, length, length + 1, length + 2, 30u}) {
    std::string buffer(32, '#');
    std::string expected = buffer;
    if (size > length) {
      expected = path;
      expected.resize(size);  // cleared behind the path
      expected.resize(32, '#');
    }
    EXPECT_EQ(size > length ? length : length + 1, ask(buffer.data(), size)) << size;
    EXPECT_EQ(expected, buffer) << size;
  }
  EXPECT_EQ(length + 1, ask(nullptr, 0));
  EXPECT_EQ(length + 1, ask(nullptr, 30));
}

INSTANTIATE_TEST_SUITE_P(Folders, Folder,
                         testing::Values(FolderCase{"Windows", voxGetWindowsDirectory, "/Library"},
                                         FolderCase{"System", voxGetSystemDirectory, "/usr"}),
                         [](const auto& test) { return test.param.name; });

TEST(SystemFolder, OfFourBytesAsksForFive) {
  char text[6] = "#####";
  EXPECT_EQ(5u, voxGetSystemDirectory(text, 4));
  EXPECT_STREQ("#####", text);
  EXPECT_EQ(4u, voxGetSystemDirectory(text, 5));
  EXPECT_STREQ("/usr", text);
}

TEST(ModuleFileName, IsNone) {
  char text[6] = "old";
  int module = 0;
  EXPECT_EQ(0u, voxGetModuleFileName(&module, text, sizeof text));
  EXPECT_EQ(0u, voxGetModuleFileName(nullptr, nullptr, 0));
  EXPECT_STREQ("old", text);
}

TEST(VersionResources, AreNone) {
  char data[6] = "old";
  void* value = data;
  unsigned length = 77;
  EXPECT_EQ(0, voxGetFileVersionInfo("/usr/lib/any.so", 0u, 6u, data));
  EXPECT_EQ(0, voxVerQueryValue(data, "\\", &value, &length));
  EXPECT_EQ(0, voxGetFileVersionInfo(nullptr));
  EXPECT_EQ(0, voxVerQueryValue(nullptr));
  EXPECT_STREQ("old", data);
  EXPECT_EQ(data, value);
  EXPECT_EQ(77u, length);
}

}  // namespace
