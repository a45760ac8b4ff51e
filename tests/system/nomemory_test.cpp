// tests/system/nomemory_test.cpp: a process that gets no more memory from the system. Each single
// request that fails: tests/torture.
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "fileutil/conversions.h"
#include "fileutil/guid.h"
#include "fileutil/paths.h"
#include "network/netinterface.h"
#include "portability/Linklist.h"
#include "portability/dynlib.h"
#include "portability/threads.h"
#include "session/loggedonusers.h"
#include "sysprops/catalogue.h"
#include "tests/support/silent_output.h"
#include "tests/system/surroundings.h"

namespace {

using namespace quillon_com::orb;

// Nothing more than this process has, and `more` bytes.
bool limit_memory(size_t more) {
  std::ifstream pages("/proc/self/statm");
  size_t size = 0;
  pages >> size;
  const rlim_t most = size * static_cast<size_t>(sysconf(_SC_PAGESIZE)) + more;
  const rlimit limit = {most, RLIM_INFINITY};
  return std::string(ORB_SANITIZERS).empty() && size != 0 && setrlimit(RLIMIT_AS, &limit) == 0;
}

bool use_memory_up() { return limit_memory(0); }

void lift_the_limit() {
  constexpr rlimit kNone = {RLIM_INFINITY, RLIM_INFINITY};
  setrlimit(RLIMIT_AS, &kNone);
}

// While it lives, the process has no memory left that malloc would give.
class Hoard {
 public:
  Hoard() {
    for (size_t size = size_t{1} << 20; size >= sizeof(Block); size /= 2) {
      while (Block* const block = static_cast<Block*>(malloc(size))) {
        block->next = blocks_;
        blocks_ = block;
      }
    }
  }
  ~Hoard() {
    while (blocks_ != nullptr) {
      Block* const next = blocks_->next;
      free(blocks_);
      blocks_ = next;
    }
  }
  Hoard(const Hoard&) = delete;
  Hoard& operator=(const Hoard&) = delete;

