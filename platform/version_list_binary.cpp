// platform/version_list_binary.cpp: a property list in binary form.
//
// Eight bytes of name, the objects, a table of their offsets, and 32 bytes that say where the table
// is and how wide its members are. Only the dictionary at the top is followed: its keys, and the
// texts under the wanted ones. So nothing nests, and a circle of objects is never walked.
#include <cstdint>
#include <map>
#include <utility>

#include "platform/version_list_forms.h"

namespace quillon_com::orb::platform {
namespace {

constexpr size_t kHeaderSize = 8;
constexpr size_t kTrailerSize = 32;
enum Kind : unsigned { kInteger = 0x1, kAscii = 0x5, kUtf16 = 0x6, kDictionary = 0xD };

// A number of one to eight bytes, the highest first.
uint64_t number_of(std::string_view bytes) {
  uint64_t number = 0;
  for (char c : bytes) number = number << 8 | static_cast<unsigned char>(c);
  return number;
}

struct Object {
  unsigned kind = 0;
  uint64_t count = 0;        // of what the kind is counted in
  std::string_view content;  // from behind the count to the end of the objects
};

class BinaryReader {
 public:
  BinaryReader(std::string_view bytes, WantedTexts* wanted) : bytes_(bytes), wanted_(wanted) {}

  bool read() {
    if (!read_trailer()) return false;
    const auto top = object(top_);
    if (!top || top->kind != kDictionary) return false;
    const uint64_t room = top->content.size() / (2 * uint64_t{reference_size_});
    if (top->count > room) return false;
    const std::string_view keys = top->content;
    const std::string_view values = keys.substr(top->count * reference_size_);
    for (uint64_t i = 0; i < top->count; ++i) {
      if (!read_member(reference(keys, i), reference(values, i))) return false;
    }
    for (const auto& [key, value] : members_) wanted_->set(key, text_of(value));
    return true;
  }

 private:
  bool read_trailer() {
    if (bytes_.size() < kHeaderSize + kTrailerSize || bytes_.substr(0, 8) != "bplist00") {
      return false;
    }
    const std::string_view trailer = bytes_.substr(bytes_.size() - kTrailerSize);
    offset_size_ = static_cast<unsigned char>(trailer[6]);
    reference_size_ = static_cast<unsigned char>(trailer[7]);
    objects_ = number_of(trailer.substr(8, 8));
    top_ = number_of(trailer.substr(16, 8));
    table_ = number_of(trailer.substr(24, 8));
    if (offset_size_ < 1 || offset_size_ > 8 || reference_size_ < 1 || reference_size_ > 8) {
      return false;
    }
    const uint64_t end = bytes_.size() - kTrailerSize;
    return table_ > kHeaderSize && table_ <= end && objects_ <= (end - table_) / offset_size_ &&
           top_ < objects_;
  }

  uint64_t reference(std::string_view references, uint64_t index) const {
    return number_of(references.substr(index * reference_size_, reference_size_));
  }

  // Its head; nothing when it lies outside the objects.
  std::optional<Object> object(uint64_t index) const {
    if (index >= objects_) return std::nullopt;
    const uint64_t offset = number_of(bytes_.substr(table_ + index * offset_size_, offset_size_));
    if (offset < kHeaderSize || offset >= table_) return std::nullopt;
    std::string_view rest = bytes_.substr(offset, table_ - offset);
    const unsigned marker = static_cast<unsigned char>(rest.front());
    rest.remove_prefix(1);
    Object result{marker >> 4, marker & 0x0F, rest};
    if (result.count == 0xF && !read_count(&result)) return std::nullopt;
    return result;
  }

  // A count of 15 and more stands behind the marker, as an integer object.
  static bool read_count(Object* result) {
    std::string_view& rest = result->content;
    if (rest.empty()) return false;
    const unsigned marker = static_cast<unsigned char>(rest.front());
    const size_t width = size_t{1} << (marker & 0x0F);
    if (marker >> 4 != kInteger || (marker & 0x0F) > 3 || rest.size() - 1 < width) return false;
    result->count = number_of(rest.substr(1, width));
    rest.remove_prefix(1 + width);
    return true;
  }

  static bool is_text(const Object& object) {
    return (object.kind == kAscii && object.count <= object.content.size()) ||
           (object.kind == kUtf16 && object.count <= object.content.size() / 2);
  }

  // Nothing for another kind of object, and when the characters are none.
  static std::optional<std::string> text_of(const Object& object) {
    std::string text;
    if (!is_text(object)) return std::nullopt;
    if (object.kind == kAscii) {
      text = object.content.substr(0, object.count);
      for (char c : text) {
        if (c == 0 || (c & 0x80) != 0) return std::nullopt;
      }
      return text;
    }
    const auto unit = [&](uint64_t i) {
      return static_cast<char32_t>(number_of(object.content.substr(2 * i, 2)));
    };
    for (uint64_t i = 0; i < object.count; ++i) {
      char32_t code = unit(i);
      if (code >= 0xD800 && code < 0xDC00 && i + 1 < object.count && unit(i + 1) >= 0xDC00 &&
          unit(i + 1) < 0xE000) {
        code = 0x10000 + ((code - 0xD800) << 10) + (unit(++i) - 0xDC00);
      }
      if (!append_utf8(code, &text)) return std::nullopt;
    }
    return text;
  }

  bool read_member(uint64_t key_index, uint64_t value_index) {
    const auto key = object(key_index);
    const auto value = object(value_index);
    if (!key || !value || !is_text(*key)) return false;
    if (!wanted_->may_hold(key->count)) return true;
    const auto name = text_of(*key);
    if (!name || !wanted_->holds(*name)) return true;
    if ((value->kind == kAscii || value->kind == kUtf16) && !is_text(*value)) return false;
    members_[*name] = *value;
    return true;
  }

  std::string_view bytes_;
  WantedTexts* wanted_;
  std::map<std::string, Object> members_;  // the last value of each wanted key; read at the end
  unsigned offset_size_ = 0;
  unsigned reference_size_ = 0;
  uint64_t objects_ = 0;
  uint64_t top_ = 0;
  uint64_t table_ = 0;
};

}  // namespace

bool read_binary_list(std::string_view bytes, WantedTexts* wanted) {
  return BinaryReader(bytes, wanted).read();
}

}  // namespace quillon_com::orb::platform
