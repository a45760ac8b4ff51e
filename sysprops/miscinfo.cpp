// sysprops/miscinfo.cpp: the logged-on users, the time zone, the language, the time of collection.
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "portability/forks.h"
#include "session/collect.h"
#include "session/loggedonusers.h"
#include "sysprops/collect.h"

namespace quillon_com::orb::sysprops {

namespace {

std::string user_text(const platform::System& system) {
  std::string users;
  session::collect_all_users(system, session::myfd(), &users);
  return users.empty() ? "NA" : users;
}

std::string stamp_text(const tm& time) {
  char text[96];
  snprintf(text, sizeof text, "%02d/%02d/%04lld %02d:%02d:%02d", time.tm_mon + 1, time.tm_mday,
           time.tm_year + 1900LL, time.tm_hour, time.tm_min, time.tm_sec);
  return text;
}

// The zone's name before the time: a breakdown may be what makes the C library look at its zone at
// all. Always both, so that who asks for one again reads what a full collection would have left.
void collect_time(const platform::System& system, MiscInformation& record) {
  static portability::ProcessMutex
      zone_mutex;  // guards the C library's names, which a breakdown writes anew
  std::string zone;
  tm local{};
  bool local_known = false;
  {
    const portability::Hold held(zone_mutex);
    system.zone_name(&zone);
    local_known = system.local_time(system.wall_clock(), &local);
  }
  record.timeZone = sysprops_ansi_to_wide(zone);
  if (local_known) record.lastUpdate = sysprops_ansi_to_wide(stamp_text(local));
}

const char* language_id() {
  const char* const lang = getenv("LANG");
  const std::string name = lang == nullptr ? "" : lang;
  if (name.find("en_UK") != std::string::npos) return "0809";
  if (name.find("ja_JP") != std::string::npos) return "0411";
  return "0409";
}

}  // namespace

bool collect_misc(const platform::System& system, MiscInformation& record, Fields fields) {
  if (fields & kUserName) record.userName = sysprops_ansi_to_wide(user_text(system));
  if (fields & (kTimeZone | kLastUpdate)) collect_time(system, record);
  if (fields & kLanguage) record.defaultLangId = sysprops_ansi_to_wide(language_id());
  return true;
}

bool ISysProps::GetMiscInformation(MiscInformation& record) {
  return collect_misc(platform::host(), record);
}

}  // namespace quillon_com::orb::sysprops
