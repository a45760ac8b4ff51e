// tests/torture/handles_rows.cpp: portability/handles.h under torture.
#include "portability/handles.h"

#include <thread>

#include "tests/portability/handle_scope.h"
#include "tests/support/torture.h"

namespace {

using orbtest::Fault;
using orbtest::Handle;
using orbtest::kUntouched;
using orbtest::make_event;
using orbtest::make_mutex;
using orbtest::Trial;

// What a function that locks and unlocks gives whichever fails.
std::vector<Fault> guarded(const char* answer) {
  return {{"pthread_mutex_lock", answer}, {"pthread_mutex_unlock", answer}};
}

// A waiter that sleeps until the event or mutex is set by another thread, in the middle of its
// sleep.
void wait_for_another(Trial& trial, _voxHandleObject_t* handle) {
  std::atomic<bool> done{false};
  std::thread setter([&] {
    while (!done && !trial.failed() &&
           std::string_view(trial.trace().last()) != "pthread_cond_wait") {
      std::this_thread::yield();
    }
    if (!done) voxSetEvent(handle);
  });
  trial.call([&] { return voxWaitForSingleObject(handle, INFINITE); });
  done = true;
  setter.join();
}

const orbtest::Tortures rows({
    {"voxCreateEvent",
     "",
     "made",
     [](Trial& trial) {
       voxCloseHandle(trial.call([] { return voxCreateEvent(nullptr, 1, 0, nullptr); }));
     },
     {{"malloc", "null", 12}, {"pthread_cond_init", "null"}, {"pthread_mutex_init", "null"}}},
    {"voxCreateEvent",
     "set",
     "made",
     [](Trial& trial) {
       voxCloseHandle(trial.call([] { return voxCreateEvent(nullptr, 1, 1, ""); }));
     },
     {{"malloc", "null", 12},
      {"pthread_cond_init", "null"},
      {"pthread_mutex_init", "null"},
      {"pthread_mutex_lock", "null", 16},
      {"pthread_cond_broadcast", "null", 16},
      {"pthread_mutex_unlock", "null", 16}}},
    {"voxCreateMutex",
     "",
     "made",
     [](Trial& trial) {
       voxCloseHandle(trial.call([] { return voxCreateMutex(nullptr, 0, nullptr); }));
     },
     {{"malloc", "null", 12}, {"pthread_cond_init", "null"}, {"pthread_mutex_init", "null"}}},
    {"voxCreateMutex",
     "owned",
     "made",
     [](Trial& trial) {
       voxCloseHandle(trial.call([] { return voxCreateMutex(nullptr, 1, nullptr); }));
     },
     {{"malloc", "null", 12},
      {"pthread_cond_init", "null"},
      {"pthread_mutex_init", "null"},
      {"pthread_mutex_trylock", "null"}}},
    {"voxOpenMutex", "", "null",
     [](Trial& trial) { trial.call([] { return voxOpenMutex(1, 1, "any"); }); }},
    {"voxSetEvent",
     "",
     "1",
     [](Trial& trial) {
       const Handle event = make_event();
       trial.call([&] { return voxSetEvent(event.get()); });
     },
     {{"pthread_mutex_lock", "0"}, {"pthread_cond_broadcast", "0"}, {"pthread_mutex_unlock", "0"}}},
    {"voxResetEvent", "", "1",
     [](Trial& trial) {
       const Handle event = make_event(true);
       trial.call([&] { return voxResetEvent(event.get()); });
     },
     guarded("0")},
    {"voxReleaseMutex",
     "",
     "1",
     [](Trial& trial) {
       const Handle mutex = make_mutex(true);
       trial.call([&] { return voxReleaseMutex(mutex.get()); });
     },
     {{"pthread_mutex_lock", "0"}, {"pthread_cond_broadcast", "0"}, {"pthread_mutex_unlock", "0"}}},
    {"voxReleaseMutex",
     "for its owner",
     "1",
     [](Trial& trial) {
       const Handle mutex = make_mutex();
       std::thread([&] { voxWaitForSingleObject(mutex.get(), 0); }).join();
       trial.call([&] { return voxReleaseMutex(mutex.get()); });
     },
     {{"pthread_mutex_lock", "0"},
      {"malloc", "0", 12},
      {"pthread_mutex_init", "0"},
      {"pthread_cond_broadcast", "0"},
      {"pthread_mutex_unlock", "0"}}},
    {"voxWaitForSingleObject", "set event", "2",
     [](Trial& trial) {
       const Handle event = make_event(true);
       trial.call([&] { return voxWaitForSingleObject(event.get(), INFINITE); });
     },
     guarded("0")},
    {"voxWaitForSingleObject", "no time", "3",
     [](Trial& trial) {
       const Handle event = make_event();
       trial.call([&] { return voxWaitForSingleObject(event.get(), 0); });
     },
     guarded("0")},
    {"voxWaitForSingleObject",
     "time out",
     "3",
     [](Trial& trial) {
       const Handle event = make_event();
       trial.call([&] { return voxWaitForSingleObject(event.get(), 1); });
       // Quirk: without a clock the guard stays locked.
       if (pthread_mutex_trylock(&event->guard) != 0) trial.answer("0 guarded");
       pthread_mutex_unlock(&event->guard);
     },
     {{"pthread_mutex_lock", "0"},
      {"gettimeofday", "0 guarded"},
      {"pthread_cond_timedwait", "0"},
      {"pthread_mutex_unlock", "3"}}},
    {"voxWaitForSingleObject",
     "event set meanwhile",
     "2",
     [](Trial& trial) {
       const Handle event = make_event();
       wait_for_another(trial, event.get());
     },
     {{"pthread_mutex_lock", "0"}, {"pthread_cond_wait", "0"}, {"pthread_mutex_unlock", "0"}}},
    {"voxWaitForSingleObject",
     "free mutex",
     "2",
     [](Trial& trial) {
       const Handle mutex = make_mutex();
       trial.call([&] { return voxWaitForSingleObject(mutex.get(), INFINITE); });
     },
     {{"pthread_mutex_lock", "0"}, {"pthread_mutex_trylock", "0"}, {"pthread_mutex_unlock", "0"}}},
    {"voxWaitForMultipleObjects", "second set", "3",
     [](Trial& trial) {
       const Handle unset = make_event();
       const Handle set = make_event(true);
       const void* handles[] = {unset.get(), set.get()};
       trial.call([&] { return voxWaitForMultipleObjects(2, handles, 0, 1000); });
     },
     guarded("0")},
    {"voxWaitForMultipleObjects",
     "two turns",
     "3",
     [](Trial& trial) {
       const Handle first = make_event();
       const Handle second = make_event();
       const void* handles[] = {first.get(), second.get()};
       trial.call([&] { return voxWaitForMultipleObjects(2, handles, 0, 20); });
       for (const Handle* each : {&first, &second}) {
         if (pthread_mutex_trylock(&(*each)->guard) != 0) trial.answer("0 guarded");
         pthread_mutex_unlock(&(*each)->guard);
       }
     },
     {{"pthread_mutex_lock", "0"},
      {"gettimeofday", "0 guarded"},
      {"pthread_cond_timedwait", "0"},
      {"pthread_mutex_unlock", "3"},
      {"pthread_mutex_unlock#1 onwards", "0"}}},  // the second turn cannot lock
    // Quirk: the condition and the mutexes are freed without being destroyed.
    {"voxCloseHandle",
     "event",
     "1",
     [](Trial& trial) {
       Handle event = make_event();
       trial.call([&] { return voxCloseHandle(event.get()); });
       const bool open = trial.failed() && event->references == 1;
       if (!open) event.release();
     },
     {{"pthread_mutex_lock", "0"}, {"pthread_mutex_unlock", "0", kUntouched, 1}}},
    {"voxCloseHandle",
     "mutex",
     "1",
     [](Trial& trial) {
       Handle mutex = make_mutex();
       trial.call([&] { return voxCloseHandle(mutex.get()); });
       const bool open = trial.failed() && mutex->references == 1;
       if (!open) mutex.release();
     },
     {{"pthread_mutex_lock", "0"}, {"pthread_mutex_unlock", "0", kUntouched, 2}}},
    {"voxGetLastError", "", "38",
     [](Trial& trial) {
       errno = ENOENT;
       trial.call([] { return voxGetLastError(); });
     }},
    {"voxInterlockedIncrement", "", "42",
     [](Trial& trial) {
       long word = 41;
       trial.call([&] { return voxInterlockedIncrement(&word); });
     },
     guarded("42")},
    {"voxInterlockedDecrement", "", "40",
     [](Trial& trial) {
       long word = 41;
       trial.call([&] { return voxInterlockedDecrement(&word); });
     },
     guarded("40")},
    {"voxInterlockedExchange", "", "41",
     [](Trial& trial) {
       long word = 41;
       trial.call([&] { return voxInterlockedExchange(&word, 7); });
     },
     guarded("41")},
});

}  // namespace
