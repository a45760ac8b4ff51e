// platform/linux_text.cpp: plain scans over the text, without locale or copies.
#include "platform/linux_text.h"

#include <limits>
#include <utility>

namespace quillon_com::orb::platform {
namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool is_letter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool is_setting_name(std::string_view name) {
  if (name.empty() || !is_letter(name.front())) return false;
  for (char c : name) {
    if (!is_letter(c) && !is_digit(c)) return false;
  }
  return true;
}

bool is_escaped_in_double_quotes(char c) { return c == '"' || c == '$' || c == '`' || c == '\\'; }

// One word as a shell reads it: what stands after the blank that ends it is no part of the value.
std::string unquoted(std::string_view raw) {
  std::string value;
  char quote = 0;
  for (size_t i = 0; i < raw.size(); ++i) {
    const char c = raw[i];
    const bool last = i + 1 == raw.size();
    if (quote != 0 && c == quote) {
      quote = 0;
    } else if (quote == '\'') {
      value += c;
    } else if (c == '\\' && !last && (quote == 0 || is_escaped_in_double_quotes(raw[i + 1]))) {
      value += raw[++i];
    } else if (quote == 0 && (c == '"' || c == '\'')) {
      quote = c;
    } else if (quote == 0 && is_blank(c)) {
      break;
    } else {
      value += c;
    }
  }
  return value;
}

}  // namespace

std::string_view take_line(std::string_view* rest) {
  const size_t end = rest->find('\n');
  const std::string_view line = rest->substr(0, end);
  rest->remove_prefix(end == std::string_view::npos ? rest->size() : end + 1);
  return line;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return text;
}

std::optional<uint64_t> decimal_count(std::string_view text) {
  text = trimmed(text);
  if (text.empty()) return std::nullopt;
  uint64_t count = 0;
  for (char c : text) {
    if (!is_digit(c)) return std::nullopt;
    const auto digit = static_cast<uint64_t>(c - '0');
    if (count > (std::numeric_limits<uint64_t>::max() - digit) / 10) return std::nullopt;
    count = count * 10 + digit;
  }
  return count;
}

std::string first_line(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  return std::string(trimmed(take_line(&text)));
}

std::string name_unless_none(std::string name) { return name == "(none)" ? "" : name; }

std::optional<uint64_t> memory_kilobytes(std::string_view table, std::string_view name) {
  while (!table.empty()) {
    std::string_view line = take_line(&table);
    if (line.substr(0, name.size()) != name) continue;
    line.remove_prefix(name.size());
    if (line.empty() || line.front() != ':') continue;
    line = trimmed(line.substr(1));
    if (line.size() > 2 && line.substr(line.size() - 2) == "kB") line.remove_suffix(2);
    const auto count = decimal_count(line);
    if (count && *count > std::numeric_limits<uint64_t>::max() / 1024) return std::nullopt;
    return count;
  }
  return std::nullopt;
}

std::optional<uint64_t> boot_seconds(std::string_view statistics) {
  constexpr std::string_view kName = "btime ";
  while (!statistics.empty()) {
    const std::string_view line = take_line(&statistics);
    if (line.substr(0, kName.size()) == kName) return decimal_count(line.substr(kName.size()));
  }
  return std::nullopt;
}

std::optional<int> listed_processors(std::string_view list) {
  constexpr uint64_t kMost = std::numeric_limits<int>::max();
  list = trimmed(list);
  uint64_t total = 0;
  while (true) {
    const size_t comma = list.find(',');
    const std::string_view range = list.substr(0, comma);
    const size_t dash = range.find('-');
    const auto first = decimal_count(range.substr(0, dash));
    const auto last =
        dash == std::string_view::npos ? first : decimal_count(range.substr(dash + 1));
    if (!first || !last || *last < *first || *last - *first >= kMost) return std::nullopt;
    total += *last - *first + 1;
    if (total > kMost) return std::nullopt;
    if (comma == std::string_view::npos) return static_cast<int>(total);
    list.remove_prefix(comma + 1);
  }
}

std::map<std::string, std::string> settings_of(std::string_view text) {
  std::map<std::string, std::string> settings;
  while (!text.empty()) {
    const std::string_view line = trimmed(take_line(&text));
    const size_t sign = line.find('=');
    if (sign == std::string_view::npos) continue;
    const std::string_view name = line.substr(0, sign);
    if (!is_setting_name(name)) continue;
    settings[std::string(name)] = unquoted(line.substr(sign + 1));
  }
  return settings;
}

std::string words_before_release(std::string_view text) {
  const std::string line = first_line(text);
  const size_t end = line.find(" release ");
  return end == std::string::npos ? "" : std::string(trimmed(line.substr(0, end)));
}

std::optional<SessionEntry> session_of(std::string_view id, std::string_view text) {
  auto settings = settings_of(text);
  const std::string& owner = settings["CLASS"];
  if (owner != "user" && owner.substr(0, 5) != "user-") return std::nullopt;
  if (settings["STATE"] == "closing") return std::nullopt;
  return SessionEntry{7, std::string(id), std::move(settings["USER"]), std::move(settings["TTY"])};
}

}  // namespace quillon_com::orb::platform
