// fuzz/linux_text_fuzzer.cpp: every reader of the texts below /proc, /sys, /etc and /run, beside
// plainer ones.
#include "platform/linux_text.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "fuzz/plain_lines.h"

using orbfuzz::check;
using orbfuzz::plain_count;
using orbfuzz::plain_parts;
using orbfuzz::plain_trimmed;
using namespace quillon_com::orb::platform;

namespace {

using Count = std::optional<uint64_t>;

bool begins(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

Count plain_memory(const std::string& table, const std::string& name) {
  for (const std::string& line : plain_parts(table, '\n')) {
    if (!begins(line, name + ":")) continue;
    std::string value = plain_trimmed(line.substr(name.size() + 1));
    if (value.size() > 2 && value.compare(value.size() - 2, 2, "kB") == 0)
      value.resize(value.size() - 2);
    const Count count = plain_count(value);
    return count && (*count >> 54) == 0 ? count : std::nullopt;  // so that its bytes fit as well
  }
  return std::nullopt;
}

Count plain_boot(const std::string& statistics) {
  for (const std::string& line : plain_parts(statistics, '\n'))
    if (begins(line, "btime ")) return plain_count(line.substr(6));
  return std::nullopt;
}

std::optional<int> plain_processors(const std::string& list) {
  constexpr uint64_t kMost = 2147483647;
  uint64_t total = 0;
  for (const std::string& range : plain_parts(plain_trimmed(list), ',')) {
    const size_t dash = range.find('-');
    const Count first = plain_count(range.substr(0, dash));
    const Count last = dash == std::string::npos ? first : plain_count(range.substr(dash + 1));
    if (!first || !last || *first > *last || *last - *first >= kMost) return std::nullopt;
    total += *last - *first + 1;
    if (total > kMost) return std::nullopt;
  }
  return static_cast<int>(total);
}

std::string plain_first_line(const std::string& text) {
  const std::string ended = text.c_str();
  return plain_trimmed(ended.substr(0, ended.find('\n')));
}

bool is_name(const std::string& name) {
  const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_";
  return !name.empty() && letters.find(name[0]) != std::string::npos &&
         name.find_first_not_of(letters + "0123456789") == std::string::npos;
}

// One word of a shell, by what it is in: nothing, double quotes or single ones.
std::string plain_word(const std::string& raw) {
  std::string word;
  char in = ' ';
  for (size_t i = 0; i < raw.size(); ++i) {
    const char byte = raw[i];
    const char next = i + 1 < raw.size() ? raw[i + 1] : '\0';
    const bool last = i + 1 == raw.size();
    switch (in) {
      case '\'':
        if (byte == '\'')
          in = ' ';
        else
          word += byte;
        break;
      case '"':
        if (byte == '"') {
          in = ' ';
        } else if (byte == '\\' && (next == '"' || next == '$' || next == '`' || next == '\\')) {
          word += next;
          ++i;
        } else {
          word += byte;
        }
        break;
      default:
        if (byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n') return word;
        if (byte == '"' || byte == '\'') {
          in = byte;
        } else if (byte == '\\' && !last) {
          word += next;
          ++i;
        } else {
          word += byte;
        }
    }
  }
  return word;
}

std::map<std::string, std::string> plain_settings(const std::string& text) {
  std::map<std::string, std::string> settings;
  for (const std::string& each : plain_parts(text, '\n')) {
    const std::string line = plain_trimmed(each);
    const size_t sign = line.find('=');
    if (sign != std::string::npos && is_name(line.substr(0, sign)))
      settings[line.substr(0, sign)] = plain_word(line.substr(sign + 1));
  }
  return settings;
}

void check_session(const std::string& text, std::map<std::string, std::string> settings) {
  const std::string owner = settings["CLASS"];
  const bool of_a_user = owner == "user" || begins(owner, "user-");
  const auto session = session_of("1", text);
  check(session.has_value() == (of_a_user && settings["STATE"] != "closing"));
  if (!session) return;
  check(session->type == 7 && session->id == "1");
  check(session->user == settings["USER"] && session->line == settings["TTY"]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  check(decimal_count(text) == plain_count(text));
  check(memory_kilobytes(text, "MemFree") == plain_memory(text, "MemFree"));
  check(boot_seconds(text) == plain_boot(text));
  check(listed_processors(text) == plain_processors(text));
  const std::string line = plain_first_line(text);
  check(first_line(text) == line);
  const size_t release = line.find(" release ");
  check(words_before_release(text) ==
        (release == std::string::npos ? "" : plain_trimmed(line.substr(0, release))));
  const auto settings = plain_settings(text);
  check(settings_of(text) == settings);
  check_session(text, settings);
  return 0;
}
