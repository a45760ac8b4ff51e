// tests/soak/main.cpp: soak [SECONDS]: eight threads use everything at once; prints a table of what
// they did and of what the process took, and exits with 1 when anything failed or grew.
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <thread>

#include "portability/threads.h"
#include "tests/soak/crew.h"
#include "tests/soak/figures.h"
#include "tests/support/fence.h"
#include "tests/support/temp_dir.h"

namespace {

using soak::Figures;
using std::chrono::seconds;
using std::chrono::steady_clock;

// What the figures at rest may be above those after the warm-up.
constexpr Figures kMostGrowth = {size_t{64} << 10, size_t{4} << 20, 0, 0};
constexpr bool kSanitized = std::string_view(ORB_SANITIZERS).size() > 0;

// The allocator is asked once, at its start, to count exactly: begin once more with that asked.
void count_blocks_exactly(char** arguments) {
  if (kSanitized || getenv(soak::kExactName) != nullptr) return;
  setenv(soak::kExactName, soak::kExactValue, 1);
  execv("/proc/self/exe", arguments);
}

// The table's stream. The library's own diagnostic lines, on standard output, go nowhere.
FILE* open_table() {
  FILE* const table = fdopen(dup(STDOUT_FILENO), "w");
  return freopen("/dev/null", "w", stdout) == nullptr ? nullptr : table;
}

std::vector<soak::Area> all_areas(bool with_removal) {
  std::vector<soak::Area> areas;
  for (const auto* part :
       {&soak::handle_areas(), &soak::file_areas(), &soak::text_areas(), &soak::machine_areas()})
    areas.insert(areas.end(), part->begin(), part->end());
  const auto is_out = [&](const soak::Area& area) {
    return !with_removal && std::string_view(area.name) == "tree removal";
  };
  areas.erase(std::remove_if(areas.begin(), areas.end(), is_out), areas.end());
  return areas;
}

// Lets the crew work for that long. False, with the places where they are told, when a thread
// does not come back from its round.
bool work_for(soak::Crew& crew, steady_clock::duration time, FILE* table) {
  crew.work();
  std::this_thread::sleep_for(time);
  if (crew.rest()) return true;
  for (const auto& worker : crew.workers())
    std::fprintf(table, "thread %u has not ended its round: %s\n", worker->number(),
                 worker->area.load());
  return false;
}

// Whoever is still registered with the lock is told that it is free.
void tell_the_registered() {
  soak::Shared& all = soak::shared();
  vxSO_ThreadAttach();
  while (all.lock->notifyList != nullptr) {
    vxSO_SELockExclusive(all.lock, 1);
    vxSO_SELockRelease(all.lock);
  }
  vxSO_ThreadDetach();
}

// The figures once the threads that were begun have gone.
Figures figures_at_rest() {
  tell_the_registered();
  Figures figures = soak::figures_now();
  for (int turn = 0; turn < 5000 && figures.threads > soak::kWorkers + 1; ++turn) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    figures = soak::figures_now();
  }
  return figures;
}

bool print_rounds(const soak::Crew& crew, FILE* table) {
  std::fprintf(table, "%-24s %12s\n", "area", "rounds");
  for (size_t place = 0; place < crew.areas().size(); ++place) {
    unsigned long rounds = 0;
    for (const auto& worker : crew.workers()) rounds += worker->rounds[place];
    std::fprintf(table, "%-24s %12lu\n", crew.areas()[place].name, rounds);
  }
  bool sound = true;
  for (const auto& worker : crew.workers()) {
    if (worker->failures() == 0) continue;
    std::fprintf(table, "thread %u: %lu failures, the first: %s\n", worker->number(),
                 worker->failures(), worker->first_failure());
    sound = false;
  }
  const char* rule = "";
  if (!soak::shared_objects_hold(&rule)) {
    std::fprintf(table, "does not hold: %s\n", rule);
    sound = false;
  }
  return sound;
}

bool print_growth(const Figures& first, const Figures& last, FILE* table) {
  constexpr size_t kKibibyte = 1024;
  const struct {
    const char* name;
    size_t first, last, growth, unit;
    bool counts;
  } rows[] = {
      {"memory in use, KiB", first.in_use, last.in_use, kMostGrowth.in_use, kKibibyte, !kSanitized},
      {"resident, KiB", first.resident, last.resident, kMostGrowth.resident, kKibibyte,
       !kSanitized},
      {"descriptors", first.descriptors, last.descriptors, kMostGrowth.descriptors, 1, true},
      {"threads", first.threads, last.threads, kMostGrowth.threads, 1, true},
  };
  bool flat = true;
  std::fprintf(table, "\n%-24s %12s %12s %12s\n", "at rest", "warmed up", "at the end", "bound");
  for (const auto& row : rows) {
    std::fprintf(table, "%-24s %12zu %12zu %12zu%s\n", row.name, row.first / row.unit,
                 row.last / row.unit, (row.first + row.growth) / row.unit,
                 row.counts ? "" : "  (a sanitizer keeps what is released)");
    if (row.counts && row.last > row.first + row.growth) flat = false;
  }
  return flat;
}

int soak_for(long time, FILE* table) {
  const bool fenced = orbtest::fence_machine_off();
  const orbtest::TempDir folder;
  if (!soak::make_shared_objects()) return 1;
  soak::Crew crew(folder.path(), all_areas(fenced));
  const auto warm_up =
      std::clamp(std::chrono::milliseconds(time * 200), std::chrono::milliseconds(1000),
                 std::chrono::milliseconds(60'000));
  if (!work_for(crew, warm_up, table)) _exit(1);
  const Figures first = figures_at_rest();
  if (!work_for(crew, std::max(seconds(time) - warm_up, std::chrono::milliseconds(0)), table))
    _exit(1);
  const Figures last = figures_at_rest();
  const bool sound = print_rounds(crew, table);
  const bool flat = print_growth(first, last, table);
  if (!fenced)
    std::fputs("tree removal: left out, it takes root to make the machine read-only\n", table);
  std::fprintf(table, "\n%u threads, %ld s: %s\n", soak::kWorkers, time,
               !sound ? "FAILED"
               : flat ? "passed"
                      : "GREW");
  return sound && flat ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  const long time = count > 1 ? std::atol(arguments[1]) : 600;
  if (count > 2 || time < 1) {
    std::fputs("usage: soak [SECONDS]\n", stderr);
    return 2;
  }
  count_blocks_exactly(arguments);
  FILE* const table = open_table();
  if (table == nullptr) return 1;
  setlogmask(LOG_MASK(LOG_EMERG));  // nothing of this is for the log's readers
  const int status = soak_for(time, table);
  std::fclose(table);
  return status;
}
