// tests/torture/signals_rows.cpp: portability/signals.h under torture.
#include "portability/signals.h"

#include <pthread.h>

#include "tests/support/torture.h"

namespace {

using orbtest::Fault;
using orbtest::Trial;
using quillon_com::orb::LogInSystemLog;
using quillon_com::orb::SignalHandler;
using quillon_com::orb::vLogInSystemLog;

void do_nothing() {}

// The calling thread's signal mask, restored behind the scope.
class SavedMask {
 public:
  SavedMask() { pthread_sigmask(SIG_SETMASK, nullptr, &mask_); }
  ~SavedMask() { pthread_sigmask(SIG_SETMASK, &mask_, nullptr); }
  SavedMask(const SavedMask&) = delete;
  SavedMask& operator=(const SavedMask&) = delete;

 private:
  sigset_t mask_{};
};

__attribute__((format(printf, 1, 2))) bool log_arguments(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const bool logged = vLogInSystemLog(7, format, arguments);
  va_end(arguments);
  return logged;
}

__attribute__((format(printf, 2, 3))) bool log_tagged(const char* tag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const bool logged = vLogInSystemLog(7, tag, format, arguments);
  va_end(arguments);
  return logged;
}

std::vector<Fault> logging(const char* answer) {
  return {{"pthread_mutex_lock", answer}, {"pthread_mutex_unlock", answer}};
}

const orbtest::Tortures rows({
    {"CatchSIGTERM", "", "done",
     [](Trial& trial) {
       trial.call([] { CatchSIGTERM(15); });
       bSigTermReceived = 0;
     }},
    {"quillon_com::orb::SignalHandler::SignalHandler()", "", "done",
     [](Trial& trial) { trial.call([] { const SignalHandler handler; }); }},
    {"quillon_com::orb::SignalHandler::~SignalHandler()", "with a callback", "done",
     [](Trial& trial) {
       auto handler = std::make_unique<SignalHandler>();
       handler->registerOnSignalCallback(1, do_nothing);
       trial.call([&] { handler.reset(); });
     }},
    {"quillon_com::orb::SignalHandler::addSignalToBlock(int)",
     "",
     "0",
     [](Trial& trial) {
       const SavedMask mask;
       SignalHandler handler;
       trial.call([&] { return handler.addSignalToBlock(SIGUSR2); });
     },
     {{"pthread_sigmask", "0"}}},
    {"quillon_com::orb::SignalHandler::unblockSignal(int)",
     "",
     "0",
     [](Trial& trial) {
       const SavedMask mask;
       SignalHandler handler;
       trial.call([&] { return handler.unblockSignal(SIGUSR2); });
     },
     {{"pthread_sigmask", "0"}}},
    {"quillon_com::orb::SignalHandler::registerOnSignalCallback(int, void (*)())",
     "",
     "0",
     [](Trial& trial) {
       SignalHandler handler;
       trial.call([&] { return handler.registerOnSignalCallback(1, do_nothing); });
     },
     {{"operator new", "no memory"}}},
    {"quillon_com::orb::SignalHandler::operator()()",
     "",
     "done",
     [](Trial& trial) {
       const SavedMask mask;
       SignalHandler handler;
       handler.addSignalToBlock(SIGUSR2);
       pthread_kill(pthread_self(), SIGUSR2);
       trial.call([&] { handler(); });
     },
     {{"sigwait", "done"},
      {"sigwait onwards", orbtest::kGoesOn},
      {"pthread_mutex_lock", "done"},
      {"pthread_mutex_unlock", "done"}}},
    {"quillon_com::orb::LogInSystemLog(int, char const*, ...)", "", "1",
     [](Trial& trial) { trial.call([] { return LogInSystemLog(7, "torture"); }); }, logging("1")},
    {"quillon_com::orb::LogInSystemLog(int, char const*, char const*, ...)", "", "1",
     [](Trial& trial) { trial.call([] { return LogInSystemLog(7, "tag", "torture"); }); },
     logging("1")},
    {"quillon_com::orb::vLogInSystemLog(int, char const*, va_list)", "", "1",
     [](Trial& trial) { trial.call([] { return log_arguments("torture"); }); }, logging("1")},
    {"quillon_com::orb::vLogInSystemLog(int, char const*, char const*, va_list)", "", "1",
     [](Trial& trial) { trial.call([] { return log_tagged("tag", "torture"); }); }, logging("1")},
});

}  // namespace
