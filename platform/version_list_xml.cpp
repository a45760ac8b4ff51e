// platform/version_list_xml.cpp: a property list in XML.
//
// One pass from start to end. Open elements are kept in a list, not on the call stack; entities
// that a document type declares are unknown, so that no text grows.
#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/version_list_forms.h"

namespace quillon_com::orb::platform {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kPlainKinds[] = {"data", "date", "integer", "real"};

struct Tag {
  std::string_view name;
  bool closing = false;
  bool empty = false;  // "<dict/>"
};

// A dictionary or array whose end has not been read.
struct OpenElement {
  bool dictionary;
  bool wants_value;  // a dictionary's key has been read
};

class XmlReader {
 public:
  XmlReader(std::string_view bytes, WantedTexts* wanted) : rest_(bytes), wanted_(wanted) {}

  bool read() {
    skip("\xEF\xBB\xBF");
    auto tag = next_tag();
    const bool wrapped = tag && tag->name == "plist" && !tag->closing && !tag->empty;
    if (wrapped) tag = next_tag();
    if (!tag || tag->name != "dict" || tag->closing) return false;
    if (!tag->empty && !read_dictionary()) return false;
    if (wrapped) {
      tag = next_tag();
      if (!tag || tag->name != "plist" || !tag->closing) return false;
    }
    if (!skip_between()) return false;
    return rest_.find_first_not_of('\0') == std::string_view::npos;
  }

 private:
  bool starts(std::string_view text) const { return rest_.substr(0, text.size()) == text; }

  bool skip(std::string_view text) {
    if (!starts(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }

  // Takes what stands before the next `end`, and the end itself; nothing when there is none.
  std::optional<std::string_view> take_until(std::string_view end) {
    const size_t found = rest_.find(end);
    if (found == std::string_view::npos) return std::nullopt;
    const std::string_view taken = rest_.substr(0, found);
    rest_.remove_prefix(found + end.size());
    return taken;
  }

  // Passes over blanks, comments, processing instructions and document types.
  bool skip_between() {
    while (true) {
      rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
      if (skip("<!--")) {
        if (!take_until("-->")) return false;
      } else if (skip("<?")) {
        if (!take_until("?>")) return false;
      } else if (skip("<!DOCTYPE")) {
        if (!skip_document_type()) return false;
      } else {
        return true;
      }
    }
  }

  bool skip_document_type() {
    size_t brackets = 0;
    while (!rest_.empty()) {
      if (skip("<!--")) {
        if (!take_until("-->")) return false;
        continue;
      }
      const char c = rest_.front();
      rest_.remove_prefix(1);
      if (c == '"' || c == '\'') {
        if (!take_until(std::string_view(&c, 1))) return false;
      } else if (c == '[') {
        ++brackets;
      } else if (c == ']' && brackets > 0) {
        --brackets;
      } else if (c == '>' && brackets == 0) {
        return true;
      }
    }
    return false;
  }

  // The tag that comes next, with only what skip_between passes over in front of it.
  std::optional<Tag> next_tag() {
    if (!skip_between() || !skip("<")) return std::nullopt;
    Tag tag;
    tag.closing = skip("/");
    const size_t end = rest_.find_first_of(" \t\r\n/>");
    if (end == 0 || end == std::string_view::npos) return std::nullopt;
    tag.name = rest_.substr(0, end);
    rest_.remove_prefix(end);
    char quote = 0;
    for (size_t i = 0; i < rest_.size(); ++i) {
      const char c = rest_[i];
      if (quote != 0) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (c == '<') {
        return std::nullopt;
      } else if (c == '>') {
        tag.empty = i > 0 && rest_[i - 1] == '/';
        rest_.remove_prefix(i + 1);
        return tag.closing && tag.empty ? std::nullopt : std::optional<Tag>(tag);
      }
    }
    return std::nullopt;
  }

  // Behind the "&".
  bool read_entity(std::string* text) {
    constexpr std::pair<std::string_view, char32_t> kNamed[] = {
        {"amp;", '&'}, {"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"apos;", '\''}};
    for (const auto& [name, code] : kNamed) {
      if (skip(name)) return append_utf8(code, text);
    }
    if (!skip("#")) return false;
    const bool hexadecimal = skip("x");
    constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
    const size_t length = std::min(rest_.find_first_not_of(kDigits), rest_.size());
    if (length == 0 || length > 8 || rest_.size() == length || rest_[length] != ';') return false;
    char32_t code = 0;
    for (char c : rest_.substr(0, length)) {
      const auto digit = static_cast<char32_t>(kDigits.find(c));
      if (!hexadecimal && digit > 9) return false;
      const char32_t value = digit > 15 ? digit - 6 : digit;
      code = code * (hexadecimal ? 16 : 10) + value;
    }
    rest_.remove_prefix(length + 1);
    return append_utf8(code, text);
  }

  // The text of the element that `tag` opened, through its closing tag.
  bool read_text(const Tag& tag, std::string* text) {
    text->clear();
    while (!tag.empty) {
      const size_t end = rest_.find_first_of("<&");
      if (end == std::string_view::npos) return false;
      text->append(rest_.substr(0, end));
      rest_.remove_prefix(end);
      if (skip("&")) {
        if (!read_entity(text)) return false;
      } else if (skip("<![CDATA[")) {
        const auto part = take_until("]]>");
        if (!part) return false;
        text->append(*part);
      } else {
        const auto closing = starts("</") ? next_tag() : std::nullopt;
        if (!closing || closing->name != tag.name) return false;
        break;
      }
    }
    return is_utf8(*text);
  }

  // The element that `tag` opens. A text is left in `text`; an element that holds others only
  // becomes the last of `open`.
  bool begin_value(const Tag& tag, std::vector<OpenElement>* open,
                   std::optional<std::string>* text) {
    text->reset();
    if (tag.name == "dict" || tag.name == "array") {
      if (!tag.empty) open->push_back({tag.name == "dict", false});
      return true;
    }
    if (tag.name == "string") return read_text(tag, &text->emplace());
    if (tag.name == "true" || tag.name == "false") {
      std::string content;
      return read_text(tag, &content) && content.find_first_not_of(kBlanks) == std::string::npos;
    }
    std::string content;
    return std::find(std::begin(kPlainKinds), std::end(kPlainKinds), tag.name) !=
               std::end(kPlainKinds) &&
           read_text(tag, &content);
  }

  // The dictionary at the top, behind its tag.
  bool read_dictionary() {
    std::vector<OpenElement> open = {{true, false}};
    std::string key;    // of the dictionary at the top
    std::string other;  // of one below it
    std::optional<std::string> text;
    while (!open.empty()) {
      const auto tag = next_tag();
      if (!tag) return false;
      const bool at_top = open.size() == 1;
      OpenElement& inner = open.back();
      if (tag->closing) {
        if (tag->name != (inner.dictionary ? "dict" : "array") || inner.wants_value) return false;
        open.pop_back();
      } else if (inner.dictionary && !inner.wants_value) {
        if (tag->name != "key" || !read_text(*tag, at_top ? &key : &other)) return false;
        inner.wants_value = true;
      } else {
        inner.wants_value = false;
        if (!begin_value(*tag, &open, &text)) return false;
        if (at_top) wanted_->set(key, text);
      }
    }
    return true;
  }

  std::string_view rest_;
  WantedTexts* wanted_;
};

}  // namespace

bool read_xml_list(std::string_view bytes, WantedTexts* wanted) {
  return XmlReader(bytes, wanted).read();
}

}  // namespace quillon_com::orb::platform
