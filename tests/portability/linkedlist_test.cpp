// tests/portability/linkedlist_test.cpp: the counted list and its assertions.
#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <string>
#include <vector>

#include "portability/Linklist.h"
#include "tests/support/faults.h"

namespace {

struct Item {
  void* previous;
  void* next;
};

static_assert(sizeof(_LinkedList_t) == 24 && offsetof(_LinkedList_t, lpTail) == 0 &&
              offsetof(_LinkedList_t, head) == 8 && offsetof(_LinkedList_t, count) == 16);

class LinkedList : public testing::Test {
 protected:
  void SetUp() override {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ASSERT_EQ(1, LinkedList_Init(&list_));
  }
  void TearDown() override { LinkedList_End(&list_); }

  // Fills the list with `count` items and returns their addresses.
  std::vector<void*> fill(size_t count) {
    std::vector<void*> added;
    for (size_t index = 0; index < count; ++index) {
      LinkedList_AddTail(list_, &items_[index]);
      added.push_back(&items_[index]);
    }
    return added;
  }

  // The list holds exactly `expected`, forwards and backwards.
  void expect_items(const std::vector<void*>& expected) {
    EXPECT_EQ(expected.size(), LinkedList_GetCount(list_));
    std::vector<void*> forwards, backwards;
    for (void* at = list_->head; at != nullptr; at = static_cast<Item*>(at)->next)
      forwards.push_back(at);
    for (void* at = list_->lpTail; at != nullptr; at = static_cast<Item*>(at)->previous)
      backwards.insert(backwards.begin(), at);
    EXPECT_EQ(expected, forwards);
    EXPECT_EQ(expected, backwards);
  }

  _LinkedList_t* list_ = nullptr;
  Item items_[4]{};
};

TEST_F(LinkedList, NewListIsEmpty) { expect_items({}); }

TEST_F(LinkedList, InitWithoutMemoryGivesZero) {
  _LinkedList_t* made = list_;
  int result = 1;
  {
    orbtest::MemoryFaults faults(1);
    result = LinkedList_Init(&made);
  }
  EXPECT_EQ(0, result);
  EXPECT_EQ(list_, made) << "left alone";
}

TEST_F(LinkedList, EndStoresNullAndToleratesNull) {
  fill(1);
  LinkedList_End(&list_);
  EXPECT_EQ(nullptr, list_);
  LinkedList_End(&list_);
  LinkedList_End(nullptr);
}

TEST_F(LinkedList, AddHeadAndTailLinkBothWays) {
  EXPECT_EQ(1, LinkedList_AddHead(list_, &items_[1]));
  expect_items({&items_[1]});
  EXPECT_EQ(1, LinkedList_AddHead(list_, &items_[0]));
  EXPECT_EQ(1, LinkedList_AddTail(list_, &items_[2]));
  expect_items({&items_[0], &items_[1], &items_[2]});
}

TEST_F(LinkedList, AddClearsAnItemsOldLinks) {
  items_[0] = {&items_[3], &items_[3]};
  items_[1] = {&items_[3], &items_[3]};
  LinkedList_AddTail(list_, &items_[0]);
  LinkedList_AddTail(list_, &items_[1]);
  expect_items({&items_[0], &items_[1]});
}

TEST_F(LinkedList, NullArgumentsGiveZeroOrNull) {
  EXPECT_EQ(0, LinkedList_AddHead(nullptr, &items_[0]));
  EXPECT_EQ(0, LinkedList_AddHead(list_, nullptr));
  EXPECT_EQ(0, LinkedList_AddTail(nullptr, &items_[0]));
  EXPECT_EQ(0, LinkedList_AddTail(list_, nullptr));
  EXPECT_EQ(nullptr, LinkedList_RemoveTail(nullptr));
  EXPECT_EQ(nullptr, LinkedList_PeekAt(nullptr, 0));
  EXPECT_EQ(nullptr, LinkedList_RemoveAt(nullptr, 0));
  expect_items({});
}

TEST_F(LinkedList, RemoveTailTakesTheLast) {
  fill(2);
  EXPECT_EQ(&items_[1], LinkedList_RemoveTail(list_));
  expect_items({&items_[0]});
  EXPECT_EQ(&items_[0], LinkedList_RemoveTail(list_));
  expect_items({});
  EXPECT_EQ(nullptr, LinkedList_RemoveTail(list_));
}

TEST_F(LinkedList, PeekCountsFromTheHead) {
  const auto added = fill(3);
  for (size_t index = 0; index < 3; ++index)
    EXPECT_EQ(added[index], LinkedList_PeekAt(list_, index)) << index;
  EXPECT_EQ(nullptr, LinkedList_PeekAt(list_, 3));
  EXPECT_EQ(nullptr, LinkedList_PeekAt(list_, UINT64_MAX));
  expect_items(added);
}

TEST_F(LinkedList, RemoveAtTakesAnyItem) {
  const struct {
    const char* name;
    size_t count, index;
  } cases[] = {{"the only one", 1, 0}, {"the first", 3, 0},    {"the middle", 3, 1},
               {"the last", 3, 2},     {"first of two", 2, 0}, {"last of two", 2, 1}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    while (LinkedList_RemoveTail(list_) != nullptr) {
    }
    auto expected = fill(each.count);
    void* removed = expected[each.index];
    expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(each.index));
    EXPECT_EQ(removed, LinkedList_RemoveAt(list_, each.index));
    expect_items(expected);
  }
}

