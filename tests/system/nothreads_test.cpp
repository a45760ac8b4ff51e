// tests/system/nothreads_test.cpp: a user who may not have another thread or process.
#include <grp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <string>

#include "platform/system.h"
#include "portability/threads.h"
#include "session/loggedonusers.h"
#include "sysprops/catalogue.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/scoped_error_word.h"
#include "tests/support/silent_output.h"
#include "tests/system/surroundings.h"

namespace {

using orbtest::ScopedErrorWord;
using namespace quillon_com::orb;

bool limit_threads(rlim_t threads) {
  rlimit limit{};
  getrlimit(RLIMIT_NPROC, &limit);
  limit.rlim_cur = threads;
  return setrlimit(RLIMIT_NPROC, &limit) == 0;
}

// The process of a user who has no other one, with no room for more: root has room always.
bool use_threads_up() {
  constexpr uid_t kNobodyElse = 54321;
  return setgroups(0, nullptr) == 0 && setgid(kNobodyElse) == 0 && setuid(kNobodyElse) == 0 &&
         prctl(PR_SET_DUMPABLE, 1) == 0 && limit_threads(1);
}

void* give_back(void* argument) { return argument; }

TEST(NoThreads, ABeginningFailsUntilThereIsRoom) {
  EXPECT_IN(use_threads_up, [] {
    const auto descriptors = orbtest::open_descriptors();
    const ScopedErrorWord word;
    uint32_t number = 4711;
    for (int round = 0; round < 100; ++round) {
      EXPECT_EQ(-1, reinterpret_cast<intptr_t>(
                        voxBeginThread(nullptr, 0, give_back, nullptr, 0, &number)));
      EXPECT_EQ(nullptr, voxCreateThread(nullptr, 0, give_back, nullptr, 0, &number));
    }
    EXPECT_EQ(4711U, number);
    EXPECT_EQ(ScopedErrorWord::kUntouched, nErrno);
    EXPECT_EQ(descriptors, orbtest::open_descriptors());
    ASSERT_TRUE(limit_threads(8));
    void* const thread = voxBeginThread(nullptr, 0, give_back, nullptr, 0, &number);
    EXPECT_EQ(0U, number);
    EXPECT_EQ(uint64_t{WAIT_OBJECT_0}, voxWaitForSingleObject(thread, INFINITE));
    EXPECT_EQ(1, voxCloseHandle(thread));
  });
}

TEST(NoThreads, NoCommandIsStarted) {
  EXPECT_IN(use_threads_up, [] {
    const auto descriptors = orbtest::open_descriptors();
    std::string output = "old";
    EXPECT_FALSE(platform::host().command_output("/bin/echo x", 16, &output));
    EXPECT_EQ("old", output);
    EXPECT_EQ(descriptors, orbtest::open_descriptors());
  });
}

TEST(NoThreads, TheReportIsWhole) {
  EXPECT_IN(use_threads_up, [] {
    auto values = orbtest::whole_report();
    EXPECT_EQ(orbtest::kReportKeys, values.size());
    EXPECT_NE(L"N/A", values[L"OSVersion"]);
    EXPECT_NE(L"N/A", values[L"TotalPhysicalMemory"]);
    const orbtest::SilentOutput silent;
    std::string users = "old";
    session::CollectAllLoggedonUsers(users);
    EXPECT_NE("old", users);
  });
}

}  // namespace
