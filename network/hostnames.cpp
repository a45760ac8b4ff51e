// network/hostnames.cpp: domain and full host name by the machine's own settings and its resolver.
#include "network/hostnames.h"

#include <cstring>

#include "network/networkutil.h"
#include "platform/system.h"
#include "portability/outofmemory.h"
#include "sysprops/records.h"

namespace quillon_com::orb::network {
namespace {

constexpr size_t kNameSize = 2048;  // room for a name of the system, terminator included

std::string cut(const std::string& name) {
  return std::string(name.c_str(), strnlen(name.c_str(), kNameSize - 1));
}

}  // namespace

HostNames::HostNames(const platform::System& system) : system_(system) {}

const std::optional<std::string>& HostNames::host_name() {
  if (std::string name; !host_asked_ && system_.host_name(&name)) host_ = cut(name);
  host_asked_ = true;
  return host_;
}

const std::optional<std::string>& HostNames::official_name() {
  std::string name;
  if (!official_asked_ && system_.official_host_name(*host_, &name)) official_ = name;
  official_asked_ = true;
  return official_;
}

std::wstring HostNames::domain_name() {
  std::string domain;
  if (system_.kernel_domain(&domain)) domain = cut(domain);
  if (domain.empty()) {
    if (!host_name() || !official_name()) return sysprops::DefaultProp_Val;
    const size_t dot = official_name()->find('.');
    if (dot == std::string::npos) return sysprops::DefaultProp_Val;
    domain = official_name()->substr(dot + 1);
  }
  return sysprops::sysprops_ansi_to_wide(domain);
}

std::wstring HostNames::fqdn() {
  if (!host_name()) return sysprops::DefaultProp_Val;
  if (official_name()) return sysprops::sysprops_ansi_to_wide(*official_name());
  std::string name = *host_name();
  if (std::string domain; system_.domain_name(&domain)) name += "." + cut(domain);
  return sysprops::sysprops_ansi_to_wide(name);
}

}  // namespace quillon_com::orb::network

namespace {

// What `choose` picks of the machine's names; the default when memory runs out.
template <class Choose>
std::wstring of_this_machine(Choose choose) {
  return quillon_com::orb::portability::unless_out_of_memory(
      quillon_com::orb::sysprops::DefaultProp_Val, [&] {
        quillon_com::orb::network::HostNames names(quillon_com::orb::platform::host());
        return choose(names);
      });
}

}  // namespace

std::wstring getDomainName() {
  return of_this_machine([](auto& names) { return names.domain_name(); });
}

std::wstring getFqdnAddress() {
  return of_this_machine([](auto& names) { return names.fqdn(); });
}
