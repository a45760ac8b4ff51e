// portability/linkedlist.cpp: the counted list with assertions.
#include <cstdlib>

#include "platform/assertion.h"
#include "portability/Linklist.h"

namespace {

// The first two words of an item.
struct Links {
  Links* previous;
  Links* next;
};

Links* links(void* item) { return static_cast<Links*>(item); }

// Source name and lines are part of the interface: scripts look for them in crash reports.
void require(bool holds, const char* function, int line, const char* expression) {
  if (!holds)
    quillon_com::orb::platform::report_assertion(function, "../source/Linklist", line, expression);
}

// The item `steps` steps from `item`; the assertion of `line` fails when the links end before.
Links* walk(Links* item, uint64_t steps, const char* function, int line) {
  for (; steps > 0; --steps) {
    require(item != nullptr, function, line, "lpItem");
    item = item->next;
  }
  require(item != nullptr, function, line, "lpItem");
  return item;
}

}  // namespace

int LinkedList_Init(_LinkedList_t** list) {
  require(list != nullptr, "LinkedList_Init", 31, "lphLinkedList");
  auto* made = static_cast<_LinkedList_t*>(calloc(1, sizeof(_LinkedList_t)));
  if (made == nullptr) return 0;
  *list = made;
  return 1;
}

void LinkedList_End(_LinkedList_t** list) {
  if (list == nullptr || *list == nullptr) return;
  free(*list);
  *list = nullptr;
}

int LinkedList_AddHead(_LinkedList_t* list, void* item) {
  if (list == nullptr || item == nullptr) return 0;
  Links* added = links(item);
  added->next = links(list->head);
  added->previous = nullptr;
  if (list->head != nullptr) links(list->head)->previous = added;
  list->head = added;
  if (list->lpTail == nullptr) list->lpTail = added;
  ++list->count;
  return 1;
}

int LinkedList_AddTail(_LinkedList_t* list, void* item) {
  if (list == nullptr || item == nullptr) return 0;
  Links* added = links(item);
  added->previous = links(list->lpTail);
  added->next = nullptr;
  if (list->lpTail != nullptr) links(list->lpTail)->next = added;
  list->lpTail = added;
  if (list->head == nullptr) list->head = added;
  ++list->count;
  return 1;
}

void* LinkedList_RemoveTail(_LinkedList_t* list) {
  if (list == nullptr || list->count == 0 || list->lpTail == nullptr) return nullptr;
  Links* removed = links(list->lpTail);
  list->lpTail = removed->previous;
  if (removed->previous != nullptr) removed->previous->next = nullptr;
  if (--list->count == 0) list->head = list->lpTail = nullptr;
  return removed;
}

uint64_t LinkedList_GetCount(_LinkedList_t* list) {
  require(list != nullptr, "LinkedList_GetCount", 167, "lpMain");
  return list->count;
}

void* LinkedList_PeekAt(_LinkedList_t* list, uint64_t index) {
  if (list == nullptr || index >= list->count) return nullptr;
  return walk(links(list->head), index, "LinkedList_PeekAt", 200);
}

void* LinkedList_RemoveAt(_LinkedList_t* list, uint64_t index) {
  if (list == nullptr || index >= list->count) return nullptr;
  Links* first = links(list->head);
  if (index == 0 && first != nullptr) {
    list->head = first->next;
    if (first->next != nullptr) first->next->previous = nullptr;
  }
  if (index == list->count - 1) {
    require(list->lpTail != nullptr, "LinkedList_RemoveAt", 238, "lpMain->lpTail");
    list->lpTail = links(list->lpTail)->previous;
  }
  Links* removed = walk(first, index, "LinkedList_RemoveAt", 245);
  if (--list->count == 0) list->head = list->lpTail = nullptr;
  if (removed->previous != nullptr) removed->previous->next = removed->next;
  if (removed->next != nullptr) removed->next->previous = removed->previous;
  return removed;
}
