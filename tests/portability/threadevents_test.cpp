// tests/portability/threadevents_test.cpp: the event that each thread keeps in its slot.
#include <gtest/gtest.h>

#include <thread>

#include "portability/threads.h"
#include "tests/portability/handle_scope.h"
#include "tests/support/callfaults.h"
#include "tests/support/scoped_error_word.h"

namespace {

using orbtest::CallFaults;
using orbtest::ScopedErrorWord;

constexpr int64_t kUntouched = ScopedErrorWord::kUntouched;

const int64_t kIndexAtLoad = vxSO_tls_index;

// Every test begins with no slot in use and none known, and ends so.
class ThreadEvents : public testing::Test {
 protected:
  void SetUp() override { forget(); }
  void TearDown() override { forget(); }

  static void forget() {
    ScopedErrorWord word;
    for (uint32_t slot = 0; slot < kTlsSlots; ++slot) voxTlsFree(slot);
    vxSO_tls_index = 0xFFFFFFFF;
  }
};

TEST_F(ThreadEvents, BeginWithoutASlot) {
  EXPECT_EQ(kIndexAtLoad, 0xFFFFFFFF);
  ScopedErrorWord word;
  EXPECT_EQ(vxSO_GetThread(), -1);
  EXPECT_EQ(word.stored(), 22);
  EXPECT_EQ(vxSO_DbgGetThread(), 0);
  EXPECT_EQ(vxSO_ThreadAttach(), 0);
  EXPECT_EQ(vxSO_ThreadAttachX(), 0);
  EXPECT_EQ(vxSO_ThreadDetach(), 0);
  EXPECT_EQ(vxSO_ProcessDetach(), 0);
  EXPECT_EQ(vxSO_tls_index, -1);
}

TEST_F(ThreadEvents, TheProcessTakesAndReleasesTheSlot) {
  ASSERT_EQ(voxTlsAlloc(), 0);
  EXPECT_EQ(vxSO_ProcessAttach(), 1);
  EXPECT_EQ(vxSO_tls_index, 1);
  EXPECT_NE(pTlsKeyTable[1], nullptr);
  EXPECT_EQ(vxSO_ProcessDetach(), 1);
  EXPECT_EQ(vxSO_tls_index, -1);
  EXPECT_EQ(pTlsKeyTable[1], nullptr);
}

TEST_F(ThreadEvents, AFullTableLeavesTheProcessWithoutASlot) {
  ScopedErrorWord word;
  while (voxTlsAlloc() != -1) {
  }
  word.clear();
  EXPECT_EQ(vxSO_ProcessAttach(), -1);
  EXPECT_EQ(vxSO_tls_index, -1);
  EXPECT_EQ(word.stored(), 35);
}

TEST_F(ThreadEvents, AttachMakesAnUnsetEventOnce) {
  ASSERT_EQ(vxSO_ProcessAttach(), 0);
  EXPECT_EQ(vxSO_GetThread(), -1);
  EXPECT_EQ(vxSO_DbgGetThread(), 0);
  EXPECT_EQ(vxSO_ThreadAttach(), 1);
  const intptr_t number = vxSO_GetThread();
  ASSERT_NE(number, -1);
  EXPECT_EQ(vxSO_DbgGetThread(), number);
  const auto* event = reinterpret_cast<_voxHandleObject_t*>(number);
  EXPECT_EQ(event->kind, 1u);
  EXPECT_EQ(event->signalled, 0);
  EXPECT_EQ(vxSO_ThreadAttach(), number) << "the one it has";
  EXPECT_EQ(vxSO_ThreadDetach(), 1);
  EXPECT_EQ(vxSO_GetThread(), -1);
  EXPECT_EQ(vxSO_DbgGetThread(), -1) << "none, but attached once";
  EXPECT_EQ(vxSO_ThreadDetach(), 1) << "closing none does no harm";
  EXPECT_EQ(vxSO_ThreadAttach(), 1) << "and again";
  EXPECT_EQ(vxSO_ThreadDetach(), 1);
}

TEST_F(ThreadEvents, BelongToTheirThreads) {
  ASSERT_EQ(vxSO_ProcessAttach(), 0);
  ASSERT_EQ(vxSO_ThreadAttach(), 1);
  intptr_t before = 0;
  intptr_t raw = -2;
  intptr_t attached = 0;
  intptr_t event = -1;
  std::thread([&] {
    before = vxSO_GetThread();
    raw = vxSO_DbgGetThread();
    attached = vxSO_ThreadAttach();
    event = vxSO_GetThread();
    vxSO_ThreadDetach();
  }).join();
  EXPECT_EQ(before, -1);
  EXPECT_EQ(raw, 0);
  EXPECT_EQ(attached, 1);
  EXPECT_NE(event, -1);
  EXPECT_NE(event, vxSO_GetThread());
  EXPECT_EQ(vxSO_ThreadDetach(), 1);
}

TEST_F(ThreadEvents, TheXFormsMarkWithoutClosing) {
  ASSERT_EQ(vxSO_ProcessAttach(), 0);
  ASSERT_EQ(vxSO_ThreadAttach(), 1);
  orbtest::Handle event(reinterpret_cast<_voxHandleObject_t*>(vxSO_GetThread()));
  vxSO_ThreadDetachX();
  EXPECT_EQ(vxSO_GetThread(), reinterpret_cast<intptr_t>(event.get())) << "does nothing";
  EXPECT_EQ(vxSO_ThreadAttachX(), 1);
  EXPECT_EQ(vxSO_DbgGetThread(), -1);
  EXPECT_EQ(voxSetEvent(event.get()), 1) << "still open";
}

TEST_F(ThreadEvents, QuirkAThreadThatGetsNoMemoryIsToldSuccessAndHasNoEvent) {
  ASSERT_EQ(vxSO_ProcessAttach(), 0);
  ScopedErrorWord word;
  intptr_t attached = 0;
  {
    orbtest::MemoryFaults faults(1);
    attached = vxSO_ThreadAttach();
  }
  EXPECT_EQ(attached, 1);
  EXPECT_EQ(word.stored(), 12);
  EXPECT_EQ(vxSO_GetThread(), -1);
  EXPECT_EQ(vxSO_DbgGetThread(), 0);
}

TEST_F(ThreadEvents, AnEventThatCannotBeStoredIsNotKept) {
  ASSERT_EQ(vxSO_ProcessAttach(), 0);
  ScopedErrorWord word;
  CallFaults faults("pthread_setspecific", ENOMEM);
  EXPECT_EQ(vxSO_ThreadAttach(), 0);
  EXPECT_EQ(vxSO_GetThread(), -1);
  EXPECT_EQ(word.stored(), kUntouched);
}

TEST_F(ThreadEvents, QuirkAnyEndedThreadReleasesTheirSlot) {
  ASSERT_EQ(vxSO_ProcessAttach(), 0);
  ASSERT_EQ(vxSO_ThreadAttach(), 1);
  orbtest::Handle event(reinterpret_cast<_voxHandleObject_t*>(vxSO_GetThread()));
  orbtest::Handle thread(voxBeginThread(
      nullptr, 0, [](void* argument) { return argument; }, nullptr, 0, nullptr));
  ASSERT_EQ(voxWaitForSingleObject(thread.get(), INFINITE), uint64_t{WAIT_OBJECT_0});
  EXPECT_EQ(vxSO_tls_index, 0) << "the number is not forgotten";
  EXPECT_EQ(vxSO_GetThread(), -1);
  EXPECT_EQ(vxSO_ProcessDetach(), 0);
}

}  // namespace
