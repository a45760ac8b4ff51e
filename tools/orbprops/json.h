// tools/orbprops/json.h: answers as JSON documents, valid against orbprops.schema.json.
#pragma once

#include <string>

#include "tools/orbprops/report.h"

namespace orbprops {

// One document with a section for each part of `answer`, two blanks a level and a line end behind
// it. Always valid UTF-8: what is no text in a name becomes U+FFFD. Control characters are escaped
// throughout. Timings are a section when `with_timings`.
std::string document_json(const Answer& answer, bool with_timings);

// One object of keys and values; a key that occurs twice stands there once.
std::string values_json(const std::vector<Property>& properties);

}  // namespace orbprops
