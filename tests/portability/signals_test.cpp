// tests/portability/signals_test.cpp: the dispatcher, in processes that are sent real signals.
#include "portability/signals.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <string>

#include "tests/portability/call_script.h"
#include "tests/portability/log_socket.h"

namespace {

using quillon_com::orb::SignalHandler;

int to_parent = -1;  // where a child's callbacks write

void tell(char letter) {
  if (write(to_parent, &letter, 1) != 1) _exit(9);
}
void tell_first() { tell('1'); }
void tell_second() { tell('2'); }

// A child process that runs `body` and tells its parent letters.
class Child {
 public:
  explicit Child(const std::function<void()>& body) {
    int ends[2];
    if (pipe(ends) != 0) abort();
    process_ = fork();
    if (process_ == 0) {
      close(ends[0]);
      to_parent = ends[1];
      body();
      _exit(0);
    }
    close(ends[1]);
    from_child_ = ends[0];
  }
  ~Child() { close(from_child_); }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  void send(int signal) const { kill(process_, signal); }
  // The next letter; 0 when the child has ended.
  char heard() const {
    char letter = 0;
    return read(from_child_, &letter, 1) == 1 ? letter : '\0';
  }
  // The exit status, -signal for a killed one.
  int end() const {
    int status = 0;
    waitpid(process_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

 private:
  pid_t process_ = -1;
  int from_child_ = -1;
};

bool blocked(int signal) {
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  return sigismember(&mask, signal) == 1;
}

// Runs `body`, which returns whether all was right, in a process of its own.
bool right_in_child(const std::function<bool()>& body) {
  return Child([&] { _exit(body() ? 0 : 1); }).end() == 0;
}

// Signals 1 and 15 blocked, a callback for 1: "r" once ready, "e" after the loop.
void dispatch() {
  SignalHandler handler;
  handler.addSignalToBlock(1);
  handler.addSignalToBlock(15);
  handler.registerOnSignalCallback(1, tell_first);
  tell('r');
  handler();
  tell('e');
}

void drive_dispatcher() {
  const Child child(dispatch);
  ASSERT_EQ('r', child.heard());
  child.send(1);
  ASSERT_EQ('1', child.heard());
  child.send(1);
  ASSERT_EQ('1', child.heard());
  child.send(15);
  ASSERT_EQ('e', child.heard());
  EXPECT_EQ(0, child.end());
}

TEST(Signals, CallbackRunsEachTimeAndAnotherSignalEndsTheLoop) { drive_dispatcher(); }

TEST(Signals, EndOfTheLoopIsLogged) {
  const auto logged = orbtest::logged_by(drive_dispatcher);
  if (!logged) GTEST_SKIP() << "needs root: a mount name space";
  EXPECT_EQ("<11>[ORB]: Received signal to stop ORB.\n", *logged);
}

TEST(Signals, QuirkFirstRegistrationWins) {
  const Child child([] {
    SignalHandler handler;
    handler.addSignalToBlock(1);
    handler.addSignalToBlock(15);
    if (handler.registerOnSignalCallback(1, tell_first) != 0) _exit(8);
    if (handler.registerOnSignalCallback(1, tell_second) != 0) _exit(8);
    tell('r');
    handler();
  });
  ASSERT_EQ('r', child.heard());
  child.send(1);
  EXPECT_EQ('1', child.heard());
  child.send(15);
  EXPECT_EQ(0, child.end());
}

TEST(Signals, NullCallbackPassesTheSignalOver) {
  const Child child([] {
    SignalHandler handler;
    handler.addSignalToBlock(1);
    handler.addSignalToBlock(15);
    handler.registerOnSignalCallback(1, nullptr);
    handler.registerOnSignalCallback(1, tell_first);  // comes too late
    raise(1);
    tell('r');
    handler();
    tell('e');
  });
  ASSERT_EQ('r', child.heard());
  child.send(15);
  EXPECT_EQ('e', child.heard());
  EXPECT_EQ(0, child.end());
}

TEST(Signals, MaskAccumulatesAndIsTheWholeMask) {
  EXPECT_TRUE(right_in_child([] {
    sigset_t other;
    sigemptyset(&other);
    sigaddset(&other, SIGUSR1);
    pthread_sigmask(SIG_SETMASK, &other, nullptr);
    SignalHandler handler;
    if (handler.addSignalToBlock(1) != 0 || handler.addSignalToBlock(15) != 0) return false;
    return blocked(1) && blocked(15) && !blocked(SIGUSR1) && !blocked(2);
  }));
}

TEST(Signals, QuirkNumberAbove32AddsNothingAndAppliesTheMask) {
  for (const int number : {33, 40, 64, 1000, 0, -1}) {
    EXPECT_TRUE(right_in_child([&] {
      SignalHandler handler;
      handler.addSignalToBlock(1);
      sigset_t none;
      sigemptyset(&none);
      pthread_sigmask(SIG_SETMASK, &none, nullptr);
      if (handler.addSignalToBlock(number) != 0) return false;
      return blocked(1) && !(number > 0 && blocked(number));
    })) << number;
  }
}

TEST(Signals, Number31HasABit) {
  EXPECT_TRUE(right_in_child([] {
    SignalHandler handler;
    handler.addSignalToBlock(31);
    return blocked(31);
  }));
}

TEST(Signals, UnblockingTouchesThatSignalAndNotTheHandlersMask) {
  EXPECT_TRUE(right_in_child([] {
    SignalHandler handler;
    handler.addSignalToBlock(1);
    handler.addSignalToBlock(15);
    if (handler.unblockSignal(1) != 0 || blocked(1) || !blocked(15)) return false;
    if (handler.unblockSignal(40) != 0 || !blocked(15)) return false;
    handler.addSignalToBlock(2);
    return blocked(1) && blocked(2) && blocked(15);
  }));
}

TEST(Signals, WaitsThatFailOrSurpriseAreLoggedAndRepeated) {
  const auto logged = orbtest::logged_by([] {
    SignalHandler handler;
    handler.addSignalToBlock(15);
    orbtest::CallScript script;
    script.sigwait_answers = {{-1, EINTR, 0}, {EINVAL, 0, 15}, {0, 0, 2},
                              {0, 0, 40},     {0, 0, 0},       {0, 0, 15}};
    handler();
    if (!script.sigwait_answers.empty()) _exit(1);
  });
  if (!logged) GTEST_SKIP() << "needs root: a mount name space";
  EXPECT_EQ(
      "<11>[ORB]: Error (4) occurred waiting for signal ... ignoring.\n"
      "<11>[ORB]: Error (22) occurred waiting for signal ... ignoring.\n"
      "<11>[ORB]: ORB received unknown signal ... ignoring.\n"
      "<11>[ORB]: ORB received unknown signal ... ignoring.\n"
      "<11>[ORB]: ORB received unknown signal ... ignoring.\n"
      "<11>[ORB]: Received signal to stop ORB.\n",
      *logged);
}

TEST(Signals, CaughtTerminationIsRecorded) {
  EXPECT_TRUE(right_in_child([] {
    if (bSigTermReceived != 0) return false;
    signal(SIGTERM, CatchSIGTERM);
    raise(SIGTERM);
    return bSigTermReceived == 1;
  }));
  EXPECT_TRUE(right_in_child([] {
    CatchSIGTERM(2);
    return bSigTermReceived == 1;
  })) << "whatever the signal";
}

}  // namespace
