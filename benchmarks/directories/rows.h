// benchmarks/directories/rows.h: the measured loops of searches and matches, for us and each peer.
#pragma once

#include "benchmarks/family.h"

namespace orbbench {

// Searches a folder for the pattern at the end of `path` from the first entry to the last, each
// with its kind, times and size, and returns how many were found.
using Search = long (*)(const char* path);

// Whether `name` matches `pattern`.
using Match = bool (*)(const char* pattern, const char* name);

// What is set for our rows.
using Goals = void (*)(benchmark::State& state);

// Adds the rows find_all ("*") and find_txt ("*.txt", half of the entries) of `who`, in a memory
// file system and on disk, in folders of 10 to 100,000 entries.
void add_searches(const char* who, Search search, Goals goals = nullptr);

// Adds the rows of the wildcard matcher of `who`. Only goals that our rows have of their own are
// set beside it.
void add_matches(const char* who, Match match, bool ours = false);

}  // namespace orbbench
