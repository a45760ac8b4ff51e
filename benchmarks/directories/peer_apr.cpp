// benchmarks/directories/peer_apr.cpp: APR's rows.
#include <apr_fnmatch.h>

#include "benchmarks/directories/rows.h"

namespace {

bool match(const char* pattern, const char* name) {
  return apr_fnmatch(pattern, name, 0) == APR_SUCCESS;
}

const bool added = (orbbench::add_matches("APR", match), true);

}  // namespace
