// tests/torture/selock_rows.cpp: portability/selock.h under torture.
#include "portability/selock.h"

#include "tests/torture/attached.h"

namespace {

using orbtest::Attached;
using orbtest::Fault;
using orbtest::indifferent;
using orbtest::kUntouched;
using orbtest::Lock;
using orbtest::OtherHolder;
using orbtest::Trial;

using Entry = int (*)(_vxSELock_t*, int);

int enter_exclusively(_vxSELock_t* lock, int wait) { return vxSO_SELock(lock, 1, wait); }
int enter_shared(_vxSELock_t* lock, int wait) { return vxSO_SELock(lock, 0, wait); }

// Entry into a free lock.
template <Entry enter>
void enter_free(Trial& trial) {
  const Attached self;
  const Lock lock;
  if (trial.call([&] { return enter(lock.get(), 1); }) == 1) vxSO_SELockRelease(lock.get());
  if (lock->count != 0 || lock->spin != 0) trial.answer("not free");
}

// Entry that has to sleep until another thread gives the lock up.
template <Entry enter>
void enter_busy(Trial& trial) {
  const Attached self;
  const Lock lock;
  {
    const OtherHolder other(lock.get(), trial);
    if (trial.call([&] { return enter(lock.get(), 1); }) == 1) vxSO_SELockRelease(lock.get());
  }
  if (lock->count != 0 || lock->spin != 0) trial.answer("not free");
}

std::vector<Fault> sleeping() {
  auto faults = indifferent("1");
  faults.push_back({"pthread_cond_wait", "1"});
  return faults;
}

int32_t done(void*, uint32_t, void*, void*) { return 0; }

// Asks to be told of a lock that another thread holds.
void register_busy(Trial& trial, bool tortured) {
  const Attached self;
  const Lock lock;
  int32_t context = 0;
  std::thread([&] {
    vxSO_ThreadAttach();
    vxSO_SELockExclusive(lock.get(), 1);
    vxSO_ThreadDetach();  // and the hold stays
  }).join();
  const auto notify = [&] {
    return vxSO_SELockExclusiveNotify(lock.get(), done, &context, nullptr);
  };
  const auto withdraw = [&] {
    return vxSO_SELockExclusiveUnnotify(lock.get(), done, &context, nullptr);
  };
  tortured ? trial.call(notify) : notify();
  if (!tortured) trial.call(withdraw);
  vxSO_SELockRelease(lock.get());  // tells and drops the registration
  if (lock->notifyList != nullptr) trial.answer("registered");
}

const orbtest::Tortures rows({
    {"vxSO_SELockCreate",
     "",
     "0 made",
     [](Trial& trial) {
       auto* lock = reinterpret_cast<_vxSELock_t*>(&trial);
       const auto result = trial.call([&] { return vxSO_SELockCreate(&lock); });
       trial.answer(std::to_string(result) + " " + orbtest::answer_text(lock));
       vxSO_Release(lock);
     },
     {{"malloc", "2147483656 null"}}},
    {"vxSO_Release", "", "done",
     [](Trial& trial) {
       _vxSELock_t* lock = nullptr;
       vxSO_SELockCreate(&lock);
       trial.call([&] { vxSO_Release(lock); });
     }},
    {"vxSO_SELockExclusive", "free", "1", enter_free<vxSO_SELockExclusive>, indifferent("1")},
    {"vxSO_SELockExclusive", "busy", "1", enter_busy<vxSO_SELockExclusive>, sleeping()},
    {"vxSO_SELockSharedStarveExclusive", "free", "1", enter_free<vxSO_SELockSharedStarveExclusive>,
     indifferent("1")},
    {"vxSO_SELockSharedStarveExclusive", "busy", "1", enter_busy<vxSO_SELockSharedStarveExclusive>,
     sleeping()},
    {"vxSO_SELockSharedWaitForExclusive", "free", "1",
     enter_free<vxSO_SELockSharedWaitForExclusive>, indifferent("1")},
    {"vxSO_SELockSharedWaitForExclusive", "busy", "1",
     enter_busy<vxSO_SELockSharedWaitForExclusive>, sleeping()},
    {"vxSO_SELock", "exclusive free", "1", enter_free<enter_exclusively>, indifferent("1")},
    {"vxSO_SELock", "shared free", "1", enter_free<enter_shared>, indifferent("1")},
    {"vxSO_SELock", "exclusive busy", "1", enter_busy<enter_exclusively>, sleeping()},
    {"vxSO_SELock", "shared busy", "1", enter_busy<enter_shared>, sleeping()},
    {"vxSO_SELockExclusiveToShared", "", "1",
     [](Trial& trial) {
       const Attached self;
       const Lock lock;
       vxSO_SELockExclusive(lock.get(), 1);
       trial.call([&] { return vxSO_SELockExclusiveToShared(lock.get()); });
       vxSO_SELockRelease(lock.get());
     },
     indifferent("1")},
    {"vxSO_SELockRelease", "", "1",
     [](Trial& trial) {
       const Attached self;
       const Lock lock;
       vxSO_SELockExclusive(lock.get(), 1);
       trial.call([&] { return vxSO_SELockRelease(lock.get()); });
       if (lock->count != 0) trial.answer("not free");
     },
     indifferent("1")},
    {"vxSO_SELockExclusiveNotify", "free", "1",
     [](Trial& trial) {
       const Attached self;
       const Lock lock;
       trial.call([&] { return vxSO_SELockExclusiveNotify(lock.get(), done, nullptr, nullptr); });
       vxSO_SELockRelease(lock.get());
     },
     indifferent("1")},
    {"vxSO_SELockExclusiveNotify",
     "busy",
     "0",
     [](Trial& trial) { register_busy(trial, true); },
     {{"pthread_mutex_lock", "0"},
      {"pthread_mutex_unlock", "0"},
      {"malloc", orbtest::kEndsTheProcess},
      {"pthread_mutex_lock#1 onwards", orbtest::kEndsTheProcess},
      {"pthread_mutex_unlock#1 onwards", orbtest::kEndsTheProcess}}},
    {"vxSO_SELockExclusiveUnnotify",
     "",
     "1",
     [](Trial& trial) { register_busy(trial, false); },
     {{"pthread_mutex_lock", "1", kUntouched, 1}, {"pthread_mutex_unlock", "1", kUntouched, 1}},
     1},
    {"vxSL_Get", "", "1",
     [](Trial& trial) {
       long word = 0;
       trial.call([&] { vxSL_Get(&word); });
       trial.answer(std::to_string(word));
     },
     indifferent("1")},
    {"vxSL_Release", "", "0",
     [](Trial& trial) {
       long word = 1;
       trial.call([&] { vxSL_Release(&word); });
       trial.answer(std::to_string(word));
     },
     indifferent("0")},
});

}  // namespace
