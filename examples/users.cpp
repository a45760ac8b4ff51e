// examples/users.cpp: who is logged on to the machine.
#include <cstdio>
#include <set>
#include <string>

#include "session/loggedonusers.h"

int main() {
  std::string users;
  quillon_com::orb::session::CollectAllLoggedonUsers(users);
  std::printf("logged on: %s\n", users.empty() ? "nobody" : users.c_str());
  return 0;
}
