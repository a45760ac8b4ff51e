// tests/torture/answers_rows.cpp: sysprops/catalogue.h under torture.
#include <utility>

#include "sysprops/catalogue.h"
#include "tests/support/torture.h"
#include "tests/torture/answers.h"
#include "tests/torture/machine.h"

namespace {

using orbtest::and_memory;
using orbtest::and_onwards;
using orbtest::Fault;
using orbtest::kNone;
using orbtest::Machine;
using orbtest::Torture;
using orbtest::Trial;

// A function without arguments.
Torture wrapper(const char* function, const char* answer, std::wstring (*call)(),
                std::vector<Fault> faults) {
  return {function, "", answer,
          [call](Trial& trial) {
            const Machine machine;
            trial.call(call);
            orbtest::note_none(trial);
          },
          std::move(faults)};
}

std::vector<Fault> reading_processor(const char* answer, const char* without_text,
                                     const char* without_frequency, const char* without_names) {
  return and_memory(answer, and_onwards({{"open#1", without_text},
                                         {"open#2", without_frequency},
                                         {"read#1", without_text},
                                         {"read#2", answer},
                                         {"read#3", without_frequency},
                                         {"read#4", answer},
                                         {"close", answer},
                                         {"uname", without_names}}));
}

const orbtest::Tortures processor({
    wrapper("voxcomn_get_cpu_type()", "x86_64 Model Q", voxcomn_get_cpu_type,
            reading_processor("x86_64 Model Q", "x86_64", "x86_64 Model Q", "Model Q")),
    wrapper("voxcomn_get_cpu_speed()", "2400 MHz", voxcomn_get_cpu_speed,
            reading_processor("2400 MHz", "2400 MHz", "1200 MHz", "2400 MHz")),
    wrapper("voxcomn_get_number_of_processors()", "4", voxcomn_get_number_of_processors,
            {{"sysconf", kNone}, {"malloc", kNone}}),
    wrapper("voxcomn_get_cpu_serial_number()", kNone, voxcomn_get_cpu_serial_number, {}),
});

std::vector<Fault> reading_addresses(const char* answer, const char* ipv6) {
  return and_memory(answer, {{"getifaddrs", kNone},
                             {"getnameinfo", answer},
                             {"getnameinfo#1", ipv6},
                             {"getnameinfo#2", ipv6},
                             {"getnameinfo onwards", kNone},
                             {"socket", answer},
                             {"socket#1", ipv6},
                             {"socket onwards", kNone},
                             {"ioctl", answer},
                             {"ioctl onwards", kNone},
                             {"close", answer},
                             {"close onwards", kNone}});
}

const orbtest::Tortures network({
    wrapper("voxcomn_get_domain_name()", "office.example", voxcomn_get_domain_name,
            and_memory("office.example", {{"getdomainname", "office.example"},
                                          {"getdomainname onwards", kNone},
                                          {"gethostname", kNone},
                                          {"gethostbyname2_r", kNone}})),
    wrapper("voxcomn_get_computer_name()", "box", voxcomn_get_computer_name,
            {{"uname", kNone}, {"malloc", kNone}}),
    wrapper("voxcomn_get_ip_address()", "192.0.2.20", voxcomn_get_ip_address,
            reading_addresses("192.0.2.20", "fe80:0:0:0:aede:48ff:fe00:1122")),
    wrapper("voxcomn_get_subnet_address()", "192.0.2.0", voxcomn_get_subnet_address,
            reading_addresses("192.0.2.0", "fe80:0:0:0:0:0:0:0")),
    wrapper("voxcomn_get_subnet_mask()", "255.255.255.0", voxcomn_get_subnet_mask,
            reading_addresses("255.255.255.0", "ffff:ffff:ffff:ffff:0:0:0:0")),
    wrapper("voxcomn_get_mac_address()", "001c420aff01", voxcomn_get_mac_address,
            reading_addresses("001c420aff01", "001c420aff01")),
    wrapper("voxcomn_get_ipx_address()", "N/A", voxcomn_get_ipx_address, {}),
    wrapper("voxcomn_get_fqdn_address()", "box.office.example", voxcomn_get_fqdn_address,
            and_memory("box.office.example", {{"gethostname", kNone},
                                              {"gethostbyname2_r", "box."},
                                              {"gethostbyname2_r onwards", kNone}})),
});

// Without the table the kernel is asked; not when all behind fails.
std::vector<Fault> reading_memory(const char* answer) {
  return and_memory(answer, and_onwards({{"open", answer}, {"read", answer}, {"close", answer}}));
}

std::vector<Fault> reading_disks(const char* answer, const char* of_one) {
  return and_memory(answer, and_onwards({{"open", "0.00"},
                                         {"read#1", "0.00"},
                                         {"read#2", answer},
                                         {"close", answer},
                                         {"stat", of_one},
                                         {"statfs", of_one}}));
}

const orbtest::Tortures storage({
    wrapper("voxcomn_get_total_memory()", "17179869184", voxcomn_get_total_memory,
            reading_memory("17179869184")),
    wrapper("voxcomn_get_free_memory()", "858993459", voxcomn_get_free_memory,
            reading_memory("858993459")),
    wrapper("voxcomn_get_total_disk_space()", "7812.50", voxcomn_get_total_disk_space,
            reading_disks("7812.50", "3906.25")),
    wrapper("voxcomn_get_free_disk_space()", "1953.12", voxcomn_get_free_disk_space,
            reading_disks("1953.12", "976.56")),
    // Nothing is asked for this one.
    {"voxcomn_get_number_of_file_systems()", "", "",
     [](Trial& trial) { trial.call(voxcomn_get_number_of_file_systems); }},
    {"voxcomn_get_file_system_name(int)", "", "N/A",
     [](Trial& trial) { trial.call([] { return voxcomn_get_file_system_name(0); }); }},
    {"voxcomn_get_file_system_free_space_by_name(std::wstring const&)", "", "N/A",
     [](Trial& trial) {
       const std::wstring name = L"/";
       trial.call([&] { return voxcomn_get_file_system_free_space_by_name(name); });
     }},
    {"voxcomn_get_file_system_total_space_by_name(std::wstring const&)", "", "N/A",
     [](Trial& trial) {
       const std::wstring name = L"/";
       trial.call([&] { return voxcomn_get_file_system_total_space_by_name(name); });
     }},
});

// What the files and the kernel's names are for.
std::vector<Fault> identifying(const char* answer, const char* without_release_file,
                               const char* without_version_file, const char* without_names) {
  return and_memory(answer, and_onwards({{"stat", answer},
                                         {"open", answer},
                                         {"open#1", without_release_file},
                                         {"open#2", without_version_file},
                                         {"read", answer},
                                         {"read#1", without_release_file},
                                         {"read#3", without_version_file},
                                         {"close", answer},
                                         {"uname", without_names}}));
}

const orbtest::Tortures system_texts({
    wrapper("voxcomn_get_os_type()", "Linux", voxcomn_get_os_type,
            identifying("Linux", "Linux", "Linux", "Linux")),
    wrapper("voxcomn_get_os_platform()", "Workstation", voxcomn_get_os_platform,
            identifying("Workstation", "Workstation", "Workstation", "Workstation")),
    wrapper("voxcomn_get_os_version()", "12.5", voxcomn_get_os_version,
            identifying("12.5", "6.1.0", "12", "12.5")),
    wrapper("voxcomn_get_os_service_pack()", "N/A", voxcomn_get_os_service_pack,
            identifying("N/A", "0", "N/A", "N/A")),
    wrapper("voxcomn_get_os_build_number()", "6.1.0", voxcomn_get_os_build_number,
            identifying("6.1.0", "6.1.0", "6.1.0", "N/A")),
    wrapper("voxcomn_get_os_oem_id()", "Debian GNU/Linux", voxcomn_get_os_oem_id,
            identifying("Debian GNU/Linux", "Unknown", "Debian GNU/Linux", "Debian GNU/Linux")),
    wrapper("voxcomn_get_os_platform_id()", "LINUX", voxcomn_get_os_platform_id,
            identifying("LINUX", "LINUX", "LINUX", "LINUX")),
});

// Memory that runs out once on the way to the domain makes Jane local: see session_rows.cpp.
std::vector<Fault> finding_users() {
  return and_memory("jane", and_onwards({{"pthread_mutex_lock", "corp\\jane"},
                                         {"pthread_mutex_unlock", "corp\\jane"},
                                         {"getutxent#1", "NA"},
                                         {"getutxent#2", "corp\\jane"},
                                         {"getpwnam_r", "jane"},
                                         {"getgrgid_r", "jane"}}));
}

// Both texts are collected together.
std::vector<Fault> telling_time(const char* answer, const char* without_local_time) {
  return and_memory(answer, and_onwards({{"pthread_mutex_lock", answer},
                                         {"pthread_mutex_unlock", answer},
                                         {"localtime_r", without_local_time}}));
}

const orbtest::Tortures misc({
    wrapper("voxcomn_get_user_name()", "corp\\jane", voxcomn_get_user_name, finding_users()),
    wrapper("voxcomn_get_time_zone()", "UTC", voxcomn_get_time_zone, telling_time("UTC", "UTC")),
    wrapper("voxcomn_get_language()", "0411", voxcomn_get_language, and_memory("0411", {})),
    wrapper("voxcomn_get_last_update_time()", "02/03/2024 09:07:05", voxcomn_get_last_update_time,
            telling_time("02/03/2024 09:07:05", kNone)),
});

}  // namespace
