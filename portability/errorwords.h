// portability/errorwords.h: the process-wide error word and the numbers that are stored in it.
#pragma once

#include <stdint.h>

#include "platform/export.h"

ORB_EXTERN_C_BEGIN

// The number of the last argument or memory failure of the Windows-style functions, in any thread;
// 0 until the first. Success never clears it and nothing in the library reads it. It is stored
// atomically but otherwise unsynchronised: concurrent failures overwrite each other.
extern ORB_EXPORT int64_t nErrno;

// What is stored in nErrno, the same on every system, whatever errno numbers the host has.
enum {
  kErrNoMemory = 12,  // malloc failed
  kErrBusy = 16,      // a lock could not be taken, an event not be set
  kErrInvalid = 22,   // bad argument
  kErrAgain = 35      // the table of thread-local slots or of searches is full
};

ORB_EXTERN_C_END
