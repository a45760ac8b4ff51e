// tests/fileutil/utf8_test.cpp: the UTF-8 converters, by hand.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "fileutil/conversions.h"
#include "tests/support/faults.h"

namespace {

constexpr unsigned kFailed = 0x80000008U;

// The result of a converter in a buffer of just the stated room, with the bytes behind checked.
std::wstring to_wide(const std::string& text) {
  const size_t room = std::strlen(text.c_str()) + 1;
  std::wstring buffer(room + 4, L'?');
  int size = static_cast<int>(room);
  EXPECT_EQ(0U, voxcomn_utf8_to_unicode(text.c_str(), buffer.data(), &size));
  EXPECT_EQ(static_cast<int>(room), size);
  EXPECT_EQ(L"????", buffer.substr(room));
  return buffer.c_str();
}

std::string to_utf8(const std::wstring& text) {
  const size_t room = std::wcslen(text.c_str()) * 6 + 1;
  std::string buffer(room + 4, '?');
  auto size = static_cast<unsigned>(room);
  EXPECT_EQ(0U, voxcomn_unicode_to_utf8(text.c_str(), buffer.data(), &size));
  EXPECT_EQ(room, size);
  EXPECT_EQ("????", buffer.substr(room));
  return buffer.c_str();
}

struct WideCase {
  const char* name;
  std::string source;
  std::wstring result;
};

class Utf8ToWide : public testing::TestWithParam<WideCase> {};

TEST_P(Utf8ToWide, Converts) { EXPECT_EQ(GetParam().result, to_wide(GetParam().source)); }

INSTANTIATE_TEST_SUITE_P(
    Rows, Utf8ToWide,
    testing::Values(WideCase{"Empty", "", L""}, WideCase{"Ascii", "abc", L"abc"},
                    WideCase{"EveryAsciiControl", "\x01\x1F\x7F", L"\x01\x1F\x7F"},
                    WideCase{"LeastOfTwoBytes", "\xC2\x80", L"\x80"},
                    WideCase{"MostOfTwoBytes", "\xDF\xBF", L"\x7FF"},
                    WideCase{"LeastOfThreeBytes", "\xE0\xA0\x80", L"\x800"},
                    WideCase{"MostOfThreeBytes", "\xEF\xBF\xBF", L"\xFFFF"},
                    WideCase{"LeastOfFourBytes", "\xF0\x90\x80\x80", L"\x10000"},
                    WideCase{"MostOfFourBytes", "\xF4\x8F\xBF\xBF", L"\x10FFFF"},
                    WideCase{"BeforeTheSurrogates", "\xED\x9F\xBF", L"\xD7FF"},
                    WideCase{"BehindTheSurrogates", "\xEE\x80\x80", L"\xE000"},
                    WideCase{"ByteOrderMarkIsKept",
                             "\xEF\xBB\xBF"
                             "a",
                             L"\xFEFF"
                             "a"},
                    WideCase{"QuirkStrayContinuationEnds",
                             "ab\x80"
                             "cd",
                             L"ab"},
                    WideCase{"QuirkMissingContinuationEnds", "ab\xC3(cd", L"ab"},
                    WideCase{"QuirkSecondContinuationMissingEnds", "ab\xE2\x82(cd", L"ab"},
                    WideCase{"QuirkThirdContinuationMissingEnds", "ab\xF0\x9F\x98(cd", L"ab"},
                    WideCase{"QuirkTruncatedAtTheEnd", "ab\xE2\x82", L"ab"},
                    WideCase{"QuirkLeadAloneAtTheEnd", "ab\xF0", L"ab"},
                    WideCase{"QuirkOverlongTwoBytes", "ab\xC1\xBF", L"ab"},
                    WideCase{"QuirkOverlongZero", "ab\xC0\x80", L"ab"},
                    WideCase{"QuirkOverlongThreeBytes", "ab\xE0\x9F\xBF", L"ab"},
                    WideCase{"QuirkOverlongFourBytes", "ab\xF0\x8F\xBF\xBF", L"ab"},
                    WideCase{"QuirkFirstSurrogate", "ab\xED\xA0\x80", L"ab"},
                    WideCase{"QuirkLastSurrogate", "ab\xED\xBF\xBF", L"ab"},
                    WideCase{"QuirkAbove10FFFF", "ab\xF4\x90\x80\x80", L"ab"},
                    WideCase{"QuirkLeadF5", "ab\xF5\x80\x80\x80", L"ab"},
                    WideCase{"QuirkFiveBytes", "ab\xF8\x88\x80\x80\x80", L"ab"},
                    WideCase{"QuirkByteFF", "\xFF", L""},
                    WideCase{"FaultBehindARunOfAscii", "0123456789abcdefXYZ\x80rest",
                             L"0123456789abcdefXYZ"},
                    WideCase{"FaultInsideARun",
                             "0123456\x80"
                             "89abcdef0123456789",
                             L"0123456"},
                    WideCase{"LongMixed",
                             "0123456789abcdef\xC3\xA9"
                             "0123456789abcdef0123\xE2\x82\xAC!",
                             L"0123456789abcdef\xE9"
                             L"0123456789abcdef0123\x20AC!"}),
    [](const auto& row) { return row.param.name; });

struct NarrowCase {
  const char* name;
  std::wstring source;
  std::string result;
};

class WideToUtf8 : public testing::TestWithParam<NarrowCase> {};

TEST_P(WideToUtf8, Converts) { EXPECT_EQ(GetParam().result, to_utf8(GetParam().source)); }

const std::wstring kAb = L"ab";

INSTANTIATE_TEST_SUITE_P(
    Rows, WideToUtf8,
    testing::Values(
        NarrowCase{"Empty", L"", ""}, NarrowCase{"Ascii", L"abc", "abc"},
        NarrowCase{"MostOfOneByte", L"\x7F", "\x7F"}, NarrowCase{"LeastOfTwo", L"\x80", "\xC2\x80"},
        NarrowCase{"MostOfTwo", L"\x7FF", "\xDF\xBF"},
        NarrowCase{"LeastOfThree", L"\x800", "\xE0\xA0\x80"},
        NarrowCase{"MostOfThree", L"\xFFFF", "\xEF\xBF\xBF"},
        NarrowCase{"LeastOfFour", L"\x10000", "\xF0\x90\x80\x80"},
        NarrowCase{"MostOfFour", L"\x10FFFF", "\xF4\x8F\xBF\xBF"},
        NarrowCase{"BeforeTheSurrogates", L"\xD7FF", "\xED\x9F\xBF"},
        NarrowCase{"BehindTheSurrogates", L"\xE000", "\xEE\x80\x80"},
        NarrowCase{"ByteOrderMarkIsKept",
                   L"\xFEFF"
                   "a",
                   "\xEF\xBB\xBF"
                   "a"},
        NarrowCase{"QuirkFirstSurrogateEnds", kAb + wchar_t(0xD800) + L"cd", "ab"},
        NarrowCase{"QuirkLastSurrogateEnds", kAb + wchar_t(0xDFFF) + L"cd", "ab"},
        NarrowCase{"QuirkAPairOfSurrogatesEnds", kAb + wchar_t(0xD83D) + wchar_t(0xDE00), "ab"},
        NarrowCase{"QuirkAbove10FFFFEnds", kAb + wchar_t(0x110000) + L"cd", "ab"},
        NarrowCase{"QuirkNegativeEnds", kAb + wchar_t(-1) + L"cd", "ab"},
        NarrowCase{"QuirkLeastNegativeEnds", kAb + wchar_t(INT_MIN) + L"cd", "ab"},
        NarrowCase{"QuirkFaultAtTheStart", std::wstring(1, wchar_t(0xD800)) + L"cd", ""},
        NarrowCase{"FaultInsideARun", L"0123456" + std::wstring(1, wchar_t(-1)) + L"89abcdef0123",
                   "0123456"},
        NarrowCase{"LongMixed",
                   L"0123456789abcdef\xE9"
                   L"0123456789abcdef0123\x20AC!",
                   "0123456789abcdef\xC3\xA9"
                   "0123456789abcdef0123\xE2\x82\xAC!"}),
    [](const auto& row) { return row.param.name; });

TEST(Utf8Converters, MissingArgumentsFail) {
  char narrow[] = "kept";
  wchar_t wide[] = L"kept";
  unsigned narrow_size = 5;
  int wide_size = 5;
  EXPECT_EQ(kFailed, voxcomn_unicode_to_utf8(nullptr, narrow, &narrow_size));
  EXPECT_EQ(kFailed, voxcomn_unicode_to_utf8(L"", nullptr, &narrow_size));
  EXPECT_EQ(kFailed, voxcomn_unicode_to_utf8(L"", narrow, nullptr));
  EXPECT_EQ(kFailed, voxcomn_utf8_to_unicode(nullptr, wide, &wide_size));
  EXPECT_EQ(kFailed, voxcomn_utf8_to_unicode("", nullptr, &wide_size));
  EXPECT_EQ(kFailed, voxcomn_utf8_to_unicode("", wide, nullptr));
  EXPECT_STREQ("kept", narrow);
  EXPECT_STREQ(L"kept", wide);
}

struct RoomCase {
  const char* name;
  std::wstring source;
  unsigned size;
  bool fits;
};

class RoomOfUtf8 : public testing::TestWithParam<RoomCase> {};

TEST_P(RoomOfUtf8, Decides) {
  char buffer[64] = "kept";
  unsigned size = GetParam().size;
  EXPECT_EQ(GetParam().fits ? 0U : kFailed,
            voxcomn_unicode_to_utf8(GetParam().source.c_str(), buffer, &size));
  EXPECT_EQ(GetParam().size, size);
  if (!GetParam().fits) {
    EXPECT_STREQ("kept", buffer);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RoomOfUtf8,
    testing::Values(RoomCase{"ZeroFails", L"", 0, false}, RoomCase{"EmptyNeedsOne", L"", 1, true},
                    RoomCase{"QuirkThreeCharactersFailIn18", L"abc", 18, false},
                    RoomCase{"QuirkThreeCharactersFitIn19", L"abc", 19, true},
                    RoomCase{"RoomBetweenTwoNeeds", L"abc", 24, true},
                    RoomCase{"FourCharactersFailIn24", L"abcd", 24, false},
                    RoomCase{"FourCharactersFitIn25", L"abcd", 25, true},
                    RoomCase{"OneCharacterFailsIn6", L"a", 6, false},
                    RoomCase{"OneCharacterFitsIn7", L"a", 7, true},
                    RoomCase{"LargestSignedRoom", L"abc", 0x7FFFFFFF, true},
                    RoomCase{"QuirkRoomOf2GiBIsNegative", L"abc", 0x80000000U, false},
                    RoomCase{"QuirkLargestRoomIsNegative", L"", 0xFFFFFFFFU, false}),
    [](const auto& row) { return row.param.name; });

TEST(RoomOfWide, DecidesByBytes) {
  struct Row {
    const char* source;
    int size;
    bool fits;
  };
  for (const Row& row :
       {Row{"", 0, false}, Row{"", 1, true}, Row{"", -1, false}, Row{"", INT_MIN, false},
        Row{"abc", 3, false}, Row{"abc", 4, true}, Row{"\xC3\xA9", 2, false},
        Row{"\xC3\xA9", 3, true}, Row{"abc", INT_MAX, true}}) {
    wchar_t buffer[16] = L"kept";
    int size = row.size;
    EXPECT_EQ(row.fits ? 0U : kFailed, voxcomn_utf8_to_unicode(row.source, buffer, &size))
        << row.source << " " << row.size;
    EXPECT_EQ(row.size, size);
    if (!row.fits) {
      EXPECT_STREQ(L"kept", buffer);
    }
  }
}

// A fault, or a character of several bytes, at every place of texts around the length of a run.
TEST(Utf8Converters, PlacesAroundARunOfAscii) {
  for (size_t length = 1; length <= 100; ++length) {
    for (size_t at = 0; at < length; ++at) {
      const std::string front(at, 'f');
      const std::string back(length - at - 1, 'b');
      const std::wstring wide_front(at, L'f');
      const std::wstring wide_back(length - at - 1, L'b');
      ASSERT_EQ(wide_front, to_wide(front + "\x80" + back)) << length << " " << at;
      ASSERT_EQ(front, to_utf8(wide_front + wchar_t(0xD800) + wide_back)) << length << " " << at;
      ASSERT_EQ(wide_front + L"\xE9" + wide_back, to_wide(front + "\xC3\xA9" + back));
      ASSERT_EQ(front + "\xC3\xA9" + back, to_utf8(wide_front + L"\xE9" + wide_back));
    }
  }
}

// A text of more than 4 GiB that takes 16 MiB of memory: one file mapped over and over.
class HugeText {
 public:
  static constexpr size_t kBlock = size_t{16} << 20;
  static constexpr size_t kBlocks = 256;

  HugeText() {
    const int file = memfd_create("text", 0);
    const std::string letters(kBlock, 'a');
    const bool written = write(file, letters.data(), kBlock) == static_cast<ssize_t>(kBlock);
    void* start =
        mmap(nullptr, kBlocks * kBlock + 4096, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (written && start != MAP_FAILED) {
      text_ = static_cast<char*>(start);
      for (size_t i = 0; i < kBlocks; ++i) {
        mmap(text_ + i * kBlock, kBlock, PROT_READ, MAP_SHARED | MAP_FIXED, file, 0);
      }
    }
    close(file);
  }
  ~HugeText() { munmap(text_, kBlocks * kBlock + 4096); }
  HugeText(const HugeText&) = delete;
  HugeText& operator=(const HugeText&) = delete;

  const char* get() const { return text_; }  // the page behind the blocks is zero

 private:
  char* text_ = nullptr;
};

// Their need, cut to 32 bits, would be 1 wide character, and a negative number of bytes.
TEST(Utf8Converters, QuirkTextsBeyond32BitsNeverFit) {
  const HugeText huge;
  ASSERT_NE(nullptr, huge.get());
  wchar_t wide[] = L"kept";
  char narrow[] = "kept";
  int wide_size = 5;
  unsigned narrow_size = 5;
  EXPECT_EQ(kFailed, voxcomn_utf8_to_unicode(huge.get(), wide, &wide_size));
  const auto* text = reinterpret_cast<const wchar_t*>(huge.get());
  EXPECT_EQ(kFailed, voxcomn_unicode_to_utf8(text, narrow, &narrow_size));
  EXPECT_STREQ(L"kept", wide);
  EXPECT_STREQ("kept", narrow);
}

// Both texts in one block of memory, the source at every place around the destination.
TEST(Utf8Converters, TextsMayOverlap) {
  const std::string source = "0123456789abcdefgh\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z";
  const std::wstring result = L"0123456789abcdefgh\xE9\x20AC\x1F600z";
  for (size_t at = 0; at < 400; ++at) {
    std::vector<wchar_t> block(256, L'?');
    wchar_t* const destination = block.data() + 40;
    char* const place = reinterpret_cast<char*>(block.data()) + at;
    std::memcpy(place, source.c_str(), source.size() + 1);
    int size = static_cast<int>(source.size() + 1);
    ASSERT_EQ(0U, voxcomn_utf8_to_unicode(place, destination, &size));
    ASSERT_EQ(result, destination) << at;
  }
  for (size_t at = 0; at < 400; ++at) {
    std::vector<wchar_t> block(256, L'?');
    wchar_t* const place = block.data() + 50;
    std::wmemcpy(place, result.c_str(), result.size() + 1);
    char* const destination = reinterpret_cast<char*>(block.data()) + at;
    auto size = static_cast<unsigned>(result.size() * 6 + 1);
    ASSERT_EQ(0U, voxcomn_unicode_to_utf8(place, destination, &size));
    ASSERT_EQ(source, destination) << at;
  }
}

TEST(Utf8Converters, OverlapWithoutMemoryFailsAndWritesNothing) {
  wchar_t wide[32] = {};
  std::memcpy(wide, "text", 5);
  char* const bytes = reinterpret_cast<char*>(wide);
  int wide_size = 32;
  unsigned status = 0;
  {
    const orbtest::MemoryFaults faults(1);
    status = voxcomn_utf8_to_unicode(bytes, wide, &wide_size);
  }
  EXPECT_EQ(kFailed, status);
  EXPECT_STREQ("text", bytes);
  std::wcscpy(wide, L"text");
  unsigned narrow_size = sizeof(wide);
  {
    const orbtest::MemoryFaults faults(1);
    status = voxcomn_unicode_to_utf8(wide, bytes, &narrow_size);
  }
  EXPECT_EQ(kFailed, status);
  EXPECT_STREQ(L"text", wide);
}

TEST(Utf8Converters, SeparateTextsTakeNoMemory) {
  const std::string source(5000, 'a');
  std::wstring wide(5001, L'?');
  std::string narrow(30001, '?');
  int wide_size = 5001;
  unsigned narrow_size = 30001;
  const orbtest::MemoryFaults count(0);
  voxcomn_utf8_to_unicode(source.c_str(), wide.data(), &wide_size);
  voxcomn_unicode_to_utf8(wide.data(), narrow.data(), &narrow_size);
  EXPECT_EQ(0U, count.requests());
}

TEST(Utf8Converters, SeveralThreadsAtOnce) {
  const std::string narrow = "plain text \xC3\xA9\xE2\x82\xAC and more of it";
  const std::wstring wide = L"plain text \xE9\x20AC and more of it";
  std::vector<int> wrong(4, 0);
  std::vector<std::thread> threads;
  for (int& count : wrong) {
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i) count += to_wide(narrow) != wide || to_utf8(wide) != narrow;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(std::vector<int>(4, 0), wrong);
}

}  // namespace
