// tests/contract/consumers/cxx/session.cpp: user names and lists of them.
#include "session/loggedonusers.h"

#include <string>
#include <vector>

#include "../expect.h"
#include "areas.h"

namespace session = quillon_com::orb::session;

void use_session() {
  std::wstring name = L"CORP\\jdoe", domain, user;
  session::parseFullUserName(name, domain, user);
  EXPECT(domain == L"CORP" && user == L"jdoe");
  std::vector<std::string> parts;
  session::split("one|two|", '|', parts);
  EXPECT((parts == std::vector<std::string>{"one", "two", ""}));
  std::string text = "MiXed";
  session::toLower(text);
  EXPECT(text == "mixed");
  std::string all = "what was there before";
  session::CollectAllLoggedonUsers(all);
  EXPECT(all.size() <= 128 && all != "what was there before");
}
