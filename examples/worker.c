// examples/worker.c: a thread, the event that it sets, and a wait for each.
#include <stdio.h>

#include "portability/handles.h"
#include "portability/threads.h"

struct task {
  void* ready;
  int sum;
};

static void* work(void* argument) {
  struct task* task = argument;
  for (int number = 1; number <= 10; ++number) task->sum += number;
  voxSetEvent(task->ready);
  return NULL;
}

int main(void) {
  struct task task = {voxCreateEvent(NULL, 1, 0, NULL), 0};
  if (task.ready == NULL) return 1;
  void* thread = voxCreateThread(NULL, 0, work, &task, 0, NULL);
  if (thread == NULL) return 1;
  if (voxWaitForSingleObject(task.ready, 5000) != WAIT_OBJECT_0) return 1;
  printf("worked: 1 to 10 is %d\n", task.sum);

  voxWaitForSingleObject(thread, INFINITE);
  voxCloseHandle(thread);
  voxCloseHandle(task.ready);
  return 0;
}
