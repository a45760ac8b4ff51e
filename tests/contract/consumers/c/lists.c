// tests/contract/consumers/c/lists.c: the five list families.
#include <stddef.h>

#include "../expect.h"
#include "areas.h"
#include "portability/Linklist.h"
#include "portability/threads.h"

struct item {
  void* links[2];
  int number;
};

static void use_stack(void) {
  struct item one = {{NULL, NULL}, 1}, two = {{NULL, NULL}, 2};
  void* head;
  vxLL_Init(&head);
  EXPECT(vxLL_IsEmpty(&head) == 1);
  vxLL_XInsertHead(&head, &one);
  vxLL_XInsertHead(&head, &two);
  EXPECT(vxLL_XGetStart(&head) == &head);
  EXPECT(vxLL_XGetNext(vxLL_XGetStart(&head)) == &two);
  EXPECT(vxLL_XGetNext(&two) == &one);
  EXPECT(vxLL_XIsEnd(vxLL_XGetNext(&one)) == 1);
  vxLL_XRemove(&two, &one);
  EXPECT(vxLL_XRemoveHead(&head) == &two);
  EXPECT(vxLL_XRemoveHead(&head) == NULL);
}

static void use_guarded_stack(void) {
  struct item one = {{NULL, NULL}, 1};
  _vxSLL_t own, *made = NULL;
  EXPECT(vxSLL_Init(&own) == 0);
  vxSLL_Uninit(&own);
  EXPECT(vxSLL_Create(&made) == 0 && made != NULL);
  vxSLL_XInsertHead(made, &one);
  EXPECT(vxSLL_IsEmpty(made) == 0);
  EXPECT(vxSLL_XGetHead(made, 1, 1) == &one);
  vxSLL_LockRelease(made);
  EXPECT(vxSLL_XRemoveHead(made) == &one);
  EXPECT(vxSLL_IsEmpty(made) == 1);
  vxSLL_Release(made);
}

void use_stacks(void) {
  use_stack();
  use_guarded_stack();
}

// The functions of the plain list with two links work on the items of the guarded one.
static void use_double_lists(void) {
  struct item one = {{NULL, NULL}, 1}, two = {{NULL, NULL}, 2}, three = {{NULL, NULL}, 3};
  _vxSLL2_t own, *made = NULL;
  EXPECT(vxSLL2_Init(&own) == 0);
  vxSLL2_Uninit(&own);
  EXPECT(vxSLL2_Create(&made) == 0 && made != NULL);
  EXPECT(vxSLL2_IsEmpty(made) == 1);
  vxSLL2_XInsertHead(made, &two);
  vxSLL2_XInsertHead(made, &one);
  vxSLL2_XInsertTail(made, &three);
  EXPECT(vxSLL2_XGetHead(made, 0, 1) == &one);
  EXPECT(vxLL2_XGetNext(&one) == &two && vxLL2_XGetPrev(&three) == &two);
  EXPECT(vxLL2_XIsEnd(&three) == 0 && vxLL2_XIsEnd(vxLL2_XGetNext(&three)) == 1);
  vxSLL2_LockRelease(made);
  vxLL2_XRemove(&two);
  EXPECT(vxSLL2_XRemoveTail(made) == &three);
  EXPECT(vxSLL2_XRemoveHead(made) == &one);
  EXPECT(vxSLL2_XRemoveHead(made) == NULL);
  vxSLL2_Release(made);
}

static void use_counted_list(void) {
  struct item one = {{NULL, NULL}, 1}, two = {{NULL, NULL}, 2}, three = {{NULL, NULL}, 3};
  _LinkedList_t* list = NULL;
  EXPECT(LinkedList_Init(&list) == 1);
  EXPECT(LinkedList_AddHead(list, &two) == 1);
  EXPECT(LinkedList_AddHead(list, &one) == 1);
  EXPECT(LinkedList_AddTail(list, &three) == 1);
  EXPECT(LinkedList_GetCount(list) == 3);
  EXPECT(LinkedList_PeekAt(list, 1) == &two);
  EXPECT(LinkedList_RemoveAt(list, 0) == &one);
  EXPECT(LinkedList_RemoveTail(list) == &three);
  EXPECT(LinkedList_PeekAt(list, 1) == NULL);
  EXPECT(LinkedList_GetCount(list) == 1);
  LinkedList_End(&list);
  EXPECT(list == NULL);
}

void use_lists(void) {
  use_double_lists();
  use_counted_list();
}
