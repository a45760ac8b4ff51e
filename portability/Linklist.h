// portability/Linklist.h: five small intrusive list families.
//
// An item is the caller's record whose first words are the links; a list threads items and never
// allocates, frees or owns them. vxLL is a stack with one link, vxLL2 a list with two links between
// two sentinels; vxSLL and vxSLL2 are these two guarded by a shared/exclusive lock (see
// portability/selock.h: a thread that may block needs its event); LinkedList_ is a counted list
// with two links and assertions. vxLL, vxLL2 and LinkedList_ take no lock: callers guard them.
//
// Arguments are `void*` so that any record serves. Yes/no results are 1 and 0. No function stores
// an error word. An item is in one list at a time, and lives as long as it is there.
#pragma once

#include <stdint.h>

#include "portability/selock.h"

ORB_EXTERN_C_BEGIN

// vxLL: the head is one pointer word, null when empty; an item's first word is its next link.
// Insertion and removal are at the head. To remove while walking keep the predecessor: start at
// vxLL_XGetStart, step with vxLL_XGetNext, unlink with vxLL_XRemove. Null arguments do nothing and
// give the neutral value: null, or 1 from the two questions.
ORB_EXPORT void vxLL_Init(void* head);                     // makes it empty, looking at nothing
ORB_EXPORT void vxLL_XInsertHead(void* head, void* item);  // makes `item` the first
ORB_EXPORT void* vxLL_XRemoveHead(void* head);             // the item unlinked; null when empty
ORB_EXPORT void vxLL_XRemove(void* previous, void* item);  // `previous` may be the head itself
ORB_EXPORT void* vxLL_XGetStart(void* head);               // the head's own address
ORB_EXPORT void* vxLL_XGetNext(void* item);                // null behind the last item
ORB_EXPORT int vxLL_XIsEnd(void* item);                    // whether `item` is null
ORB_EXPORT int vxLL_IsEmpty(void* head);                   // whether there is no item

// vxLL2: an item's first two words are its next and previous links. The header is four words, the
// head sentinel's next and previous and the tail sentinel's next and previous; a sentinel's outer
// link points at itself.
typedef struct _vxLL2Header_t {
  void* headNext;      // the first item, or the tail sentinel
  void* headPrevious;  // the head sentinel itself
  void* tailNext;      // the tail sentinel itself
  void* tailPrevious;  // the last item, or the head sentinel
} _vxLL2Header_t;

// The links of an item; null for null.
ORB_EXPORT void* vxLL2_XGetNext(void* item);
ORB_EXPORT void* vxLL2_XGetPrev(void* item);
// 1 for null and for the tail sentinel.
ORB_EXPORT int vxLL2_XIsEnd(void* item);
// Unlinks `item` from its neighbours; its own links stay as they were. Null does nothing.
ORB_EXPORT void vxLL2_XRemove(void* item);

// vxSLL2: a vxLL2 list and its lock. Each operation takes the lock, waiting for it, and gives it up
// before it returns, unless it says otherwise; any number of threads may call them. A null list
// does nothing and gives null. So does a thread that would have to wait but has no event to sleep
// on: nothing is inserted or removed then, and the list does not count as empty.
typedef struct _vxSLL2_t {
  _vxLL2Header_t header;  // the sentinels at both ends
  _vxSELock_t* lock;      // owned by the list
} _vxSLL2_t;

