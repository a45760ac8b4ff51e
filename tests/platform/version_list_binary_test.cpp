// tests/platform/version_list_binary_test.cpp: binary property lists, sound, cut and hostile.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "platform/version_list.h"
#include "tests/support/binary_list.h"

namespace {

using orbtest::ascii_object;
using orbtest::big_endian;
using orbtest::BinaryList;
using orbtest::dictionary_object;
using orbtest::marker;
using orbtest::utf16_object;
using quillon_com::orb::platform::property_list_texts;
using namespace std::string_literals;

constexpr char kRefused[] = "refused";
constexpr char kAbsent[] = "absent";

std::string text_under(const std::string& key, const std::string& bytes) {
  std::vector<std::optional<std::string>> texts;
  if (!property_list_texts(bytes, {key}, &texts)) return kRefused;
  return texts.at(0).value_or(kAbsent);
}

struct ListCase {
  const char* name;
  std::string bytes;
  std::string text;  // under "k"
};

class BinaryForm : public testing::TestWithParam<ListCase> {};

TEST_P(BinaryForm, TextUnderK) { EXPECT_EQ(GetParam().text, text_under("k", GetParam().bytes)); }

// {k: value}
std::string with_value(const std::string& value) {
  return BinaryList{{dictionary_object({{1, 2}}), ascii_object("k"), value}}.bytes();
}

std::string with_key(const std::string& key) {
  return BinaryList{{dictionary_object({{1, 2}}), key, ascii_object("v")}}.bytes();
}

const std::string kLong(300, 'x');

INSTANTIATE_TEST_SUITE_P(
    Sound, BinaryForm,
    testing::Values(
        ListCase{"Ascii", with_value(ascii_object("10.15.7")), "10.15.7"},
        ListCase{"EmptyText", with_value(ascii_object("")), ""},
        ListCase{"LongCount", with_value(ascii_object(kLong)), kLong},
        ListCase{"CountOfOneByte",
                 with_value("\x5F\x10\x03"
                            "abc"),
                 "abc"},
        ListCase{"CountOfTwoBytes",
                 with_value("\x5F\x11\0\x03"
                            "abc"s),
                 "abc"},
        ListCase{"Utf16", with_value(utf16_object(u"1\u00E4\u20AC")), "1\xC3\xA4\xE2\x82\xAC"},
        ListCase{"Utf16Pair", with_value(utf16_object(u"\U0001F600")), "\xF0\x9F\x98\x80"},
        ListCase{"Utf16Key", with_key(utf16_object(u"k")), "v"},
        ListCase{"EmptyDictionary", BinaryList{{dictionary_object({})}}.bytes(), kAbsent},
        ListCase{"TopIsNotFirst",
                 BinaryList{{ascii_object("k"), ascii_object("v"), dictionary_object({{0, 1}})}, 2}
                     .bytes(),
                 "v"},
        ListCase{
            "WideNumbers",
            BinaryList{
                {dictionary_object({{1, 2}}, 8), ascii_object("k"), ascii_object("v")}, 0, 8, 8}
                .bytes(),
            "v"},
        ListCase{
            "OddWidths",
            BinaryList{
                {dictionary_object({{1, 2}}, 3), ascii_object("k"), ascii_object("v")}, 0, 5, 3}
                .bytes(),
            "v"},
        ListCase{"LastOfTwoCounts",
                 BinaryList{{dictionary_object({{1, 2}, {1, 3}}), ascii_object("k"),
                             ascii_object("a"), ascii_object("b")}}
                     .bytes(),
                 "b"},
        ListCase{"KeyIsItsOwnValue",
                 BinaryList{{dictionary_object({{1, 1}}), ascii_object("k")}}.bytes(), "k"},
        ListCase{"OtherKindIsNoText", with_value("\x10\x05"), kAbsent},
        ListCase{"DictionaryThatHoldsItself",
                 BinaryList{{dictionary_object({{1, 0}}), ascii_object("k")}}.bytes(), kAbsent},
        ListCase{"HalfAPairIsNoText", with_value(utf16_object(std::u16string(1, 0xD800))), kAbsent},
        ListCase{"PairBackwardsIsNoText", with_value(utf16_object(std::u16string{0xDC00, 0xD800})),
                 kAbsent},
        ListCase{"HalfAPairBeforeALetterIsNoText",
                 with_value(utf16_object(std::u16string{0xD800, u'a'})), kAbsent},
        ListCase{"HalfAPairBeforeWhatFollowsThePairsIsNoText",
                 with_value(utf16_object(std::u16string{0xD800, 0xE000})), kAbsent},
        ListCase{"ZeroCharacterIsNoText", with_value(ascii_object("a\0b"s)), kAbsent},
        ListCase{"HighBitIsNoText", with_value(ascii_object("a\xC3\xA4")), kAbsent},
        ListCase{"KeyWithHighBitIsAnother", with_key(ascii_object("\xEB")), kAbsent}),
    [](const auto& row) { return row.param.name; });

// {k: v} whose trailer is made by hand: two objects of two and three bytes behind the dictionary.
std::string with_trailer(uint64_t count, uint64_t top, uint64_t table, unsigned offset_width = 1,
                         unsigned reference_width = 1) {
  const std::string objects = dictionary_object({{1, 2}}) + "\x51k" + "\x51v";
  const std::string offsets = "\x08\x0B\x0D";
  BinaryList shape;
  shape.offset_width = offset_width;
  shape.reference_width = reference_width;
  return "bplist00" + objects + offsets + shape.trailer(count, top, table);
}

constexpr uint64_t kMost = ~uint64_t{0};

INSTANTIATE_TEST_SUITE_P(
    Trailer, BinaryForm,
    testing::Values(ListCase{"AsItShouldBe", with_trailer(3, 0, 15), "v"},
                    ListCase{"FewerObjectsThanUsed", with_trailer(2, 0, 15), kRefused},
                    ListCase{"MoreObjectsThanOffsets", with_trailer(4, 0, 15), kRefused},
                    ListCase{"CountOverflows", with_trailer(kMost, 0, 15), kRefused},
                    ListCase{"NoObject", with_trailer(0, 0, 15), kRefused},
                    ListCase{"TopOutside", with_trailer(3, 3, 15), kRefused},
                    ListCase{"TopOverflows", with_trailer(3, kMost, 15), kRefused},
                    ListCase{"TopIsAText", with_trailer(3, 1, 15), kRefused},
                    ListCase{"TableInTheName", with_trailer(3, 0, 7), kRefused},
                    ListCase{"TableBehindTheEnd", with_trailer(3, 0, 19), kRefused},
                    ListCase{"TableOverflows", with_trailer(3, 0, kMost), kRefused},
                    ListCase{"OffsetsOfNoByte", with_trailer(3, 0, 15, 0), kRefused},
                    ListCase{"OffsetsOfNineBytes", with_trailer(3, 0, 15, 9), kRefused},
                    ListCase{"ReferencesOfNoByte", with_trailer(3, 0, 15, 1, 0), kRefused},
                    ListCase{"ReferencesOfNineBytes", with_trailer(3, 0, 15, 1, 9), kRefused},
                    ListCase{"ReferencesTooWide", with_trailer(3, 0, 15, 1, 8), kRefused}),
    [](const auto& row) { return row.param.name; });

std::string with_offset(char offset) {
  return "bplist00" + dictionary_object({{1, 2}}) + "\x51k\x51v\x08\x0B" + offset +
         BinaryList{{}, 0, 1}.trailer(3, 0, 15);
}

INSTANTIATE_TEST_SUITE_P(
    Objects, BinaryForm,
    testing::Values(
        ListCase{"OffsetInTheName", with_offset(7), kRefused},
        ListCase{"OffsetInTheTable", with_offset(15), kRefused},
        ListCase{"ReferenceOutside",
                 BinaryList{{dictionary_object({{1, 9}}), ascii_object("k")}}.bytes(), kRefused},
        ListCase{"KeyReferenceOutside",
                 BinaryList{{dictionary_object({{9, 1}}), ascii_object("k")}}.bytes(), kRefused},
        ListCase{"KeyIsANumber", with_key("\x10\x05"), kRefused},
        ListCase{"TextLongerThanTheObjects", with_value("\x5Ev"), kRefused},
        ListCase{"Utf16LongerThanTheObjects", with_value("\x62\0v"s), kRefused},
        ListCase{"TextCountOverflows", with_value("\x5F\x13" + big_endian(kMost, 8)), kRefused},
        ListCase{"Utf16CountOverflows", with_value("\x6F\x13" + big_endian(uint64_t{1} << 63, 8)),
                 kRefused},
        ListCase{"DictionaryCountOverflows",
                 BinaryList{{"\xDF\x13" + big_endian(uint64_t{1} << 63, 8)}}.bytes(), kRefused},
        ListCase{"DictionaryLongerThanTheObjects", BinaryList{{"\xDE\0\0"s}}.bytes(), kRefused},
        ListCase{"CountIsNoNumber", with_value("\x5F\x51v"), kRefused},
        ListCase{"CountOfSixteenBytes",
                 with_value("\x5F\x14" + big_endian(0, 8) + big_endian(1, 8) + "v"), kRefused},
        ListCase{"CountIsCut", with_value("\x5F\x13\0\0"s), kRefused},
        ListCase{"CountIsMissing", with_value("\x5F"), kRefused},
        ListCase{"ArrayAtTheTop", BinaryList{{"\xA0"}}.bytes(), kRefused},
        ListCase{"OtherVersion", "bplist15" + with_value(ascii_object("v")).substr(8), kRefused},
        ListCase{"NameAlone", "bplist00", kRefused},
        ListCase{"NameAndZeroTrailer", "bplist00" + std::string(32, '\0'), kRefused}),
    [](const auto& row) { return row.param.name; });

TEST(BinaryListCut, AnywhereIsRefused) {
  const std::string whole = with_value(ascii_object("10.15.7"));
  for (size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(kRefused, text_under("k", whole.substr(0, length))) << length;
  }
}

// A dictionary of many members that all refer to one long key and one long text would take
// minutes if each were read; the test's time limit tells.
TEST(BinaryListShared, LongObjectsAreReadOnce) {
  const std::vector<std::pair<uint64_t, uint64_t>> long_keys(200000, {1, 2});
  const std::string text(1 << 20, 'x');
  EXPECT_EQ(
      kAbsent,
      text_under(
          "k",
          BinaryList{{dictionary_object(long_keys), ascii_object(text), ascii_object(text)}, 0, 4}
              .bytes()));
  EXPECT_EQ(
      text,
      text_under(
          "k",
          BinaryList{{dictionary_object(long_keys), ascii_object("k"), ascii_object(text)}, 0, 4}
              .bytes()));
}

TEST(BinaryListDamaged, OneByteAtATimeNeitherCrashesNorHangs) {
  const std::string whole = BinaryList{
      {dictionary_object({{1, 2}, {3, 4}}), ascii_object("k"), ascii_object(kLong),
       utf16_object(u"a"),
       utf16_object(u"text")}}.bytes();
  int sound = 0;
  for (size_t place = 0; place < whole.size(); ++place) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string damaged = whole;
      damaged[place] = static_cast<char>(byte);
      const std::string text = text_under("k", damaged);
      EXPECT_LE(text.size(), 2 * whole.size());
      if (text == kLong) ++sound;
    }
  }
  EXPECT_GE(sound, static_cast<int>(whole.size()));  // each byte once with its own value
}

}  // namespace
