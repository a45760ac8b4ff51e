// tests/support/plain_flatten.h: the flattening rules written down as they are told.
#pragma once

#include <optional>
#include <string>

namespace orbtest {

// The flat form of `path` read against `base`, by searching and cutting in turn; nullopt for a path
// that climbs above the root. Quadratic in the length.
inline std::optional<std::string> plain_flatten(const std::string& path, const std::string& base) {
  std::string text = path;
  if (text.size() > 0 && text[text.size() - 1] == '/') text.erase(text.size() - 1);
  if (text.size() == 0 || text[0] != '/') text = base + "/" + text;
  text += "/";
  for (size_t at = 0; (at = text.find("/./")) != std::string::npos;) text.erase(at + 1, 2);
  for (size_t at = 0; (at = text.find("/../")) != std::string::npos;) {
    if (at == 0) return std::nullopt;
    const size_t slash = text.rfind('/', at - 1);
    if (slash == std::string::npos) return std::nullopt;
    text.erase(slash + 1, at + 4 - (slash + 1));
  }
  if (text[text.size() - 1] == '/') text.erase(text.size() - 1);
  return text;
}

// The number `number` written with the digits `alphabet`, so that 0, 1, 2, ... give every text over
// it, the shorter ones first.
inline std::string nth_text(size_t number, const std::string& alphabet) {
  std::string text;
  for (; number > 0; number = (number - 1) / alphabet.size())
    text += alphabet[(number - 1) % alphabet.size()];
  return text;
}

}  // namespace orbtest
