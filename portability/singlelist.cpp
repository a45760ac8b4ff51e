// portability/singlelist.cpp: the stack with one link, bare and behind its lock.
#include <cstdlib>

#include "portability/Linklist.h"
#include "portability/listlock.h"

using namespace quillon_com::orb::portability;

namespace {

// The next link of an item, or the word of a head.
void** link(void* item) { return static_cast<void**>(item); }

}  // namespace

void vxLL_Init(void* head) {
  if (head != nullptr) *link(head) = nullptr;
}

void vxLL_XInsertHead(void* head, void* item) {
  if (head == nullptr || item == nullptr) return;
  *link(item) = *link(head);
  *link(head) = item;
}

void* vxLL_XRemoveHead(void* head) {
  if (head == nullptr || *link(head) == nullptr) return nullptr;
  void* first = *link(head);
  *link(head) = *link(first);
  return first;
}

void vxLL_XRemove(void* previous, void* item) {
  if (previous != nullptr && item != nullptr) *link(previous) = *link(item);
}

void* vxLL_XGetStart(void* head) { return head; }

void* vxLL_XGetNext(void* item) { return item == nullptr ? nullptr : *link(item); }

int vxLL_XIsEnd(void* item) { return item == nullptr ? 1 : 0; }

int vxLL_IsEmpty(void* head) { return head == nullptr || *link(head) == nullptr ? 1 : 0; }

uint32_t vxSLL_Create(_vxSLL_t** out) { return create_list(out, vxSLL_Init); }

uint32_t vxSLL_Init(_vxSLL_t* list) {
  if (list == nullptr) return kListFailed;
  vxLL_Init(&list->head);
  return vxSO_SELockCreate(&list->lock);
}

void vxSLL_Uninit(_vxSLL_t* list) {
  if (list != nullptr) vxSO_Release(list->lock);
}

void vxSLL_Release(_vxSLL_t* list) {
  vxSLL_Uninit(list);
  free(list);
}

void vxSLL_XInsertHead(_vxSLL_t* list, void* item) {
  if (list == nullptr) return;
  ExclusiveHold hold(list->lock);
  if (hold) vxLL_XInsertHead(&list->head, item);
}

void* vxSLL_XRemoveHead(_vxSLL_t* list) {
  if (list == nullptr) return nullptr;
  ExclusiveHold hold(list->lock);
  return hold ? vxLL_XRemoveHead(&list->head) : nullptr;
}

void* vxSLL_XGetHead(_vxSLL_t* list, int exclusive, int wait) {
  if (list == nullptr) return nullptr;
  if (vxSO_SELock(list->lock, exclusive, wait) == 0) return reinterpret_cast<void*>(intptr_t{-1});
  return list->head;
}

void vxSLL_LockRelease(_vxSLL_t* list) {
  if (list != nullptr) vxSO_SELockRelease(list->lock);
}

int vxSLL_IsEmpty(_vxSLL_t* list) {
  if (list == nullptr) return 1;
  SharedHold hold(list->lock);
  return hold ? vxLL_IsEmpty(&list->head) : 0;
}
