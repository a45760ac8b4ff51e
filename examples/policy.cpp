// examples/policy.cpp: a setting's section and key, under the names that every process uses.
#include <iostream>
#include <map>
#include <string>

#include "config/configkeys.h"

int main() {
  using namespace quillon_com::orb;
  std::map<std::wstring, std::map<std::wstring, std::wstring>> store;  // an agent's policy
  store[section_general][key_general_bCollectFullProps] = L"1";
  for (const auto& [section, settings] : store)
    for (const auto& [key, value] : settings)
      std::wcout << L"section_general = \"" << section << L"\", key_general_bCollectFullProps = \""
                 << key << L"\": " << value << L'\n';
}
