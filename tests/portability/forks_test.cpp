// tests/portability/forks_test.cpp: a forked child uses what other threads held at the fork.
#include "portability/forks.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <string_view>
#include <thread>
#include <vector>

#include "fileutil/dirent.h"
#include "fileutil/timestamp.h"
#include "portability/dynlib.h"
#include "portability/handles.h"
#include "portability/selock.h"
#include "portability/signals.h"
#include "portability/threads.h"
#include "tests/portability/library_use.h"
#include "tests/support/callfaults.h"
#include "tests/support/forked_child.h"

namespace {

using namespace orbtest;
using quillon_com::orb::LogInSystemLog;

// A thread that is stopped in the middle of `work`, as soon as that calls `stop`.
class StoppedThread {
 public:
  explicit StoppedThread(std::function<void(std::function<void()> stop)> work)
      : thread_([this, work = std::move(work)] { work([this] { stop(); }); }) {
    while (!stopped_) std::this_thread::yield();
  }
  ~StoppedThread() {
    go_on_ = true;
    thread_.join();
  }
  StoppedThread(const StoppedThread&) = delete;
  StoppedThread& operator=(const StoppedThread&) = delete;

 private:
  void stop() {
    stopped_ = true;
    while (!go_on_) std::this_thread::yield();
  }

  std::atomic<bool> stopped_{false};
  std::atomic<bool> go_on_{false};
  std::thread thread_;
};

struct HeldCase {
  const char* name;
  void (*holder)(std::function<void()> stop);
};

// Runs `work` until it has locked its mutex number `nth`, and stops there.
template <class Work>
void stop_in(size_t nth, const std::function<void()>& stop, Work work) {
  AfterCall after("pthread_mutex_lock", stop, nth);
  work();
}

const HeldCase kHeld[] = {
    {"Interlocked",
     [](std::function<void()> stop) {
       long word = 0;
       stop_in(1, stop, [&] { voxInterlockedIncrement(&word); });
     }},
    {"InterlockedExchange",
     [](std::function<void()> stop) {
       long word = 0;
       stop_in(1, stop, [&] { voxInterlockedExchange(&word, 1); });
     }},
    {"SlotTable",
     [](std::function<void()> stop) {
       stop_in(1, stop, [] { voxTlsFree(static_cast<uint32_t>(voxTlsAlloc())); });
     }},
    {"LibraryMessages",
     [](std::function<void()> stop) {
       stop_in(1, stop, [] { voxLoadLibrary(nullptr, nullptr); });
     }},
    {"LibraryList",
     [](std::function<void()> stop) {
       stop_in(2, stop, [] { voxLoadLibrary("/no such library", nullptr); });
     }},
    {"LibraryListInAnEntryPoint",
     [](std::function<void()> stop) {
       const PluginHook hook([&](void*, uint32_t reason, void*) {
         if (reason == 1) stop();
         return 1;
       });
       voxFreeLibrary(voxLoadLibrary(kHookedPlugin, nullptr));
     }},
    {"LibraryTable",
     [](std::function<void()> stop) {
       stop_in(1, stop, [&] { voxDisableThreadLibraryCalls(&stop); });
     }},
    {"WideLibraryMessage",
     [](std::function<void()> stop) {
       stop_in(1, stop, [] { voxLoadLibraryW(nullptr, nullptr); });
     }},
    {"Searches",
     [](std::function<void()> stop) {
       stop_in(1, stop, [] {
         FindDataDirEnt found{};
         voxFindCloseDirEnt(voxFindFirstDirEnt("/*", &found));
       });
     }},
    {"Stamps",
     [](std::function<void()> stop) {
       stop_in(1, stop, [] { quillon_com::orb::voxcomn_get_time_stamp_ansi(); });
     }},
    {"Guids", [](std::function<void()> stop) { stop_in(1, stop, use_guids); }},
    {"Users", [](std::function<void()> stop) { stop_in(1, stop, use_users); }},
    {"SystemLog",
     [](std::function<void()> stop) { stop_in(1, stop, [] { LogInSystemLog(7, "a parent"); }); }},
};

class Fork : public testing::TestWithParam<HeldCase> {
 protected:
  void TearDown() override {
    for (uint32_t slot = 0; slot < kTlsSlots; ++slot) voxTlsFree(slot);
  }
};

TEST_P(Fork, LeavesTheChildWhatAnotherThreadHeld) {
  use_everything();
  {
    const StoppedThread other(GetParam().holder);
    EXPECT_EQ("", outcome_in_child(use_everything));
  }
  use_everything();
}

INSTANTIATE_TEST_SUITE_P(Locks, Fork, testing::ValuesIn(kHeld),
                         [](const auto& held) { return std::string(held.param.name); });

int32_t run(void* body, uint32_t, void*, void*) {
  (*static_cast<std::function<void()>*>(body))();
  return 0;
}

TEST_F(ForkOfLocks, LeavesTheChildASpinWordThatAnotherThreadHeld) {
  const StoppedThread other([this](std::function<void()> stop) {
    const AttachedThread self;
    ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 0));
    std::function<void()> stop_here = [&, here = getpid()] {
      if (getpid() == here) stop();  // the child has the notification too
    };
    attached([&] {
      EXPECT_EQ(0, vxSO_SELockExclusiveNotify(lock_, run, &stop_here, nullptr));
    }).join();
    EXPECT_EQ(1, vxSO_SELockRelease(lock_));  // stops in the notification
  });
  ASSERT_EQ(1, __atomic_load_n(&lock_->spin, __ATOMIC_RELAXED));
  EXPECT_EQ("", outcome_in_child([this] { expect_free(); }));
  EXPECT_EQ(1, __atomic_load_n(&lock_->spin, __ATOMIC_RELAXED)) << "still the other thread's";
}