// Makes a list and stores it in `*out`. Returns 0x80000008, with null in `*out`, when there is no
// memory for it.
// Quirk: when there is no memory for its lock the result is 0, and only null in `*out` tells.
ORB_EXPORT uint32_t vxSLL2_Create(_vxSLL2_t** out);
// Makes a list of the caller's own record. Returns 0, or 0x80000008 for null or without memory.
ORB_EXPORT uint32_t vxSLL2_Init(_vxSLL2_t* list);
// Removes all items, which stay the caller's, and frees the lock; nobody else may use the list.
ORB_EXPORT void vxSLL2_Uninit(_vxSLL2_t* list);
// The same, and frees the record that vxSLL2_Create made.
ORB_EXPORT void vxSLL2_Release(_vxSLL2_t* list);
// Whether there is no item; 1 for null, too.
ORB_EXPORT int vxSLL2_IsEmpty(_vxSLL2_t* list);
ORB_EXPORT void vxSLL2_XInsertHead(_vxSLL2_t* list, void* item);  // null item: nothing
ORB_EXPORT void vxSLL2_XInsertTail(_vxSLL2_t* list, void* item);  // null item: nothing
ORB_EXPORT void* vxSLL2_XRemoveHead(_vxSLL2_t* list);             // null when empty
ORB_EXPORT void* vxSLL2_XRemoveTail(_vxSLL2_t* list);             // null when empty
// Takes the lock, exclusively or shared, waiting for it or not, and keeps it. Returns the first
// item, the tail sentinel when there is none, or null when the lock was not to be had.
ORB_EXPORT void* vxSLL2_XGetHead(_vxSLL2_t* list, int exclusive, int wait);
// Gives up one hold of vxSLL2_XGetHead.
ORB_EXPORT void vxSLL2_LockRelease(_vxSLL2_t* list);

// vxSLL: a vxLL stack and its lock; like vxSLL2 otherwise.
typedef struct _vxSLL_t {
  void* head;         // the first item, null when there is none
  _vxSELock_t* lock;  // owned by the list
} _vxSLL_t;

// Makes a list and stores it in `*out`. Returns 0x80000008, with null in `*out`, when there is no
// memory for it.
// Quirk: when there is no memory for its lock the result is 0, and only null in `*out` tells.
ORB_EXPORT uint32_t vxSLL_Create(_vxSLL_t** out);
// Makes a list of the caller's own record. Returns 0, or 0x80000008 for null or without memory.
ORB_EXPORT uint32_t vxSLL_Init(_vxSLL_t* list);
// Frees the lock; the items are left alone.
ORB_EXPORT void vxSLL_Uninit(_vxSLL_t* list);
// The same, and frees the record that vxSLL_Create made.
ORB_EXPORT void vxSLL_Release(_vxSLL_t* list);
ORB_EXPORT void vxSLL_XInsertHead(_vxSLL_t* list, void* item);  // null item: nothing
ORB_EXPORT void* vxSLL_XRemoveHead(_vxSLL_t* list);             // null when empty
// Takes the lock as vxSLL2_XGetHead does and keeps it. Returns the first item, null when there is
// none.
// Quirk: when the lock is not to be had the result is all ones (-1), not null as with vxSLL2.
ORB_EXPORT void* vxSLL_XGetHead(_vxSLL_t* list, int exclusive, int wait);
// Gives up one hold of vxSLL_XGetHead.
ORB_EXPORT void vxSLL_LockRelease(_vxSLL_t* list);
// Whether there is no item; 1 for null, too.
ORB_EXPORT int vxSLL_IsEmpty(_vxSLL_t* list);

// LinkedList_: an item's first two words are its previous and next links.
typedef struct _LinkedList_t {
  void* lpTail;    // the last item, null when there is none
  void* head;      // the first item, null when there is none
  uint64_t count;  // of items
} _LinkedList_t;

// Makes an empty list and stores it in `*list`. Returns 1; 0, `*list` untouched, without memory. A
// null argument ends the process with a failed assertion.
ORB_EXPORT int LinkedList_Init(_LinkedList_t** list);
// Frees the list, not its items, and stores null; null or a null list: nothing.
ORB_EXPORT void LinkedList_End(_LinkedList_t** list);
// Add an item at either end. Return 1, 0 for a null argument.
ORB_EXPORT int LinkedList_AddHead(_LinkedList_t* list, void* item);
ORB_EXPORT int LinkedList_AddTail(_LinkedList_t* list, void* item);
// The last item, unlinked; null when there is none.
ORB_EXPORT void* LinkedList_RemoveTail(_LinkedList_t* list);
// The number of items. A null list ends the process with a failed assertion.
ORB_EXPORT uint64_t LinkedList_GetCount(_LinkedList_t* list);
// The item at `index` from the head, kept in or taken out of the list; null when there are not as
// many. The removed item's own links stay as they were. A list whose links end before its count
// ends the process with a failed assertion.
ORB_EXPORT void* LinkedList_PeekAt(_LinkedList_t* list, uint64_t index);
ORB_EXPORT void* LinkedList_RemoveAt(_LinkedList_t* list, uint64_t index);

ORB_EXTERN_C_END
