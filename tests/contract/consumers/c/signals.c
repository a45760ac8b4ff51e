// tests/contract/consumers/c/signals.c: the plain handler, installed for a signal that is raised.
#include "portability/signals.h"

#include "../expect.h"
#include "areas.h"

void use_signals(void) {
  EXPECT(bDummyThreadSignalled == 1);
  EXPECT(bSigTermReceived == 0);
  void (*before)(int) = signal(SIGTERM, CatchSIGTERM);
  EXPECT(before != SIG_ERR);
  EXPECT(raise(SIGTERM) == 0);
  EXPECT(bSigTermReceived == 1);
  EXPECT(signal(SIGTERM, before) != SIG_ERR);
}
