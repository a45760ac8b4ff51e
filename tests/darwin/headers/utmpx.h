// tests/darwin/headers/utmpx.h: the user-accounting database; no field has room for a terminator.
#pragma once

#include <stdint.h>
#include <sys/time.h>
#include <sys/types.h>

#include "scripted.h"

#define BOOT_TIME 2
#define USER_PROCESS 7
#define DEAD_PROCESS 8

struct utmpx {
  char ut_user[256];
  char ut_id[4];
  char ut_line[32];
  pid_t ut_pid;
  short ut_type;
  struct timeval ut_tv;
  char ut_host[256];
  uint32_t ut_pad[16];
};

#ifdef __cplusplus
extern "C" {
#endif
struct utmpx* getutxent(void) ORB_SCRIPTED(getutxent);
void setutxent(void) ORB_SCRIPTED(setutxent);
#ifdef __cplusplus
}
#endif
