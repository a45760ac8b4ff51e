// tests/contract/consumers/c/locks.c: the shared/exclusive lock and the spin word.
#include <stddef.h>

#include "../expect.h"
#include "areas.h"
#include "portability/selock.h"
#include "portability/threads.h"

static int32_t take_note(void* context, uint32_t message, void* parameter, void* reserved) {
  uint32_t* noted = context;
  *noted = parameter == NULL && reserved == NULL ? message : 1;
  return 0;
}

void use_lock(void) {
  EXPECT(vxSO_ProcessAttach() >= 0);
  EXPECT(vxSO_ThreadAttach() == 1);
  _vxSELock_t* lock = NULL;
  EXPECT(vxSO_SELockCreate(NULL) == 0x80000008u);
  EXPECT(vxSO_SELockCreate(&lock) == 0);
  EXPECT(lock != NULL && lock->count == 0 && lock->owner == -1);

  EXPECT(vxSO_SELockExclusive(lock, 1) == 1);
  EXPECT(vxSO_SELock(lock, 1, 1) == 1);
  EXPECT(lock->owner == vxSO_GetThread() && lock->count == 2);
  EXPECT(vxSO_SELockExclusiveToShared(lock) == 1);
  EXPECT(lock->owner == -1 && lock->count == 2);
  EXPECT(vxSO_SELockSharedStarveExclusive(lock, 0) == 1);
  EXPECT(vxSO_SELockSharedWaitForExclusive(lock, 0) == 1);
  uint32_t noted = 0;
  EXPECT(vxSO_SELockExclusiveNotify(lock, take_note, &noted, NULL) == 0);
  for (int hold = 0; hold < 4; ++hold) EXPECT(noted == 0 && vxSO_SELockRelease(lock) == 1);
  EXPECT(noted == 0x1100);
  EXPECT(vxSO_SELockExclusiveUnnotify(lock, take_note, &noted, NULL) == 0);
  EXPECT(vxSO_SELockExclusive(NULL, 0) == 0);
  vxSO_Release(lock);

  long word = 0;
  vxSL_Get(&word);
  EXPECT(word == 1);
  vxSL_Release(&word);
  EXPECT(word == 0);
  EXPECT(vxSO_ThreadDetach() == 1);
  EXPECT(vxSO_ProcessDetach() == 1);
}
