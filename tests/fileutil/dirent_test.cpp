// tests/fileutil/dirent_test.cpp: the table of searches, its numbers, its threads and its failures.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <thread>
#include <vector>

#include "fileutil/direntsearch.h"
#include "tests/fileutil/directory_faults.h"
#include "tests/fileutil/search_scope.h"
#include "tests/support/callfaults.h"
#include "tests/support/faults.h"

namespace {

using orbtest::is_stained;
using orbtest::open_descriptors;
using orbtest::open_searches;
using orbtest::stained_record;

constexpr int64_t kUntouched = orbtest::ScopedErrorWord::kUntouched;

class DirEnt : public orbtest::Searching {
 protected:
  DirEnt() { folder_.write("file.txt", "content"); }

  // Begins a search that finds the folder's file.
  int begin() {
    FindDataDirEnt record;
    return voxFindFirstDirEnt(pattern("file*").c_str(), &record);
  }
  std::vector<int> begin_many(size_t count) {
    std::vector<int> searches;
    while (searches.size() < count) searches.push_back(begin());
    return searches;
  }
  // Begins a search that must fail; its record must stay as it was.
  void expect_no_search(const std::string& path, int64_t error) {
    word_.clear();
    FindDataDirEnt record = stained_record();
    EXPECT_EQ(-1, voxFindFirstDirEnt(path.c_str(), &record)) << path;
    EXPECT_EQ(error, word_.stored()) << path;
    EXPECT_TRUE(is_stained(record)) << path;
  }
};

TEST_F(DirEnt, FirstSearchIsNumberOneAndFillsItsPlace) {
  FindDataDirEnt record = stained_record();
  ASSERT_EQ(1, voxFindFirstDirEnt(pattern("file.*").c_str(), &record));
  EXPECT_STREQ("file.txt", record.name);
  EXPECT_EQ(7, record.size);
  ASSERT_NE(nullptr, pDirEntTable[0]);
  EXPECT_EQ(pattern(""), pDirEntTable[0]->prefix);
  EXPECT_STREQ("file.*", pDirEntTable[0]->pattern);
  EXPECT_NE(nullptr, pDirEntTable[0]->stream);
  EXPECT_EQ(1, open_searches());
  EXPECT_EQ(descriptors_.size() + 1, open_descriptors().size());
  EXPECT_EQ(1, voxFindCloseDirEnt(1));
  EXPECT_EQ(nullptr, pDirEntTable[0]);
  EXPECT_EQ(kUntouched, word_.stored());
}

TEST_F(DirEnt, EndOfTheDirectoryIsNoErrorAndStays) {
  const int search = begin();
  for (int again = 0; again < 3; ++again) {
    FindDataDirEnt record = stained_record();
    EXPECT_EQ(0, voxFindNextDirEnt(search, &record));
    EXPECT_TRUE(is_stained(record));
  }
  EXPECT_EQ(1, open_searches()) << "open until it is closed";
  EXPECT_EQ(1, voxFindCloseDirEnt(search));
  EXPECT_EQ(kUntouched, word_.stored());
}

TEST_F(DirEnt, FiftySearchesAndNoMore) {
  const std::vector<int> searches = begin_many(50);
  for (int each = 0; each < 50; ++each) EXPECT_EQ(each + 1, searches[static_cast<size_t>(each)]);
  const auto with_fifty = open_descriptors();
  expect_no_search(pattern("*"), 35);
  EXPECT_EQ(with_fifty, open_descriptors());
  FindDataDirEnt record;
  EXPECT_EQ(0, voxcomn_findfirstA(pattern("*").c_str(), &record));
  EXPECT_EQ(1, voxFindCloseDirEnt(50));
  EXPECT_EQ(50, begin());
  for (const int search : searches) EXPECT_EQ(1, voxFindCloseDirEnt(search));
}

TEST_F(DirEnt, LowestFreePlaceIsTaken) {
  const std::vector<int> searches = begin_many(10);
  for (const int search : {8, 3, 5}) EXPECT_EQ(1, voxFindCloseDirEnt(search));
  EXPECT_EQ(3, begin());
  EXPECT_EQ(5, begin());
  EXPECT_EQ(8, begin());
  EXPECT_EQ(11, begin());
  for (int search = 1; search <= 11; ++search) EXPECT_EQ(1, voxFindCloseDirEnt(search));
}

TEST_F(DirEnt, FailuresLeaveTheTableAlone) {
  const std::vector<int> searches = begin_many(2);
  expect_no_search(pattern("nothing like that"), kUntouched);
  expect_no_search(pattern("missing/*"), kUntouched);
  EXPECT_EQ(2, open_searches());
  EXPECT_EQ(3, begin());
  for (int search = 1; search <= 3; ++search) EXPECT_EQ(1, voxFindCloseDirEnt(search));
}

TEST_F(DirEnt, DirectoryIsOpenedBeforeAPlaceIsLookedFor) {
  const std::vector<int> searches = begin_many(50);
  expect_no_search(pattern("missing/*"), kUntouched);
  for (const int search : searches) EXPECT_EQ(1, voxFindCloseDirEnt(search));
}

TEST_F(DirEnt, NumbersThatAreNoSearchAreBadArguments) {
  const int open = begin();
  for (const int handle : {0, -1, 2, 50, 51, INT_MIN, INT_MAX}) {
    word_.clear();
    FindDataDirEnt record = stained_record();
    EXPECT_EQ(0, voxFindNextDirEnt(handle, &record)) << handle;
    EXPECT_EQ(22, word_.stored()) << handle;
    EXPECT_TRUE(is_stained(record)) << handle;
    word_.clear();
    EXPECT_EQ(0, voxFindCloseDirEnt(handle)) << handle;
    EXPECT_EQ(22, word_.stored()) << handle;
    word_.clear();
    EXPECT_EQ(nullptr, quillon_com::orb::fileutil::search_stream(handle)) << handle;
    EXPECT_EQ(22, word_.stored()) << handle;
  }
  EXPECT_EQ(1, voxFindCloseDirEnt(open));
}

TEST_F(DirEnt, ClosedSearchIsABadArgument) {
  const int search = begin();
  EXPECT_EQ(1, voxFindCloseDirEnt(search));
  EXPECT_EQ(kUntouched, word_.stored());
  EXPECT_EQ(0, voxFindCloseDirEnt(search));
  EXPECT_EQ(22, word_.stored());
  word_.clear();
  FindDataDirEnt record = stained_record();
  EXPECT_EQ(0, voxFindNextDirEnt(search, &record));
  EXPECT_EQ(22, word_.stored());
  EXPECT_TRUE(is_stained(record));
}

TEST_F(DirEnt, NullArgumentsAreBadArguments) {
  FindDataDirEnt record = stained_record();
  EXPECT_EQ(-1, voxFindFirstDirEnt(nullptr, &record));
  EXPECT_EQ(22, word_.stored());
  EXPECT_TRUE(is_stained(record));
  word_.clear();
  EXPECT_EQ(-1, voxFindFirstDirEnt(pattern("*").c_str(), nullptr));
  EXPECT_EQ(22, word_.stored());
  EXPECT_EQ(0, open_searches());
  const int search = voxFindFirstDirEnt(pattern("*").c_str(), &record);
  word_.clear();
  EXPECT_EQ(0, voxFindNextDirEnt(search, nullptr));
  EXPECT_EQ(22, word_.stored());
  int left = 0;
  while (voxFindNextDirEnt(search, &record) == 1) ++left;
  EXPECT_EQ(2, left) << "no entry was lost";
  EXPECT_EQ(1, voxFindCloseDirEnt(search));
}

TEST_F(DirEnt, SearchesAreIndependent) {
  folder_.write("other.log", "1");
  FindDataDirEnt text, log;
  const int texts = voxFindFirstDirEnt(pattern("*.txt").c_str(), &text);
  const int logs = voxFindFirstDirEnt(pattern("*.log").c_str(), &log);
  EXPECT_STREQ("file.txt", text.name);
  EXPECT_STREQ("other.log", log.name);
  EXPECT_EQ(0, voxFindNextDirEnt(texts, &text));
  EXPECT_EQ(1, voxFindCloseDirEnt(texts));
  EXPECT_EQ(0, voxFindNextDirEnt(logs, &log));
  EXPECT_EQ(1, voxFindCloseDirEnt(logs));
}

TEST_F(DirEnt, ShortNamesForward) {
  folder_.write("file.log", "1");
  FindDataDirEnt record = stained_record();
  const int search = voxcomn_findfirstA(pattern("file*").c_str(), &record);
  EXPECT_EQ(1, search);
  const std::string first = record.name;
  EXPECT_TRUE(voxcomn_findnextA(search, &record));
  EXPECT_EQ((std::set<std::string>{"file.log", "file.txt"}),
            (std::set<std::string>{first, record.name}));
  EXPECT_FALSE(voxcomn_findnextA(search, &record));
  EXPECT_EQ(kUntouched, word_.stored());
  EXPECT_EQ(1, voxcomn_findclose(search));
  EXPECT_EQ(0, voxcomn_findclose(search));
  EXPECT_FALSE(voxcomn_findnextA(search, &record));
  EXPECT_EQ(22, word_.stored());
}

TEST_F(DirEnt, ShortFindFirstFailsWith0) {
  FindDataDirEnt record = stained_record();
  EXPECT_EQ(0, voxcomn_findfirstA(pattern("missing/*").c_str(), &record));
  EXPECT_EQ(0, voxcomn_findfirstA(pattern("nothing like that").c_str(), &record));
  EXPECT_EQ(kUntouched, word_.stored());
  EXPECT_EQ(0, voxcomn_findfirstA(nullptr, &record));
  EXPECT_EQ(22, word_.stored());
  EXPECT_TRUE(is_stained(record));
}

// In a process of its own, where no search was begun before.
TEST(DirEntFirstCall, EmptiesTheTable) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        static DirEntSlot stranger;
        for (auto& place : pDirEntTable) place = &stranger;
        FindDataDirEnt record;
        const int failed = voxFindFirstDirEnt("/missing/*", &record);
        const bool emptied = orbtest::open_searches() == 0;
        pDirEntTable[0] = &stranger;
        const int second = voxFindFirstDirEnt("/*", &record);
        exit(failed == -1 && emptied && second == 2 ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

// Of two threads that both come first, the slower one finds the table emptied and in use.
TEST(DirEntFirstCall, EmptiesTheTableOnce) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        FindDataDirEnt record;
        int faster = 0;
        const orbtest::BeforeCall before("pthread_mutex_lock",
                                         [&] { faster = voxFindFirstDirEnt("/*", &record); });
        const int slower = voxFindFirstDirEnt("/*", &record);
        exit(faster == 1 && slower == 2 && voxFindCloseDirEnt(faster) == 1 ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(DirEnt, NoMemoryForASearchStores35) {
  const size_t requests = orbtest::for_each_memory_fault([&](size_t nth, orbtest::Failing failing) {
    const std::string path = pattern("file*");
    word_.clear();
    FindDataDirEnt record = stained_record();
    int search = 0;
    size_t failures = 0;
    {
      const orbtest::MemoryFaults faults(nth, failing);
      search = voxFindFirstDirEnt(path.c_str(), &record);
      failures = faults.failures();
    }
    EXPECT_EQ(failures > 0 ? -1 : 1, search);
    EXPECT_EQ(failures > 0 ? 35 : kUntouched, word_.stored());
    EXPECT_EQ(failures > 0, is_stained(record));
    EXPECT_EQ(failures > 0 ? 0 : 1, open_searches());
    EXPECT_EQ(failures > 0 ? 0 : 1, voxFindCloseDirEnt(1));
    EXPECT_EQ(descriptors_, open_descriptors());
    return failures;
  });
  EXPECT_LT(0u, requests);
}

TEST_F(DirEnt, OpenSearchNeedsNoMemory) {
  FindDataDirEnt record;
  const int search = voxFindFirstDirEnt(pattern("*").c_str(), &record);
  const orbtest::MemoryFaults faults(1, orbtest::Failing::onwards);
  int found = 1;
  while (voxFindNextDirEnt(search, &record) == 1) ++found;
  const int closed = voxFindCloseDirEnt(search);
  EXPECT_EQ(0u, faults.failures());
  EXPECT_EQ(3, found);
  EXPECT_EQ(1, closed);
}

TEST_F(DirEnt, NoDescriptorLeftIsTheSystemsError) {
  const std::string path = pattern("*");
  rlimit before{};
  ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &before));
  const rlimit few{64, before.rlim_max};
  ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &few));
  std::vector<int> taken;
  for (int file = 0; (file = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) taken.push_back(file);
  FindDataDirEnt record = stained_record();
  const int search = voxFindFirstDirEnt(path.c_str(), &record);
  const int error = errno;
  for (const int file : taken) close(file);
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_FALSE(taken.empty());
  EXPECT_EQ(-1, search);
  EXPECT_EQ(EMFILE, error);
  EXPECT_EQ(kUntouched, word_.stored());
  EXPECT_TRUE(is_stained(record));
}

