// tests/torture/removals.h: the functions whose rows are run in the fence.
#pragma once

#include <set>
#include <string>

namespace orbtest {

inline const std::set<std::string> kRemovals = {"voxcomn_deltree", "voxcomn_delsubtree"};

}  // namespace orbtest
