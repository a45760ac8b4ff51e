// session/loggedonusers.h: the users who have a session on this machine, and their domains.
//
// A network user is a directory user, named domain, backslash, account; a local user is the account
// name alone. Names are lower case by the process's LC_CTYPE locale, and sets are in byte order.
// The user-accounting database has one cursor per process: calls of the Collect functions from
// several threads disturb each other and are the caller's to serialise. Diagnostic lines go to the
// stream of myfd(). Except where a comment says otherwise, exceptions of the standard library pass:
// std::bad_alloc, when memory runs out. Texts and lists are then as they were passed.
#pragma once

#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "platform/export.h"

namespace quillon_com {
namespace orb {
namespace session {

// Adds every user with a session to `network`, or to `local` when no domain is found; what the sets
// held before stays. With `skipLocal` users without a domain are left out. The scan starts where
// the database's cursor stands and rewinds it when done, or when an exception ends it. A line is
// written for each record of the database, for each user added, and one before and one behind them
// all.
// The domain is looked for in the primary group (FindDomainName), then in the directory service's
// "userPrincipalName" and "OriginalAuthenticationAuthority"; several domains give several names.
// Behind an exception the sets hold the users found until then.
// Quirk: a record of a user process without a name gives the local user "".
ORB_EXPORT void CollectLoggedonUsers(std::set<std::string>& network, std::set<std::string>& local,
                                     bool skipLocal);

// The same as two lists, "a,b,c".
// Quirk: a list without users is left as it was passed, not cleared; with `skipLocal` so is
// `localList`, whoever is logged on.
ORB_EXPORT void CollectComaSepLoggedonUsers(std::string& networkList, std::string& localList,
                                            bool skipLocal);

// All users as one list in `result`, network users first, at most 128 bytes; "" when there are
// none. Quirk: a list of 128 bytes is already cut. A cut list ends in ",...", which replaces the
// cut tail from its last comma on; where that comma is among the last three bytes, or there is
// none, the first 128 bytes stay as they are.
ORB_EXPORT void CollectAllLoggedonUsers(std::string& result);

// The domain of the account `user`, in lower case, by the name of its primary group, which is the
// domain, a backslash and "domain users" in any case. Returns false, with `domain` untouched, when
// the account or its group is unknown or the group is not named so. A found domain is written to
// the diagnostic stream. Does not throw: an exception writes a line there and returns false.
ORB_EXPORT bool FindDomainName(const std::string& user, std::string& domain);

// Splits `fullName` at its first backslash into `domain` and `user`, in their own case. Without a
// backslash `user` is the whole name, "user@domain" too, and `domain` is empty.
ORB_EXPORT void parseFullUserName(std::wstring& fullName, std::wstring& domain, std::wstring& user);

// Appends the pieces of `text` between its delimiters to `parts`, empty ones included: "a|" gives
// "a" and "".
// Quirk: a text without a delimiter appends nothing.
ORB_EXPORT void split(const std::string& text, char delimiter, std::vector<std::string>& parts);

// Replaces each byte of `text` by tolower of it.
ORB_EXPORT void toLower(std::string& text);

// The stream of the diagnostic lines: standard output.
ORB_EXPORT FILE* myfd();

}  // namespace session
}  // namespace orb
}  // namespace quillon_com
