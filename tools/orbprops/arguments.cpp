// tools/orbprops/arguments.cpp: the command line by CLI11, with words of our own.
#include "tools/orbprops/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>

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

bool is_long_option(std::string_view word) { return word.size() > 2 && word.substr(0, 2) == "--"; }

bool is_short_options(std::string_view word) {
  return word.size() > 1 && word[0] == '-' && word[1] != '-';
}

// The words behind the program's name. A "--" before the command, which the parser would take for
// its end too, is moved behind it.
std::vector<std::string> words_of(int argc, const char* const* argv) {
  std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
  for (size_t i = 0; i + 1 < words.size() && (words[i].empty() || words[i][0] == '-'); ++i) {
    if (words[i] != "--") continue;
    std::swap(words[i], words[i + 1]);
    break;
  }
  return words;
}

// Says what is wrong with a word that the parser would accept; empty when nothing is.
std::string refused(const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    if (word == "--") break;
    const size_t sign = word.find('=');
    if (is_long_option(word) && sign != std::string::npos) {
      return "option " + quoted(word.substr(0, sign)) + " takes no value";
    }
    if (word == "++") return "unexpected argument " + quoted(word);
  }
  return {};
}

// The one of `words` of which the parser left `rest`: joined short options without those that it
// knows. Empty when it is none of them.
std::string whole_word(const std::vector<std::string>& words, const std::string& rest) {
  for (const std::string& word : words) {
    const size_t tail = is_short_options(rest) && is_short_options(word) ? rest.size() - 1 : 0;
    const bool joined = tail > 0 && word.size() > tail &&
                        word.compare(word.size() - tail, tail, rest, 1, tail) == 0;
    if (word == rest || joined) return word;
  }
  return {};
}

// Says what is wrong with `argument`, and what it may have been meant to be; an `operand` is no
// option, however it reads.
std::string unexpected(const std::string& argument, bool operand, bool command_given) {
  const bool joined = !operand && is_short_options(argument);
  const bool option = joined || (!operand && is_long_option(argument));
  if (!option && command_given) return "unexpected argument " + quoted(argument);
  std::vector<std::string> names = option ? option_names() : command_names();
  // One letter is near to every other.
  names.erase(std::remove_if(names.begin(), names.end(), is_short_options), names.end());
  const std::string_view near =
      nearest(joined ? "-" + argument : argument, {names.begin(), names.end()});
  const std::string what = (option ? "unknown option " : "unknown command ") + quoted(argument);
  return near.empty() ? what : what + "; did you mean " + std::string(near) + "?";
}

// Says what is wrong with the first word that the parser could not place; empty when it placed all.
std::string misplaced(const CLI::App& app, const std::vector<std::string>& words) {
  const auto marker = std::find(words.begin(), words.end(), "--");
  const std::vector<std::string> before(words.begin(), marker);
  for (const std::string& rest : app.remaining(true)) {
    if (rest == "--") continue;
    const std::string word = whole_word(before, rest);
    const bool operand = marker != words.end() && word.empty();
    return unexpected(word.empty() ? rest : word, operand, !app.get_subcommands().empty());
  }
  return {};
}

}  // namespace

std::optional<Options> parse_arguments(int argc, const char* const* argv, std::string& error) {
  Parser parser;
  parser.app.allow_extras();
  for (CLI::App* command : parser.app.get_subcommands(nullptr)) command->allow_extras();
  const std::vector<std::string> words = words_of(argc, argv);
  error = refused(words);
  if (!error.empty()) return {};
  try {
    parser.app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  } catch (const CLI::ParseError& failure) {
    error = show(std::string_view(failure.what()), Charset::ascii).bytes;
    return {};
  }
  Options& options = parser.options;
  options.command = parser.chosen();
  if (options.command == Command::help || options.command == Command::version) return options;
  error = misplaced(parser.app, words);
  if (!error.empty()) return {};
  if (options.command == Command::get && options.keys.empty()) {
    error = "get needs a key; \"orbprops keys\" lists them";
    return {};
  }
  if (options.loopback && options.command != Command::interfaces) {
    error = "--loopback goes with interfaces alone";
    return {};
  }
  return options;
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
