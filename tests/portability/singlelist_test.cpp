// tests/portability/singlelist_test.cpp: the stack with one link, bare and behind its lock.
#include <cstddef>

#include "portability/Linklist.h"
#include "tests/portability/attached.h"

namespace {

struct Item {
  void* next;
  int number;
};

static_assert(sizeof(_vxSLL_t) == 16 && offsetof(_vxSLL_t, lock) == 8);

TEST(SingleList, InitEmptiesTheHead) {
  Item item{};
  void* head = &item;
  vxLL_Init(&head);
  EXPECT_EQ(nullptr, head);
  EXPECT_EQ(1, vxLL_IsEmpty(&head));
}

TEST(SingleList, ItemsComeOffInReverse) {
  void* head = nullptr;
  Item p{}, q{}, r{};
  for (Item* item : {&p, &q, &r}) vxLL_XInsertHead(&head, item);
  EXPECT_EQ(&q, r.next);
  EXPECT_EQ(0, vxLL_IsEmpty(&head));
  EXPECT_EQ(&r, vxLL_XRemoveHead(&head));
  EXPECT_EQ(&q, vxLL_XRemoveHead(&head));
  EXPECT_EQ(&p, vxLL_XRemoveHead(&head));
  EXPECT_EQ(nullptr, vxLL_XRemoveHead(&head));
}

TEST(SingleList, WalkRemovesBehindAPredecessor) {
  void* head = nullptr;
  Item p{}, q{}, r{};
  for (Item* item : {&p, &q, &r}) vxLL_XInsertHead(&head, item);
  void* previous = vxLL_XGetStart(&head);
  EXPECT_EQ(static_cast<void*>(&head), previous);
  EXPECT_EQ(&r, vxLL_XGetNext(previous));
  vxLL_XRemove(previous, &r);  // the head itself as the predecessor
  EXPECT_EQ(&q, head);
  vxLL_XRemove(&q, vxLL_XGetNext(&q));
  EXPECT_EQ(nullptr, vxLL_XGetNext(&q));
  EXPECT_EQ(1, vxLL_XIsEnd(vxLL_XGetNext(&q)));
  EXPECT_EQ(0, vxLL_XIsEnd(&q));
}

TEST(SingleList, NullArgumentsDoNothing) {
  Item item{};
  void* head = nullptr;
  vxLL_Init(nullptr);
  vxLL_XInsertHead(nullptr, &item);
  vxLL_XInsertHead(&head, nullptr);
  EXPECT_EQ(nullptr, head);
  EXPECT_EQ(nullptr, vxLL_XRemoveHead(nullptr));
  head = &item;
  vxLL_XRemove(nullptr, &item);
  vxLL_XRemove(&head, nullptr);
  EXPECT_EQ(&item, head);
  EXPECT_EQ(nullptr, vxLL_XGetStart(nullptr));
  EXPECT_EQ(nullptr, vxLL_XGetNext(nullptr));
  EXPECT_EQ(1, vxLL_XIsEnd(nullptr));
  EXPECT_EQ(1, vxLL_IsEmpty(nullptr));
}

class GuardedStack : public orbtest::AttachedTest {
 protected:
  void SetUp() override {
    AttachedTest::SetUp();
    ASSERT_EQ(0u, vxSLL_Create(&list_));
    ASSERT_NE(nullptr, list_);
  }
  void TearDown() override {
    vxSLL_Release(list_);
    AttachedTest::TearDown();
  }
  _vxSLL_t* list_ = nullptr;
};

TEST_F(GuardedStack, ItemsComeOffInReverseAndTheLockIsFree) {
  Item p{}, q{}, r{};
  EXPECT_EQ(1, vxSLL_IsEmpty(list_));
  for (Item* item : {&p, &q, &r}) vxSLL_XInsertHead(list_, item);
  EXPECT_EQ(0, vxSLL_IsEmpty(list_));
  EXPECT_EQ(&r, vxSLL_XRemoveHead(list_));
  EXPECT_EQ(&q, vxSLL_XRemoveHead(list_));
  EXPECT_EQ(&p, vxSLL_XRemoveHead(list_));
  EXPECT_EQ(nullptr, vxSLL_XRemoveHead(list_));
  EXPECT_EQ(0u, list_->lock->count);
  EXPECT_EQ(4, list_->lock->lastTransition) << "entered and released";
}

TEST_F(GuardedStack, HeadOfAnEmptyListIsNullAndTheLockIsKept) {
  EXPECT_EQ(nullptr, vxSLL_XGetHead(list_, 1, 1));
  EXPECT_EQ(vxSO_GetThread(), list_->lock->owner);
  vxSLL_LockRelease(list_);
}

TEST_F(GuardedStack, QuirkBusyLockGivesAllOnes) {
  ASSERT_EQ(nullptr, vxSLL_XGetHead(list_, 1, 1));
  void* exclusive = nullptr;
  void* shared = nullptr;
  orbtest::attached([&] {
    exclusive = vxSLL_XGetHead(list_, 1, 0);
    shared = vxSLL_XGetHead(list_, 0, 0);
  }).join();
  EXPECT_EQ(-1, reinterpret_cast<intptr_t>(exclusive));
  EXPECT_EQ(-1, reinterpret_cast<intptr_t>(shared));
  vxSLL_LockRelease(list_);
}

TEST_F(GuardedStack, NullListIsEmptyAndDoesNothing) {
  Item item{};
  EXPECT_EQ(0x80000008u, vxSLL_Init(nullptr));
  EXPECT_EQ(0x80000008u, vxSLL_Create(nullptr));
  vxSLL_Uninit(nullptr);
  vxSLL_Release(nullptr);
  vxSLL_XInsertHead(nullptr, &item);
  EXPECT_EQ(nullptr, vxSLL_XRemoveHead(nullptr));
  EXPECT_EQ(nullptr, vxSLL_XGetHead(nullptr, 1, 1));
  vxSLL_LockRelease(nullptr);
  EXPECT_EQ(1, vxSLL_IsEmpty(nullptr));
}

TEST_F(GuardedStack, UninitLeavesItemsAlone) {
  _vxSLL_t own{};
  Item first{}, second{};
  ASSERT_EQ(0u, vxSLL_Init(&own));
  vxSLL_XInsertHead(&own, &first);
  vxSLL_XInsertHead(&own, &second);
  vxSLL_Uninit(&own);
  EXPECT_EQ(&second, own.head);
  EXPECT_EQ(&first, second.next);
}

}  // namespace
