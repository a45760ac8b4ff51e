// tests/contract/neighbour.h: what another library saw of ours while it was being loaded.
#pragma once

#include <cstddef>
#include <map>
#include <string>

struct SeenAtLoad {
  std::wstring platform_key, portable_key, file_systems_key, default_value, total_space;
  std::string release_file, server_words;
  std::wstring last_known_ip;
  std::wstring serial_number, unclaimed;
  std::map<std::wstring, std::wstring> report;
  std::wstring policy_section, policy_key, loose_key, product_key;
  std::string task_root, task_section, task_key, schedule_key;
};

// What its static initialiser took down.
__attribute__((visibility("default"))) const SeenAtLoad& seen_at_load();
