// fuzz/version_list_fuzzer.cpp: property lists of any bytes, and the same with harmless additions.
#include "platform/version_list.h"

#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "platform/version_list_forms.h"

using orbfuzz::check;
using namespace quillon_com::orb::platform;

namespace {

using Texts = std::vector<std::optional<std::string>>;

const std::vector<std::string> kKeys = {"ProductVersion", "ProductBuildVersion", "k", ""};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const Texts before = {"before"};
  Texts texts = before;
  const bool sound = property_list_texts(bytes, kKeys, &texts);
  if (!sound) {
    check(texts == before);
    return 0;
  }
  check(texts.size() == kKeys.size());
  for (const auto& text : texts) {
    check(!text || (is_utf8(*text) && text->size() <= 2 * size));
  }
  if (bytes.compare(0, 6, "bplist") == 0) return 0;

  // XML: comments and blanks around the list change nothing; a list cut before its end is none.
  const bool marked = bytes.compare(0, 3, "\xEF\xBB\xBF") == 0;
  Texts again;
  check(property_list_texts("<!-- x -->\n" + bytes.substr(marked ? 3 : 0), kKeys, &again));
  check(again == texts);
  if (bytes.back() != '\0') {
    check(property_list_texts(bytes + "\n<!-- x -->", kKeys, &again));
    check(again == texts);
    check(!property_list_texts(bytes + "x", kKeys, &again));
  }
  check(!property_list_texts(bytes.substr(0, bytes.rfind('<')), kKeys, &again) ||
        bytes.find("<!--") != std::string::npos || bytes.find("<?") != std::string::npos ||
        bytes.find("<!DOCTYPE") != std::string::npos);
  return 0;
}
