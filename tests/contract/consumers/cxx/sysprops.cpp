// tests/contract/consumers/cxx/sysprops.cpp: the whole report, single properties and helpers.
#include <map>
#include <string>

#include "../expect.h"
#include "areas.h"
#include "sysprops/catalogue.h"
#include "sysprops/collectors.h"
#include "sysprops/records.h"

using namespace quillon_com::orb::sysprops;

void use_sysprops() {
  ISysProps props;
  std::map<std::wstring, std::wstring> report;
  EXPECT(props.GetAllSystemProperties(report));
  EXPECT(report.size() >= 29);
  EXPECT(report[OSType_Key] == props.GetOneSystemProperty(OSType_Key));
  EXPECT(report[CPUSerialNumber_Key] == DefaultProp_Val);
  EXPECT(report[ComputerName_Key] == voxcomn_get_computer_name());
  EXPECT(props.IsDiskProperty(L"TotalDiskSpace") && !props.IsDiskProperty(L"TotalDisk"));
  EXPECT(get_closest_floor<double>(7.3, 10.0, 0.0, 20) == 7.0);
  char model[11];
  EXPECT(ConvertGestaltCPUTypeToString(0x69787878, model) && std::string(model) == "X86");
}
