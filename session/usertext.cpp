// session/usertext.cpp: the texts of user names: trimming, splitting, joining, limiting.
#include <ctype.h>

#include <cstring>
#include <iterator>
#include <utility>

#include "session/collect.h"
#include "session/loggedonusers.h"

namespace quillon_com::orb::session {
namespace {

bool is_alnum(char byte) { return isalnum(static_cast<unsigned char>(byte)) != 0; }

constexpr size_t kListLimit = 128;
constexpr const char* kCutMark = ",...";

}  // namespace

std::string trimmer(const char* text) {
  if (text == nullptr) return {};
  const char* start = text;
  while (*start != '\0' && !is_alnum(*start)) ++start;
  const char* end = start + std::strlen(start);
  while (end > start && !is_alnum(end[-1])) --end;
  return std::string(start, end);
}

void split(const std::string& text, char delimiter, std::vector<std::string>& parts) {
  size_t end = text.find(delimiter);
  if (end == std::string::npos) return;
  std::vector<std::string> pieces;  // `text` may be one of `parts`
  size_t start = 0;
  for (; end != std::string::npos; end = text.find(delimiter, start)) {
    pieces.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  pieces.push_back(text.substr(start));
  parts.insert(parts.end(), std::make_move_iterator(pieces.begin()),
               std::make_move_iterator(pieces.end()));
}

void toLower(std::string& text) {
  for (char& byte : text) byte = static_cast<char>(tolower(static_cast<unsigned char>(byte)));
}

void parseFullUserName(std::wstring& fullName, std::wstring& domain, std::wstring& user) {
  const size_t backslash = fullName.find(L'\\');
  const bool divided = backslash != std::wstring::npos;
  // One string may be passed for several: both parts are made before any is written.
  std::wstring before = divided ? fullName.substr(0, backslash) : std::wstring();
  std::wstring behind = divided ? fullName.substr(backslash + 1) : fullName;
  domain = std::move(before);
  user = std::move(behind);
}

void limit_user_list(std::string* users) {
  if (users->size() < kListLimit) return;
  users->resize(kListLimit);
  const size_t comma = users->rfind(',');
  if (comma == std::string::npos || kListLimit - comma < std::strlen(kCutMark)) return;
  users->replace(comma, std::string::npos, kCutMark);
}

}  // namespace quillon_com::orb::session
