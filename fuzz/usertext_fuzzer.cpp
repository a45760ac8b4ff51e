// fuzz/usertext_fuzzer.cpp: trimming, splitting, full names and the list limit, by plain rules.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "session/collect.h"
#include "session/loggedonusers.h"

using orbfuzz::check;
using namespace quillon_com::orb::session;

namespace {

bool is_alnum(char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= 'a' && byte <= 'z');
}

// Drops one byte after the other from both ends.
std::string plain_trimmed(std::string text) {
  text.resize(std::strlen(text.c_str()));
  while (!text.empty() && !is_alnum(text.front())) text.erase(0, 1);
  while (!text.empty() && !is_alnum(text.back())) text.pop_back();
  return text;
}

std::vector<std::string> plain_parts(const std::string& text, char delimiter) {
  std::vector<std::string> parts(1);
  for (char byte : text) {
    if (byte == delimiter) {
      parts.emplace_back();
    } else {
      parts.back() += byte;
    }
  }
  if (parts.size() == 1) parts.clear();
  return parts;
}

std::string plain_limited(const std::string& users) {
  if (users.size() <= 127) return users;
  for (size_t i = 128; i-- > 0;) {
    if (users[i] == ',') return i > 124 ? users.substr(0, 128) : users.substr(0, i) + ",...";
  }
  return users.substr(0, 128);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  check(trimmer(text.c_str()) == plain_trimmed(text));

  for (char delimiter : {'|', '\\', '\n', size == 0 ? '\0' : static_cast<char>(data[size / 2])}) {
    std::vector<std::string> parts;
    split(text, delimiter, parts);
    check(parts == plain_parts(text, delimiter));
  }

  // Three times over, so that short inputs reach the limit as well.
  const std::string users = text + text + text;
  std::string limited = users;
  limit_user_list(&limited);
  check(limited == plain_limited(users));

  std::wstring full(text.begin(), text.end());
  std::wstring domain = L"old";
  std::wstring user = L"old";
  parseFullUserName(full, domain, user);
  const size_t backslash = text.find('\\');
  check(full.size() == size);
  check(backslash == std::string::npos
            ? domain.empty() && user == full
            : domain + L"\\" + user == full && domain.size() == backslash);

  std::string low = text;
  toLower(low);
  for (size_t i = 0; i < size; ++i) {
    check(low[i] == (text[i] >= 'A' && text[i] <= 'Z' ? text[i] + 32 : text[i]));
  }
  return 0;
}
