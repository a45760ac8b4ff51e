// platform/version_list.cpp: the choice of the list's form, and UTF-8.
#include "platform/version_list.h"

#include <algorithm>
#include <utility>

#include "platform/version_list_forms.h"

namespace quillon_com::orb::platform {

bool property_list_texts(std::string_view bytes, const std::vector<std::string>& keys,
                         std::vector<std::optional<std::string>>* texts) {
  WantedTexts wanted(keys);
  const bool binary = bytes.substr(0, 6) == "bplist";
  if (!(binary ? read_binary_list(bytes, &wanted) : read_xml_list(bytes, &wanted))) return false;
  *texts = wanted.take();
  return true;
}

bool WantedTexts::may_hold(size_t length) const {
  // A character takes one to four bytes.
  return std::any_of(keys_.begin(), keys_.end(), [&](const std::string& key) {
    return key.size() >= length && key.size() / 4 <= length;
  });
}

bool WantedTexts::holds(std::string_view key) const {
  return std::find(keys_.begin(), keys_.end(), key) != keys_.end();
}

void WantedTexts::set(std::string_view key, const std::optional<std::string>& text) {
  for (size_t i = 0; i < keys_.size(); ++i) {
    if (keys_[i] == key) texts_[i] = text;
  }
}

bool append_utf8(char32_t code, std::string* text) {
  const auto append = [&](char32_t byte) { text->push_back(static_cast<char>(byte)); };
  if (code == 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return false;
  if (code < 0x80) {
    append(code);
  } else if (code < 0x800) {
    append(0xC0 | code >> 6);
    append(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    append(0xE0 | code >> 12);
    append(0x80 | (code >> 6 & 0x3F));
    append(0x80 | (code & 0x3F));
  } else {
    append(0xF0 | code >> 18);
    append(0x80 | (code >> 12 & 0x3F));
    append(0x80 | (code >> 6 & 0x3F));
    append(0x80 | (code & 0x3F));
  }
  return true;
}

bool is_utf8(std::string_view text) {
  constexpr char32_t kLeast[] = {1, 0x80, 0x800, 0x10000};  // by number of bytes that follow
  for (size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i++]);
    const size_t more = lead < 0x80 ? 0 : lead < 0xC0 ? 4 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    if (more > 3 || text.size() - i < more) return false;
    char32_t code = more == 0 ? lead : lead & (0x3Fu >> more);
    for (size_t k = 0; k < more; ++k) {
      const auto byte = static_cast<unsigned char>(text[i++]);
      if ((byte & 0xC0) != 0x80) return false;
      code = code << 6 | (byte & 0x3F);
    }
    if (lead >= 0xF8 || code < kLeast[more] || code > 0x10FFFF) return false;
    if (code >= 0xD800 && code <= 0xDFFF) return false;
  }
  return true;
}

}  // namespace quillon_com::orb::platform
