// session/collect.h: the users of a given machine; what session/loggedonusers.h runs on the host.
#pragma once

#include <cstdio>
#include <set>
#include <string>

namespace quillon_com::orb::platform {
class System;
}

namespace quillon_com::orb::session {

// The functions of session/loggedonusers.h with the same rules, on `system`, which is read and
// never kept, with the diagnostic lines on `lines`. Outputs are not null.
void collect_logged_on_users(const platform::System& system, FILE* lines,
                             std::set<std::string>* network, std::set<std::string>* local,
                             bool skip_local);
void collect_user_lists(const platform::System& system, FILE* lines, std::string* network_list,
                        std::string* local_list, bool skip_local);
void collect_all_users(const platform::System& system, FILE* lines, std::string* result);
bool find_domain_by_group(const platform::System& system, FILE* lines, const std::string& user,
                          std::string* domain);

// The domains of `user`, joined by "|" and in lower case, by what the directory service answers for
// `attribute`. Returns false when the service gives no domain; `domain` is then "" when it
// answered and untouched when it did not. At most 1024 bytes of its answer count, up to a zero
// byte. The command is cut at 255 bytes and run as cut. A user or attribute that is not
// fit_for_command gives false and runs nothing. "OriginalAuthenticationAuthority" gives the text
// between the first "@" and the ";" behind it, "userPrincipalName" that behind the first "@" of
// each line that has one; any other attribute gives false. The result has been through `trimmer`.
// Quirk: an answer whose domains hold no letter or digit gives true and "".
bool FindDomainNameViaDscl(const platform::System& system, const std::string& user,
                           const std::string& attribute, std::string* domain);

// Whether `word` is passed through by a shell and by a directory path as it is: not empty, made of
// ASCII letters and digits, ".", "_", "-", "+", "@" and bytes above 127, not "." or "..", and with
// no "-" in front.
bool fit_for_command(const std::string& word);

// `text` without the bytes at both ends that isalnum does not class as letter or digit; "" when it
// holds no other, or is null.
std::string trimmer(const char* text);

// `users` (in place) by the rule of CollectAllLoggedonUsers for lists of 128 bytes and more.
void limit_user_list(std::string* users);

}  // namespace quillon_com::orb::session
