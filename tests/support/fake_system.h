// tests/support/fake_system.h: a scripted machine; what a test leaves empty cannot be read.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/system.h"

namespace orbtest {

namespace seam = quillon_com::orb::platform;

class FakeSystem : public seam::System {
 public:
  std::optional<std::vector<seam::InterfaceEntry>> entries;
  std::map<std::string, unsigned> indexes;  // by interface name
  std::map<int, bool> families;             // usable unless listed as false
  std::map<std::string, bool> zones;        // accepted zoned addresses
  std::optional<std::string> host;
  std::map<std::string, std::string> officials;  // host name -> official name
  std::optional<std::string> nis_domain;         // the kernel's
  std::optional<std::string> domain;             // getdomainname's
  std::optional<seam::KernelNames> kernel;
  time_t now = 0;
  suseconds_t now_microseconds = 0;
  std::optional<time_t> boot;
  seam::TickCount ticks;
  std::optional<tm> broken_down;  // local
  std::optional<tm> utc;
  std::string zone;
  bool zone_known = true;
  std::vector<seam::SessionEntry> sessions;
  std::map<std::string, std::string> groups;    // account -> primary group
  std::map<std::string, std::string> commands;  // command -> whole output
  std::map<std::string, std::string> files;     // path -> bytes
  std::map<std::string, uint64_t> sizes;        // path -> size, where it differs from the bytes
  // bytes -> key -> text; bytes not listed are no property list
  std::map<std::string, std::map<std::string, std::string>> lists;
  std::optional<seam::ReleaseTexts> release;
  std::optional<int> processors;
  std::optional<seam::ProcessorTexts> processor;
  std::map<uint32_t, int32_t> gestalts;  // selector -> response
  std::optional<std::string> model;
  seam::Chassis chassis_fact = seam::Chassis::not_stated;
  std::optional<uint64_t> memory;
  std::optional<std::pair<uint64_t, uint64_t>> free_pages;  // count, page size
  std::vector<seam::Volume> mounted;

  // What was asked, in order: host names looked up, commands run.
  mutable std::vector<std::string> look_ups;
  mutable std::vector<std::string> commands_run;
  mutable size_t entry_walks = 0;  // calls of interface_entries
  mutable size_t session_cursor = 0;
  mutable size_t rewinds = 0;

  bool interface_entries(std::vector<seam::InterfaceEntry>* out) const override {
    ++entry_walks;
    return give(entries, out);
  }
  unsigned interface_index(const std::string& name) const override {
    auto found = indexes.find(name);
    return found == indexes.end() ? 0 : found->second;
  }
  bool family_usable(int family) const override {
    auto found = families.find(family);
    return found == families.end() || found->second;
  }
  bool zone_accepted(const std::string& zoned_address) const override {
    auto found = zones.find(zoned_address);
    return found != zones.end() && found->second;
  }
  bool host_name(std::string* out) const override { return give(host, out); }
  bool official_host_name(const std::string& name, std::string* out) const override {
    look_ups.push_back(name);
    return give(officials, name, out);
  }
  bool kernel_domain(std::string* out) const override { return give(nis_domain, out); }
  bool domain_name(std::string* out) const override { return give(domain, out); }
  bool kernel_names(seam::KernelNames* out) const override { return give(kernel, out); }
  time_t wall_clock() const override { return now; }
  timeval wall_time() const override { return {now, now_microseconds}; }
  bool boot_time(time_t* out) const override { return give(boot, out); }
  seam::TickCount tick_count() const override { return ticks; }
  bool local_time(time_t, tm* out) const override { return give(broken_down, out); }
  bool utc_time(time_t, tm* out) const override { return give(utc, out); }
  bool zone_name(std::string* out) const override {
    if (zone_known) *out = zone;
    return zone_known;
  }
  bool next_session_entry(seam::SessionEntry* out) const override {
    if (session_cursor >= sessions.size()) return false;
    *out = sessions[session_cursor++];
    return true;
  }
  void rewind_sessions() const override {
    session_cursor = 0;
    ++rewinds;
  }
  bool primary_group(const std::string& user, std::string* out) const override {
    return give(groups, user, out);
  }
  bool command_output(const std::string& command, size_t limit, std::string* out) const override {
    commands_run.push_back(command);
    std::string whole;
    if (!give(commands, command, &whole)) return false;
    *out = whole.substr(0, limit);
    return true;
  }
  bool file_size(const std::string& path, uint64_t* out) const override {
    if (give(sizes, path, out)) return true;
    auto found = files.find(path);
    if (found == files.end()) return false;
    *out = found->second.size();
    return true;
  }
  bool file_bytes(const std::string& path, size_t limit, std::string* out) const override {
    std::string whole;
    if (!give(files, path, &whole)) return false;
    *out = whole.substr(0, limit);
    return true;
  }
  bool property_list_texts(const std::string& bytes, const std::vector<std::string>& keys,
                           std::vector<std::optional<std::string>>* out) const override {
    auto list = lists.find(bytes);
    if (list == lists.end()) return false;
    out->clear();
    for (const std::string& key : keys) {
      auto found = list->second.find(key);
      out->push_back(found == list->second.end() ? std::nullopt
                                                 : std::optional<std::string>(found->second));
    }
    return true;
  }
  bool release_texts(seam::ReleaseTexts* out) const override { return give(release, out); }
  bool processor_count(int* out) const override { return give(processors, out); }
  bool processor_texts(seam::ProcessorTexts* out) const override { return give(processor, out); }
  bool gestalt(uint32_t selector, int32_t* out) const override {
    return give(gestalts, selector, out);
  }
  bool hardware_model(std::string* out) const override { return give(model, out); }
  seam::Chassis chassis() const override { return chassis_fact; }
  bool total_memory(uint64_t* out) const override { return give(memory, out); }
  bool free_memory(uint64_t* pages, uint64_t* page_size) const override {
    if (!free_pages) return false;
    *pages = free_pages->first;
    *page_size = free_pages->second;
    return true;
  }
  std::vector<seam::Volume> volumes() const override { return mounted; }

 private:
  template <class T>
  static bool give(const std::optional<T>& fact, T* out) {
    if (fact) *out = *fact;
    return fact.has_value();
  }
  template <class K, class V>
  static bool give(const std::map<K, V>& facts, const K& key, V* out) {
    auto found = facts.find(key);
    if (found == facts.end()) return false;
    *out = found->second;
    return true;
  }
};

}  // namespace orbtest
