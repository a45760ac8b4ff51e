// tests/soak/text_areas.cpp: rounds of conversions, identifiers, stamps and address texts.
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "fileutil/conversions.h"
#include "fileutil/dirent.h"
#include "fileutil/guid.h"
#include "fileutil/platformmatch.h"
#include "fileutil/timestamp.h"
#include "network/ipv6.h"
#include "network/networkutil.h"
#include "session/loggedonusers.h"
#include "sysprops/records.h"
#include "tests/soak/soak.h"

namespace soak {
namespace {

using namespace quillon_com::orb;

void convert_text(Worker& worker) {
  std::string narrow = "plain, gr\xC3\xBC\xC3\x9F, \xE2\x82\xAC, \xF0\x9F\x98\x80 ";
  for (int doubled = 0; doubled < 6; ++doubled) narrow += narrow;
  const std::wstring wide = voxcomn_ansi_to_wide(narrow);
  worker.expect(voxcomn_wide_to_ansi(wide) == narrow, "text comes back from wide text");
  worker.expect(sysprops::sysprops_wide_to_ansi(sysprops::sysprops_ansi_to_wide("a")) == "a",
                "so does a property's");
  wchar_t small[4] = {};
  int room = 3;
  worker.expect(voxcomn_utf8_to_unicode("abc", small, &room) == 0x80000008, "room is asked for");
  wchar_t by_locale[8] = {};
  worker.expect(voxStandardAtoU("text", 8, by_locale) == 4, "the locale's text is widened");
  char back[8] = {};
  worker.expect(voxStandardUtoA(by_locale, 8, back) == 4 && std::strcmp(back, "text") == 0,
                "and narrowed");
}

void convert_numbers(Worker& worker) {
  char text[32];
  worker.expect(std::strcmp(voxItoa(-1, text, 10), "-1") == 0, "a number has its text");
  worker.expect(std::strcmp(voxI64toa(255, text, 16), "ff") == 0, "in three bases");
  worker.expect(voxItoa(5, text, 2) == nullptr, "and in no other");
  worker.expect(voxAtoi64("123") == 123, "a text has its number");
  worker.expect(voxcomn_long_to_wide_string(-7) == L"-7", "in wide text as well");
  worker.expect(voxcomn_convert_to_upper("a b") == "A B", "letters are made large");
  worker.expect(voxcomn_strip_leading_whitespace("  a ") == "a ", "blanks are taken off");
  char list[] = "a;b;;c";
  char* rest = nullptr;
  int tokens = 0;
  for (char* token = voxTstrtok_r(list, ";", &rest); token != nullptr;
       token = voxTstrtok_r(nullptr, ";", &rest))
    ++tokens;
  worker.expect(tokens == 3, "a list has its tokens");
}

void make_identifiers(Worker& worker) {
  voxGuid guid{};
  char text[64] = {};
  worker.expect(voxcomn_create_guid(&guid, text, sizeof text) == 1, "an identifier is made");
  worker.expect(std::strlen(text) == 38 && text[0] == '{' && text[37] == '}', "its text is");
  worker.expect(guid.bytes[6] >> 4 == 1 && guid.bytes[8] >> 5 == 4, "version and variant stand");
}

void make_stamps(Worker& worker) {
  worker.expect(voxcomn_get_time_stamp_ansi().size() == 19, "a stamp has its form");
  worker.expect(voxcomn_get_time_stamp_wide().size() == 19, "in wide text as well");
  wchar_t wide[32] = {};
  voxcomn_CreateGmtTimeStampW(wide, 32);
  worker.expect(std::wstring(wide).size() == 14, "a short stamp has its form");
  char narrow[32] = {};
  worker.expect(voxcomn_CreateLocalTimeStampA(narrow, sizeof narrow) == 14, "and its length");
  tm time{};
  time.tm_year = 124;
  time.tm_mon = 2;
  time.tm_mday = 5;
  worker.expect(qlncomn_timegm(&time) == 1709596800, "a date has its second");
  std::wstring zone;
  worker.expect(qlncomn_gettimezone(zone) && !zone.empty(), "the zone has a name");
  voxSystemTime record{};
  worker.expect(voxGetSystemTime(&record)->month >= 1, "the system time is told");
  worker.expect(voxGetTickCount() > 0 && voxcomn_get_system_uptime() > 0, "time goes on");
}

void match_names(Worker& worker) {
  worker.expect(voxcomn_IsPlatformMatch("MACX:10:15:7", "OTHR|MACX") == 0, "a platform is named");
  worker.expect(voxcomn_IsPlatformMatch("MACX:10:15:7", "MACX:11:0:0-12:0:0") == 1,
                "and out of a range");
  worker.expect(voxWildCardMatch("rep*2024*.t?t", "report of 2024-03.txt") == 0, "a name matches");
  worker.expect(voxWildCardMatch("a*a*a*a*b", "aaaaaaaaaaaaaaaac") == 1, "or does not");
  char identifier[17] = {};
  voxcomn_get_agent_softwareid(identifier, sizeof identifier);
  worker.expect(std::strncmp(identifier, "HUBAGENT", 8) == 0, "the software has a name");
  std::vector<std::string> parts;
  session::split("a|b|", '|', parts);
  worker.expect(parts.size() == 3, "a text is split");
  std::wstring full = L"CORP\\jdoe";
  std::wstring domain;
  std::wstring user;
  session::parseFullUserName(full, domain, user);
  worker.expect(domain == L"CORP" && user == L"jdoe", "a full name has two parts");
}

void write_addresses(Worker& worker) {
  worker.expect(expandIPV6Address("fe80::1%en0") == "fe80:0:0:0:0:0:0:1", "an address is expanded");
  worker.expect(calculateSubNetAddrForV6("2001:db8:0:0:0:0:0:1", "ffff:ffff:0:0:0:0:0:0") ==
                    "2001:db8:0:0:0:0:0:0",
                "a subnet is worked out");
  worker.expect(convertLiteralFormatToV6Addr(convertV6AddrToLiteralFormat("fe80::1")) == "fe80::1",
                "a literal leads back");
  ANetworkUtil utility;
  worker.expect(utility.formatV6addr("[fe80::1%en0]", true) == "[fe80::1]", "a zone is taken off");
  worker.expect(utility.qlnCompareAddressFromPeerAddress("10.1.2.3", "443", "110.1.2.34"),
                "a peer is known");
}

}  // namespace

const std::vector<Area>& text_areas() {
  static const std::vector<Area> areas = {
      {"text conversions", 1, convert_text},   {"number texts", 1, convert_numbers},
      {"identifiers", 1, make_identifiers},    {"time stamps", 1, make_stamps},
      {"platforms and names", 1, match_names}, {"address texts", 1, write_addresses},
  };
  return areas;
}

}  // namespace soak
