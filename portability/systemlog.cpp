// portability/systemlog.cpp: one message to the system log per call.
#include <syslog.h>

#include "portability/cancellation.h"
#include "portability/forks.h"
#include "portability/signals.h"

namespace quillon_com::orb {

namespace {

constexpr char kTag[] = "[ORB]";

// Keeps a message under its own tag: the C library has one open log for all threads.
portability::ProcessMutex open_log;

}  // namespace

bool vLogInSystemLog(int priority, const char* ident, const char* format, va_list arguments) {
  if (format == nullptr) return true;
  const portability::CancellationShield shield;
  const portability::Hold hold(open_log);
  openlog(ident, LOG_CONS | LOG_NDELAY, LOG_USER);
  vsyslog(priority, format, arguments);
  closelog();
  return true;
}

bool vLogInSystemLog(int priority, const char* format, va_list arguments) {
  return vLogInSystemLog(priority, kTag, format, arguments);
}

bool LogInSystemLog(SyslogPriority priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const bool logged = vLogInSystemLog(priority, format, arguments);
  va_end(arguments);
  return logged;
}

bool LogInSystemLog(SyslogPriority priority, const char* ident, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const bool logged = vLogInSystemLog(priority, ident, format, arguments);
  va_end(arguments);
  return logged;
}

}  // namespace quillon_com::orb
