// examples/service.cpp: a process that reloads on SIGHUP and ends on SIGTERM; it sends itself both.
#include <csignal>
#include <cstdio>

#include <unistd.h>

#include "portability/signals.h"

int main() {
  quillon_com::orb::SignalHandler signals;
  signals.addSignalToBlock(SIGHUP);  // before any thread is started
  signals.addSignalToBlock(SIGTERM);
  signals.registerOnSignalCallback(SIGHUP, [] { std::puts("reloaded"); });

  kill(getpid(), SIGHUP);
  kill(getpid(), SIGTERM);
  signals();  // returns at the first signal without a callback
  std::puts("stopped");
  return 0;
}
