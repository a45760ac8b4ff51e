// tests/torture/timestamp_rows.cpp: fileutil/timestamp.h and fileutil/guid.h under torture.
#include "fileutil/timestamp.h"

#include <algorithm>

#include "fileutil/guid.h"
#include "tests/support/scoped_environment.h"
#include "tests/support/torture.h"

namespace {

using namespace quillon_com::orb;
using orbtest::Fault;
using orbtest::Trial;

constexpr const char* kCompact = "00000000000000";
constexpr const char* kDashed = "0000-00-00 00:00:00";

// A stamp without its time: "0" for every digit.
template <class Text>
std::string form_of(const Text& stamp) {
  std::string form;
  for (const auto each : stamp) form += each >= '0' && each <= '9' ? '0' : static_cast<char>(each);
  return form;
}

template <auto write>
void write_wide(Trial& trial) {
  wchar_t stamp[20] = L"old";
  trial.call([&] { write(stamp, 20); });
  trial.answer(form_of(std::wstring(stamp)));
}

template <auto write>
void write_narrow(Trial& trial) {
  char stamp[20] = "old";
  const int length = trial.call([&] { return write(stamp, 20); });
  trial.answer(std::to_string(length) + " " + form_of(std::string(stamp)));
}

template <auto make>
void make_dashed(Trial& trial) {
  decltype(make()) stamp;
  trial.call([&] { stamp = make(); });
  trial.answer(form_of(stamp));
}

// The time-zone lock is taken where it can be.
std::vector<Fault> under_the_lock(const char* answer, std::vector<Fault> more) {
  more.push_back({"pthread_mutex_lock", answer});
  more.push_back({"pthread_mutex_unlock", answer});
  return more;
}

template <auto uptime>
void ask_uptime(Trial& trial) {
  const long seconds = trial.call([] { return uptime(); });
  trial.answer(seconds == 2147483647 ? "not known" : "known");
}

const orbtest::Tortures times({
    {"voxGetSystemTime",
     "",
     "a time",
     [](Trial& trial) {
       voxSystemTime time{};
       trial.call([&] { return voxGetSystemTime(&time); });
       trial.answer(time.day == 0 ? "no time" : "a time");
     },
     {{"localtime_r", "no time"}}},
    {"voxGetTickCount",
     "",
     "ticks",
     [](Trial& trial) {
       const uint64_t count = trial.call([] { return voxGetTickCount(); });
       trial.answer(count == 0 ? "0" : "ticks");
     },
     {{"sysconf", "0"}}},
    {"voxcomn_CreateGmtTimeStampW",
     "",
     kCompact,
     write_wide<voxcomn_CreateGmtTimeStampW>,
     {{"gmtime_r", ""}}},
    {"voxcomn_CreateLocalTimeStampW",
     "",
     kCompact,
     write_wide<voxcomn_CreateLocalTimeStampW>,
     {{"localtime_r", ""}}},
    {"voxcomn_CreateGmtTimeStampA",
     "",
     "14 00000000000000",
     write_narrow<voxcomn_CreateGmtTimeStampA>,
     {{"localtime_r", "0 "}}},
    {"voxcomn_CreateLocalTimeStampA",
     "",
     "14 00000000000000",
     write_narrow<voxcomn_CreateLocalTimeStampA>,
     {{"localtime_r", "0 "}}},
    {"voxcomn_delay", "", "done", [](Trial& trial) { trial.call([] { voxcomn_delay(1000); }); }},
    {"quillon_com::orb::voxcomn_get_time_stamp_ansi()", "", kDashed,
     make_dashed<voxcomn_get_time_stamp_ansi>,
     under_the_lock(
         kDashed, {{"localtime_r", ""}, {"operator new", ""}, {"pthread_mutex_lock onwards", ""}})},
    {"quillon_com::orb::voxcomn_get_time_stamp_wide()", "", kDashed,
     make_dashed<voxcomn_get_time_stamp_wide>,
     under_the_lock(kDashed, {{"localtime_r", ""},
                              {"operator new", ""},
                              {"pthread_mutex_lock onwards", ""},
                              {"pthread_mutex_unlock onwards", ""}})},
    {"quillon_com::orb::qlncomn_timegm(tm*)", "", "86400",
     [](Trial& trial) {
       tm time{};
       time.tm_year = 70;
       time.tm_mday = 2;
       trial.call([&] { return qlncomn_timegm(&time); });
     },
     under_the_lock("86400", {})},
    {"quillon_com::orb::qlncomn_gettimezone(std::wstring&)", "", "1 ALONGZONE",
     [](Trial& trial) {
       const orbtest::ScopedTimeZone zone("ALONGZONE-1");
       std::wstring name = L"old";
       const bool known = trial.call([&] { return qlncomn_gettimezone(name); });
       trial.answer(std::to_string(known) + " " + std::string(name.begin(), name.end()));
     },
     under_the_lock("1 ALONGZONE",
                    {{"operator new", "0 old"}, {"pthread_mutex_lock onwards", "0 old"}})},
    {"quillon_com::orb::voxcomn_get_system_uptime()",
     "",
     "known",
     ask_uptime<voxcomn_get_system_uptime>,
     {{"clock_gettime", "not known"}}},
    {"quillon_com::orb::get_system_uptime_osx()",
     "",
     "known",
     ask_uptime<get_system_uptime_osx>,
     {{"clock_gettime", "not known"}}},
});

// The version, which stands in the high half of the seventh byte.
std::string version_of(const voxGuid& guid) {
  return "version " + std::to_string(guid.bytes[6] >> 4);
}

const orbtest::Tortures guids({
    // Without the clock it is the GUID of 1970; that asks for the lock, of a clock that went back.
    {"voxCoCreateGuid",
     "",
     "version 1",
     [](Trial& trial) {
       voxGuid guid{};
       trial.call([&] { return voxCoCreateGuid(&guid); });
       trial.answer(version_of(guid));
     },
     {{"gettimeofday", "version 1"}}},
    {"voxUuidToStringA", "", "01000000-0000-0000-0000-000000000000",
     [](Trial& trial) {
       const voxGuid guid = {{0, 0, 0, 1}};
       char text[37];
       trial.call([&] { return static_cast<const char*>(voxUuidToStringA(&guid, text)); });
     }},
    {"voxcomn_create_guid",
     "",
     "1 38",
     [](Trial& trial) {
       voxGuid guid{};
       char text[40];
       const int made = trial.call([&] { return voxcomn_create_guid(&guid, text, sizeof text); });
       trial.answer(std::to_string(made) + " " + std::to_string(std::string(text).size()));
     },
     {{"gettimeofday", "1 38"}}},
});

}  // namespace
