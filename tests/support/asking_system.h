// tests/support/asking_system.h: another machine, noting by name which facts are asked for.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "tests/support/forwarding_system.h"

namespace orbtest {

class AskingSystem : public ForwardingSystem {
 public:
  using ForwardingSystem::ForwardingSystem;

  mutable std::set<std::string> asked;  // names of System's functions

  bool interface_entries(InterfaceEntries* out) const override {
    return note("interface_entries"), ForwardingSystem::interface_entries(out);
  }
  unsigned interface_index(const std::string& name) const override {
    return note("interface_index"), ForwardingSystem::interface_index(name);
  }
  bool family_usable(int family) const override {
    return note("family_usable"), ForwardingSystem::family_usable(family);
  }
  bool zone_accepted(const std::string& address) const override {
    return note("zone_accepted"), ForwardingSystem::zone_accepted(address);
  }
  bool host_name(std::string* out) const override {
    return note("host_name"), ForwardingSystem::host_name(out);
  }
  bool official_host_name(const std::string& name, std::string* out) const override {
    return note("official_host_name"), ForwardingSystem::official_host_name(name, out);
  }
  bool kernel_domain(std::string* out) const override {
    return note("kernel_domain"), ForwardingSystem::kernel_domain(out);
  }
  bool domain_name(std::string* out) const override {
    return note("domain_name"), ForwardingSystem::domain_name(out);
  }
  bool kernel_names(quillon_com::orb::platform::KernelNames* out) const override {
    return note("kernel_names"), ForwardingSystem::kernel_names(out);
  }
  time_t wall_clock() const override { return note("wall_clock"), ForwardingSystem::wall_clock(); }
  timeval wall_time() const override { return note("wall_time"), ForwardingSystem::wall_time(); }
  bool boot_time(time_t* out) const override {
    return note("boot_time"), ForwardingSystem::boot_time(out);
  }
  quillon_com::orb::platform::TickCount tick_count() const override {
    return note("tick_count"), ForwardingSystem::tick_count();
  }
  bool local_time(time_t seconds, tm* out) const override {
    return note("local_time"), ForwardingSystem::local_time(seconds, out);
  }
  bool utc_time(time_t seconds, tm* out) const override {
    return note("utc_time"), ForwardingSystem::utc_time(seconds, out);
  }
  bool zone_name(std::string* out) const override {
    return note("zone_name"), ForwardingSystem::zone_name(out);
  }
  bool next_session_entry(quillon_com::orb::platform::SessionEntry* out) const override {
    return note("next_session_entry"), ForwardingSystem::next_session_entry(out);
  }
  void rewind_sessions() const override {
    note("rewind_sessions");
    ForwardingSystem::rewind_sessions();
  }
  bool primary_group(const std::string& user, std::string* out) const override {
    return note("primary_group"), ForwardingSystem::primary_group(user, out);
  }
  bool command_output(const std::string& command, size_t limit, std::string* out) const override {
    return note("command_output"), ForwardingSystem::command_output(command, limit, out);
  }
  bool file_size(const std::string& path, uint64_t* out) const override {
    return note("file_size"), ForwardingSystem::file_size(path, out);
  }
  bool file_bytes(const std::string& path, size_t limit, std::string* out) const override {
    return note("file_bytes"), ForwardingSystem::file_bytes(path, limit, out);
  }
  bool property_list_texts(const std::string& bytes, const std::vector<std::string>& keys,
                           Texts* out) const override {
    return note("property_list_texts"), ForwardingSystem::property_list_texts(bytes, keys, out);
  }
  bool release_texts(quillon_com::orb::platform::ReleaseTexts* out) const override {
    return note("release_texts"), ForwardingSystem::release_texts(out);
  }
  bool processor_count(int* out) const override {
    return note("processor_count"), ForwardingSystem::processor_count(out);
  }
  bool processor_texts(quillon_com::orb::platform::ProcessorTexts* out) const override {
    return note("processor_texts"), ForwardingSystem::processor_texts(out);
  }
  bool gestalt(uint32_t selector, int32_t* out) const override {
    return note("gestalt"), ForwardingSystem::gestalt(selector, out);
  }
  bool hardware_model(std::string* out) const override {
    return note("hardware_model"), ForwardingSystem::hardware_model(out);
  }
  quillon_com::orb::platform::Chassis chassis() const override {
    return note("chassis"), ForwardingSystem::chassis();
  }
  bool total_memory(uint64_t* out) const override {
    return note("total_memory"), ForwardingSystem::total_memory(out);
  }
  bool free_memory(uint64_t* pages, uint64_t* page_size) const override {
    return note("free_memory"), ForwardingSystem::free_memory(pages, page_size);
  }
  std::vector<quillon_com::orb::platform::Volume> volumes() const override {
    return note("volumes"), ForwardingSystem::volumes();
  }

 private:
  void note(const char* fact) const { asked.insert(fact); }
};

}  // namespace orbtest
