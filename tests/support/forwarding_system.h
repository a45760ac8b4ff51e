// tests/support/forwarding_system.h: another machine with every fact passed on; tests override
// single ones.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/system.h"

namespace orbtest {

class ForwardingSystem : public quillon_com::orb::platform::System {
 public:
  // `base` outlives this object.
  explicit ForwardingSystem(const System& base) : base_(base) {}

  using InterfaceEntries = std::vector<quillon_com::orb::platform::InterfaceEntry>;
  using Texts = std::vector<std::optional<std::string>>;

  bool interface_entries(InterfaceEntries* out) const override {
    return base_.interface_entries(out);
  }
  unsigned interface_index(const std::string& name) const override {
    return base_.interface_index(name);
  }
  bool family_usable(int family) const override { return base_.family_usable(family); }
  bool zone_accepted(const std::string& address) const override {
    return base_.zone_accepted(address);
  }
  bool host_name(std::string* out) const override { return base_.host_name(out); }
  bool official_host_name(const std::string& name, std::string* out) const override {
    return base_.official_host_name(name, out);
  }
  bool kernel_domain(std::string* out) const override { return base_.kernel_domain(out); }
  bool domain_name(std::string* out) const override { return base_.domain_name(out); }
  bool kernel_names(quillon_com::orb::platform::KernelNames* out) const override {
    return base_.kernel_names(out);
  }
  time_t wall_clock() const override { return base_.wall_clock(); }
  timeval wall_time() const override { return base_.wall_time(); }
  bool boot_time(time_t* out) const override { return base_.boot_time(out); }
  quillon_com::orb::platform::TickCount tick_count() const override { return base_.tick_count(); }
  bool local_time(time_t seconds, tm* out) const override { return base_.local_time(seconds, out); }
  bool utc_time(time_t seconds, tm* out) const override { return base_.utc_time(seconds, out); }
  bool zone_name(std::string* out) const override { return base_.zone_name(out); }
  bool next_session_entry(quillon_com::orb::platform::SessionEntry* out) const override {
    return base_.next_session_entry(out);
  }
  void rewind_sessions() const override { base_.rewind_sessions(); }
  bool primary_group(const std::string& user, std::string* out) const override {
    return base_.primary_group(user, out);
  }
  bool command_output(const std::string& command, size_t limit, std::string* out) const override {
    return base_.command_output(command, limit, out);
  }
  bool file_size(const std::string& path, uint64_t* out) const override {
    return base_.file_size(path, out);
  }
  bool file_bytes(const std::string& path, size_t limit, std::string* out) const override {
    return base_.file_bytes(path, limit, out);
  }
  bool property_list_texts(const std::string& bytes, const std::vector<std::string>& keys,
                           Texts* out) const override {
    return base_.property_list_texts(bytes, keys, out);
  }
  bool release_texts(quillon_com::orb::platform::ReleaseTexts* out) const override {
    return base_.release_texts(out);
  }
  bool processor_count(int* out) const override { return base_.processor_count(out); }
  bool processor_texts(quillon_com::orb::platform::ProcessorTexts* out) const override {
    return base_.processor_texts(out);
  }
  bool gestalt(uint32_t selector, int32_t* out) const override {
    return base_.gestalt(selector, out);
  }
  bool hardware_model(std::string* out) const override { return base_.hardware_model(out); }
  quillon_com::orb::platform::Chassis chassis() const override { return base_.chassis(); }
  bool total_memory(uint64_t* out) const override { return base_.total_memory(out); }
  bool free_memory(uint64_t* pages, uint64_t* page_size) const override {
    return base_.free_memory(pages, page_size);
  }
  std::vector<quillon_com::orb::platform::Volume> volumes() const override {
    return base_.volumes();
  }

 private:
  const System& base_;
};

}  // namespace orbtest
