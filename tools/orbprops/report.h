// tools/orbprops/report.h: what the commands show, as plain values.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orbprops {

struct Property {
  std::string_view key;  // lives as long as the program
  std::wstring value;
};

struct FileSystem {
  std::wstring mount_point;
  std::wstring total_mb;  // "3906.25"
  std::wstring free_mb;
};

// One address of an interface; texts as the library has them.
struct Address {
  std::string address;
  std::string mask;
  std::string subnet;
};

struct Interface {
  unsigned index = 0;
  std::string name;              // any bytes
  std::string hardware_address;  // twelve hexadecimal digits
  std::vector<Address> addresses;
};

// Logged-on users, any bytes, in byte order.
struct Users {
  std::vector<std::string> network;  // domain\user
  std::vector<std::string> local;
};

// How long a collector took.
struct Timing {
  std::string name;
  double milliseconds = 0;
};

// The answer to one command: the parts that it asked for.
struct Answer {
  std::optional<std::vector<Property>> properties;
  std::optional<std::vector<FileSystem>> file_systems;
  std::optional<std::vector<Interface>> interfaces;
  std::optional<Users> users;
  std::optional<std::vector<std::string_view>> keys;
  std::vector<Timing> timings;  // in the order of collection
};

}  // namespace orbprops
