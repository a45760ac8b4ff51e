// portability/systemlog.cpp: one message to the system log per call.
#include <syslog.h>

#include "portability/signals.h"

namespace quillon_com::orb {

namespace {

constexpr char kTag[] = "[ORB]";

}  // namespace

bool vLogInSystemLog(int priority, const char* ident, const char* format, va_list arguments) {
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
