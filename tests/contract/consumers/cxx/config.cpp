// tests/contract/consumers/cxx/config.cpp: settings kept under the names of the configuration.
#include <map>
#include <string>
#include <utility>

#include "../expect.h"
#include "areas.h"
#include "config/configkeys.h"

namespace orb = quillon_com::orb;

void use_config() {
  std::map<std::pair<std::wstring, std::wstring>, int> policy;
  policy[{orb::section_listenserver, orb::key_ls_AgentPingPort}] = 8081;
  EXPECT((policy[{L"AgentListenServer", L"AgentPingPort"}] == 8081));
  std::map<std::string, int> task;
  task[orb::DependenciesSection + "/" + orb::NumDependencies_Key] = 2;
  EXPECT(task["Task Dependencies/NumberOfDependencies"] == 2);
  EXPECT(orb::props_key_installed_path == L"szInstallDir");
}
