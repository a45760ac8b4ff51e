// tests/portability/cancellation_test.cpp: a cancelled thread leaves nothing locked or queued.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "portability/dynlib.h"
#include "portability/selock.h"
#include "portability/signals.h"
#include "portability/threads.h"
#include "tests/portability/attached.h"
#include "tests/portability/call_script.h"
#include "tests/portability/log_socket.h"
#include "tests/portability/plugin_hook.h"

namespace {

using Body = std::function<void()>;

// A thread with an event that runs `body` and may be cancelled on the way.
class CancelledThread {
 public:
  explicit CancelledThread(Body body) : body_(std::move(body)) {
    EXPECT_EQ(0, pthread_create(&thread_, nullptr, run, this));
  }
  void cancel() const { EXPECT_EQ(0, pthread_cancel(thread_)); }
  // Waits for its end; whether that was the cancellation, after `body` was left.
  bool ended_behind_its_body() const {
    void* result = nullptr;
    EXPECT_EQ(0, pthread_join(thread_, &result));
    return result == PTHREAD_CANCELED && body_done_;
  }

 private:
  static void* run(void* self) {
    auto* thread = static_cast<CancelledThread*>(self);
    {
      const orbtest::AttachedThread attached;
      thread->body_();
      thread->body_done_ = true;
    }
    for (;;) pthread_testcancel();
  }

  Body body_;
  std::atomic<bool> body_done_{false};
  pthread_t thread_{};
};

// Whether a thread that is to be cancelled from the start gets behind `body`.
bool gets_behind(const Body& body) {
  const CancelledThread thread([&] {
    pthread_cancel(pthread_self());
    body();
  });
  return thread.ended_behind_its_body();
}

class Cancellation : public orbtest::LockTest {
 protected:
  void wait_for_waiter() {
    wait_until(
        [&] { return lock_->exclusiveWaiters != nullptr || lock_->sharedWaiters != nullptr; });
  }
  const void* head_of_writers() {
    vxSL_Get(&lock_->spin);
    const void* head = lock_->exclusiveWaiters;
    vxSL_Release(&lock_->spin);
    return head;
  }
  void expect_free() {
    EXPECT_EQ(0, lock_->spin);
    EXPECT_EQ(-1, lock_->owner);
    EXPECT_EQ(0u, lock_->count);
  }
};

TEST_F(Cancellation, OfABlockedThreadTakesItOutOfTheQueue) {
  for (const int exclusive : {1, 0}) {
    ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
    const CancelledThread blocked([&] { vxSO_SELock(lock_, exclusive, 1); });
    wait_for_waiter();
    blocked.cancel();
    EXPECT_FALSE(blocked.ended_behind_its_body()) << exclusive;
    EXPECT_EQ(nullptr, lock_->exclusiveWaiters);
    EXPECT_EQ(nullptr, lock_->sharedWaiters);
    EXPECT_EQ(1u, lock_->count);
    EXPECT_EQ(1, vxSO_SELockRelease(lock_));
    expect_free();
  }
}

TEST_F(Cancellation, OfTheOlderOfTwoBlockedThreadsLeavesTheNewerInTheQueue) {
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
  const CancelledThread older([&] { vxSO_SELockExclusive(lock_, 1); });
  wait_for_waiter();
  const void* const head = head_of_writers();
  std::thread newer = orbtest::attached([&] {
    EXPECT_EQ(1, vxSO_SELockExclusive(lock_, 1));
    EXPECT_EQ(1, vxSO_SELockRelease(lock_));
  });
  while (head_of_writers() == head) std::this_thread::yield();
  older.cancel();
  EXPECT_FALSE(older.ended_behind_its_body());
  EXPECT_NE(nullptr, head_of_writers());
  EXPECT_EQ(1, vxSO_SELockRelease(lock_));
  newer.join();
  expect_free();
}

// The grant comes before, in or behind the cancellation; the lock is free in the end all the same.
TEST_F(Cancellation, OfAThreadThatIsGrantedTheLockMeanwhileGivesItUp) {
  for (int round = 0; round < 300; ++round) {
    ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 1));
    const CancelledThread blocked([&] {
      EXPECT_EQ(1, vxSO_SELock(lock_, round % 2, 1));
      EXPECT_EQ(1, vxSO_SELockRelease(lock_));
    });
    wait_for_waiter();
    std::thread releasing([&] { vxSO_SELockRelease(lock_); });
    blocked.cancel();
    blocked.ended_behind_its_body();
    releasing.join();
    ASSERT_EQ(nullptr, lock_->exclusiveWaiters);
    ASSERT_EQ(nullptr, lock_->sharedWaiters);
    expect_free();
  }
}

