// platform/version_list.h: the texts of a property list, for systems without a reader of their own.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon_com::orb::platform {

// Reads the texts that the dictionary at the top of the property list `bytes`, XML in UTF-8 or
// binary ("bplist00"), holds under `keys`. `texts` is replaced, one member per key in their order:
// UTF-8, or nothing for a key that is absent or has another kind of value. A key that occurs twice
// counts as its last occurrence. Returns false with `texts` untouched when `bytes` is no complete,
// well-formed list with a dictionary at its top. Any bytes may be given: work and memory grow
// linearly with their number (times the number of keys), however deep they nest. Safe from any
// thread.
bool property_list_texts(std::string_view bytes, const std::vector<std::string>& keys,
                         std::vector<std::optional<std::string>>* texts);

}  // namespace quillon_com::orb::platform
