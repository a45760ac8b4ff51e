// portability/spinlock.cpp: the spin lock and its back-off.
#include <unistd.h>

#include <cstdint>

#include "portability/cancellation.h"
#include "portability/handles.h"
#include "portability/selock.h"

namespace {

constexpr uint32_t kSpins = 4000;
constexpr uint32_t kTriesPerStep = 100;
constexpr useconds_t kSleeps[] = {0, 10'000, 100'000, 1'000'000};  // microseconds, a step each

void back_off(uint32_t failed_try) {
  if (failed_try < kSpins) return;
  const uint32_t step = (failed_try - kSpins) / kTriesPerStep;
  if (step >= sizeof kSleeps / sizeof *kSleeps) return;
  const quillon_com::orb::portability::CancellationShield shield;
  usleep(kSleeps[step]);
}

}  // namespace

void vxSL_Get(long* word) {
  if (word == nullptr) return;
  for (uint32_t failed_try = 0; voxInterlockedExchange(word, 1) != 0; ++failed_try)
    back_off(failed_try);
}

void vxSL_Release(long* word) {
  if (word != nullptr) voxInterlockedExchange(word, 0);
}
