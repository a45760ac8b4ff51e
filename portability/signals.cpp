// portability/signals.cpp: the dispatcher's loop and the plain handler.
#include "portability/signals.h"

#include <cerrno>

int32_t bSigTermReceived = 0;
int32_t bDummyThreadSignalled = 1;

void CatchSIGTERM(int) { __atomic_store_n(&bSigTermReceived, 1, __ATOMIC_SEQ_CST); }

namespace quillon_com::orb {
namespace {

constexpr SyslogPriority kError = 3;
constexpr int kMaskBits = 32;

// What the test of a received signal against the mask can say; the test never says `invalid`.
enum class Membership { member, stranger, invalid };

bool has_bit(int signal) { return signal >= 1 && signal <= kMaskBits; }

Membership membership(const sigset_t& mask, int signal) {
  return has_bit(signal) && sigismember(&mask, signal) == 1 ? Membership::member
                                                            : Membership::stranger;
}

void log_failed_wait(int code) {
  LogInSystemLog(kError, "Error (%d) occurred waiting for signal ... ignoring.", code);
}

// Waits for a signal of `mask`; false after a failure, which is logged.
bool wait_for_signal(const sigset_t& mask, int* signal) {
  *signal = 0;
  const int code = sigwait(&mask, signal);
  if (code != 0) log_failed_wait(code == -1 ? errno : code);
  return code == 0;
}

}  // namespace

SignalHandler::SignalHandler() { sigemptyset(&mask_); }

SignalHandler::~SignalHandler() = default;

int SignalHandler::addSignalToBlock(int signal) {
  if (has_bit(signal)) sigaddset(&mask_, signal);
  pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
  return 0;
}

int SignalHandler::unblockSignal(int signal) {
  sigset_t only;
  sigemptyset(&only);
  if (has_bit(signal)) sigaddset(&only, signal);
  pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
  return 0;
}

int SignalHandler::registerOnSignalCallback(int signal, void (*callback)()) {
  callbacks_.insert({signal, callback});
  return 0;
}

void SignalHandler::operator()() {
  for (;;) {
    int signal = 0;
    if (!wait_for_signal(mask_, &signal)) continue;
    switch (membership(mask_, signal)) {
      case Membership::member: {
        const auto registered = callbacks_.find(signal);
        if (registered == callbacks_.end()) {
          LogInSystemLog(kError, "Received signal to stop ORB.");
          return;
        }
        if (registered->second != nullptr) registered->second();
        break;
      }
      case Membership::stranger:
        LogInSystemLog(kError, "ORB received unknown signal ... ignoring.");
        break;
      case Membership::invalid:
        LogInSystemLog(kError, "ORB received invalid signal ... ignoring.");
        break;
    }
  }
}

}  // namespace quillon_com::orb
