// portability/signals.h: the signal dispatcher's loop, a plain handler, and the system log's
// writers.
#pragma once

#include <signal.h>
#include <stdarg.h>
#include <stdint.h>

#include "platform/export.h"

ORB_EXTERN_C_BEGIN

// 1 once CatchSIGTERM has run, 0 before. Stored atomically.
extern ORB_EXPORT int32_t bSigTermReceived;

// Where a thread whose handle was closed while it ran stores its end; 1 from the start.
extern ORB_EXPORT int32_t bDummyThreadSignalled;

// An asynchronous handler for processes that install one: stores 1 in bSigTermReceived whatever the
// signal. Safe in a signal handler.
ORB_EXPORT void CatchSIGTERM(int signal);

ORB_EXTERN_C_END

#ifdef __cplusplus

#include <map>

namespace quillon_com::orb {

// Receives blocked signals one at a time on the thread that runs it. Block every signal of interest
// with addSignalToBlock before other threads start, register callbacks for those to be handled, and
// run the dispatcher on a thread of its own; a blocked signal without a callback ends it, whereupon
// the caller shuts the process down.
//
// Not thread-safe: registrations are made before the dispatcher starts.
class ORB_EXPORT SignalHandler {
 public:
  SignalHandler();
  ~SignalHandler();

  // Adds `signal` to the mask and makes the accumulated mask the calling thread's whole signal
  // mask. Call it in the thread that runs the dispatcher later. Returns 0 always; no error word.
  // Quirk: the mask has 32 bits: a number above 32 (or below 1) adds nothing, and the mask is
  // applied all the same.
  int addSignalToBlock(int signal);

  // Unblocks `signal` in the calling thread; the dispatcher's mask keeps it. Returns 0 always.
  int unblockSignal(int signal);

  // Has the dispatcher call `callback` for `signal`, or pass the signal over when that is null.
  // Returns 0 always.
  // Quirk: the first registration for a signal wins; a later one changes nothing.
  int registerOnSignalCallback(int signal, void (*callback)());

  // The dispatcher's loop: waits for the signals of the mask, calls the callback of each one that
  // has one, on this thread, and returns when one without a callback arrives, after writing
  // "Received signal to stop ORB." to the system log. A failing wait is logged and repeated.
  void operator()();

 private:
  sigset_t mask_;
  std::map<int, void (*)()> callbacks_;
};

// A priority of syslog, passed on as it is; 3 is an error.
using SyslogPriority = int;

// Write one message in printf's form to the system log, under the tag "[ORB]" or `ident`, in the
// user facility, opening and closing the log around it; the console is the fallback. A null `ident`
// stands for the process's name. Return true always; a null `format` writes nothing. Safe from any
// thread: one message is written at a time, and a thread is not cancelled in it.
// Quirk: a text that follows `format` makes the call one of the tagged form: LogInSystemLog(3,
// "%s", name) writes `name` under the tag "%s".
ORB_EXPORT bool LogInSystemLog(SyslogPriority priority, const char* format, ...)
    __attribute__((format(printf, 2, 3)));
ORB_EXPORT bool vLogInSystemLog(int priority, const char* format, va_list arguments);
ORB_EXPORT bool LogInSystemLog(SyslogPriority priority, const char* ident, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
ORB_EXPORT bool vLogInSystemLog(int priority, const char* ident, const char* format,
                                va_list arguments);

}  // namespace quillon_com::orb

#endif
