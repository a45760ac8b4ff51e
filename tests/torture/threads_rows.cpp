// tests/torture/threads_rows.cpp: portability/threads.h under torture.
#include "portability/threads.h"

#include "tests/portability/handle_scope.h"
#include "tests/torture/attached.h"

namespace {

using orbtest::Attached;
using orbtest::Fault;
using orbtest::Handle;
using orbtest::indifferent;
using orbtest::kUntouched;
using orbtest::Trial;

void* return_at_once(void* argument) { return argument; }

// Tells when the thread that it belongs to has ended, its clean-up included.
struct Departure {
  std::atomic<bool>* gone = nullptr;
  ~Departure() {
    if (gone != nullptr) *gone = true;
  }
};
thread_local Departure departure;

struct Departing {
  std::atomic<bool> gone{false};
  Trial* tortured = nullptr;  // from the end of the routine on, unless null

  static void* run(void* argument) {
    auto* self = static_cast<Departing*>(argument);
    departure.gone = &self->gone;
    if (self->tortured != nullptr) self->tortured->watch();
    return nullptr;
  }
  void wait() const {
    while (!gone) std::this_thread::yield();
  }
};

void end_of_thread(Trial& trial) {
  const int64_t slot = voxTlsAlloc();
  Departing thread;
  thread.tortured = &trial;
  const Handle handle(voxBeginThread(nullptr, 0, Departing::run, &thread, 0, nullptr));
  thread.wait();
  trial.stop_watching();
  trial.answer(orbtest::answer_text(voxWaitForSingleObject(handle.get(), 0)));
  if (pTlsKeyTable[slot] != nullptr) trial.answer("slot kept");
}

std::vector<Fault> ending() {
  auto faults = indifferent("2");
  faults.push_back({"pthread_key_delete", "2"});
  faults.push_back({"pthread_cond_broadcast", "2"});
  return faults;
}

template <auto begin>
void begin_and_end(Trial& trial) {
  uint32_t id = 0;
  const Handle thread(
      trial.call([&] { return begin(nullptr, 0, return_at_once, nullptr, 0, &id); }));
  if (thread.get() != reinterpret_cast<void*>(intptr_t{-1}))
    voxWaitForSingleObject(thread.get(), INFINITE);
}

std::vector<Fault> beginning(const char* failed) {
  return {{"malloc", failed, 12},        {"malloc", failed, 12},
          {"pthread_cond_init", failed}, {"pthread_mutex_init", failed},
          {"pthread_attr_init", failed}, {"pthread_attr_setdetachstate", failed},
          {"pthread_create", failed},    {"pthread_attr_destroy", "made"}};
}

// A slot that is given back behind the scope.
class Slot {
 public:
  Slot() : number_(static_cast<uint32_t>(voxTlsAlloc())) {}
  ~Slot() {
    if (pTlsKeyTable[number_] != nullptr) voxTlsFree(number_);
  }
  Slot(const Slot&) = delete;
  Slot& operator=(const Slot&) = delete;
  uint32_t number() const { return number_; }

