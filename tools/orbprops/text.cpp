// tools/orbprops/text.cpp: decodes, measures and escapes text.
#include "tools/orbprops/text.h"

#include <langinfo.h>

#include <strings.h>
#include <array>
#include <bit>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cwchar>

namespace orbprops {
namespace {

constexpr uint32_t kReplacement = 0xFFFD;

// One character of a text; or, when `byte` is set, a byte that belongs to none.
struct Unit {
  uint32_t code = 0;
  bool byte = false;
};

bool is_scalar(uint32_t code) { return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF); }

bool is_control(uint32_t code) { return code < 0x20 || (code >= 0x7F && code < 0xA0); }

bool turns_direction(uint32_t code) {
  return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069);
}

void append_utf8(std::string& out, uint32_t code) {
  const auto put = [&out](uint32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | code >> 6);
    put(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    put(0xE0 | code >> 12);
    put(0x80 | (code >> 6 & 0x3F));
    put(0x80 | (code & 0x3F));
  } else {
    put(0xF0 | code >> 18);
    put(0x80 | (code >> 12 & 0x3F));
    put(0x80 | (code >> 6 & 0x3F));
    put(0x80 | (code & 0x3F));
  }
}

// Bytes of the sequence that `lead` opens; 0 when it opens none.
size_t sequence_length(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead < 0xE0) return 2;
  if (lead >= 0xE0 && lead < 0xF0) return 3;
  if (lead >= 0xF0 && lead < 0xF5) return 4;
  return 0;
}

// Takes the first unit off `bytes`, which is not empty.
Unit take(std::string_view& bytes) {
  static constexpr std::array<uint32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
  const auto lead = static_cast<unsigned char>(bytes.front());
  const size_t length = sequence_length(lead);
  uint32_t code = length < 2 ? lead : lead & (0xFFU >> (length + 1));
  bool whole = length != 0 && length <= bytes.size();
  for (size_t i = 1; whole && i < length; ++i) {
    const auto next = static_cast<unsigned char>(bytes[i]);
    whole = (next & 0xC0) == 0x80;
    code = code << 6 | (next & 0x3F);
  }
  whole = whole && code >= kLeast[length] && is_scalar(code);
  bytes.remove_prefix(whole ? length : 1);
  return whole ? Unit{code, false} : Unit{lead, true};
}

std::string escape(const Unit& unit) {
  const char* format = "\\U%08x";
  if (unit.byte || unit.code < 0x80) {
    format = "\\x%02x";
  } else if (unit.code < 0x10000) {
    format = "\\u%04x";
  }
  std::array<char, 16> text{};
  snprintf(text.data(), text.size(), format, static_cast<unsigned>(unit.code));
  return text.data();
}

// Makes the C library measure characters beyond ASCII although the process's locale is not UTF-8.
// Returns whether it does.
bool measures_unicode() {
  static const bool measures = locale_charset() == Charset::utf8 ||
                               setlocale(LC_CTYPE, "C.UTF-8") != nullptr ||
                               setlocale(LC_CTYPE, "UTF-8") != nullptr;
  return measures;
}

Shown show_unit(const Unit& unit, Charset charset) {
  const uint32_t code = unit.code;
  if (!unit.byte && code >= 0x20 && code < 0x7F) return {std::string(1, char(code)), 1};
  int columns = -1;
  if (charset == Charset::utf8 && !unit.byte && is_scalar(code) && !is_control(code) &&
      !turns_direction(code)) {
    columns = measures_unicode() ? wcwidth(static_cast<wchar_t>(code)) : 1;
  }
  if (columns < 0) {
    std::string text = escape(unit);
    const size_t length = text.size();
    return {std::move(text), length};
  }
  Shown shown{{}, static_cast<size_t>(columns)};
  append_utf8(shown.bytes, code);
  return shown;
}

}  // namespace

std::string to_utf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (wchar_t character : text) {
    const auto code = std::bit_cast<uint32_t>(character);
    append_utf8(out, is_scalar(code) ? code : kReplacement);
  }
  return out;
}

std::string to_utf8(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  while (!bytes.empty()) {
    const Unit unit = take(bytes);
    append_utf8(out, unit.byte ? kReplacement : unit.code);
  }
  return out;
}

std::vector<Shown> glyphs(std::wstring_view text, Charset charset) {
  std::vector<Shown> out;
  out.reserve(text.size());
  for (wchar_t character : text) {
    out.push_back(show_unit({static_cast<uint32_t>(character), false}, charset));
  }
  return out;
}

std::vector<Shown> glyphs(std::string_view bytes, Charset charset) {
  std::vector<Shown> out;
  out.reserve(bytes.size());
  while (!bytes.empty()) out.push_back(show_unit(take(bytes), charset));
  return out;
}

Shown join(const std::vector<Shown>& entries, size_t first, size_t last) {
  Shown out;
  for (size_t i = first; i < last; ++i) {
    out.bytes += entries[i].bytes;
    out.columns += entries[i].columns;
  }
  return out;
}

Shown show(std::wstring_view text, Charset charset) {
  const std::vector<Shown> entries = glyphs(text, charset);
  return join(entries, 0, entries.size());
}

Shown show(std::string_view bytes, Charset charset) {
  const std::vector<Shown> entries = glyphs(bytes, charset);
  return join(entries, 0, entries.size());
}

Charset locale_charset() {
  static const Charset charset =
      strcasecmp(nl_langinfo(CODESET), "UTF-8") == 0 ? Charset::utf8 : Charset::ascii;
  return charset;
}

std::string without_controls(std::string_view json) {
  std::string out;
  out.reserve(json.size());
  while (!json.empty()) {
    const std::string_view before = json;
    const Unit unit = take(json);
    const bool hide = (unit.code >= 0x7F && is_control(unit.code)) || turns_direction(unit.code);
    if (hide) {
      std::array<char, 16> text{};
      snprintf(text.data(), text.size(), "\\u%04x", static_cast<unsigned>(unit.code));
      out += text.data();
    } else {
      out += before.substr(0, before.size() - json.size());
    }
  }
  return out;
}

}  // namespace orbprops