TEST_F(ForkOfLocks, OfANotificationLeavesItsThreadTheSpinWord) {
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 0));
  std::function<void()> told = [this] {
    EXPECT_EQ("", outcome_in_child([this] {
                EXPECT_EQ(1, lock_->spin);
                use_locks();
              }));
    EXPECT_EQ(1, lock_->spin);
  };
  attached([&] { vxSO_SELockExclusiveNotify(lock_, run, &told, nullptr); }).join();
  EXPECT_EQ(1, vxSO_SELockRelease(lock_));
  expect_free();
}

// The thread runs the notifications of two locks, one within the other.
TEST_F(ForkOfLocks, OfANotificationWithinOneLeavesItsThreadBothSpinWords) {
  const Lock inner;
  std::function<void()> told_of_inner = [&] {
    EXPECT_EQ("", outcome_in_child([&] {
                EXPECT_EQ(1, lock_->spin);
                EXPECT_EQ(1, inner->spin);
                use_locks();
              }));
  };
  std::function<void()> told = [&] { EXPECT_EQ(1, vxSO_SELockRelease(inner.get())); };
  ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 0));
  ASSERT_EQ(1, vxSO_SELockExclusive(inner.get(), 0));
  attached([&] {
    vxSO_SELockExclusiveNotify(lock_, run, &told, nullptr);
    vxSO_SELockExclusiveNotify(inner.get(), run, &told_of_inner, nullptr);
  }).join();
  EXPECT_EQ(1, vxSO_SELockRelease(lock_));
  EXPECT_EQ(0, inner->spin);
  expect_free();
}

TEST(ForkPatience, EndsWhenAFlagStaysSet) {
  std::atomic_flag flag = ATOMIC_FLAG_INIT;
  quillon_com::orb::portability::ForkPatience patience;
  EXPECT_TRUE(patience.take(&flag));
  EXPECT_FALSE(patience.take(&flag));
  EXPECT_FALSE(patience.wait()) << "used up";
  flag.clear();
  EXPECT_TRUE(patience.take(&flag)) << "asks for none";
}

TEST_F(ForkOfLocks, LeavesNobodyInTheChildsQueues) {
  for (int exclusive : {0, 1}) {
    ASSERT_EQ(1, vxSO_SELockExclusive(lock_, 0));
    std::thread waiter = attached([&] {
      EXPECT_EQ(1, vxSO_SELock(lock_, exclusive, 1));
      EXPECT_EQ(1, vxSO_SELockRelease(lock_));
    });
    void* const* queue = exclusive != 0 ? &lock_->exclusiveWaiters : &lock_->sharedWaiters;
    const auto queued = [&] {
      vxSL_Get(&lock_->spin);
      const bool found = *queue != nullptr;
      vxSL_Release(&lock_->spin);
      return found;
    };
    while (!queued()) std::this_thread::yield();
    EXPECT_EQ("", outcome_in_child([&] {
                EXPECT_EQ(nullptr, *queue);
                EXPECT_EQ(1, vxSO_SELockRelease(lock_));
                expect_free();
              }));
    EXPECT_TRUE(queued()) << "the parent's waiter waits on";
    EXPECT_EQ(1, vxSO_SELockRelease(lock_));
    waiter.join();
    expect_free();
  }
}

TEST(ForkInAnEntryPoint, LeavesItsThreadTheLibraryList) {
  pid_t child = -1;
  const PluginHook hook([&](void*, uint32_t reason, void*) {
    if (reason == 1) child = fork();
    return 1;
  });
  void* library = voxLoadLibrary(kHookedPlugin, nullptr);
  ASSERT_NE(nullptr, library);
  if (child == 0) {
    alarm(60);
    use_libraries();
    EXPECT_EQ(1, voxFreeLibrary(library));
    _exit(HasFailure() ? 1 : 0);
  }
  int status = -1;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  EXPECT_EQ(0, status);
  use_libraries();
  EXPECT_EQ(1, voxFreeLibrary(library));
}

TEST_F(ForkOfLocks, WhileOthersUseEverythingLeavesTheChildEverything) {
  if (std::string_view(ORB_SANITIZERS).find("address") != std::string_view::npos)
    GTEST_SKIP() << "the address sanitizer's own allocator stays locked in such a child";
  std::atomic<bool> done{false};
  std::vector<std::thread> others;
  for (int each = 0; each < 2; ++each) {
    others.push_back(attached([&] {
      while (!done) {
        use_interlocked();
        use_slots();
        vxSO_SELockExclusive(lock_, 1);
        vxSO_SELockRelease(lock_);
        voxLoadLibrary(nullptr, nullptr);
        voxDisableThreadLibraryCalls(&done);
        use_locks();
      }
    }));
  }
  for (int round = 0; round < 200 && !HasFailure(); ++round) {
    EXPECT_EQ("", outcome_in_child([this] {
                use_everything();
                const intptr_t me = vxSO_GetThread();
                if (lock_->count == 0) expect_free();
                EXPECT_EQ(me, vxSO_GetThread());
              }));
  }
  done = true;
  for (std::thread& other : others) other.join();
  expect_free();
}

}  // namespace
