// tests/contract/consumers/cxx/fileutil.cpp: conversions, paths, times, searches and names.
#include <ctime>
#include <string>

#include "../expect.h"
#include "areas.h"
#include "fileutil/conversions.h"
#include "fileutil/dirent.h"
#include "fileutil/filetree.h"
#include "fileutil/guid.h"
#include "fileutil/paths.h"
#include "fileutil/platformmatch.h"
#include "fileutil/timestamp.h"
#include "fileutil/voxfio.h"

namespace orb = quillon_com::orb;

namespace {

void use_conversions() {
  EXPECT(orb::voxcomn_ansi_to_wide("\xE2\x82\xAC") == L"\u20AC");
  EXPECT(orb::voxcomn_wide_to_ansi(L"\u20AC") == "\xE2\x82\xAC");
  EXPECT(orb::voxcomn_long_to_wide_string(-12) == L"-12");
  EXPECT(orb::voxcomn_ulong_to_wide_string(12) == L"12");
  EXPECT(orb::voxcomn_long_to_ansi_string(0) == "0");
  EXPECT(orb::voxcomn_convert_to_upper("mixed Case") == "MIXED CASE");
  EXPECT(orb::voxcomn_convert_to_lower("MIXED Case") == "mixed case");
  EXPECT(orb::voxcomn_strip_leading_whitespace(" \ta ") == "a ");
  EXPECT(orb::voxcomn_strip_trailing_whitespace(" a \n") == " a");
  const unsigned one = 1;
  EXPECT(orb::isBigEndian() == (reinterpret_cast<const char&>(one) == 0));
  char digits[12];
  EXPECT(std::string(voxItoa(26, digits, 16)) == "1a");
}

void use_paths() {
  std::string path;
  EXPECT(FileNameFlattener("/one/./two/../three").GetFlatPath(path) && path == "/one/three");
  EXPECT(orb::FileNameFlattener("four", "/base").GetFlatPath(path) && path == "/base/four");
  EXPECT(!FileNameResolver("/no/such/file").GetAbsolutePath(path) && path == "/base/four");
  EXPECT(vxFolderExists("/"));
  EXPECT(!voxcomn_copy_file("/no/such/file", nullptr, 1));
  FindDataDirEnt found;
  const int search = voxFindFirstDirEnt("/usr", &found);
  EXPECT(search > 0 && std::string(found.name).compare(0, 3, "usr") == 0);
  EXPECT(voxFindCloseDirEnt(search) == 1);
}

void use_times() {
  EXPECT(orb::voxcomn_get_time_stamp_ansi().size() == 19);
  EXPECT(orb::voxcomn_get_time_stamp_wide().size() == 19);
  std::tm moment{};
  moment.tm_year = 70;
  moment.tm_mday = 2;
  EXPECT(orb::qlncomn_timegm(&moment) == 86400 && moment.tm_wday == 5);
  std::wstring zone = L"before";
  EXPECT(orb::qlncomn_gettimezone(zone) == (zone != L"before"));
  const long uptime = orb::voxcomn_get_system_uptime();
  EXPECT(uptime > 0 && orb::get_system_uptime_osx() > 0);
}

void use_names() {
  char text[64];
  EXPECT(voxcomn_create_guid(nullptr, text, sizeof text) == 1 && std::string(text).size() == 38);
  EXPECT(voxcomn_IsPlatformMatch("MACX", "LINUX|MACX") == 0);
}

}  // namespace

void use_fileutil() {
  use_conversions();
  use_paths();
  use_times();
  use_names();
}
