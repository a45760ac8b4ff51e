// tests/portability/attached.h: threads that may take shared/exclusive locks.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <thread>

#include "portability/selock.h"
#include "portability/threads.h"
#include "tests/support/attached.h"

namespace orbtest {

// A thread with an event that runs `body`.
inline std::thread attached(std::function<void()> body) {
  return std::thread([body = std::move(body)] {
    const AttachedThread self;
    body();
  });
}

// Tests whose own thread has an event.
class AttachedTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(-1, vxSO_ProcessAttach());
    ASSERT_EQ(1, vxSO_ThreadAttach());
  }
  void TearDown() override {
    vxSO_ThreadDetach();
    vxSO_ProcessDetach();
  }
};

// Tests of one lock.
class LockTest : public AttachedTest {
 protected:
  void SetUp() override {
    AttachedTest::SetUp();
    ASSERT_EQ(0u, vxSO_SELockCreate(&lock_));
  }
  void TearDown() override {
    vxSO_Release(lock_);
    AttachedTest::TearDown();
  }

  // Waits until `holds`, asked while the spin word is held.
  template <class Condition>
  void wait_until(Condition holds) {
    for (bool held = false; !held; std::this_thread::yield()) {
      vxSL_Get(&lock_->spin);
      held = holds();
      vxSL_Release(&lock_->spin);
    }
  }

  _vxSELock_t* lock_ = nullptr;
};

// An event of nobody's thread, which can stand for another thread's.
class OtherEvent {
 public:
  OtherEvent() : handle_(voxCreateEvent(nullptr, 1, 0, nullptr)) {}
  ~OtherEvent() { voxCloseHandle(handle_); }
  OtherEvent(const OtherEvent&) = delete;
  OtherEvent& operator=(const OtherEvent&) = delete;
  intptr_t number() const { return reinterpret_cast<intptr_t>(handle_); }
  bool is_set() const { return voxWaitForSingleObject(handle_, 0) == WAIT_OBJECT_0; }

 private:
  void* handle_;
};

}  // namespace orbtest
