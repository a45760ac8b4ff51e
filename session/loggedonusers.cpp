// session/loggedonusers.cpp: the scan of the user-accounting database and the lists made of it.
#include "session/loggedonusers.h"

#include <utility>

#include "platform/system.h"
#include "portability/forks.h"
#include "session/collect.h"

namespace quillon_com::orb::session {
namespace {

constexpr int kUserProcess = 7;  // the entry type of a user's session

// Held while the system reads an entry, so that a forked child finds the database, and the C
// library's own lock on it, free.
portability::ProcessMutex accounting_mutex;

bool read_entry(const platform::System& system, platform::SessionEntry* entry) {
  const portability::Hold held(accounting_mutex);
  return system.next_session_entry(entry);
}

void rewind(const platform::System& system) {
  const portability::Hold held(accounting_mutex);
  system.rewind_sessions();
}

// The domains of `user`, joined by "|", by the first of three methods that finds one.
bool find_domains(const platform::System& system, FILE* lines, const std::string& user,
                  std::string* domains) {
  return find_domain_by_group(system, lines, user, domains) ||
         FindDomainNameViaDscl(system, user, "userPrincipalName", domains) ||
         FindDomainNameViaDscl(system, user, "OriginalAuthenticationAuthority", domains);
}

void add_network_user(const std::string& user, const std::string& domains, FILE* lines,
                      std::set<std::string>* network) {
  std::vector<std::string> parts;
  split(domains, '|', parts);
  if (parts.empty()) parts.push_back(domains);
  for (const std::string& part : parts) {
    std::string name = part;
    name.append("\\").append(user);
    toLower(name);
    network->insert(name);
    std::fprintf(lines, "Network User logged on %s \n", name.c_str());
  }
}

void add_local_user(std::string user, FILE* lines, std::set<std::string>* local) {
  toLower(user);
  local->insert(user);
  std::fprintf(lines, "Local User Logged on %s \n", user.c_str());
}

std::string joined(const std::set<std::string>& names) {
  std::string list;
  for (const std::string& name : names) {
    if (&name != &*names.begin()) list += ",";
    list += name;
  }
  return list;
}

// Adds the user of each entry from the cursor on.
void scan_sessions(const platform::System& system, FILE* lines, std::set<std::string>* network,
                   std::set<std::string>* local, bool skip_local) {
  platform::SessionEntry entry;
  while (read_entry(system, &entry)) {
    std::fprintf(lines, "%d  %s  %s  %s \n", entry.type, entry.id.c_str(), entry.user.c_str(),
                 entry.line.c_str());
    if (entry.type != kUserProcess) continue;
    std::string domains;
    if (find_domains(system, lines, entry.user, &domains)) {
      add_network_user(entry.user, domains, lines, network);
    } else if (!skip_local) {
      add_local_user(entry.user, lines, local);
    }
  }
}

}  // namespace

void collect_logged_on_users(const platform::System& system, FILE* lines,
                             std::set<std::string>* network, std::set<std::string>* local,
                             bool skip_local) {
  std::fputs("Some changes happen in the logon sessions.\n", lines);
  try {
    scan_sessions(system, lines, network, local, skip_local);
  } catch (...) {
    rewind(system);
    throw;
  }
  std::fputs("Coming out from the logon session collections.\n", lines);
  rewind(system);
}

void collect_user_lists(const platform::System& system, FILE* lines, std::string* network_list,
                        std::string* local_list, bool skip_local) {
  std::set<std::string> network;
  std::set<std::string> local;
  collect_logged_on_users(system, lines, &network, &local, skip_local);
  std::string network_names = joined(network);
  std::string local_names = joined(local);
  if (!network.empty()) *network_list = std::move(network_names);
  if (!local.empty()) *local_list = std::move(local_names);  // never with `skip_local`
}

void collect_all_users(const platform::System& system, FILE* lines, std::string* result) {
  std::string network;
  std::string local;
  collect_user_lists(system, lines, &network, &local, false);
  if (!network.empty() && !local.empty()) network += ",";
  *result = network + local;
  limit_user_list(result);
}

void CollectLoggedonUsers(std::set<std::string>& network, std::set<std::string>& local,
                          bool skipLocal) {
  collect_logged_on_users(platform::host(), myfd(), &network, &local, skipLocal);
}

void CollectComaSepLoggedonUsers(std::string& networkList, std::string& localList, bool skipLocal) {
  collect_user_lists(platform::host(), myfd(), &networkList, &localList, skipLocal);
}

void CollectAllLoggedonUsers(std::string& result) {
  collect_all_users(platform::host(), myfd(), &result);
}

FILE* myfd() { return stdout; }

}  // namespace quillon_com::orb::session
