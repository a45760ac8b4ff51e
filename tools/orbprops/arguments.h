// tools/orbprops/arguments.h: the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orbprops {

enum class Command { report, get, keys, filesystems, interfaces, users, help, version };

struct Options {
  Command command = Command::report;
  std::vector<std::string> keys;  // of get; one at least
  bool json = false;
  bool timing = false;
  bool strict = false;
  bool verbose = false;
  bool loopback = false;  // of interfaces
};

// The command line's meaning. On a usage error none, and `error` holds one sentence without its
// full stop; bytes of the command line in it are made safe for a terminal.
std::optional<Options> parse_arguments(int argc, const char* const* argv, std::string& error);

// What --help prints: one screen of 80 columns and 24 lines.
extern const char kHelp[];

// Names of all commands, and all options with their dashes.
std::vector<std::string> command_names();
std::vector<std::string> option_names();

}  // namespace orbprops
