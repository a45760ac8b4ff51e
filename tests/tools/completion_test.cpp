// tests/tools/completion_test.cpp: the three shells complete commands, keys and options.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "tests/tools/run_tool.h"
#include "tools/orbprops/arguments.h"

namespace {

using orbtest::lines_of;
using orbtest::Outcome;

std::vector<std::string> sorted(std::vector<std::string> words) {
  std::sort(words.begin(), words.end());
  return words;
}

// Runs `program` with `arguments` where `orbprops` is the built tool.
Outcome run_shell(const std::string& program, const std::vector<std::string>& arguments,
                  const std::map<std::string, std::string>& variables = {}) {
  const orbtest::ToolFolder folder;
  orbtest::Launch launch;
  launch.program = program;
  launch.arguments = arguments;
  const char* path = getenv("PATH");
  launch.environment = {{"PATH", folder.path() + ":" + (path == nullptr ? "" : path)},
                        {"HOME", folder.path()},
                        {"XDG_CONFIG_HOME", folder.path()},
                        {"XDG_DATA_HOME", folder.path()}};
  launch.environment["TERM"] = "dumb";
  for (const auto& [name, value] : variables) launch.environment[name] = value;
  return orbtest::run(launch);
}

// What bash offers for the last of `words`.
std::vector<std::string> bash_offers(const std::vector<std::string>& words) {
  std::vector<std::string> arguments = {
      "--norc", "--noprofile", "-c",
      "source \"$0\"; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); COMPREPLY=(); "
      "$(complete -p orbprops | sed 's/.*-F \\([^ ]*\\) .*/\\1/'); printf '%s\\n' "
      "\"${COMPREPLY[@]}\"",
      ORBPROPS_FOLDER "/completion/orbprops.bash"};
  arguments.insert(arguments.end(), words.begin(), words.end());
  const Outcome outcome = run_shell("bash", arguments);
  EXPECT_EQ("", outcome.error);
  std::vector<std::string> lines = lines_of(outcome.out);
  if (lines.size() == 1 && lines[0].empty()) lines.clear();
  return sorted(lines);
}

// What fish offers at the end of `line`, without descriptions.
std::vector<std::string> fish_offers(const std::string& line) {
  const Outcome outcome =
      run_shell("fish", {"--no-config", "-c", "source $argv[1]; complete -C $argv[2]",
                         ORBPROPS_FOLDER "/completion/orbprops.fish", line});
  EXPECT_EQ("", outcome.error);
  std::vector<std::string> words;
  for (const std::string& offer : lines_of(outcome.out)) {
    words.push_back(offer.substr(0, offer.find('\t')));
  }
  return sorted(words);
}

std::vector<std::string> keys() { return sorted(lines_of(orbtest::run_tool({"keys"}).out)); }

TEST(Bash, CompletesCommands) {
  EXPECT_EQ(sorted(orbprops::command_names()), bash_offers({"orbprops", ""}));
  EXPECT_EQ(std::vector<std::string>{"filesystems"}, bash_offers({"orbprops", "--json", "f"}));
}

TEST(Bash, CompletesKeysBehindGet) {
  EXPECT_EQ(keys(), bash_offers({"orbprops", "get", ""}));
  EXPECT_EQ(keys(), bash_offers({"orbprops", "-j", "get", "OSType", ""}));
  EXPECT_EQ((std::vector<std::string>{"FreeDiskSpace", "FreeMemory"}),
            bash_offers({"orbprops", "get", "Free"}));
}

TEST(Bash, CompletesOptionsEverywhere) {
  EXPECT_EQ(sorted(orbprops::option_names()), bash_offers({"orbprops", "-"}));
  EXPECT_EQ((std::vector<std::string>{"--verbose", "--version"}),
            bash_offers({"orbprops", "users", "--ver"}));
}

TEST(Bash, OffersNothingWhereNothingGoes) {
  EXPECT_EQ(std::vector<std::string>{}, bash_offers({"orbprops", "users", ""}));
}

TEST(Fish, CompletesCommandsKeysAndOptions) {
  if (!orbtest::has_command("fish")) GTEST_SKIP() << "fish is not installed";
  EXPECT_EQ(sorted(orbprops::command_names()), fish_offers("orbprops "));
  EXPECT_EQ(keys(), fish_offers("orbprops get "));
  EXPECT_EQ((std::vector<std::string>{"OSVersion"}), fish_offers("orbprops get OSType OSV"));
  EXPECT_EQ((std::vector<std::string>{"--verbose", "--version"}), fish_offers("orbprops --ver"));
  EXPECT_EQ((std::vector<std::string>{}), fish_offers("orbprops users "));
}

TEST(Fish, KnowsEveryOption) {
  if (!orbtest::has_command("fish")) GTEST_SKIP() << "fish is not installed";
  std::vector<std::string> offers = fish_offers("orbprops interfaces --");
  for (const std::string& name : orbprops::option_names()) {
    if (name.size() == 2) continue;
    EXPECT_EQ(1, std::count(offers.begin(), offers.end(), name)) << name;
  }
}

// zsh completes in an interactive shell alone. One runs on a terminal of its own: its first prompt
// completes the line, notes what the completion system was offered, and leaves.
constexpr char kZshPrompt[] = R"(
fpath=($COMPLETION $fpath)
autoload -Uz compinit
compinit -u -D
compadd() {
  local -a found
  builtin compadd -O found "$@"
  (( $#found )) && print -rl -- $found >>| $OFFERS
  builtin compadd "$@"
}
zle-line-init() {
  BUFFER=$LINE_TO_COMPLETE
  CURSOR=$#BUFFER
  zle complete-word
  BUFFER=exit
  zle accept-line
}
zle -N zle-line-init
)";
constexpr char kZshTerminal[] = R"(
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell "source ${(q)1}"
while zpty -r shell output; do :; done
)";

std::vector<std::string> zsh_offers(const std::string& line) {
  const orbtest::ToolFolder folder;
  const std::string prompt = folder.path() + "/prompt";
  const std::string offers = folder.path() + "/offers";
  std::ofstream(prompt) << kZshPrompt;
  std::ofstream(offers).close();
  const Outcome outcome = run_shell("zsh", {"-f", "-c", kZshTerminal, "zsh", prompt},
                                    {{"LINE_TO_COMPLETE", line},
                                     {"OFFERS", offers},
                                     {"COMPLETION", ORBPROPS_FOLDER "/completion"}});
  EXPECT_EQ(0, outcome.status) << outcome.error;
  std::vector<std::string> words;
  std::ifstream found(offers);
  for (std::string word; std::getline(found, word);) words.push_back(word);
  words = sorted(words);
  words.erase(std::unique(words.begin(), words.end()), words.end());
  return words;
}

TEST(Zsh, CompletesCommandsKeysAndOptions) {
  if (!orbtest::has_command("zsh")) GTEST_SKIP() << "zsh is not installed";
  EXPECT_EQ(sorted(orbprops::command_names()), zsh_offers("orbprops "));
  EXPECT_EQ(keys(), zsh_offers("orbprops get "));
  EXPECT_EQ(keys(), zsh_offers("orbprops get OSType "));
  EXPECT_EQ((std::vector<std::string>{"FreeDiskSpace", "FreeMemory"}),
            zsh_offers("orbprops --json get Free"));
  EXPECT_EQ(sorted(orbprops::option_names()), zsh_offers("orbprops -"));
  EXPECT_EQ((std::vector<std::string>{"--verbose", "--version"}), zsh_offers("orbprops get --ver"));
  EXPECT_EQ((std::vector<std::string>{}), zsh_offers("orbprops users "));
}

}  // namespace
