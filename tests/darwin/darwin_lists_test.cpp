// tests/darwin/darwin_lists_test.cpp: property lists as a scripted CoreFoundation parses them.
#include "platform/darwin_system.h"
#include "tests/darwin/scripted_macos.h"

namespace orbtest {
namespace {

namespace seam = quillon_com::orb::platform;
using Texts = std::vector<std::optional<std::string>>;

const std::vector<std::string> kKeys = {"ProductVersion", "ProductBuildVersion"};

// Each test also checks, at its end, that every object was released and nothing twice.
class MacLists : public MacTest {
 protected:
  bool read(const std::string& bytes, const std::vector<std::string>& keys = kKeys) {
    return seam::DarwinSystem().property_list_texts(bytes, keys, &texts);
  }

  Texts texts = {"before"};
  const Texts untouched = {"before"};
};

TEST_F(MacLists, TextsComeInTheOrderOfTheKeys) {
  mac().lists["<plist/>"] =
      ListValue::dictionary({{"ProductBuildVersion", ListValue::of_text("19H15")},
                             {"ProductName", ListValue::of_text("Mac OS X")},
                             {"ProductVersion", ListValue::of_text("10.15.7")}});
  EXPECT_TRUE(read("<plist/>"));
  EXPECT_EQ((Texts{"10.15.7", "19H15"}), texts);
  EXPECT_TRUE(read("<plist/>", {"ProductBuildVersion", "ProductName", "ProductVersion"}));
  EXPECT_EQ((Texts{"19H15", "Mac OS X", "10.15.7"}), texts);
}

TEST_F(MacLists, ABinaryListIsHandedOverWithItsZeroBytes) {
  const std::string binary("bplist00\xd1\x01\x02\0\0\x08", 14);
  mac().lists[binary] = ListValue::dictionary({{"ProductVersion", ListValue::of_text("14.2.1")}});
  EXPECT_TRUE(read(binary, {"ProductVersion"}));
  EXPECT_EQ(Texts{"14.2.1"}, texts);
}

TEST_F(MacLists, NoKeysGiveNoTexts) {
  mac().lists["list"] = ListValue::dictionary({});
  EXPECT_TRUE(read("list", {}));
  EXPECT_EQ(Texts(), texts);
}

TEST_F(MacLists, AnAbsentKeyGivesNoText) {
  mac().lists["list"] = ListValue::dictionary({{"ProductVersion", ListValue::of_text("14.2")}});
  EXPECT_TRUE(read("list"));
  EXPECT_EQ((Texts{"14.2", std::nullopt}), texts);
}

TEST_F(MacLists, AValueThatIsNoTextGivesNoText) {
  mac().lists["list"] = ListValue::dictionary(
      {{"ProductVersion", ListValue::array()}, {"ProductBuildVersion", ListValue::dictionary({})}});
  EXPECT_TRUE(read("list"));
  EXPECT_EQ((Texts{std::nullopt, std::nullopt}), texts);
}

TEST_F(MacLists, AValueThatIsNothingGivesNoText) {
  mac().lists["list"] = ListValue::dictionary({{"ProductVersion", ListValue::nothing()}});
  EXPECT_TRUE(read("list"));
  EXPECT_EQ((Texts{std::nullopt, std::nullopt}), texts);
}

TEST_F(MacLists, AListThatCannotBeParsedIsNone) {
  EXPECT_FALSE(read(""));
  EXPECT_FALSE(read("no list"));
  EXPECT_EQ(untouched, texts);
}

TEST_F(MacLists, AListThatIsNoDictionaryIsNone) {
  mac().lists["array"] = ListValue::array();
  mac().lists["text"] = ListValue::of_text("ProductVersion");
  EXPECT_FALSE(read("array"));
  EXPECT_FALSE(read("text"));
  EXPECT_EQ(untouched, texts);
}

TEST_F(MacLists, ATextHasRoomFor255BytesOfUtf8) {
  struct Row {
    const char* name;
    std::string text;
    std::optional<std::string> expected;
  };
  std::string accents;
  for (int i = 0; i < 127; ++i) accents += "\xc3\xa9";  // two bytes each
  const Row rows[] = {
      {"EmptyText", "", ""},
      {"255Bytes", std::string(255, '1'), std::string(255, '1')},
      {"256BytesIsAbsent", std::string(256, '1'), std::nullopt},
      {"Megabyte", std::string(1 << 20, '1'), std::nullopt},
      {"254BytesOf127Characters", accents, accents},
      {"256BytesOf128Characters", accents + "\xc3\xa9", std::nullopt},
  };
  for (const Row& row : rows) {
    mac().lists["list"] = ListValue::dictionary({{"Key", ListValue::of_text(row.text)}});
    EXPECT_TRUE(read("list", {"Key"})) << row.name;
    EXPECT_EQ(Texts{row.expected}, texts) << row.name;
  }
}

TEST_F(MacLists, WithoutADataObjectNothingIsParsed) {
  mac().lists["list"] = ListValue::dictionary({{"ProductVersion", ListValue::of_text("14.2")}});
  mac().no_data_objects = true;
  EXPECT_FALSE(read("list"));
  EXPECT_EQ(untouched, texts);
}

TEST_F(MacLists, AKeyThatCannotBeMadeFailsAndReleasesTheRest) {
  mac().lists["list"] = ListValue::dictionary({{"ProductVersion", ListValue::of_text("14.2")}});
  for (const int made : {0, 1}) {
    mac().text_objects = made;
    EXPECT_FALSE(read("list")) << made;
    EXPECT_EQ(untouched, texts) << made;
    EXPECT_EQ(0u, mac().owned.size()) << made;
  }
}

}  // namespace
}  // namespace orbtest
