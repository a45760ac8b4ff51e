// tests/torture/report_rows.cpp: the report and the answers of ISysProps by key under torture.
#include <map>
#include <utility>

#include "sysprops/records.h"
#include "tests/support/torture.h"
#include "tests/torture/answers.h"
#include "tests/torture/machine.h"

namespace {

using namespace quillon_com::orb::sysprops;
using orbtest::and_memory;
using orbtest::and_onwards;
using orbtest::Fault;
using orbtest::kNone;
using orbtest::Machine;
using orbtest::Torture;
using orbtest::Trial;
using PropertyMap = std::map<std::wstring, std::wstring>;
using FileSystemMap = std::map<std::wstring, std::pair<std::wstring, std::wstring>>;

// What a map held before a report is made: it stays when that fails.
const std::wstring kBefore = L"a key of the caller's own, as it was before";

// The report as its counts, or kNone: an exception, the maps then as they were, or a text that is
// empty because it found no memory.
void tell(Trial& trial, const PropertyMap& properties, const FileSystemMap* file_systems) {
  const bool threw = trial.answer() == std::string("no memory");
  const bool kept = properties.count(kBefore) == 1 &&
                    (file_systems == nullptr || file_systems->count(kBefore) == 1);
  if (threw) {
    trial.answer(kept ? kNone : "no memory, and the maps changed");
    return;
  }
  bool empty = false;
  for (const auto& [key, value] : properties) empty = empty || value.empty();
  std::string counts = " " + std::to_string(properties.size());
  if (file_systems != nullptr) counts += " " + std::to_string(file_systems->size());
  trial.answer(empty ? kNone : trial.answer() + counts);
}

void report_one_map(Trial& trial) {
  const Machine machine;
  ISysProps all;
  PropertyMap properties = {{kBefore, L""}};
  trial.call([&] { return all.GetAllSystemProperties(properties); });
  tell(trial, properties, nullptr);
}

void report_two_maps(Trial& trial) {
  const Machine machine;
  ISysProps all;
  PropertyMap properties = {{kBefore, L""}};
  FileSystemMap file_systems = {{kBefore, {L"", L""}}};
  trial.call([&] { return all.GetAllSystemProperties(properties, file_systems); });
  tell(trial, properties, &file_systems);
}

// A value that cannot be had is reported as its default; volumes that cannot are left out. The
// fifth file is the mount table.
std::vector<Fault> reporting(const char* whole, const char* one_volume, const char* no_volume) {
  std::vector<Fault> faults = {{"open#5", no_volume},
                               {"read#9", no_volume},
                               {"stat#1", one_volume},
                               {"stat#2", one_volume},
                               {"statfs", one_volume}};
  for (const char* call :
       {"uname", "getdomainname", "gethostname", "gethostbyname2_r", "getifaddrs", "getnameinfo",
        "socket", "ioctl", "close", "sysconf", "open", "read", "stat", "pthread_mutex_lock",
        "pthread_mutex_unlock", "getutxent", "getpwnam_r", "getgrgid_r", "localtime_r"})
    faults.push_back({call, whole});
  return and_memory(whole, and_onwards(std::move(faults)));
}

// The answer of one property, from a record collected whole.
template <auto member>
Torture answer_of(const char* function, const std::wstring& key, const char* answer,
                  std::vector<Fault> faults) {
  return {function, "", answer,
          [&key](Trial& trial) {
            const Machine machine;
            ISysProps all;
            trial.call([&] { return (all.*member)(key); });
            orbtest::note_none(trial);
          },
          and_memory(answer, and_onwards(std::move(faults)))};
}

template <auto member>
Torture claims(const char* function, const std::wstring& key) {
  return {function, "", "1", [&key](Trial& trial) {
            ISysProps all;
            trial.call([&] { return (all.*member)(key); });
          }};
}

const orbtest::Tortures reports({
    {"quillon_com::orb::sysprops::ISysProps::GetAllSystemProperties(std::map<std::wstring, "
     "std::wstring, std::less<std::wstring>, std::allocator<std::pair<std::wstring const, "
     "std::wstring>>>&)",
     "", "1 33", report_one_map, reporting("1 33", "1 31", "1 29")},
    {"quillon_com::orb::sysprops::ISysProps::GetAllSystemProperties(std::map<std::wstring, "
     "std::wstring, std::less<std::wstring>, std::allocator<std::pair<std::wstring const, "
     "std::wstring>>>&, std::map<std::wstring, std::pair<std::wstring, std::wstring>, "
     "std::less<std::wstring>, std::allocator<std::pair<std::wstring const, "
     "std::pair<std::wstring, std::wstring>>>>&)",
     "", "1 30 2", report_two_maps, reporting("1 30 2", "1 30 1", "1 30 0")},
});

const orbtest::Tortures categories({
    claims<&ISysProps::IsNetworkProperty>(
        "quillon_com::orb::sysprops::ISysProps::IsNetworkProperty(std::wstring const&)",
        IPAddress_Key),
    claims<&ISysProps::IsCPUProperty>(
        "quillon_com::orb::sysprops::ISysProps::IsCPUProperty(std::wstring const&)", CPUType_Key),
    claims<&ISysProps::IsMemoryProperty>(
        "quillon_com::orb::sysprops::ISysProps::IsMemoryProperty(std::wstring const&)",
        FreeMemory_Key),
    claims<&ISysProps::IsMiscProperty>(
        "quillon_com::orb::sysprops::ISysProps::IsMiscProperty(std::wstring const&)", TimeZone_Key),
    claims<&ISysProps::IsDiskProperty>(
        "quillon_com::orb::sysprops::ISysProps::IsDiskProperty(std::wstring const&)",
        FreeDiskSpace_Key),
    claims<&ISysProps::IsOSProperty>(
        "quillon_com::orb::sysprops::ISysProps::IsOSProperty(std::wstring const&)", OSVersion_Key),
});

constexpr const char* kTotal = "17179869184";

std::vector<Fault> reading_memory() {
  return {
      {"open", kTotal},
      {"read", kTotal},
      {"close", kTotal},
  };
}

const orbtest::Tortures answers({
    answer_of<&ISysProps::GetOneSystemProperty>(
        "quillon_com::orb::sysprops::ISysProps::GetOneSystemProperty(std::wstring const&)",
        TotalPhysicalMemory_Key, kTotal, reading_memory()),
    answer_of<&ISysProps::GetOneMemoryProperty>(
        "quillon_com::orb::sysprops::ISysProps::GetOneMemoryProperty(std::wstring const&)",
        TotalPhysicalMemory_Key, kTotal, reading_memory()),
    // Without the list of interfaces the address keeps its default.
    answer_of<&ISysProps::GetOneNetworkProperty>(
        "quillon_com::orb::sysprops::ISysProps::GetOneNetworkProperty(std::wstring const&)",
        NETAddress_Key, "001c420aff01",
        {
            {"uname", "001c420aff01"},
            {"getdomainname", "001c420aff01"},
            {"gethostname", "001c420aff01"},
            {"gethostbyname2_r", "001c420aff01"},
            {"getifaddrs", kNone},
            {"getnameinfo", "001c420aff01"},
            {"socket", "001c420aff01"},
            {"ioctl", "001c420aff01"},
            {"close", "001c420aff01"},
        }),
    // The clock beside the model's name stands in for the base frequency, the second file.
    answer_of<&ISysProps::GetOneCPUProperty>(
        "quillon_com::orb::sysprops::ISysProps::GetOneCPUProperty(std::wstring const&)",
        CPUSpeed_Key, "2400 MHz",
        {
            {"sysconf", "2400 MHz"},
            {"uname", "2400 MHz"},
            {"open", "2400 MHz"},
            {"open#2", "1200 MHz"},
            {"read", "2400 MHz"},
            {"read#3", "1200 MHz"},
            {"close", "2400 MHz"},
        }),
    answer_of<&ISysProps::GetOneDiskProperty>(
        "quillon_com::orb::sysprops::ISysProps::GetOneDiskProperty(std::wstring const&)",
        TotalDiskSpace_Key, "7812.50",
        {
            {"open", "0.00"},
            {"read#1", "0.00"},
            {"read#2", "7812.50"},
            {"close", "7812.50"},
            {"stat", "3906.25"},
            {"statfs", "3906.25"},
        }),
    answer_of<&ISysProps::GetOneMiscProperty>(
        "quillon_com::orb::sysprops::ISysProps::GetOneMiscProperty(std::wstring const&)",
        LastUpdate_Key, "02/03/2024 09:07:05",
        {{"pthread_mutex_lock", "02/03/2024 09:07:05"},
         {"pthread_mutex_unlock", "02/03/2024 09:07:05"},
         {"getutxent", "02/03/2024 09:07:05"},
         {"getpwnam_r", "02/03/2024 09:07:05"},
         {"getgrgid_r", "02/03/2024 09:07:05"},
         {"localtime_r", kNone}}),
    answer_of<&ISysProps::GetOneOSProperty>(
        "quillon_com::orb::sysprops::ISysProps::GetOneOSProperty(std::wstring const&)", OSOEMId_Key,
        "Debian GNU/Linux",
        {
            {"stat", "Debian GNU/Linux"},
            {"open", "Debian GNU/Linux"},
            {"open#1", "Unknown"},
            {"read", "Debian GNU/Linux"},
            {"read#1", "Unknown"},
            {"close", "Debian GNU/Linux"},
            {"uname", "Debian GNU/Linux"},
        }),
});

}  // namespace
