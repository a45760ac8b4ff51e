// tests/fileutil/guid_test.cpp: GUIDs by scripted clocks, and a process's first GUID.
//
// The running process's own generator is used in forked children alone, so that each of them makes
// the first GUID of a process.
#include "fileutil/guid.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "fileutil/guidgenerator.h"
#include "tests/support/callfaults.h"
#include "tests/support/child_process.h"
#include "tests/support/fake_system.h"
#include "tests/support/faults.h"

namespace {

using orbtest::text_of_child;
using quillon_com::orb::GuidGenerator;
using Bytes = std::vector<int>;

// A clock that tells its readings one by one and stays at the last.
class ScriptedClock : public orbtest::FakeSystem {
 public:
  timeval wall_time() const override {
    ++asked;
    const timeval reading = readings.front();
    if (readings.size() > 1) readings.pop_front();
    return reading;
  }
  mutable std::deque<timeval> readings;
  mutable int asked = 0;
};

// A generator with the clock that it reads.
class Guid : public testing::Test {
 protected:
  voxGuid at(time_t seconds, suseconds_t microseconds) {
    return at(std::deque<timeval>{{seconds, microseconds}});
  }
  voxGuid at(const std::deque<timeval>& readings) {
    clock_.readings = readings;
    voxGuid guid;
    memset(&guid, 0xEE, sizeof guid);
    generator_.create(clock_, &guid);
    return guid;
  }

