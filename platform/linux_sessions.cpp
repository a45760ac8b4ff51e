// platform/linux_sessions.cpp: the session entries of LinuxSystem.
#include <sys/stat.h>
#include <utmpx.h>

#include <algorithm>
#include <utility>

#include "platform/everlasting.h"
#include "platform/linux_system.h"
#include "platform/linux_text.h"

namespace quillon_com::orb::platform {
namespace {

constexpr char kAccountingFile[] = "/var/run/utmp";
constexpr char kSessionFolder[] = "/run/systemd/sessions";
constexpr size_t kSessionFileLimit = 4096;

// Guards every cursor and `accounting_root`.
pthread_mutex_t sessions_mutex = PTHREAD_MUTEX_INITIALIZER;
// The root whose accounting file the C library was pointed to; empty while that is its own choice.
struct AccountingRoot {
  std::string path;
};
std::string& accounting_root() { return everlasting<AccountingRoot>().path; }

}  // namespace

// The C library has one accounting file at a time; it is only told when another is wanted.
void LinuxSystem::use_accounting_file() const {
  if (accounting_root() == root_) return;
  utmpxname(at(kAccountingFile).c_str());
  setutxent();
  accounting_root() = root_;
}

std::vector<SessionEntry> LinuxSystem::session_files() const {
  std::vector<SessionEntry> entries;
  struct stat status;
  if (stat(at(kAccountingFile).c_str(), &status) == 0) return entries;
  for (const std::string& name : names_in(kSessionFolder)) {
    const std::string path = std::string(kSessionFolder) + "/" + name;
    if (stat(at(path).c_str(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
    if (auto entry = session_of(name, text_of(path, kSessionFileLimit))) {
      entries.push_back(std::move(*entry));
    }
  }
  std::reverse(entries.begin(), entries.end());
  return entries;
}

bool LinuxSystem::next_session_entry(SessionEntry* entry) const {
  const MutexHold held(&sessions_mutex);
  use_accounting_file();
  if (!cursor_.accounting_ended) {
    if (PosixSystem::next_session_entry(entry)) {
      cursor_.gave_entry = true;
      return true;
    }
    cursor_.accounting_ended = true;
    if (!cursor_.gave_entry) cursor_.remaining = session_files();
  }
  if (cursor_.remaining.empty()) return false;
  *entry = std::move(cursor_.remaining.back());
  cursor_.remaining.pop_back();
  return true;
}

void LinuxSystem::rewind_sessions() const {
  const MutexHold held(&sessions_mutex);
  use_accounting_file();
  PosixSystem::rewind_sessions();
  cursor_ = SessionCursor{};
}

}  // namespace quillon_com::orb::platform
