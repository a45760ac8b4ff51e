// tests/torture/properties_rows.cpp: sysprops/records.h and sysprops/collectors.h under torture,
// but for the answers by key.
#include <utility>

#include "sysprops/collectors.h"
#include "sysprops/records.h"
#include "tests/support/torture.h"
#include "tests/torture/machine.h"

namespace {

using namespace quillon_com::orb::sysprops;
using orbtest::Fault;
using orbtest::Machine;
using orbtest::Trial;

constexpr const char* kNoMemory = "no memory";

const std::wstring kText = L"a text that an object cannot hold by itself";

const orbtest::Tortures helpers({
    {"quillon_com::orb::sysprops::sysprops_wide_to_ansi(std::wstring const&)",
     "",
     "a text that an object cannot hold by itself",
     [](Trial& trial) { trial.call([] { return sysprops_wide_to_ansi(kText); }); },
     {{"malloc", ""}, {"operator new", ""}}},
    {"quillon_com::orb::sysprops::sysprops_ansi_to_wide(std::string const&)",
     "",
     "a text that an object cannot hold by itself",
     [](Trial& trial) {
       const std::string text(kText.begin(), kText.end());
       trial.call([&] { return sysprops_ansi_to_wide(text); });
     },
     {{"malloc", ""}, {"operator new", ""}}},
    {"unsigned long long quillon_com::orb::sysprops::get_closest_floor<unsigned long "
     "long>(unsigned long long const&, unsigned long long const&, unsigned long long const&, "
     "unsigned int const&)",
     "", "35",
     [](Trial& trial) {
       trial.call([] { return get_closest_floor<unsigned long long>(37, 100, 0, 20); });
     }},
    {"double quillon_com::orb::sysprops::get_closest_floor<double>(double const&, double const&, "
     "double const&, unsigned int const&)",
     "", "7.000000",
     [](Trial& trial) { trial.call([] { return get_closest_floor<double>(7.3, 10, 0, 20); }); }},
    // The database asks for a larger buffer once.
    {"quillon_com::orb::sysprops::GetPwUid(unsigned int, std::string&)",
     "",
     "1 somebody with a name that needs room",
     [](Trial& trial) {
       const Machine machine;
       std::string name = "before";
       trial.call([&] { return GetPwUid(7, name); });
       trial.answer(trial.answer() + (" " + name));
     },
     {{"sysconf", "1 somebody with a name that needs room"},  // begins with 1024 bytes
      {"sysconf onwards", "0 before"},
      {"malloc", "0 before"},
      {"getpwuid_r", "0 before"},
      {"operator new", "0 before"}}},
    {"quillon_com::orb::sysprops::getComputerName(std::string&)",
     "",
     "1 box",
     [](Trial& trial) {
       const Machine machine;
       std::string name = "before";
       trial.call([&] { return getComputerName(name); });
       trial.answer(trial.answer() + (" " + name));
     },
     {{"uname", "0 before"}}},
    {"quillon_com::orb::sysprops::ISysProps::updateLocalIP(std::wstring const&)",
     "",
     "done, stored",
     [](Trial& trial) {
       std::wstring().swap(ISysProps::m_wstrLastKnownLocalIP);  // without its memory
       trial.call([] { ISysProps::updateLocalIP(kText); });
       const bool stored = ISysProps::GetLastKnownLocalIP() == kText;
       trial.answer(trial.answer() + std::string(stored ? ", stored" : ""));
       std::wstring().swap(ISysProps::m_wstrLastKnownLocalIP);
     },
     {{"operator new", kNoMemory}}},
    {"quillon_com::orb::sysprops::ISysProps::GetLastKnownLocalIP()",
     "",
     "a text that an object cannot hold by itself",
     [](Trial& trial) {
       std::wstring(kText).swap(ISysProps::m_wstrLastKnownLocalIP);
       trial.call(ISysProps::GetLastKnownLocalIP);
       std::wstring().swap(ISysProps::m_wstrLastKnownLocalIP);
     },
     {{"operator new", kNoMemory}}},
    {"quillon_com::orb::sysprops::ConvertGestaltCPUTypeToString(long, char*)", "", "1",
     [](Trial& trial) {
       char name[16];
       trial.call([&] { return ConvertGestaltCPUTypeToString(0x69787878, name); });
     }},
    {"quillon_com::orb::sysprops::ConvertGestaltSysArchToString(long, char*)", "", "1",
     [](Trial& trial) {
       char name[16];
       trial.call([&] { return ConvertGestaltSysArchToString(10, name); });
     }},
    // By the kind of its case; where that cannot be read nothing else of this machine tells.
    {"quillon_com::orb::sysprops::IsPortableComputer(bool&)",
     "",
     "1 1",
     [](Trial& trial) {
       const Machine machine;
       bool portable = true;
       trial.call([&] { return IsPortableComputer(portable); });
       trial.answer(trial.answer() + (" " + std::to_string(portable)));
     },
     {{"open", "0 0"},
      {"read#1", "0 0"},
      {"read#2", "1 1"},  // what was read before it counts
      {"close", "1 1"},
      {"operator new", "0 0"}}},
    {"quillon_com::orb::sysprops::ISysProps::ISysProps()", "", "done",
     [](Trial& trial) { trial.call([] { const ISysProps properties; }); }},
    {"quillon_com::orb::sysprops::ISysProps::~ISysProps()", "", "done",
     [](Trial& trial) {
       const Machine machine;
       auto properties = std::make_unique<ISysProps>();
       properties->GetOneDiskProperty(TotalDiskSpace_Key);
       trial.call([&] { properties.reset(); });
     }},
});

// Tells of a collected record: the result and the texts, or that memory ran out: by an exception,
// by the result 0 or by an empty text, which none of this machine's is. Each text is then the whole
// record's or was never written.
void tell(Trial& trial, const std::vector<std::wstring>& whole,
          const std::vector<std::wstring>& found) {
  bool lacks_memory = trial.answer() == std::string(kNoMemory);
  std::string texts = trial.answer();
  bool wrong = false;
  for (size_t each = 0; each < whole.size(); ++each) {
    texts += (each == 0 ? " " : "|") + orbtest::answer_text(found[each]);
    lacks_memory = lacks_memory || found[each].empty();
    wrong = wrong || (!found[each].empty() && found[each] != whole[each] && found[each] != L"N/A");
  }
  trial.answer(lacks_memory && !wrong ? kNoMemory : texts);
}

const std::vector<std::wstring> kCpu = {L"x86_64 Model Q", L"2400 MHz", L"4", L"1"};

void collect_cpu(Trial& trial) {
  const Machine machine;
  CPUInformation record;
  record.isPortable = L"N/A";
  trial.call([&] { return ISysProps().GetCPUInformation(record); });
  tell(trial, kCpu, {record.cpuType, record.cpuSpeed, record.numOfCPU, record.isPortable});
}

const std::vector<std::wstring> kNetwork = {
    L"box",       L"office.example", L"box.office.example", L"192.0.2.20",
    L"192.0.2.0", L"255.255.255.0",  L"001c420aff01"};

void collect_network(Trial& trial) {
  const Machine machine;
  NetworkInformation record;
  trial.call([&] { return ISysProps().GetNetworkInformation(record); });
  tell(trial, kNetwork,
       {record.computerName, record.domainName, record.ipHostName, record.ipAddress,
        record.subnetAddress, record.subnetMask, record.netAddress});
}

constexpr const char* kNetworkText =
    "1 box|office.example|box.office.example|192.0.2.20|192.0.2.0|255.255.255.0|001c420aff01";
constexpr const char* kIpv6Text =
    "1 box|office.example|box.office.example|fe80:0:0:0:aede:48ff:fe00:1122|fe80:0:0:0:0:0:0:0|"
    "ffff:ffff:ffff:ffff:0:0:0:0|001c420aff01";

void collect_memory(Trial& trial) {
  const Machine machine;
  MemoryInformation record;
  trial.call([&] { return ISysProps().GetMemoryInformation(record); });
  tell(trial, {L"17179869184", L"858993459"}, {record.totalPhysicalMemory, record.freeMemory});
}

void collect_disk(Trial& trial) {
  const Machine machine;
  DiskInformation record;
  trial.call([&] { return ISysProps().GetDiskInformation(record); });
  std::vector<std::wstring> found = {record.totalDiskSpace, record.freeDiskSpace,
                                     record.numFileSystems};
  std::vector<std::wstring> whole = {L"7812.50", L"1953.12", L"2"};
  for (const auto& [mount_point, figures] : record.fileSystems) {
    for (const std::wstring& text : {mount_point, figures.first, figures.second})
      found.push_back(text);
    for (const std::wstring& text :
         {mount_point, std::wstring(L"3906.25"), std::wstring(L"976.56")})
      whole.push_back(text);
  }
  tell(trial, whole, found);
}

void collect_misc(Trial& trial) {
  const Machine machine;
  MiscInformation record;
  trial.call([&] { return ISysProps().GetMiscInformation(record); });
  tell(trial, {L"corp\\jane", L"UTC", L"02/03/2024 09:07:05", L"0411"},
       {record.userName, record.timeZone, record.lastUpdate, record.defaultLangId});
}

const std::vector<std::wstring> kOs = {L"LINUX", L"Linux", L"Debian GNU/Linux", L"12.5",
                                       L"N/A",   L"6.1.0", L"Workstation",      L"1"};

void collect_os(Trial& trial) {
  const Machine machine;
  OSInformation record;
  record.platformId = L"N/A";
  trial.call([&] { return ISysProps().GetOSInformation(record); });
  if (trial.answer() == std::string("0")) trial.answer(kNoMemory);
  tell(trial, kOs,
       {record.platformId, record.osType, record.osOemId, record.osVersion, record.osCsdVersion,
        record.osBuildNum, record.osPlatform, record.osBitMode});
}

constexpr const char* kOsText = "1 LINUX|Linux|Debian GNU/Linux|12.5|N/A|6.1.0|Workstation|1";

// Whatever fails with all behind it leaves no memory for the texts.
const orbtest::Tortures collectors({
    // Files in turn: the processors, the base frequency, the kind of the case; of each a first
    // read,
    // and one that meets its end.
    {"quillon_com::orb::sysprops::ISysProps::GetCPUInformation(quillon_com::orb::sysprops::"
     "CPUInformation&)",
     "",
     "1 x86_64 Model Q|2400 MHz|4|1",
     collect_cpu,
     {{"sysconf", "1 x86_64 Model Q|2400 MHz|N/A|1"},
      {"sysconf onwards", kNoMemory},
      {"uname", "1 Model Q|2400 MHz|4|1"},
      {"uname onwards", kNoMemory},
      {"open#1", "1 x86_64|2400 MHz|4|1"},
      {"open#2", "1 x86_64 Model Q|1200 MHz|4|1"},  // the clock beside the model's name
      {"open#3", "1 x86_64 Model Q|2400 MHz|4|-1"},
      {"open onwards", kNoMemory},
      {"read", "1 x86_64 Model Q|2400 MHz|4|1"},
      {"read#1", "1 x86_64|2400 MHz|4|1"},
      {"read#3", "1 x86_64 Model Q|1200 MHz|4|1"},
      {"read#5", "1 x86_64 Model Q|2400 MHz|4|-1"},
      {"read onwards", kNoMemory},
      {"close", "1 x86_64 Model Q|2400 MHz|4|1"},
      {"close onwards", kNoMemory},
      {"malloc", kNoMemory},
      {"operator new", kNoMemory}}},
    // The first calls are for the names; of the interface's texts and sockets the first is IPv4's.
    {"quillon_com::orb::sysprops::ISysProps::GetNetworkInformation(quillon_com::orb::sysprops::"
     "NetworkInformation&)",
     "",
     kNetworkText,
     collect_network,
     {{"uname",
       "1 N/A|office.example|box.office.example|192.0.2.20|192.0.2.0|255.255.255.0|001c420aff01"},
      {"uname onwards", "0 N/A|N/A|N/A|N/A|N/A|N/A|N/A"},
      {"getdomainname", kNetworkText},  // as without a domain of the kernel
      {"getdomainname onwards", "0 box|N/A|N/A|N/A|N/A|N/A|N/A"},
      {"gethostname", "1 box|N/A|N/A|192.0.2.20|192.0.2.0|255.255.255.0|001c420aff01"},
      {"gethostname onwards", "0 box|N/A|N/A|N/A|N/A|N/A|N/A"},
      {"gethostbyname2_r", "1 box|N/A|box.|192.0.2.20|192.0.2.0|255.255.255.0|001c420aff01"},
      {"gethostbyname2_r onwards", kNoMemory},
      {"getifaddrs", "0 box|office.example|box.office.example|N/A|N/A|N/A|N/A"},
      {"getnameinfo#1", kIpv6Text},
      {"getnameinfo#1 onwards", "0 box|office.example|box.office.example|N/A|N/A|N/A|N/A"},
      {"getnameinfo#2", kIpv6Text},
      {"getnameinfo#2 onwards", "0 box|office.example|box.office.example|N/A|N/A|N/A|N/A"},
      {"getnameinfo", kNetworkText},
      {"getnameinfo onwards", kNoMemory},
      {"socket#1", kIpv6Text},
      {"socket", kNetworkText},
      {"socket onwards", kNoMemory},
      {"ioctl", kNetworkText},
      {"ioctl onwards", kNoMemory},
      {"close", kNetworkText},
      {"close onwards", kNoMemory},
      {"malloc", kNoMemory},
      {"malloc#4", kNetworkText},  // for the last known local address, which there is none
      {"malloc#4 onwards", kNoMemory},
      {"operator new", kNoMemory}}},
    // Without the table the kernel is asked.
    {"quillon_com::orb::sysprops::ISysProps::GetMemoryInformation(quillon_com::orb::sysprops::"
     "MemoryInformation&)",
     "",
     "1 17179869184|858993459",
     collect_memory,
     {{"open", "1 17179869184|858993459"},
      {"open onwards", "0 N/A|N/A"},
      {"read", "1 17179869184|858993459"},
      {"read#1 onwards", "0 N/A|N/A"},
      {"read onwards", kNoMemory},
      {"close", "1 17179869184|858993459"},
      {"close onwards", kNoMemory},
      {"malloc", kNoMemory},
      {"operator new", kNoMemory}}},
    {"quillon_com::orb::sysprops::ISysProps::GetDiskInformation(quillon_com::orb::sysprops::"
     "DiskInformation&)",
     "",
     "1 7812.50|1953.12|2|/|3906.25|976.56|/data|3906.25|976.56",
     collect_disk,
     {{"open", "1 0.00|0.00|0"},
      {"open onwards", kNoMemory},
      {"read#1", "1 0.00|0.00|0"},
      {"read", "1 7812.50|1953.12|2|/|3906.25|976.56|/data|3906.25|976.56"},
      {"read onwards", kNoMemory},
      {"close", "1 7812.50|1953.12|2|/|3906.25|976.56|/data|3906.25|976.56"},
      {"close onwards", kNoMemory},
      {"stat#1", "1 3906.25|976.56|1|/data|3906.25|976.56"},
      {"stat#2", "1 3906.25|976.56|1|/|3906.25|976.56"},
      {"stat onwards", kNoMemory},
      {"statfs#1", "1 3906.25|976.56|1|/data|3906.25|976.56"},
      {"statfs#2", "1 3906.25|976.56|1|/|3906.25|976.56"},
      {"statfs onwards", kNoMemory},
      {"malloc", kNoMemory},
      // A sort does without memory of its own.
      {"operator new", kNoMemory, orbtest::kUntouched, 0,
       "1 7812.50|1953.12|2|/|3906.25|976.56|/data|3906.25|976.56"}}},
    // The users as CollectAllLoggedonUsers finds them.
    {"quillon_com::orb::sysprops::ISysProps::GetMiscInformation(quillon_com::orb::sysprops::"
     "MiscInformation&)",
     "",
     "1 corp\\jane|UTC|02/03/2024 09:07:05|0411",
     collect_misc,
     {{"pthread_mutex_lock", "1 corp\\jane|UTC|02/03/2024 09:07:05|0411"},
      {"pthread_mutex_lock onwards", kNoMemory},
      {"pthread_mutex_unlock", "1 corp\\jane|UTC|02/03/2024 09:07:05|0411"},
      {"pthread_mutex_unlock onwards", kNoMemory},
      {"getutxent#1", "1 NA|UTC|02/03/2024 09:07:05|0411"},
      {"getutxent#2", "1 corp\\jane|UTC|02/03/2024 09:07:05|0411"},
      {"getutxent onwards", kNoMemory},
      {"getpwnam_r", "1 jane|UTC|02/03/2024 09:07:05|0411"},
      {"getpwnam_r onwards", kNoMemory},
      {"getgrgid_r", "1 jane|UTC|02/03/2024 09:07:05|0411"},
      {"getgrgid_r onwards", kNoMemory},
      {"localtime_r", "1 corp\\jane|UTC|N/A|0411"},
      {"localtime_r onwards", kNoMemory},
      {"malloc", kNoMemory},
      {"operator new", kNoMemory},  // below: counted as local, see session_rows.cpp
      {"operator new#1", "1 jane|UTC|02/03/2024 09:07:05|0411"},
      {"operator new#1 onwards", kNoMemory},
      {"operator new#2", "1 jane|UTC|02/03/2024 09:07:05|0411"},
      {"operator new#2 onwards", kNoMemory},
      {"operator new#3", "1 jane|UTC|02/03/2024 09:07:05|0411"},
      {"operator new#3 onwards", kNoMemory},
      {"operator new#4", "1 jane|UTC|02/03/2024 09:07:05|0411"},
      {"operator new#4 onwards", kNoMemory}}},
    // Files in turn: the release file, Debian's version, the kind of the case.
    {"quillon_com::orb::sysprops::ISysProps::GetOSInformation(quillon_com::orb::sysprops::"
     "OSInformation&)",
     "",
     kOsText,
     collect_os,
     {{"stat", kOsText},  // of version lists, which are not there
      {"stat onwards", kNoMemory},
      {"open", kOsText},
      {"open#1", "1 LINUX|Linux|Unknown|6.1.0|0|6.1.0|Workstation|1"},
      {"open#2", "1 LINUX|Linux|Debian GNU/Linux|12|N/A|6.1.0|Workstation|1"},
      {"open onwards", kNoMemory},
      {"read", kOsText},
      {"read#1", "1 LINUX|Linux|Unknown|6.1.0|0|6.1.0|Workstation|1"},
      {"read#3", "1 LINUX|Linux|Debian GNU/Linux|12|N/A|6.1.0|Workstation|1"},
      {"read onwards", kNoMemory},
      {"close", kOsText},
      {"close onwards", kNoMemory},
      {"uname", "1 LINUX|Linux|Debian GNU/Linux|12.5|N/A|N/A|Workstation|-1"},
      {"uname onwards", kNoMemory},
      {"malloc", kNoMemory},
      {"operator new", kNoMemory}}},
});

}  // namespace
