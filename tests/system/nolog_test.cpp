// tests/system/nolog_test.cpp: a machine without a log and without a console to fall back to.
#include <pthread.h>
#include <signal.h>

#include <string>

#include "portability/signals.h"
#include "tests/support/open_descriptors.h"
#include "tests/system/surroundings.h"

namespace {

using quillon_com::orb::LogInSystemLog;
using quillon_com::orb::SignalHandler;

bool without_devices() { return orbtest::cover("/dev"); }

TEST(NoSystemLog, WritersSayThatTheyWrote) {
  EXPECT_IN(without_devices, [] {
    const auto before = orbtest::open_descriptors();
    for (int round = 0; round < 100; ++round) {
      EXPECT_TRUE(LogInSystemLog(3, "round %d", round));
      EXPECT_TRUE(LogInSystemLog(3, "mine", "round %d", round));
    }
    EXPECT_EQ(before, orbtest::open_descriptors());
  });
}

// A second message comes when the first one found nobody.
TEST(NoSystemLog, TheDispatcherEndsAllTheSame) {
  EXPECT_IN(without_devices, [] {
    SignalHandler handler;
    handler.addSignalToBlock(SIGUSR1);
    pthread_kill(pthread_self(), SIGUSR1);
    handler();
    EXPECT_TRUE(LogInSystemLog(6, "still there"));
  });
}

}  // namespace
