// platform/version_list_forms.h: the two forms of a property list, and the texts in them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon_com::orb::platform {

// What the dictionary at the top holds under the wanted keys, while it is being read.
class WantedTexts {
 public:
  explicit WantedTexts(const std::vector<std::string>& keys) : keys_(keys), texts_(keys.size()) {}

  // Whether a key of `length` characters may be a wanted one: nobody else's text need be read.
  bool may_hold(size_t length) const;
  bool holds(std::string_view key) const;
  // Records the value under `key`: a text, or nothing for another kind of value.
  void set(std::string_view key, const std::optional<std::string>& text);
  std::vector<std::optional<std::string>> take() { return std::move(texts_); }

 private:
  const std::vector<std::string>& keys_;
  std::vector<std::optional<std::string>> texts_;
};

// Both return false when `bytes` is no complete, well-formed list of their form with a dictionary
// at its top; `wanted` then holds a part.
bool read_xml_list(std::string_view bytes, WantedTexts* wanted);
bool read_binary_list(std::string_view bytes, WantedTexts* wanted);

// Appends the code point in UTF-8; false for zero, a surrogate or a number above 0x10FFFF.
bool append_utf8(char32_t code, std::string* text);

// Whether `text` is well-formed UTF-8 without zero bytes.
bool is_utf8(std::string_view text);

}  // namespace quillon_com::orb::platform