TEST_F(DirEnt, FailingCloseEndsTheSearchAllTheSame) {
  const int search = begin();
  {
    const orbtest::DirectoryFaults faults(0, true);
    EXPECT_EQ(0, voxFindCloseDirEnt(search));
    EXPECT_EQ(1u, faults.failures());
  }
  EXPECT_EQ(kUntouched, word_.stored()) << "no error word";
  EXPECT_EQ(0, open_searches());
  EXPECT_EQ(0, voxFindCloseDirEnt(search));
  EXPECT_EQ(22, word_.stored());
}

TEST_F(DirEnt, FailingReadIsTheEnd) {
  {
    const orbtest::DirectoryFaults faults(1, false);
    expect_no_search(pattern("*"), kUntouched);
    EXPECT_EQ(1u, faults.failures());
  }
  FindDataDirEnt record;
  const int search = voxFindFirstDirEnt(pattern("*").c_str(), &record);
  {
    const orbtest::DirectoryFaults faults(1, false);
    EXPECT_EQ(0, voxFindNextDirEnt(search, &record));
  }
  EXPECT_EQ(kUntouched, word_.stored());
  EXPECT_EQ(1, voxFindCloseDirEnt(search));
}

// Eight threads with up to six searches each: the table never fills up, and no two threads ever
// have the same number.
TEST_F(DirEnt, ThreadsGetNumbersOfTheirOwn) {
  std::atomic<int> owners[51] = {};
  std::atomic<int> clashes = 0, failures = 0;
  std::vector<std::thread> threads;
  for (int self = 1; self <= 8; ++self) {
    threads.emplace_back([&, self] {
      for (int round = 0; round < 200; ++round) {
        std::vector<int> mine;
        for (int each = 0; each < 1 + (round + self) % 6; ++each) {
          mine.push_back(begin());
          if (mine.back() < 1 || mine.back() > 50) {
            ++failures;
            mine.pop_back();
          } else if (owners[mine.back()].exchange(self) != 0) {
            ++clashes;
          }
        }
        FindDataDirEnt record;
        for (const int search : mine) {
          if (voxFindNextDirEnt(search, &record) != 0) ++failures;
          owners[search].store(0);
          if (voxFindCloseDirEnt(search) != 1) ++failures;
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(0, clashes);
  EXPECT_EQ(0, failures);
}

TEST_F(DirEnt, ThreadsThatFindNoPlaceLeaveNothingBehind) {
  std::atomic<int> begun = 0, refused = 0, closed = 0;
  std::vector<std::thread> threads;
  for (int each = 0; each < 8; ++each) {
    threads.emplace_back([&] {
      for (int round = 0; round < 20; ++round) {
        std::vector<int> mine;
        for (int search = 0; search < 10; ++search) {
          mine.push_back(begin());
          ++(mine.back() == -1 ? refused : begun);
        }
        for (const int search : mine) closed += voxFindCloseDirEnt(search);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(8 * 20 * 10, begun + refused);
  EXPECT_EQ(begun, closed);
}

}  // namespace