 private:
  uint32_t number_;
};

std::vector<Fault> allocating() {
  return {{"pthread_mutex_lock", "a slot"},
          {"pthread_mutex_lock#1 onwards", "-1", 12},
          {"malloc", "-1", 12},
          {"pthread_key_create", "-1"},
          {"pthread_mutex_unlock", "a slot"}};
}

template <int64_t (*allocate)()>
void allocate_slot(Trial& trial) {
  const int64_t slot = trial.call([] { return allocate(); });
  if (slot >= 0) trial.answer("a slot");
  if (slot >= 0) voxTlsFree(static_cast<uint32_t>(slot));
}

std::vector<Fault> releasing() {
  auto faults = indifferent("1");
  faults.push_back({"pthread_mutex_lock#1 onwards", "0"});
  faults.push_back({"pthread_key_delete", "0"});
  return faults;
}

const orbtest::Tortures rows({
    {"voxBeginThread", "", "made", begin_and_end<voxBeginThread>, beginning("-1")},
    {"voxCreateThread", "", "made",
     [](Trial& trial) {
       const Handle thread(trial.call(
           [] { return voxCreateThread(nullptr, 0, return_at_once, nullptr, 0, nullptr); }));
       if (thread != nullptr) voxWaitForSingleObject(thread.get(), INFINITE);
     },
     beginning("null")},
    {"set_pthread_sched_param", "", "done",
     [](Trial& trial) { trial.call([] { set_pthread_sched_param(nullptr); }); }},
    {"voxThreadJuggle", "end of the thread", "2", end_of_thread, ending()},
    {"voxCleanupThread", "end of the thread", "2", end_of_thread, ending()},
    {"voxCloseHandle",
     "ended thread",
     "1",
     [](Trial& trial) {
       Departing thread;
       Handle handle(voxBeginThread(nullptr, 0, Departing::run, &thread, 0, nullptr));
       thread.wait();
       trial.call([&] { return voxCloseHandle(handle.get()); });
       const bool open =
           trial.failed() && trial.answer() == std::string("0") && handle->references == 1;
       if (!open) handle.release();
     },
     {{"pthread_mutex_lock", "0"}, {"pthread_mutex_unlock", "0", kUntouched, 3}}},
    {"voxTlsAlloc", "", "a slot", allocate_slot<voxTlsAlloc>, allocating()},
    {"voxTlsFree", "", "1",
     [](Trial& trial) {
       const Slot slot;
       trial.call([&] { return voxTlsFree(slot.number()); });
       if (pTlsKeyTable[slot.number()] != nullptr) trial.answer("slot kept");
     },
     releasing()},
    {"voxTlsSetValue",
     "",
     "1",
     [](Trial& trial) {
       const Slot slot;
       trial.call([&] { return voxTlsSetValue(slot.number(), &trial); });
     },
     {{"pthread_setspecific", "0"}}},
    {"voxTlsGetValue", "", "made",
     [](Trial& trial) {
       const Slot slot;
       voxTlsSetValue(slot.number(), &trial);
       trial.call([&] { return voxTlsGetValue(slot.number()); });
     }},
    {"vxSO_ProcessAttach", "", "a slot", allocate_slot<vxSO_ProcessAttach>, allocating()},
    {"vxSO_ProcessDetach", "", "1",
     [](Trial& trial) {
       vxSO_ProcessAttach();
       trial.call([] { return vxSO_ProcessDetach(); });
     },
     releasing()},
    {"vxSO_ThreadAttach",
     "",
     "1 made",
     [](Trial& trial) {
       vxSO_ProcessAttach();
       trial.call([] { return vxSO_ThreadAttach(); });
       trial.answer(trial.answer() + std::string(" ") +
                    orbtest::answer_text(reinterpret_cast<void*>(vxSO_DbgGetThread())));
       vxSO_ThreadDetach();
       vxSO_ProcessDetach();
     },
     {{"malloc", "1 null", 12},
      {"malloc onwards", "0 null", 12},
      {"pthread_cond_init", "1 null"},
      {"pthread_cond_init onwards", "0 null"},
      {"pthread_mutex_init", "1 null"},
      {"pthread_mutex_init onwards", "0 null"},
      {"pthread_setspecific", "0 null"}}},
    {"vxSO_ThreadDetach",
     "",
     "1",
     [](Trial& trial) {
       vxSO_ProcessAttach();
       vxSO_ThreadAttach();
       const Handle event(reinterpret_cast<_voxHandleObject_t*>(vxSO_GetThread()));
       ++event->references;
       trial.call([] { return vxSO_ThreadDetach(); });
       if (trial.failed() && event->references == 2) --event->references;
       vxSO_ProcessDetach();
     },
     {{"pthread_mutex_lock", "1"},
      {"pthread_mutex_lock onwards", "0"},
      {"pthread_mutex_unlock", "1"},
      {"pthread_mutex_unlock onwards", "0"},
      {"pthread_setspecific", "0"}}},
    {"vxSO_ThreadAttachX",
     "",
     "1",
     [](Trial& trial) {
       vxSO_ProcessAttach();
       trial.call([] { return vxSO_ThreadAttachX(); });
       vxSO_ProcessDetach();
     },
     {{"pthread_setspecific", "0"}}},
    {"vxSO_ThreadDetachX", "", "done",
     [](Trial& trial) { trial.call([] { vxSO_ThreadDetachX(); }); }},
    {"vxSO_GetThread", "", "-1",
     [](Trial& trial) {
       vxSO_ProcessAttach();
       trial.call([] { return vxSO_GetThread(); });
       vxSO_ProcessDetach();
     }},
    {"vxSO_DbgGetThread", "", "0",
     [](Trial& trial) {
       vxSO_ProcessAttach();
       trial.call([] { return vxSO_DbgGetThread(); });
       vxSO_ProcessDetach();
     }},
});

}  // namespace