 private:
  struct Block {
    Block* next;
    void* room;
  };
  Block* blocks_ = nullptr;
};

void* give_back(void* argument) { return argument; }

// The words that a call leaves behind, kept until expectations have memory again.
template <class Call>
auto without_memory(Call call) {
  __atomic_store_n(&nErrno, 0, __ATOMIC_RELAXED);
  const Hoard hoard;
  return call();
}

void expect_no_handles() {
  EXPECT_EQ(nullptr, without_memory([] { return voxCreateEvent(nullptr, 1, 0, nullptr); }));
  EXPECT_EQ(12, nErrno);
  EXPECT_EQ(nullptr, without_memory([] { return voxCreateMutex(nullptr, 0, nullptr); }));
  EXPECT_EQ(12, nErrno);
  EXPECT_EQ(-1, without_memory([] {
    return reinterpret_cast<intptr_t>(voxBeginThread(nullptr, 0, give_back, nullptr, 0, nullptr));
  }));
  EXPECT_EQ(12, nErrno);
  EXPECT_EQ(-1, without_memory(voxTlsAlloc));
  EXPECT_EQ(12, nErrno);
}

void expect_no_locks_and_lists() {
  _vxSELock_t* lock = reinterpret_cast<_vxSELock_t*>(&nErrno);
  EXPECT_EQ(0x80000008U, without_memory([&] { return vxSO_SELockCreate(&lock); }));
  EXPECT_EQ(nullptr, lock);
  _vxSLL_t* stack = nullptr;
  EXPECT_EQ(0x80000008U, without_memory([&] { return vxSLL_Create(&stack); }));
  _LinkedList_t* list = nullptr;
  EXPECT_EQ(0, without_memory([&] { return LinkedList_Init(&list); }));
}

void expect_no_texts() {
  const std::string narrow(100'000, 'x');
  const std::wstring wide(100'000, L'x');
  EXPECT_EQ(L"", without_memory([&] { return voxcomn_ansi_to_wide(narrow); }));
  EXPECT_EQ("", without_memory([&] { return voxcomn_wide_to_ansi(wide); }));
  void* resolver = nullptr;
  EXPECT_EQ(0x80000008U,
            without_memory([&] { return voxcomn_filenameresolver_create("/etc", &resolver); }));
  voxGuid guid{};
  char text[39] = {};
  EXPECT_EQ(1, without_memory([&] { return voxcomn_create_guid(&guid, text, sizeof text); }))
      << "takes none";
}

void expect_no_libraries() {
  EXPECT_EQ(nullptr, without_memory([] { return voxLoadLibrary(ORB_PLAIN_PLUGIN, nullptr); }));
  lift_the_limit();
  void* const library = voxLoadLibrary(ORB_PLAIN_PLUGIN, nullptr);
  EXPECT_NE(nullptr, library) << "the next one is";
  EXPECT_EQ(1, voxFreeLibrary(library));
}

// Whole or by std::bad_alloc: nothing else comes out of what needs memory that is not there.
template <class Call>
void expect_an_end(Call call) {
  const bool ended = without_memory([&] {
    try {
      call();
    } catch (const std::bad_alloc&) {
    }
    return true;
  });
  EXPECT_TRUE(ended);
  call();
}

void expect_answers_or_none() {
  const orbtest::SilentOutput silent;
  std::map<std::wstring, std::wstring> values;
  std::map<std::wstring, std::pair<std::wstring, std::wstring>> file_systems;
  sysprops::ISysProps properties;
  expect_an_end([&] { properties.GetAllSystemProperties(values, file_systems); });
  EXPECT_EQ(orbtest::kReportKeys, values.size());
  std::string users;
  expect_an_end([&] { session::CollectAllLoggedonUsers(users); });
  NetInterfaceList list(true);
  expect_an_end([&] { list.initialize(); });
  expect_an_end([] { voxcomn_get_user_name(); });
}

struct UsedUpCase {
  const char* name;
  void (*expectations)();
};

void PrintTo(const UsedUpCase& row, std::ostream* out) { *out << row.name; }

class NoMemory : public testing::TestWithParam<UsedUpCase> {};

TEST_P(NoMemory, Left) { EXPECT_IN(use_memory_up, GetParam().expectations); }

INSTANTIATE_TEST_SUITE_P(
    Rules, NoMemory,
    testing::Values(UsedUpCase{"NoHandleIsMade", expect_no_handles},
                    UsedUpCase{"NoLockAndNoListIsMade", expect_no_locks_and_lists},
                    UsedUpCase{"NoTextIsConverted", expect_no_texts},
                    UsedUpCase{"NoLibraryIsLoaded", expect_no_libraries},
                    UsedUpCase{"AReportIsWholeOrEndsInBadAlloc", expect_answers_or_none}),
    [](const auto& row) { return row.param.name; });

void* wait_for(void* event) {
  voxWaitForSingleObject(event, INFINITE);
  return nullptr;
}

// Room for the records of a thread, none for its stack of some mebibytes; stacks of threads that
// have ended may be there to be used again.
TEST(NoMemory, ForAStackBeginsNoThread) {
  EXPECT_IN([] { return limit_memory(size_t{1} << 20); },
            [] {
              void* const event = voxCreateEvent(nullptr, 1, 0, nullptr);
              __atomic_store_n(&nErrno, 0, __ATOMIC_RELAXED);
              std::vector<void*> threads;
              void* thread = nullptr;
              for (int tries = 0; tries < 100; ++tries) {
                thread = voxBeginThread(nullptr, 0, wait_for, event, 0, nullptr);
                if (reinterpret_cast<intptr_t>(thread) == -1) break;
                threads.push_back(thread);
              }
              EXPECT_EQ(-1, reinterpret_cast<intptr_t>(thread));
              EXPECT_EQ(0, nErrno);
              lift_the_limit();
              threads.push_back(voxBeginThread(nullptr, 0, wait_for, event, 0, nullptr));
              voxSetEvent(event);
              for (void* each : threads) {
                EXPECT_EQ(uint64_t{WAIT_OBJECT_0}, voxWaitForSingleObject(each, INFINITE));
                EXPECT_EQ(1, voxCloseHandle(each));
              }
            });
}

}  // namespace