int32_t reach_a_cancellation_point(void*, uint32_t, void*, void*) {
  pthread_testcancel();
  return 0;
}

TEST_F(Cancellation, OfAThreadThatRunsANotificationWaitsForItsEnd) {
  ASSERT_EQ(1, vxSO_SELock(lock_, 0, 1));
  EXPECT_EQ(0, vxSO_SELockExclusiveNotify(lock_, reach_a_cancellation_point, nullptr, nullptr));
  EXPECT_TRUE(gets_behind([&] { EXPECT_EQ(1, vxSO_SELockRelease(lock_)); }));
  expect_free();
  EXPECT_EQ(nullptr, lock_->notifyList);
}

TEST_F(Cancellation, NeverStrikesInTheSpinLocksSleep) {
  orbtest::CallScript script;
  script.busy_tries = 4400;
  long word = 0;
  vxSL_Get(&word);
  ASSERT_EQ(400u, script.naps.size());
  for (const auto& nap : script.naps) ASSERT_EQ(PTHREAD_CANCEL_DISABLE, nap.cancel_state);
  int after = -1;
  EXPECT_EQ(0, pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &after));
  EXPECT_EQ(PTHREAD_CANCEL_ENABLE, after);
}

TEST_F(Cancellation, NeverStrikesInAnEntryPoint) {
  int calls = 0;
  const orbtest::PluginHook hook([&](void*, uint32_t, void*) {
    ++calls;
    pthread_testcancel();
    return 1;
  });
  EXPECT_TRUE(gets_behind([] {
    void* library = voxLoadLibrary(orbtest::kHookedPlugin, nullptr);
    EXPECT_NE(nullptr, library);
    EXPECT_EQ(1, voxFreeLibrary(library));
  }));
  EXPECT_EQ(2, calls);
  void* library = voxLoadLibrary(orbtest::kPlainPlugin, nullptr);
  EXPECT_NE(nullptr, library) << "the list is not left locked";
  EXPECT_EQ(1, voxFreeLibrary(library));
}

TEST_F(Cancellation, NeverStrikesInALogMessage) {
  const auto logged = orbtest::logged_by([] {
    const bool behind = gets_behind([] { quillon_com::orb::LogInSystemLog(3, "last words"); });
    quillon_com::orb::LogInSystemLog(3, behind ? "behind" : "cancelled");
  });
  if (!logged) GTEST_SKIP() << "needs root: a mount name space";
  EXPECT_EQ("<11>[ORB]: last words\n<11>[ORB]: behind\n", *logged);
}

TEST_F(Cancellation, NeverStrikesInAForkThatWaitsForALock) {
  std::atomic<pid_t> child{-1};
  vxSL_Get(&lock_->spin);
  EXPECT_TRUE(gets_behind([&] {
    const pid_t made = fork();
    if (made == 0) _exit(0);
    child = made;
  }));
  vxSL_Release(&lock_->spin);
  ASSERT_LT(0, child);
  int status = -1;
  EXPECT_EQ(child, waitpid(child, &status, 0));
  EXPECT_EQ(0, status);
  expect_free();
}

}  // namespace
