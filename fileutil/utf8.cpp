// fileutil/utf8.cpp: the UTF-8 codec and the two converters with their statuses and capacities.
#include "fileutil/utf8.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "fileutil/conversions.h"

namespace quillon_com::orb {
namespace {

constexpr size_t kRun = 32;  // elements that the ASCII loops take at once

bool continues(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// Copies the ASCII at the start of `text` in whole runs; returns how many elements that were.
size_t widen_ascii(const unsigned char* text, size_t length, wchar_t* out) {
  size_t done = 0;
  for (; length - done >= kRun; done += kRun) {
    uint64_t words[kRun / sizeof(uint64_t)];
    std::memcpy(words, text + done, kRun);
    if (((words[0] | words[1] | words[2] | words[3]) & 0x8080808080808080U) != 0) break;
    for (size_t i = 0; i < kRun; ++i) out[done + i] = text[done + i];
  }
  return done;
}

size_t narrow_ascii(const wchar_t* text, size_t length, char* out) {
  size_t done = 0;
  for (; length - done >= kRun; done += kRun) {
    uint32_t bits = 0;
    for (size_t i = 0; i < kRun; ++i) bits |= static_cast<uint32_t>(text[done + i]);
    if (bits > 0x7F) break;
    for (size_t i = 0; i < kRun; ++i) out[done + i] = static_cast<char>(text[done + i]);
  }
  return done;
}

// Decodes the multibyte character at `text`; returns its bytes, or 0 when it is not well formed
// within `length` (at least 1) bytes.
size_t decode_multibyte(const unsigned char* text, size_t length, wchar_t* out) {
  const unsigned lead = text[0];
  if (lead < 0xC2 || lead > 0xF4) return 0;  // stray, or overlong, or above 0x10FFFF
  const size_t bytes = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (length < bytes || !continues(text[1])) return 0;
  unsigned value = ((lead & (0x7FU >> bytes)) << 6) | (text[1] & 0x3FU);
  if (bytes >= 3) {
    if (!continues(text[2])) return 0;
    value = (value << 6) | (text[2] & 0x3FU);
  }
  if (bytes == 4) {
    if (!continues(text[3])) return 0;
    value = (value << 6) | (text[3] & 0x3FU);
    if (value < 0x10000 || value > 0x10FFFF) return 0;
  }
  if (bytes == 3 && (value < 0x800 || (value >= 0xD800 && value <= 0xDFFF))) return 0;
  *out = static_cast<wchar_t>(value);
  return bytes;
}

// Writes the UTF-8 of a `value` above 0x7F; returns its bytes, or 0 when it has none.
size_t encode_multibyte(uint32_t value, char* out) {
  const auto tail = [](uint32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
  if (value < 0x800) {
    out[0] = static_cast<char>(0xC0 | (value >> 6));
    out[1] = tail(value);
    return 2;
  }
  if (value < 0x10000) {
    if (value >= 0xD800 && value <= 0xDFFF) return 0;
    out[0] = static_cast<char>(0xE0 | (value >> 12));
    out[1] = tail(value >> 6);
    out[2] = tail(value);
    return 3;
  }
  if (value > 0x10FFFF) return 0;
  out[0] = static_cast<char>(0xF0 | (value >> 18));
  out[1] = tail(value >> 12);
  out[2] = tail(value >> 6);
  out[3] = tail(value);
  return 4;
}

bool overlap(const void* a, size_t a_bytes, const void* b, size_t b_bytes) {
  const auto a_start = reinterpret_cast<uintptr_t>(a);
  const auto b_start = reinterpret_cast<uintptr_t>(b);
  return a_start < b_start + b_bytes && b_start < a_start + a_bytes;
}

// The text to convert: the caller's own, or a copy where writing the result would overwrite it.
template <class Char>
class WorkText {
 public:
  // `room` is the bytes that may be written at `destination`.
  WorkText(const Char* source, size_t length, const void* destination, size_t room)
      : text_(source) {
    const size_t bytes = length * sizeof(Char);
    if (!overlap(source, bytes, destination, room)) return;
    copy_ = static_cast<Char*>(std::malloc(bytes));
    if (copy_ != nullptr) std::memcpy(copy_, source, bytes);
    text_ = copy_;
  }
  WorkText(const WorkText&) = delete;
  WorkText& operator=(const WorkText&) = delete;
  ~WorkText() { std::free(copy_); }

  const Char* get() const { return text_; }  // null when there was no memory for the copy

 private:
  const Char* text_;
  Char* copy_ = nullptr;
};

constexpr unsigned kStatusOk = 0;
constexpr unsigned kStatusFailed = 0x80000008U;

}  // namespace

size_t decode_utf8(const char* text, size_t length, wchar_t* out, size_t* taken) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
  const auto* const end = bytes + length;
  const auto* at = bytes;
  wchar_t* const start = out;
  while (at != end) {
    if (*at < 0x80) {
      const size_t run = widen_ascii(at, static_cast<size_t>(end - at), out);
      at += run;
      out += run;
      for (; at != end && *at < 0x80; ++at) *out++ = *at;
      continue;
    }
    const size_t used = decode_multibyte(at, static_cast<size_t>(end - at), out);
    if (used == 0) break;
    at += used;
    ++out;
  }
  if (taken != nullptr) *taken = static_cast<size_t>(at - bytes);
  return static_cast<size_t>(out - start);
}

size_t encode_utf8(const wchar_t* text, size_t length, char* out, size_t* taken) {
  const auto value_at = [text](size_t i) { return static_cast<uint32_t>(text[i]); };
  char* const start = out;
  size_t at = 0;
  while (at < length) {
    if (value_at(at) < 0x80) {
      const size_t run = narrow_ascii(text + at, length - at, out);
      at += run;
      out += run;
      for (; at < length && value_at(at) < 0x80; ++at) *out++ = static_cast<char>(text[at]);
      continue;
    }
    const size_t written = encode_multibyte(value_at(at), out);
    if (written == 0) break;
    ++at;
    out += written;
  }
  if (taken != nullptr) *taken = at;
  return static_cast<size_t>(out - start);
}

}  // namespace quillon_com::orb

using namespace quillon_com::orb;

// Texts are measured no further than the room reaches, so that no need is ever too large to count.

unsigned voxcomn_unicode_to_utf8(const wchar_t* source, char* destination, unsigned* size) {
  if (source == nullptr || destination == nullptr || size == nullptr) return kStatusFailed;
  const auto room = static_cast<int>(*size);
  if (room <= 0) return kStatusFailed;
  const auto most = (static_cast<size_t>(room) - 1) / 6;
  const size_t length = wcsnlen(source, most + 1);
  if (length > most) return kStatusFailed;
  const WorkText<wchar_t> work(source, length, destination, length * 4 + 1);
  if (work.get() == nullptr) return kStatusFailed;
  destination[encode_utf8(work.get(), length, destination)] = '\0';
  return kStatusOk;
}

unsigned voxcomn_utf8_to_unicode(const char* source, wchar_t* destination, int* size) {
  if (source == nullptr || destination == nullptr || size == nullptr) return kStatusFailed;
  if (*size <= 0) return kStatusFailed;
  const auto room = static_cast<size_t>(*size);
  const size_t length = strnlen(source, room);
  if (length == room) return kStatusFailed;
  const WorkText<char> work(source, length, destination, (length + 1) * sizeof(wchar_t));
  if (work.get() == nullptr) return kStatusFailed;
  destination[decode_utf8(work.get(), length, destination)] = L'\0';
  return kStatusOk;
}
