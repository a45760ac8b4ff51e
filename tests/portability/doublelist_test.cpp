// tests/portability/doublelist_test.cpp: the list with two links, bare and behind its lock.
#include <cstddef>

#include "portability/Linklist.h"
#include "tests/portability/attached.h"

namespace {

struct Item {
  void* next;
  void* previous;
};

static_assert(sizeof(_vxLL2Header_t) == 32 && offsetof(_vxSLL2_t, lock) == 32);

TEST(DoubleList, RemoveJoinsTheNeighboursAndKeepsTheItemsLinks) {
  Item first{}, item{}, last{};
  first.next = last.previous = &item;
  item = {&last, &first};
  vxLL2_XRemove(&item);
  EXPECT_EQ(&last, first.next);
  EXPECT_EQ(&first, last.previous);
  EXPECT_EQ(&last, item.next);
  EXPECT_EQ(&first, item.previous);
}

TEST(DoubleList, RemoveToleratesMissingNeighbours) {
  Item first{}, last{}, item{};
  item = {nullptr, &first};
  first.next = &item;
  vxLL2_XRemove(&item);
  EXPECT_EQ(nullptr, first.next);
  item = {&last, nullptr};
  last.previous = &item;
  vxLL2_XRemove(&item);
  EXPECT_EQ(nullptr, last.previous);
  vxLL2_XRemove(nullptr);
}

TEST(DoubleList, LinksAndEndOfAnItem) {
  Item first{}, item{}, last{};
  item = {&last, &first};
  EXPECT_EQ(&last, vxLL2_XGetNext(&item));
  EXPECT_EQ(&first, vxLL2_XGetPrev(&item));
  EXPECT_EQ(0, vxLL2_XIsEnd(&item));
  item.next = &item;
  EXPECT_EQ(1, vxLL2_XIsEnd(&item));
  EXPECT_EQ(nullptr, vxLL2_XGetNext(nullptr));
  EXPECT_EQ(nullptr, vxLL2_XGetPrev(nullptr));
  EXPECT_EQ(1, vxLL2_XIsEnd(nullptr));
}

class GuardedDoubleList : public orbtest::AttachedTest {
 protected:
  void SetUp() override {
    AttachedTest::SetUp();
    ASSERT_EQ(0u, vxSLL2_Create(&list_));
    ASSERT_NE(nullptr, list_);
  }
  void TearDown() override {
    vxSLL2_Release(list_);
    AttachedTest::TearDown();
  }
  void expect_empty(_vxSLL2_t* list) {
    void* head = &list->header.headNext;
    void* tail = &list->header.tailNext;
    EXPECT_EQ(tail, list->header.headNext);
    EXPECT_EQ(head, list->header.headPrevious);
    EXPECT_EQ(tail, list->header.tailNext);
    EXPECT_EQ(head, list->header.tailPrevious);
  }
  _vxSLL2_t* list_ = nullptr;
};

TEST_F(GuardedDoubleList, EmptyListHasItsSentinels) {
  expect_empty(list_);
  EXPECT_EQ(1, vxSLL2_IsEmpty(list_));
  EXPECT_EQ(nullptr, vxSLL2_XRemoveHead(list_));
  EXPECT_EQ(nullptr, vxSLL2_XRemoveTail(list_));
  EXPECT_EQ(0u, list_->lock->count);
}

TEST_F(GuardedDoubleList, BothEndsTakeAndGive) {
  Item a{}, b{}, c{};
  vxSLL2_XInsertTail(list_, &a);
  vxSLL2_XInsertTail(list_, &b);
  vxSLL2_XInsertHead(list_, &c);  // c a b
  EXPECT_EQ(0, vxSLL2_IsEmpty(list_));
  EXPECT_EQ(&c, list_->header.headNext);
  EXPECT_EQ(&a, c.next);
  EXPECT_EQ(static_cast<void*>(&list_->header.headNext), c.previous);
  EXPECT_EQ(&c, a.previous);
  EXPECT_EQ(static_cast<void*>(&list_->header.tailNext), b.next);
  EXPECT_EQ(&b, list_->header.tailPrevious);
  EXPECT_EQ(&b, vxSLL2_XRemoveTail(list_));
  EXPECT_EQ(&c, vxSLL2_XRemoveHead(list_));
  EXPECT_EQ(&a, vxSLL2_XRemoveTail(list_));
  expect_empty(list_);
  EXPECT_EQ(0u, list_->lock->count);
}

TEST_F(GuardedDoubleList, TailInsertionIsAQueue) {
  Item a{}, b{};
  vxSLL2_XInsertTail(list_, &a);
  vxSLL2_XInsertTail(list_, &b);
  EXPECT_EQ(&a, vxSLL2_XRemoveHead(list_));
  EXPECT_EQ(&b, vxSLL2_XRemoveHead(list_));
}

TEST_F(GuardedDoubleList, HeadOfAnEmptyListIsTheEndAndTheLockIsKept) {
  void* head = vxSLL2_XGetHead(list_, 1, 1);
  EXPECT_EQ(static_cast<void*>(&list_->header.tailNext), head);
  EXPECT_EQ(1, vxLL2_XIsEnd(head));
  EXPECT_EQ(vxSO_GetThread(), list_->lock->owner);
  vxSLL2_LockRelease(list_);
}

TEST_F(GuardedDoubleList, HeadBehindABusyLockIsNull) {
  ASSERT_NE(nullptr, vxSLL2_XGetHead(list_, 1, 1));
  void* exclusive = list_;
  void* shared = list_;
  orbtest::attached([&] {
    exclusive = vxSLL2_XGetHead(list_, 1, 0);
    shared = vxSLL2_XGetHead(list_, 0, 0);
  }).join();
  EXPECT_EQ(nullptr, exclusive);
  EXPECT_EQ(nullptr, shared);
  vxSLL2_LockRelease(list_);
}

TEST_F(GuardedDoubleList, NullArgumentsDoNothing) {
  Item item{};
  EXPECT_EQ(0x80000008u, vxSLL2_Init(nullptr));
  EXPECT_EQ(0x80000008u, vxSLL2_Create(nullptr));
  vxSLL2_Uninit(nullptr);
  vxSLL2_Release(nullptr);
  vxSLL2_XInsertHead(nullptr, &item);
  vxSLL2_XInsertTail(nullptr, &item);
  vxSLL2_XInsertHead(list_, nullptr);
  vxSLL2_XInsertTail(list_, nullptr);
  expect_empty(list_);
  EXPECT_EQ(nullptr, vxSLL2_XRemoveHead(nullptr));
  EXPECT_EQ(nullptr, vxSLL2_XRemoveTail(nullptr));
  EXPECT_EQ(nullptr, vxSLL2_XGetHead(nullptr, 1, 1));
  vxSLL2_LockRelease(nullptr);
  EXPECT_EQ(1, vxSLL2_IsEmpty(nullptr));
}

TEST_F(GuardedDoubleList, UninitTakesTheItemsOut) {
  _vxSLL2_t own{};
  Item first{}, second{};
  ASSERT_EQ(0u, vxSLL2_Init(&own));
  vxSLL2_XInsertTail(&own, &first);
  vxSLL2_XInsertTail(&own, &second);
  vxSLL2_Uninit(&own);
  expect_empty(&own);
}

}  // namespace
