// fileutil/guidgenerator.h: the state behind the GUIDs of a process.
#pragma once

#include <atomic>
#include <cstdint>

#include "fileutil/guid.h"

namespace quillon_com::orb::platform {
class System;
}

namespace quillon_com::orb {

// A GUID as two numbers: its bytes 0 to 7 and 8 to 15, the most significant first.
struct GuidNumbers {
  uint64_t first;
  uint64_t second;
};

// Makes GUIDs by the rules of fileutil/guid.h. A later GUID of a clock that runs on takes no lock.
class GuidGenerator {
 public:
  // By the clock of `system`, which is read and never kept. Safe from any thread. Waits for the
  // clock to move on when it stands at the reference moment for an eleventh GUID in a row.
  GuidNumbers next(const platform::System& system);

  // The next one, stored in `guid`, which is not null.
  void create(const platform::System& system, voxGuid* guid);

 private:
  struct Moment {
    int64_t time;         // microseconds since 1970
    uint32_t adjustment;  // units of 100 ns
    uint16_t sequence;    // of the clock
  };

  // The node of the first GUID, 48 bits; 0 when another thread's was the first.
  uint64_t choose_first_node();
  void choose_reference(int64_t now);  // under the mutex of the generators
  // What a clock that has not passed the reference moment, or the first GUID, asks for.
  Moment settle(const platform::System& system, int64_t now);

  // One mutex of all generators serialises the changes of what follows; a forked child finds it
  // free.
  std::atomic<bool> initialised_{false};  // a first GUID was begun, its node chosen
  std::atomic<int64_t> reference_{0};     // microseconds since 1970: a second before the first GUID
  std::atomic<uint32_t> adjustment_{0};   // GUIDs made at the reference moment in a row
  std::atomic<uint16_t> clock_sequence_{0};
};

// voxcomn_create_guid with a generator and a machine of the caller's.
int create_guid_text(GuidGenerator& generator, const platform::System& system, voxGuid* out,
                     char* text, unsigned size);

}  // namespace quillon_com::orb
