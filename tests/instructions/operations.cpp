// tests/instructions/operations.cpp: ten operations that many callers' time goes into, run for
// their instructions to be counted.
//
// Prints the name of each operation, in the order in which `measured` runs them, kRounds times
// over.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "fileutil/conversions.h"
#include "fileutil/dirent.h"
#include "fileutil/guid.h"
#include "portability/Linklist.h"
#include "tests/support/attached.h"

namespace {

constexpr int kRounds = 20;

_voxHandleObject_t* event;
_voxHandleObject_t* mutex;
const orbtest::Lock* lock;
_vxSLL2_t* list;
std::string folder;
volatile long sink;  // results end here, so that no call is left out

void event_set_wait() {
  voxSetEvent(event);
  sink = static_cast<long>(voxWaitForSingleObject(event, INFINITE));
}

void mutex_acquire_release() {
  sink = static_cast<long>(voxWaitForSingleObject(mutex, INFINITE));
  voxReleaseMutex(mutex);
}

void interlocked() {
  static long word = 0;
  voxInterlockedIncrement(&word);
  sink = voxInterlockedExchange(&word, 1);
}

void lock_exclusive_shared() {
  vxSO_SELockExclusive(lock->get(), 1);
  vxSO_SELockRelease(lock->get());
  vxSO_SELockSharedWaitForExclusive(lock->get(), 1);
  vxSO_SELockRelease(lock->get());
}

void list_insert_remove() {
  static void* item[2];
  vxSLL2_XInsertTail(list, item);
  sink = vxSLL2_XRemoveHead(list) == item ? 1 : 0;
}

void wildcard() {
  static const std::string name(260, 'a');
  static const std::string hostile = [] {
    std::string pattern = "*";
    while (pattern.size() < 129) pattern += "?a";
    return pattern + "b";
  }();
  sink = voxWildCardMatch("rep*2024*.t?t", "report-2024-03-final.txt");
  sink = voxWildCardMatch(hostile.c_str(), name.c_str());
}

const std::string& mixed_text() {
  static const std::string text = [] {
    std::string made;
    while (made.size() < 1000) made += "na\xC3\xAFve plain words \xE2\x82\xAC \xE6\x97\xA5 ";
    return made;
  }();
  return text;
}

void utf8_to_wide() { sink = quillon_com::orb::voxcomn_ansi_to_wide(mixed_text())[0]; }

void wide_to_utf8() {
  static const std::wstring text = quillon_com::orb::voxcomn_ansi_to_wide(mixed_text());
  sink = quillon_com::orb::voxcomn_wide_to_ansi(text)[0];
}

void guid_text() {
  voxGuid made;
  char text[39];
  sink = static_cast<long>(voxcomn_create_guid(&made, text, sizeof text));
}

void folder_search() {
  FindDataDirEnt found;
  const int search = voxFindFirstDirEnt((folder + "/*.txt").c_str(), &found);
  while (voxFindNextDirEnt(search, &found) == 1) continue;
  sink = voxFindCloseDirEnt(search);
}

struct Operation {
  const char* name;
  void (*run)();
};

constexpr Operation kOperations[] = {
    {"event_set_wait", event_set_wait},
    {"mutex_acquire_release", mutex_acquire_release},
    {"interlocked", interlocked},
    {"lock_exclusive_shared", lock_exclusive_shared},
    {"list_insert_remove", list_insert_remove},
    {"wildcard", wildcard},
    {"utf8_to_wide", utf8_to_wide},
    {"wide_to_utf8", wide_to_utf8},
    {"guid_text", guid_text},
    {"folder_search", folder_search},
};

void fill_folder() {
  std::string made = "/tmp/orbinstructions.XXXXXX";
  if (mkdtemp(made.data()) == nullptr) abort();
  folder = made;
  for (int entry = 0; entry < 40; ++entry) {
    const std::string file =
        folder + "/report-" + std::to_string(100 + entry) + (entry % 2 == 0 ? ".txt" : ".log");
    close(open(file.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
  }
}

}  // namespace

// The next two stand outside the unnamed name space, for compare.py knows them by their names: the
// first is where counting begins and ends, the second where a count is written down.

[[gnu::noinline]] void measured(void (*run)()) {
  for (int round = 0; round < kRounds; ++round) run();
}

[[gnu::noinline]] void operation_ends(const char* name) { printf("%s\n", name); }

int main() {
  const orbtest::Attached attached;
  const orbtest::Lock a_lock;
  lock = &a_lock;
  event = voxCreateEvent(nullptr, 1, 0, nullptr);
  mutex = voxCreateMutex(nullptr, 0, nullptr);
  vxSLL2_Create(&list);
  fill_folder();
  for (const Operation& operation : kOperations) {
    operation.run();  // what only a first call does is nobody's
    measured(operation.run);
    operation_ends(operation.name);
  }
  vxSLL2_Release(list);
  voxCloseHandle(mutex);
  voxCloseHandle(event);
  std::filesystem::remove_all(folder);
  return 0;
}
