// tools/orbprops/arguments.cpp: the command line by CLI11, with words of our own.
#include "tools/orbprops/arguments.h"

#include <CLI/CLI.hpp>

#include "tools/orbprops/nearest.h"
#include "tools/orbprops/text.h"

namespace orbprops {

// clang-format off
const char kHelp[] =
    "Usage: orbprops [OPTION]... [COMMAND]\n"
    "Shows the system properties of this machine.\n"
    "\n"
    "Commands:\n"
    "  report         all properties and the file systems (the default)\n"
    "  get KEY...     the values of properties, behind their keys when several\n"
    "  keys           the keys that get answers\n"
    "  filesystems    the local file systems and how full they are\n"
    "  interfaces     the network interfaces and their addresses\n"
    "  users          the logged-on users, network and local\n"
    "\n"
    "Options, before or behind the command:\n"
    "  -j, --json     print a JSON document\n"
    "  -t, --timing   tell how long each collector took\n"
    "  -s, --strict   exit with 1 when a property could not be collected\n"
    "  -l, --loopback with interfaces: loopback too\n"
    "  -v, --verbose  print the user collector's diagnostic lines on standard error\n"
    "  -V, --version  print the version\n"
    "  -h, --help     print this text\n"
    "\n"
    "Exit status: 0 all answered, 1 a key unknown or not answered, or the output not\n"
    "written, 2 usage. More: man orbprops\n";
// clang-format on

namespace {

// The parser and what it writes to.
struct Parser {
  CLI::App app;
  Options options;
  bool help = false;
  bool version = false;
  CLI::App* report = nullptr;
  CLI::App* get = nullptr;
  CLI::App* keys = nullptr;
  CLI::App* filesystems = nullptr;
  CLI::App* interfaces = nullptr;
  CLI::App* users = nullptr;

  Parser() {
    app.set_help_flag();
    app.add_flag("-j,--json", options.json);
    app.add_flag("-t,--timing", options.timing);
    app.add_flag("-s,--strict", options.strict);
    app.add_flag("-l,--loopback", options.loopback);
    app.add_flag("-v,--verbose", options.verbose);
    app.add_flag("-V,--version", version);
    app.add_flag("-h,--help", help);
    app.require_subcommand(0, 1);
    report = command("report");
    get = command("get");
    get->add_option("KEY", options.keys);
    keys = command("keys");
    filesystems = command("filesystems");
    interfaces = command("interfaces");
    users = command("users");
  }

  CLI::App* command(const char* name) {
    CLI::App* added = app.add_subcommand(name);
    added->set_help_flag();
    added->fallthrough();
    return added;
  }

  Command chosen() const {
    if (help) return Command::help;
    if (version) return Command::version;
    if (get->parsed()) return Command::get;
    if (keys->parsed()) return Command::keys;
    if (filesystems->parsed()) return Command::filesystems;
    if (interfaces->parsed()) return Command::interfaces;
    if (users->parsed()) return Command::users;
    return Command::report;
  }
};

std::string quoted(const std::string& argument) {
  return "\"" + show(std::string_view(argument), Charset::ascii).bytes + "\"";
}

// Says what is wrong with `argument`, and what it may have been meant to be.
std::string unexpected(const std::string& argument, bool command_given) {
  const bool option = argument.size() > 1 && argument[0] == '-';
  if (!option && command_given) return "unexpected argument " + quoted(argument);
  const std::vector<std::string> names = option ? option_names() : command_names();
  const std::string_view near = nearest(argument, {names.begin(), names.end()});
  const std::string what = (option ? "unknown option " : "unknown command ") + quoted(argument);
  return near.empty() ? what : what + "; did you mean " + std::string(near) + "?";
}

}  // namespace

std::optional<Options> parse_arguments(int argc, const char* const* argv, std::string& error) {
  Parser parser;
  parser.app.allow_extras();
  for (CLI::App* command : parser.app.get_subcommands(nullptr)) command->allow_extras();
  try {
    parser.app.parse(argc, argv);
  } catch (const CLI::ParseError& failure) {
    error = show(std::string_view(failure.what()), Charset::ascii).bytes;
    return {};
  }
  Options& options = parser.options;
  options.command = parser.chosen();
  if (options.command == Command::help || options.command == Command::version) return options;
  const std::vector<std::string> extras = parser.app.remaining(true);
  if (!extras.empty()) {
    error = unexpected(extras.front(), !parser.app.get_subcommands().empty());
  } else if (options.command == Command::get && options.keys.empty()) {
    error = "get needs a key; \"orbprops keys\" lists them";
  } else if (options.loopback && options.command != Command::interfaces) {
    error = "--loopback goes with interfaces alone";
  } else {
    return options;
  }
  return {};
}

std::vector<std::string> command_names() {
  std::vector<std::string> names;
  Parser parser;
  for (const CLI::App* command : parser.app.get_subcommands(nullptr)) {
    names.push_back(command->get_name());
  }
  return names;
}

std::vector<std::string> option_names() {
  std::vector<std::string> names;
  Parser parser;
  for (const CLI::Option* option : parser.app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    for (const std::string& name : option->get_snames()) names.push_back("-" + name);
  }
  return names;
}

}  // namespace orbprops