  ScriptedClock clock_;
  GuidGenerator generator_;
};

Bytes bytes_of(const voxGuid& guid, size_t first, size_t count) {
  return Bytes(guid.bytes + first, guid.bytes + first + count);
}

int sequence_of(const voxGuid& guid) { return (guid.bytes[8] << 8 | guid.bytes[9]) & 0x3FFF; }

// The time in units of 100 ns since 1970.
int64_t units_of(const voxGuid& guid) {
  uint64_t time = 0;
  for (const size_t i : {6u, 7u, 4u, 5u, 0u, 1u, 2u, 3u}) time = time << 8 | guid.bytes[i];
  return static_cast<int64_t>((time & 0x0FFFFFFFFFFFFFFF) - 0x01B21DD213814000);
}

TEST_F(Guid, FieldsStandMostSignificantByteFirst) {
  // 2 s are 0x1312D00 units: 0x01B21DD213814000 and they make 0x01B21DD214B26D00.
  const voxGuid guid = at(2, 0);
  EXPECT_EQ((Bytes{0x14, 0xB2, 0x6D, 0x00, 0x1D, 0xD2, 0x11, 0xB2}), bytes_of(guid, 0, 8));
}

TEST_F(Guid, AMicrosecondIsTenUnits) {
  EXPECT_EQ(20000000, units_of(at(2, 0)));
  EXPECT_EQ(20000010, units_of(at(2, 1)));
  EXPECT_EQ(29999990, units_of(at(2, 999999)));
}

TEST_F(Guid, ATimeOfToday) {
  // 2024-03-05 07:08:09.123456 UTC is 1709622489.123456: 17096224891234560 units.
  EXPECT_EQ(17096224891234560, units_of(at(1709622489, 123456)));
}

TEST_F(Guid, ATimeBefore1970IsFarInThePast) {
  at(2, 0);
  EXPECT_EQ(-10000000, units_of(at(-1, 0)));
}

TEST_F(Guid, TheFirstNodeIsRandomWithItsHighestBitSet) {
  srand(11);
  Bytes random;
  for (int i = 0; i < 8; ++i) random.push_back(rand() & 255);
  srand(11);
  const voxGuid guid = at(2, 0);
  Bytes node(random.begin(), random.begin() + 6);
  node[0] |= 0x80;
  EXPECT_EQ(node, bytes_of(guid, 10, 6));
  // The clock sequence is of the next two numbers, the high byte first.
  EXPECT_EQ((random[6] << 8 | random[7]) & 0x1FFF, sequence_of(guid));
}

TEST_F(Guid, QuirkLaterNodesAreZero) {
  at(2, 0);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(Bytes(6, 0), bytes_of(at(2, i), 10, 6));
}

// Of two threads that both make the first GUID, the faster one gets the node.
TEST_F(Guid, OneOfTwoThatAreFirstAtOnceHasANode) {
  voxGuid faster{};
  const orbtest::BeforeCall before("pthread_mutex_lock", [&] { faster = at(2, 0); });
  const voxGuid slower = at(2, 0);
  EXPECT_NE(Bytes(6, 0), bytes_of(faster, 10, 6));
  EXPECT_EQ(Bytes(6, 0), bytes_of(slower, 10, 6));
}

TEST_F(Guid, NothingIsRandomBehindTheFirst) {
  at(2, 0);
  srand(5);
  const int expected = rand();
  srand(5);
  at(2, 1);
  at(0, 0);
  EXPECT_EQ(expected, rand());
}

TEST_F(Guid, VersionAndVariantStandInTheirNibbles) {
  for (int seed = 0; seed < 500; ++seed) {
    srand(static_cast<unsigned>(seed));
    GuidGenerator generator;
    clock_.readings = {{1709622489 + time_t{seed} * 10000000, seed}};
    voxGuid guid;
    generator.create(clock_, &guid);
    EXPECT_EQ(0x1, guid.bytes[6] >> 4);
    EXPECT_TRUE(guid.bytes[8] >> 4 == 0x8 || guid.bytes[8] >> 4 == 0x9) << int{guid.bytes[8]};
    EXPECT_GE(guid.bytes[10], 0x80);
  }
}

TEST_F(Guid, QuirkTwoOfOneMicrosecondAreEqual) {
  at(100, 7);
  const voxGuid second = at(100, 8);
  const voxGuid third = at(100, 8);
  const voxGuid fourth = at(100, 9);
  EXPECT_EQ(0, memcmp(&second, &third, sizeof second));
  EXPECT_NE(0, memcmp(&third, &fourth, sizeof third));
}

struct ClockCase {
  const char* name;
  timeval now;
  int steps;  // that the clock sequence goes up by, in each of two GUIDs
};

class GuidClock : public Guid, public testing::WithParamInterface<ClockCase> {};

TEST_P(GuidClock, MovesTheSequence) {
  const int sequence = sequence_of(at(100, 500000));  // the reference is 99.5 s
  const auto [seconds, microseconds] = GetParam().now;
  const int64_t units = (int64_t{seconds} * 1000000 + microseconds) * 10;
  for (int turn = 1; turn <= 2; ++turn) {
    const voxGuid guid = at(seconds, microseconds);
    EXPECT_EQ((sequence + turn * GetParam().steps) & 0x1FFF, sequence_of(guid));
    EXPECT_EQ(units, units_of(guid));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Clocks, GuidClock,
    testing::Values(ClockCase{"RunsOn", {100, 500001}, 0},
                    ClockCase{"StandsStill", {100, 500000}, 0},
                    ClockCase{"LessThanASecondBack", {99, 500001}, 0},
                    ClockCase{"LaterSecondWithFewerMicroseconds", {100, 0}, 0},
                    ClockCase{"AMicrosecondBeforeTheReference", {99, 499999}, 1},
                    ClockCase{"EarlierSecondWithMoreMicroseconds", {98, 999999}, 1},
                    ClockCase{"LongAgo", {3, 0}, 1}),
    [](const auto& test) { return test.param.name; });

TEST_F(Guid, TheSequenceStaysMovedWhenTheClockIsRightAgain) {
  const int sequence = sequence_of(at(100, 0));
  at(90, 0);
  EXPECT_EQ((sequence + 1) & 0x1FFF, sequence_of(at(101, 0)));
}

TEST_F(Guid, TheSequenceWrapsAt13Bits) {
  const int sequence = sequence_of(at(100, 0));
  std::set<int> seen;
  for (int i = 0; i < 0x2000; ++i) seen.insert(sequence_of(at(90, 0)));
  EXPECT_EQ(0x2000u, seen.size());
  EXPECT_EQ(0, *seen.begin());
  EXPECT_EQ(0x1FFF, *seen.rbegin());
  EXPECT_EQ(sequence, sequence_of(at(100, 0)));
}

TEST_F(Guid, TenAtTheReferenceMomentAreTakenApart) {
  const int sequence = sequence_of(at(100, 0));
  for (int i = 1; i <= 10; ++i) {
    const voxGuid guid = at(99, 0);
    EXPECT_EQ(990000000 + i, units_of(guid));
    EXPECT_EQ(sequence, sequence_of(guid));
  }
}

TEST_F(Guid, TheEleventhAtTheReferenceMomentWaitsForTheClock) {
  const int sequence = sequence_of(at(100, 0));
  for (int i = 1; i <= 10; ++i) at(99, 0);
  clock_.asked = 0;
  const voxGuid later = at({{99, 0}, {99, 0}, {99, 0}, {99, 1}});
  EXPECT_EQ(4, clock_.asked);
  EXPECT_EQ(990000010, units_of(later));
  EXPECT_EQ(sequence, sequence_of(later));
  EXPECT_EQ(990000001, units_of(at(99, 0))) << "counted anew";
}

TEST_F(Guid, TheEleventhAtTheReferenceMomentMayFindTheClockSetBack) {
  const int sequence = sequence_of(at(100, 0));
  for (int i = 1; i <= 10; ++i) at(99, 0);
  const voxGuid earlier = at({{99, 0}, {98, 0}});
  EXPECT_EQ(980000000, units_of(earlier));
  EXPECT_EQ((sequence + 1) & 0x1FFF, sequence_of(earlier));
}

TEST_F(Guid, AnyOtherMomentStartsTheCountAnew) {
  at(100, 0);
  EXPECT_EQ(990000001, units_of(at(99, 0)));
  EXPECT_EQ(990000002, units_of(at(99, 0)));
  EXPECT_EQ(1000000000, units_of(at(100, 0)));
  EXPECT_EQ(990000001, units_of(at(99, 0)));
  EXPECT_EQ(980000000, units_of(at(98, 0)));
  EXPECT_EQ(990000001, units_of(at(99, 0)));
}

TEST_F(Guid, AReferenceOfZeroIsNone) {
  at(1, 0);
  srand(3);
  const int high = rand() & 255;
  const int low = rand() & 255;
  srand(3);
  EXPECT_EQ((high << 8 | low) & 0x1FFF, sequence_of(at(5, 0)));
}

TEST_F(Guid, OneOfSeveralThreadsGetsTheNode) {
  constexpr size_t kThreads = 8;
  constexpr size_t kEach = 2000;
  std::array<std::vector<voxGuid>, kThreads> made;
  std::vector<std::thread> threads;
  GuidGenerator generator;
  for (auto& own : made) {
    own.resize(kEach);
    threads.emplace_back([&generator, &own] {
      for (voxGuid& guid : own) generator.create(quillon_com::orb::platform::host(), &guid);
    });
  }
  for (std::thread& thread : threads) thread.join();
  size_t nodes = 0;
  std::set<int> sequences;
  for (const auto& own : made) {
    for (const voxGuid& guid : own) {
      nodes += bytes_of(guid, 10, 6) != Bytes(6, 0);
      sequences.insert(sequence_of(guid));
    }
  }
  EXPECT_EQ(1u, nodes);
  EXPECT_EQ(1u, sequences.size());
}

TEST_F(Guid, ThreadsWithAClockSetBackGetEachASequenceOfTheirOwn) {
  at(100, 0);
  orbtest::FakeSystem clock;
  clock.now = 50;
  constexpr size_t kThreads = 4;
  std::array<std::set<int>, kThreads> seen;
  std::vector<std::thread> threads;
  for (auto& own : seen) {
    threads.emplace_back([this, &clock, &own] {
      voxGuid guid;
      for (int i = 0; i < 500; ++i) {
        generator_.create(clock, &guid);
        own.insert(sequence_of(guid));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::set<int> all;
  for (const auto& own : seen) all.insert(own.begin(), own.end());
  EXPECT_EQ(kThreads * 500, all.size());
}

// The running process.

std::string text_of_bytes(const voxGuid& guid) {
  return std::string(reinterpret_cast<const char*>(guid.bytes), sizeof guid.bytes);
}

TEST(ProcessGuid, QuirkTheFirstAloneHasANode) {
  const std::string made = text_of_child([] {
    voxGuid guids[3];
    for (voxGuid& guid : guids) voxCoCreateGuid(&guid);
    return text_of_bytes(guids[0]) + text_of_bytes(guids[1]) + text_of_bytes(guids[2]);
  });
  ASSERT_EQ(48u, made.size()) << made;
  EXPECT_GE(static_cast<unsigned char>(made[10]), 0x80);
  EXPECT_EQ(std::string(6, '\0'), made.substr(16 + 10, 6));
  EXPECT_EQ(made.substr(16 + 8, 8), made.substr(32 + 8, 8)) << "clock sequence and node";
  EXPECT_EQ(made.substr(8, 2), made.substr(16 + 8, 2)) << "clock sequence";
}

TEST(ProcessGuid, TheTextFormMakesTheFirstToo) {
  const std::string made = text_of_child([] {
    voxGuid first;
    voxGuid second;
    char text[39];
    voxcomn_create_guid(&first, text, sizeof text);
    voxCoCreateGuid(&second);
    return text_of_bytes(first) + text_of_bytes(second);
  });
  ASSERT_EQ(32u, made.size()) << made;
  EXPECT_GE(static_cast<unsigned char>(made[10]), 0x80);
  EXPECT_EQ(std::string(6, '\0'), made.substr(16 + 10, 6));
}

TEST(ProcessGuid, RandIsNeverSeeded) {
  const auto first = [] {
    voxGuid guid;
    srand(77);
    voxCoCreateGuid(&guid);
    return text_of_bytes(guid).substr(8);
  };
  const std::string one = text_of_child(first);
  ASSERT_EQ(8u, one.size()) << one;
  EXPECT_EQ(one, text_of_child(first));
}

TEST(ProcessGuid, TellsTheWallClock) {
  const std::string outcome = text_of_child([]() -> std::string {
    timeval before{};
    timeval after{};
    voxGuid guid;
    gettimeofday(&before, nullptr);
    if (voxCoCreateGuid(&guid) != &guid) return "another result";
    gettimeofday(&after, nullptr);
    const int64_t units = units_of(guid);
    const auto all = [](const timeval& time) {
      return (time.tv_sec * 1000000 + time.tv_usec) * 10;
    };
    return all(before) <= units && units <= all(after) ? "between" : "outside";
  });
  EXPECT_EQ("between", outcome);
}

TEST(ProcessGuid, ForkedChildrenCountOnFromTheirParent) {
  const std::string made = text_of_child([] {
    voxGuid guid;
    voxCoCreateGuid(&guid);
    return text_of_child([] {
      voxGuid own;
      voxCoCreateGuid(&own);
      return text_of_bytes(own);
    });
  });
  ASSERT_EQ(16u, made.size()) << made;
  EXPECT_EQ(std::string(6, '\0'), made.substr(10));
}

TEST(ProcessGuid, NullIsGivenBack) { EXPECT_EQ(nullptr, voxCoCreateGuid(nullptr)); }

TEST(ProcessGuid, NeedsNoMemory) {
  const std::string requests = text_of_child([] {
    voxGuid guid;
    char text[39];
    const orbtest::MemoryFaults counted(0);
    voxCoCreateGuid(&guid);
    voxcomn_create_guid(&guid, text, sizeof text);
    return std::to_string(counted.requests());
  });
  EXPECT_EQ("0", requests);
}

}  // namespace
