// sysprops/releaseinfo.cpp: the identification rules over release files and kernel names.
#include "sysprops/releaseinfo.h"

#include <algorithm>
#include <iterator>

#include "sysprops/records.h"

namespace quillon_com::orb::sysprops {

namespace {

constexpr int kServerChassis[] = {17, 23, 28, 29};  // main server, rack mount, blade and its case

std::string field(const platform::ReleaseTexts& texts, const char* name) {
  const auto found = texts.fields.find(name);
  return found == texts.fields.end() ? std::string() : found->second;
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

bool starts_with(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

std::string lower_case(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

// The end of the digits of `text` that begin at `position`.
size_t digits_end(const std::string& text, size_t position) {
  return std::min(text.find_first_not_of("0123456789", position), text.size());
}

bool is_suse(const platform::ReleaseTexts& texts) {
  const std::string id = lower_case(field(texts, "ID"));
  const std::string kin = id.empty() ? release_name(texts) : field(texts, "ID_LIKE");
  return starts_with(id, "sle") || contains(lower_case(id + " " + kin), "suse");
}

// The x.y.z at the start of `text`; empty when it starts otherwise.
std::string leading_triple(const std::string& text) {
  size_t end = 0;
  for (int component = 0; component < 3; ++component) {
    if (component != 0 && (end >= text.size() || text[end++] != '.')) return {};
    const size_t start = end;
    end = digits_end(text, start);
    if (end == start) return {};
  }
  return text.substr(0, end);
}

// Component `index` of `text`, split at runs of "."; empty when there are fewer.
std::string component_of(const std::string& text, int index) {
  size_t start = 0;
  size_t end = 0;
  for (int i = 0; i <= index; ++i) {
    start = text.find_first_not_of('.', end);
    if (start == std::string::npos) return {};
    end = std::min(text.find('.', start), text.size());
  }
  return text.substr(start, end - start);
}

// Whether one of `words`, each behind a comma, occurs in `text`.
bool holds_a_word(const std::string& text, const std::string& words) {
  for (size_t start = 0; start < words.size();) {
    const size_t end = std::min(words.find(',', start), words.size());
    if (end != start && contains(text, words.substr(start, end - start))) return true;
    start = end + 1;
  }
  return false;
}

}  // namespace

std::string release_name(const platform::ReleaseTexts& texts) {
  const std::string name = field(texts, "NAME");
  return name.empty() ? texts.legacy_name : name;
}

std::string release_version(const platform::ReleaseTexts& texts,
                            const std::string& kernel_release) {
  const std::string id = field(texts, "ID");
  const std::string version = field(texts, "VERSION_ID");
  if (id == "ubuntu") {
    std::string exact = leading_triple(field(texts, "VERSION"));
    if (!exact.empty()) return exact;
  }
  if (!version.empty()) {
    const bool exact = id == "debian" && starts_with(texts.debian_version, version + ".");
    return exact ? texts.debian_version : version;
  }
  const std::string build = field(texts, "BUILD_ID");
  return build.empty() ? kernel_release : build;
}

std::string release_patch(const platform::ReleaseTexts& texts, const std::string& version) {
  if (is_suse(texts)) {
    const std::string text = field(texts, "VERSION");
    const size_t mark = text.find("-SP");
    if (mark != std::string::npos) {
      const size_t start = mark + 3;
      const size_t end = digits_end(text, start);
      if (end != start) return text.substr(start, end - start);
    }
  }
  return component_of(version, 2);
}

bool release_is_server(const platform::ReleaseTexts& texts) {
  const bool suse = is_suse(texts);
  std::string text = " " + release_name(texts) + " " + field(texts, "VERSION") + " " +
                     field(texts, "VARIANT") + " ";
  if (suse) text += field(texts, "PRETTY_NAME") + " ";
  return holds_a_word(text, suse ? suse_server_strings : server_strings) ||
         field(texts, "VARIANT_ID") == "server" ||
         std::find(std::begin(kServerChassis), std::end(kServerChassis), texts.chassis_type) !=
             std::end(kServerChassis);
}

std::string release_bit_mode(const std::string& machine) {
  return contains(machine, "64") || machine == "s390x" ? "1" : "0";
}

}  // namespace quillon_com::orb::sysprops
