// tests/torture/lists_rows.cpp: portability/Linklist.h under torture.
#include "portability/Linklist.h"

#include "tests/torture/attached.h"

namespace {

using orbtest::Attached;
using orbtest::indifferent;
using orbtest::Trial;

struct Item {
  void* first = nullptr;
  void* second = nullptr;
};

// What the two guarded families call their functions.
struct Doubly {
  using List = _vxSLL2_t;
  static constexpr auto init = vxSLL2_Init;
  static constexpr auto uninit = vxSLL2_Uninit;
  static constexpr auto create = vxSLL2_Create;
  static constexpr auto release = vxSLL2_Release;
  static constexpr auto insert = vxSLL2_XInsertHead;
  static constexpr auto unlock = vxSLL2_LockRelease;
  static constexpr auto get_head = vxSLL2_XGetHead;
};
struct Singly {
  using List = _vxSLL_t;
  static constexpr auto init = vxSLL_Init;
  static constexpr auto uninit = vxSLL_Uninit;
  static constexpr auto create = vxSLL_Create;
  static constexpr auto release = vxSLL_Release;
  static constexpr auto insert = vxSLL_XInsertHead;
  static constexpr auto unlock = vxSLL_LockRelease;
  static constexpr auto get_head = vxSLL_XGetHead;
};

template <class Family>
void create(Trial& trial) {
  const Attached self;
  auto* list = reinterpret_cast<typename Family::List*>(&trial);
  const uint32_t status = trial.call([&] { return Family::create(&list); });
  trial.answer(std::to_string(status) + " " + orbtest::answer_text(list));
  if (list != nullptr) Family::release(list);
}

template <class Family>
void init(Trial& trial) {
  const Attached self;
  typename Family::List list{};
  if (trial.call([&] { return Family::init(&list); }) == 0) Family::uninit(&list);
}

template <class Family>
void release(Trial& trial) {
  const Attached self;
  typename Family::List* list = nullptr;
  Family::create(&list);
  trial.call([&] { Family::release(list); });
}

// A list of one item, and something done to it.
template <class Family, class Action>
void with_list(Trial& trial, Action action) {
  const Attached self;
  typename Family::List list{};
  Item item;
  Item other;
  Family::init(&list);
  Family::insert(&list, &item);
  action(trial, &list, &other);
  Family::uninit(&list);
}

template <class Family, auto function>
void ask(Trial& trial) {
  with_list<Family>(
      trial, [](Trial& each, auto* list, Item*) { each.call([&] { return function(list); }); });
}

template <class Family, auto function>
void insert(Trial& trial) {
  with_list<Family>(trial, [](Trial& each, auto* list, Item* other) {
    each.call([&] { function(list, other); });
    if (Family::get_head(list, 0, 0) == nullptr) each.answer("locked");
    Family::unlock(list);
  });
}

template <class Family>
void get_head(Trial& trial) {
  with_list<Family>(trial, [](Trial& each, auto* list, Item*) {
    each.call([&] { return Family::get_head(list, 1, 1); });
    Family::unlock(list);
  });
}

template <class Family>
void unlock(Trial& trial) {
  with_list<Family>(trial, [](Trial& each, auto* list, Item*) {
    Family::get_head(list, 1, 1);
    each.call([&] { Family::unlock(list); });
    if (list->lock->count != 0) each.answer("locked");
  });
}

template <class Family>
void uninit(Trial& trial) {
  const Attached self;
  typename Family::List list{};
  Item item;
  Family::init(&list);
  Family::insert(&list, &item);
  trial.call([&] { Family::uninit(&list); });
}

const orbtest::Tortures guarded({
    // Quirk: without memory for the lock the status is 0.
    {"vxSLL2_Create",
     "",
     "0 made",
     create<Doubly>,
     {{"malloc#1", "2147483656 null"}, {"malloc#2", "0 null"}}},
    {"vxSLL_Create",
     "",
     "0 made",
     create<Singly>,
     {{"malloc#1", "2147483656 null"}, {"malloc#2", "0 null"}}},
    {"vxSLL2_Init", "", "0", init<Doubly>, {{"malloc", "2147483656"}}},
    {"vxSLL_Init", "", "0", init<Singly>, {{"malloc", "2147483656"}}},
    {"vxSLL2_Uninit", "", "done", uninit<Doubly>, indifferent("done")},
    {"vxSLL_Uninit", "", "done", uninit<Singly>},
    {"vxSLL2_Release", "", "done", release<Doubly>, indifferent("done")},
    {"vxSLL_Release", "", "done", release<Singly>},
    {"vxSLL2_IsEmpty", "", "0", ask<Doubly, vxSLL2_IsEmpty>, indifferent("0")},
    {"vxSLL_IsEmpty", "", "0", ask<Singly, vxSLL_IsEmpty>, indifferent("0")},
    {"vxSLL2_XInsertHead", "", "done", insert<Doubly, vxSLL2_XInsertHead>, indifferent("done")},
    {"vxSLL2_XInsertTail", "", "done", insert<Doubly, vxSLL2_XInsertTail>, indifferent("done")},
    {"vxSLL_XInsertHead", "", "done", insert<Singly, vxSLL_XInsertHead>, indifferent("done")},
    {"vxSLL2_XRemoveHead", "", "made", ask<Doubly, vxSLL2_XRemoveHead>, indifferent("made")},
    {"vxSLL2_XRemoveTail", "", "made", ask<Doubly, vxSLL2_XRemoveTail>, indifferent("made")},
    {"vxSLL_XRemoveHead", "", "made", ask<Singly, vxSLL_XRemoveHead>, indifferent("made")},
    {"vxSLL2_XGetHead", "", "made", get_head<Doubly>, indifferent("made")},
    {"vxSLL_XGetHead", "", "made", get_head<Singly>, indifferent("made")},
    {"vxSLL2_LockRelease", "", "done", unlock<Doubly>, indifferent("done")},
    {"vxSLL_LockRelease", "", "done", unlock<Singly>, indifferent("done")},
});

// A bare list, its head and two items, and what a function gives.
template <class Call>
orbtest::Torture bare(const char* function, const char* answer, Call call) {
  return {function, "", answer, [call](Trial& trial) {
            void* head = nullptr;
            Item first;
            Item second;
            vxLL_XInsertHead(&head, &second);
            vxLL_XInsertHead(&head, &first);
            trial.call([&] { return call(&head, &first); });
          }};
}

const orbtest::Tortures unguarded({
    bare("vxLL_Init", "done", [](void** head, Item*) { vxLL_Init(head); }),
    bare("vxLL_XInsertHead", "done",
         [](void** head, Item*) {
           Item third;
           vxLL_XInsertHead(head, &third);
         }),
    bare("vxLL_XRemoveHead", "made", [](void** head, Item*) { return vxLL_XRemoveHead(head); }),
    bare("vxLL_XRemove", "done", [](void** head, Item* first) { vxLL_XRemove(head, first); }),
    bare("vxLL_XGetStart", "made", [](void** head, Item*) { return vxLL_XGetStart(head); }),
    bare("vxLL_XGetNext", "made", [](void**, Item* first) { return vxLL_XGetNext(first); }),
    bare("vxLL_XIsEnd", "0", [](void**, Item* first) { return vxLL_XIsEnd(first); }),
    bare("vxLL_IsEmpty", "0", [](void** head, Item*) { return vxLL_IsEmpty(head); }),
    bare("vxLL2_XGetNext", "made", [](void**, Item* first) { return vxLL2_XGetNext(first); }),
    bare("vxLL2_XGetPrev", "null", [](void**, Item* first) { return vxLL2_XGetPrev(first); }),
    bare("vxLL2_XIsEnd", "0", [](void**, Item* first) { return vxLL2_XIsEnd(first); }),
    bare("vxLL2_XRemove", "done",
         [](void**, Item*) {
           Item alone;
           vxLL2_XRemove(&alone);
         }),
});

// A counted list with one item, and what a function gives.
template <class Call>
orbtest::Torture counted(const char* function, const char* answer, Call call) {
  return {function, "", answer, [call](Trial& trial) {
            _LinkedList_t* list = nullptr;
            Item item;
            LinkedList_Init(&list);
            LinkedList_AddHead(list, &item);
            trial.call([&] { return call(list); });
            LinkedList_End(&list);
          }};
}

const orbtest::Tortures counted_rows({
    {"LinkedList_Init",
     "",
     "1",
     [](Trial& trial) {
       _LinkedList_t* list = nullptr;
       trial.call([&] { return LinkedList_Init(&list); });
       LinkedList_End(&list);
     },
     {{"malloc", "0"}}},
    {"LinkedList_End", "", "done",
     [](Trial& trial) {
       _LinkedList_t* list = nullptr;
       LinkedList_Init(&list);
       trial.call([&] { LinkedList_End(&list); });
     }},
    counted("LinkedList_AddHead", "1",
            [](auto* list) {
              static Item other;
              return LinkedList_AddHead(list, &other);
            }),
    counted("LinkedList_AddTail", "1",
            [](auto* list) {
              static Item other;
              return LinkedList_AddTail(list, &other);
            }),
    counted("LinkedList_RemoveTail", "made",
            [](auto* list) { return LinkedList_RemoveTail(list); }),
    counted("LinkedList_GetCount", "1", [](auto* list) { return LinkedList_GetCount(list); }),
    counted("LinkedList_PeekAt", "made", [](auto* list) { return LinkedList_PeekAt(list, 0); }),
    counted("LinkedList_RemoveAt", "made", [](auto* list) { return LinkedList_RemoveAt(list, 0); }),
});

}  // namespace
