// tests/portability/guardedlists_test.cpp: what both lists behind a lock have in common.
#include "portability/Linklist.h"
#include "tests/portability/attached.h"
#include "tests/support/faults.h"

namespace {

struct Item {
  void* next;
  void* previous;
};

// The two families under one set of names; `remove` alternates between the ends where there are
// two.
struct OneLink {
  using List = _vxSLL_t;
  static constexpr auto create = vxSLL_Create;
  static constexpr auto release = vxSLL_Release;
  static constexpr auto head = vxSLL_XGetHead;
  static constexpr auto unlock = vxSLL_LockRelease;
  static constexpr auto insert = vxSLL_XInsertHead;
  static constexpr auto insert_last = vxSLL_XInsertHead;
  static constexpr auto is_empty = vxSLL_IsEmpty;
  static void* remove(List* list, int) { return vxSLL_XRemoveHead(list); }
};

struct TwoLinks {
  using List = _vxSLL2_t;
  static constexpr auto create = vxSLL2_Create;
  static constexpr auto release = vxSLL2_Release;
  static constexpr auto head = vxSLL2_XGetHead;
  static constexpr auto unlock = vxSLL2_LockRelease;
  static constexpr auto insert = vxSLL2_XInsertHead;
  static constexpr auto insert_last = vxSLL2_XInsertTail;
  static constexpr auto is_empty = vxSLL2_IsEmpty;
  static void* remove(List* list, int round) {
    return round % 2 == 0 ? vxSLL2_XRemoveHead(list) : vxSLL2_XRemoveTail(list);
  }
};

template <typename Family>
class GuardedList : public orbtest::AttachedTest {
 protected:
  void SetUp() override {
    AttachedTest::SetUp();
    ASSERT_EQ(0u, Family::create(&list_));
    ASSERT_NE(nullptr, list_);
  }
  void TearDown() override {
    Family::release(list_);
    AttachedTest::TearDown();
  }
  typename Family::List* list_ = nullptr;
};
using Families = ::testing::Types<OneLink, TwoLinks>;
TYPED_TEST_SUITE(GuardedList, Families, );

TYPED_TEST(GuardedList, HeadKeepsTheLockInTheModeAskedFor) {
  Item item{};
  TypeParam::head(this->list_, 1, 1);
  EXPECT_EQ(vxSO_GetThread(), this->list_->lock->owner);
  TypeParam::unlock(this->list_);
  TypeParam::insert(this->list_, &item);
  EXPECT_EQ(&item, TypeParam::head(this->list_, 0, 1));
  EXPECT_EQ(-1, this->list_->lock->owner);
  EXPECT_EQ(1u, this->list_->lock->count);
  TypeParam::unlock(this->list_);
  EXPECT_EQ(0u, this->list_->lock->count);
  EXPECT_EQ(&item, TypeParam::remove(this->list_, 0));
}

TYPED_TEST(GuardedList, OperationsExcludeEachOther) {
  constexpr int kRounds = 1000;
  Item items[4]{};
  std::vector<std::thread> threads;
  for (Item& item : items) {
    threads.push_back(orbtest::attached([&] {
      TypeParam::insert(this->list_, &item);
      for (int round = 0; round < kRounds; ++round) {
        void* taken = TypeParam::remove(this->list_, round);
        ASSERT_NE(nullptr, taken);
        TypeParam::insert(this->list_, taken);
      }
    }));
  }
  for (auto& thread : threads) thread.join();
  int left = 0;
  while (TypeParam::remove(this->list_, left) != nullptr) ++left;
  EXPECT_EQ(4, left);
}

// Without an event a thread cannot wait for another's hold.
TYPED_TEST(GuardedList, IsOutOfReachOfAThreadWithoutAnEventWhileItIsHeld) {
  Item kept{};
  Item item{};
  TypeParam::insert(this->list_, &kept);
  TypeParam::head(this->list_, 1, 1);
  std::thread([&] {
    TypeParam::insert(this->list_, &item);
    TypeParam::insert_last(this->list_, &item);
    EXPECT_EQ(nullptr, TypeParam::remove(this->list_, 0));
    EXPECT_EQ(nullptr, TypeParam::remove(this->list_, 1));
    EXPECT_EQ(0, TypeParam::is_empty(this->list_));
  }).join();
  TypeParam::unlock(this->list_);
  EXPECT_EQ(&kept, TypeParam::remove(this->list_, 0));
  EXPECT_EQ(nullptr, TypeParam::remove(this->list_, 0));
  TypeParam::head(this->list_, 1, 1);
  std::thread([&] { EXPECT_EQ(0, TypeParam::is_empty(this->list_)) << "not known"; }).join();
  TypeParam::unlock(this->list_);
}

TYPED_TEST(GuardedList, QuirkCreationWithoutMemoryForTheLockGivesZero) {
  const struct {
    const char* name;
    size_t nth;
    uint32_t result;
  } cases[] = {{"no memory for the record", 1, 0x80000008u}, {"no memory for its lock", 2, 0}};
  for (const auto& each : cases) {
    auto* out = this->list_;
    uint32_t result = 1;
    {
      orbtest::MemoryFaults faults(each.nth);
      result = TypeParam::create(&out);
    }
    EXPECT_EQ(each.result, result) << each.name;
    EXPECT_EQ(nullptr, out) << each.name;
  }
}

}  // namespace
