// portability/doublelist.cpp: the list with two links between sentinels, bare and behind its lock.
#include <cstdlib>

#include "portability/Linklist.h"
#include "portability/listlock.h"

using namespace quillon_com::orb::portability;

namespace {

// The first two words of an item or a sentinel.
struct Links {
  Links* next;
  Links* previous;
};

Links* links(void* item) { return static_cast<Links*>(item); }

Links* head_of(_vxSLL2_t* list) { return links(&list->header.headNext); }
Links* tail_of(_vxSLL2_t* list) { return links(&list->header.tailNext); }

void insert_between(Links* previous, Links* item, Links* next) {
  item->next = next;
  item->previous = previous;
  previous->next = item;
  next->previous = item;
}

Links* unlinked(Links* item) {
  vxLL2_XRemove(item);
  return item;
}

}  // namespace

void* vxLL2_XGetNext(void* item) { return item == nullptr ? nullptr : links(item)->next; }

void* vxLL2_XGetPrev(void* item) { return item == nullptr ? nullptr : links(item)->previous; }

int vxLL2_XIsEnd(void* item) { return item == nullptr || links(item)->next == item ? 1 : 0; }

void vxLL2_XRemove(void* item) {
  if (item == nullptr) return;
  Links* removed = links(item);
  if (removed->next != nullptr) removed->next->previous = removed->previous;
  if (removed->previous != nullptr) removed->previous->next = removed->next;
}

uint32_t vxSLL2_Create(_vxSLL2_t** out) { return create_list(out, vxSLL2_Init); }

uint32_t vxSLL2_Init(_vxSLL2_t* list) {
  if (list == nullptr) return kListFailed;
  list->header.headNext = tail_of(list);
  list->header.headPrevious = head_of(list);
  list->header.tailNext = tail_of(list);
  list->header.tailPrevious = head_of(list);
  return vxSO_SELockCreate(&list->lock);
}

void vxSLL2_Uninit(_vxSLL2_t* list) {
  if (list == nullptr) return;
  while (vxSLL2_XRemoveHead(list) != nullptr) {
  }
  vxSO_Release(list->lock);
}

void vxSLL2_Release(_vxSLL2_t* list) {
  vxSLL2_Uninit(list);
  free(list);
}

int vxSLL2_IsEmpty(_vxSLL2_t* list) {
  if (list == nullptr) return 1;
  SharedHold hold(list->lock);
  return hold && head_of(list)->next == tail_of(list) ? 1 : 0;
}

void vxSLL2_XInsertHead(_vxSLL2_t* list, void* item) {
  if (list == nullptr || item == nullptr) return;
  ExclusiveHold hold(list->lock);
  if (hold) insert_between(head_of(list), links(item), head_of(list)->next);
}

void vxSLL2_XInsertTail(_vxSLL2_t* list, void* item) {
  if (list == nullptr || item == nullptr) return;
  ExclusiveHold hold(list->lock);
  if (hold) insert_between(tail_of(list)->previous, links(item), tail_of(list));
}

void* vxSLL2_XRemoveHead(_vxSLL2_t* list) {
  if (list == nullptr) return nullptr;
  ExclusiveHold hold(list->lock);
  if (!hold || head_of(list)->next == tail_of(list)) return nullptr;
  return unlinked(head_of(list)->next);
}

void* vxSLL2_XRemoveTail(_vxSLL2_t* list) {
  if (list == nullptr) return nullptr;
  ExclusiveHold hold(list->lock);
  if (!hold || tail_of(list)->previous == head_of(list)) return nullptr;
  return unlinked(tail_of(list)->previous);
}

void* vxSLL2_XGetHead(_vxSLL2_t* list, int exclusive, int wait) {
  if (list == nullptr || vxSO_SELock(list->lock, exclusive, wait) == 0) return nullptr;
  return head_of(list)->next;
}

void vxSLL2_LockRelease(_vxSLL2_t* list) {
  if (list != nullptr) vxSO_SELockRelease(list->lock);
}
