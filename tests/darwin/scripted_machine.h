// tests/darwin/scripted_machine.h: a whole Mac: the scripted system, and files, commands and names
// of its own.
#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/darwin_system.h"

namespace orbtest {

// What POSIX answers for the machine that runs the test is answered from the members below; all
// other facts are the scripted system's. What is left empty fails.
class ScriptedMachine : public quillon_com::orb::platform::DarwinSystem {
 public:
  std::map<std::string, std::string> files;     // path -> bytes
  std::map<std::string, std::string> commands;  // command -> whole output
  std::map<std::string, std::string> groups;    // account -> primary group
  std::optional<std::string> host;
  std::optional<std::string> domain;
  std::string node;
  std::optional<std::string> machine;  // absent when the kernel's names cannot be read
  time_t now = 0;
  std::optional<tm> broken_down;
  std::string zone;

  mutable std::vector<std::string> commands_run;

  bool host_name(std::string* out) const override { return give(host, out); }
  bool domain_name(std::string* out) const override { return give(domain, out); }
  bool kernel_names(quillon_com::orb::platform::KernelNames* out) const override {
    if (!machine) return false;
    out->node = node;
    out->machine = *machine;
    return true;
  }
  time_t wall_clock() const override { return now; }
  bool local_time(time_t, tm* out) const override { return give(broken_down, out); }
  bool zone_name(std::string* out) const override {
    *out = zone;
    return true;
  }
  bool primary_group(const std::string& user, std::string* out) const override {
    return find(groups, user, out);
  }
  bool command_output(const std::string& command, size_t limit, std::string* out) const override {
    commands_run.push_back(command);
    if (!find(commands, command, out)) return false;
    out->resize(std::min(out->size(), limit));
    return true;
  }
  bool file_size(const std::string& path, uint64_t* out) const override {
    std::string bytes;
    if (!find(files, path, &bytes)) return false;
    *out = bytes.size();
    return true;
  }
  bool file_bytes(const std::string& path, size_t limit, std::string* out) const override {
    if (!find(files, path, out)) return false;
    out->resize(std::min(out->size(), limit));
    return true;
  }

 private:
  template <class T>
  static bool give(const std::optional<T>& fact, T* out) {
    if (fact) *out = *fact;
    return fact.has_value();
  }
  static bool find(const std::map<std::string, std::string>& facts, const std::string& key,
                   std::string* out) {
    const auto found = facts.find(key);
    if (found == facts.end()) return false;
    *out = found->second;
    return true;
  }
};

}  // namespace orbtest
