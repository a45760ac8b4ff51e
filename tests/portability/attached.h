// tests/portability/attached.h: threads that may take shared/exclusive locks.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <thread>

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