TEST_F(LinkedList, RemoveAtKeepsTheItemsOwnLinks) {
  fill(3);
  LinkedList_RemoveAt(list_, 1);
  EXPECT_EQ(&items_[0], items_[1].previous);
  EXPECT_EQ(&items_[2], items_[1].next);
  LinkedList_RemoveAt(list_, 0);
  EXPECT_EQ(&items_[2], items_[0].next);
}

TEST_F(LinkedList, RemoveAtBeyondTheCountGivesNull) {
  EXPECT_EQ(nullptr, LinkedList_RemoveAt(list_, 0));
  const auto added = fill(2);
  EXPECT_EQ(nullptr, LinkedList_RemoveAt(list_, 2));
  EXPECT_EQ(nullptr, LinkedList_RemoveAt(list_, UINT64_MAX));
  expect_items(added);
}

// What the platform prints for a failed assertion, as a regular expression.
std::string report(const char* function, int line, const char* expression) {
  return "\\.\\./source/Linklist:" + std::to_string(line) + ": " + function + ": Assertion `" +
         expression + "' failed";
}

TEST_F(LinkedList, InitOfNullEndsTheProcess) {
  EXPECT_EXIT(LinkedList_Init(nullptr), testing::KilledBySignal(SIGABRT),
              report("LinkedList_Init", 31, "lphLinkedList"));
}

TEST_F(LinkedList, CountOfNullEndsTheProcess) {
  EXPECT_EXIT(LinkedList_GetCount(nullptr), testing::KilledBySignal(SIGABRT),
              report("LinkedList_GetCount", 167, "lpMain"));
}

TEST_F(LinkedList, PeekBeyondTheLinksEndsTheProcess) {
  fill(2);
  list_->count = 9;
  EXPECT_EXIT(LinkedList_PeekAt(list_, 4), testing::KilledBySignal(SIGABRT),
              report("LinkedList_PeekAt", 200, "lpItem"));
}

TEST_F(LinkedList, RemovalBeyondTheLinksEndsTheProcess) {
  fill(2);
  list_->count = 9;
  EXPECT_EXIT(LinkedList_RemoveAt(list_, 4), testing::KilledBySignal(SIGABRT),
              report("LinkedList_RemoveAt", 245, "lpItem"));
}

TEST_F(LinkedList, RemovalOfAFirstItemThatIsNotThereEndsTheProcess) {
  fill(2);
  list_->head = nullptr;
  EXPECT_EXIT(LinkedList_RemoveAt(list_, 0), testing::KilledBySignal(SIGABRT),
              report("LinkedList_RemoveAt", 245, "lpItem"));
}

TEST_F(LinkedList, RemoveTailOfACountWithoutATailGivesNull) {
  fill(2);
  list_->lpTail = nullptr;
  EXPECT_EQ(nullptr, LinkedList_RemoveTail(list_));
  EXPECT_EQ(2u, list_->count);
}

TEST_F(LinkedList, RemovalOfALastItemWithoutTailEndsTheProcess) {
  fill(2);
  list_->lpTail = nullptr;
  EXPECT_EXIT(LinkedList_RemoveAt(list_, 1), testing::KilledBySignal(SIGABRT),
              report("LinkedList_RemoveAt", 238, "lpMain->lpTail"));
}

}  // namespace
