// examples/report.cpp: every property of the machine, as the agent sends them to its server.
#include <clocale>
#include <ctime>
#include <iostream>
#include <map>
#include <string>

#include "fileutil/conversions.h"
#include "sysprops/records.h"

int main() {
  using quillon_com::orb::voxcomn_wide_to_ansi;
  tzset();  // the time zone's name is what the process last set
  std::setlocale(LC_ALL, "");
  std::map<std::wstring, std::wstring> properties;
  quillon_com::orb::sysprops::ISysProps().GetAllSystemProperties(properties);
  for (const auto& [key, value] : properties)
    std::cout << voxcomn_wide_to_ansi(key) << " = " << voxcomn_wide_to_ansi(value) << '\n';
}
