// tests/platform/version_list_xml_test.cpp: property lists in XML, sound, cut and hostile.
#include <gtest/gtest.h>

#include <string>

#include "platform/version_list.h"

namespace {

using quillon_com::orb::platform::property_list_texts;
using namespace std::string_literals;

constexpr char kRefused[] = "refused";
constexpr char kAbsent[] = "absent";

// The text under "k", "absent" or "refused".
std::string text_under_k(const std::string& bytes) {
  std::vector<std::optional<std::string>> texts;
  if (!property_list_texts(bytes, {"k"}, &texts)) return kRefused;
  return texts.at(0).value_or(kAbsent);
}

struct ListCase {
  const char* name;
  std::string bytes;
  const char* text;
};

class XmlList : public testing::TestWithParam<ListCase> {};

TEST_P(XmlList, TextUnderK) { EXPECT_EQ(GetParam().text, text_under_k(GetParam().bytes)); }

const std::string kWhole =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//X//DTD PLIST 1.0//EN\" \"http://x.example/plist.dtd\">\n"
    "<plist version=\"1.0\">\n<dict>\n\t<key>a</key>\n\t<array><string>no</string></array>\n"
    "\t<key>k</key>\n\t<string>10.15.7</string>\n</dict>\n</plist>\n";

std::string with(const std::string& members) {
  return "<plist><dict>" + members + "</dict></plist>";
}

std::string value(const std::string& element) { return with("<key>k</key>" + element); }

INSTANTIATE_TEST_SUITE_P(
    Sound, XmlList,
    testing::Values(
        ListCase{"Whole", kWhole, "10.15.7"},
        ListCase{"ByteOrderMark", "\xEF\xBB\xBF" + kWhole, "10.15.7"},
        ListCase{"WithoutPlistElement", "<dict><key>k</key><string>v</string></dict>", "v"},
        ListCase{"EmptyDictionary", "<plist><dict></dict></plist>", kAbsent},
        ListCase{"EmptyDictionaryInOneTag", "<plist><dict/></plist>", kAbsent},
        ListCase{"EmptyText", value("<string></string>"), ""},
        ListCase{"EmptyTextInOneTag", value("<string/>"), ""},
        ListCase{"BlanksBelongToTheText", value("<string> v\n</string>"), " v\n"},
        ListCase{"BlanksAroundElements", with("\n<key>k</key>\r\n\t<string>v</string> "), "v"},
        ListCase{"BlanksInTags",
                 "<plist ><dict ><key >k</key ><string >v</string\n></dict></plist >", "v"},
        ListCase{"SignsInAttributes",
                 "<plist a='>' b=\"/>\"><dict><key>k</key><string>v</string></dict></plist>", "v"},
        ListCase{"LastOfTwoCounts",
                 with("<key>k</key><string>1</string><key>k</key><string>2</string>"), "2"},
        ListCase{"LastOfTwoCountsWithoutText",
                 with("<key>k</key><string>1</string><key>k</key><true/>"), kAbsent},
        ListCase{"KeyOfAnInnerDictionaryIsAnother",
                 with("<key>i</key><dict><key>k</key><string>in</string></dict>"), kAbsent},
        ListCase{"KeyAfterAnInnerDictionary",
                 with("<key>k</key><dict><key>x</key><string>in</string></dict>"
                      "<key>k</key><string>v</string>"),
                 "v"},
        ListCase{"InnerKeyLeavesTheOuterOneAlone",
                 with("<key>k</key><dict><key>x</key><string>in</string></dict>"), kAbsent},
        ListCase{"KeysDifferInCase", with("<key>K</key><string>v</string>"), kAbsent},
        ListCase{"KeyWithEntity", with("<key>&#107;</key><string>v</string>"), "v"},
        ListCase{"EveryPlainKind",
                 with("<key>1</key><integer>-5</integer><key>2</key><real>1e5</real>"
                      "<key>3</key><date>2024-02-03T09:07:05Z</date><key>4</key><data>aGk=</data>"
                      "<key>5</key><true/><key>6</key><false></false><key>7</key><array/>"
                      "<key>8</key><dict/><key>k</key><string>v</string>"),
                 "v"},
        ListCase{"OtherKindIsNoText", value("<integer>5</integer>"), kAbsent},
        ListCase{"ArrayIsNoText", value("<array><string>v</string></array>"), kAbsent},
        ListCase{"Utf8", value("<string>\xC3\xA4\xF0\x9F\x98\x80</string>"),
                 "\xC3\xA4\xF0\x9F\x98\x80"},
        ListCase{"BlanksAndCommentsBehind", kWhole + "\n<!-- end -->\n", "10.15.7"},
        ListCase{"ZeroBytesBehind", kWhole + std::string(3, '\0'), "10.15.7"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Markup, XmlList,
    testing::Values(
        ListCase{"NamedEntities", value("<string>&lt;&amp;&gt;&quot;&apos;</string>"), "<&>\"'"},
        ListCase{"DecimalEntity", value("<string>&#49;&#228;</string>"), "1\xC3\xA4"},
        ListCase{"HexadecimalEntity", value("<string>&#x31;&#x1F600;&#xe4;</string>"),
                 "1\xF0\x9F\x98\x80\xC3\xA4"},
        ListCase{"UnknownEntity", value("<string>&nbsp;</string>"), kRefused},
        ListCase{"EntityWithoutEnd", value("<string>&amp</string>"), kRefused},
        ListCase{"EntityOfZero", value("<string>&#0;</string>"), kRefused},
        ListCase{"EntityOfASurrogate", value("<string>&#xD800;</string>"), kRefused},
        ListCase{"EntityBeyondTheLast", value("<string>&#x110000;</string>"), kRefused},
        ListCase{"EntityOfManyDigits", value("<string>&#x000000031;</string>"), kRefused},
        ListCase{"EntityCutInItsDigits", "<plist><dict><key>k</key><string>&#4", kRefused},
        ListCase{"EntityWithoutItsSemicolon", value("<string>&#49 </string>"), kRefused},
        ListCase{"EntityOfNoDigits", value("<string>&#;</string>"), kRefused},
        ListCase{"LetterInADecimalEntity", value("<string>&#4a;</string>"), kRefused},
        ListCase{"Section", value("<string>a<![CDATA[<&amp;]]>b</string>"), "a<&amp;b"},
        ListCase{"SectionWithoutEnd", value("<string><![CDATA[v</string>"), kRefused},
        ListCase{"CommentsBetweenElements",
                 "<!-- a --><plist><!----><dict><!-- <key>k</key> --><key>k</key><!-- x -->"
                 "<string>v</string><!-- - -- > --></dict></plist>",
                 "v"},
        ListCase{"CommentWithoutEnd", "<plist><dict><!-- ", kRefused},
        ListCase{"InstructionsBetweenElements", "<?a?><plist><?b c?><dict><?d?></dict></plist>",
                 kAbsent},
        ListCase{"InstructionWithoutEnd", "<?xml version='1.0'", kRefused},
        ListCase{"DocumentTypeWithEntities",
                 "<!DOCTYPE plist [<!-- ' ] > --><!ENTITY e \"]>\"><!ELEMENT x ANY>]>" +
                     value("<string>v</string>"),
                 "v"},
        ListCase{"DeclaredEntitiesAreNotExpanded",
                 "<!DOCTYPE plist [<!ENTITY e \"v\">]>" + value("<string>&e;</string>"), kRefused},
        ListCase{"DocumentTypeInSingleQuotes",
                 "<!DOCTYPE plist SYSTEM 'a>b'>" + value("<string>v</string>"), "v"},
        ListCase{"LoneBracketInADocumentType", "<!DOCTYPE plist ]>" + value("<string>v</string>"),
                 "v"},
        ListCase{"CommentWithoutEndInADocumentType", "<!DOCTYPE plist [<!-- ", kRefused},
        ListCase{"DocumentTypeWithoutEnd", "<!DOCTYPE plist [<!ENTITY e \"v\">", kRefused},
        ListCase{"CommentInAText", value("<string>a<!-- x -->b</string>"), kRefused},
        ListCase{"ElementInAText", value("<string>a<b/>c</string>"), kRefused}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Broken, XmlList,
    testing::Values(
        ListCase{"Empty", "", kRefused}, ListCase{"Blanks", " \n", kRefused},
        ListCase{"ZeroByteFirst", "\0"s + kWhole, kRefused},
        ListCase{"PlainText", "10.15.7", kRefused},
        ListCase{"ArrayAtTheTop", "<plist><array><string>k</string></array></plist>", kRefused},
        ListCase{"TextAtTheTop", "<plist><string>k</string></plist>", kRefused},
        ListCase{"NothingInPlist", "<plist></plist>", kRefused},
        ListCase{"PlistInOneTag", "<plist/>", kRefused},
        ListCase{"PlistThatOnlyEnds", "</plist>", kRefused},
        ListCase{"PlistOpenedAgain", "<plist><dict/><plist>", kRefused},
        ListCase{"CommentWithoutEndBehind", kWhole + "<!-- ", kRefused},
        ListCase{"TrueWithoutEnd", value("<true>"), kRefused},
        ListCase{"EndWhereAValueIsDue", value("</string>"), kRefused},
        ListCase{"TwoTops", "<plist><dict/><dict/></plist>", kRefused},
        ListCase{"SecondListBehind", kWhole + "<plist><dict/></plist>", kRefused},
        ListCase{"TextBehind", kWhole + "x", kRefused},
        ListCase{"TextBetweenElements", with("x<key>k</key><string>v</string>"), kRefused},
        ListCase{"KeyWithoutValue", with("<key>k</key>"), kRefused},
        ListCase{"ValueWithoutKey", with("<string>v</string>"), kRefused},
        ListCase{"TwoKeys", with("<key>k</key><key>k</key><string>v</string>"), kRefused},
        ListCase{"KeyInAnArray", value("<array><key>x</key></array>"), kRefused},
        ListCase{"InnerKeyWithoutValue", value("<dict><key>x</key></dict>"), kRefused},
        ListCase{"UnknownElement", value("<text>v</text>"), kRefused},
        ListCase{"WrongEnd", "<plist><dict><key>k</key><string>v</string></array></plist>",
                 kRefused},
        ListCase{"WrongEndOfAText", value("<string>v</key>"), kRefused},
        ListCase{"ContentInTrue", value("<true>1</true>"), kRefused},
        ListCase{"ElementInANumber", value("<integer><true/></integer>"), kRefused},
        ListCase{"ClosingTagWithSlashAtItsEnd", "<dict></dict/>", kRefused},
        ListCase{"EndWithoutBeginning", "</dict>", kRefused},
        ListCase{"NamelessTag", with("< key>k</key><string>v</string>"), kRefused},
        ListCase{"TagInATag", "<plist <dict>></plist>", kRefused},
        ListCase{"BadUtf8", value("<string>\xC3</string>"), kRefused},
        ListCase{"BadUtf8InAnotherText", with("<key>a</key><string>\xFF</string>"), kRefused},
        ListCase{"ZeroByteInAText", value("<string>v\0w</string>"s), kRefused},
        ListCase{"Utf16", "\xFE\xFF\0<\0p"s, kRefused}),
    [](const auto& row) { return row.param.name; });

TEST(XmlListCut, AnywhereBeforeTheEndIsRefused) {
  const size_t end = kWhole.size() - 1;  // without the line end
  for (size_t length = 0; length < end; ++length) {
    EXPECT_EQ(kRefused, text_under_k(kWhole.substr(0, length))) << length;
  }
  EXPECT_EQ("10.15.7", text_under_k(kWhole.substr(0, end)));
}

std::string repeated(const std::string& part, size_t size) {
  std::string text;
  while (text.size() < size) text += part;
  return text;
}

TEST(XmlListDeep, IsReadWithoutRecursion) {
  constexpr size_t kDepth = 200000;
  const std::string inside = repeated("<array>", 7 * kDepth) + repeated("</array>", 8 * kDepth);
  EXPECT_EQ(kAbsent, text_under_k(value(inside)));
  EXPECT_EQ(kRefused, text_under_k("<dict>" + repeated("<key>k</key><dict>", 18 * kDepth)));
}

TEST(XmlListHuge, EveryUnendingPartEnds) {
  for (const std::string& part :
       {"<"s, "<!--"s, "<?"s, "<!DOCTYPE"s, "<!DOCTYPE["s, "&amp;"s, "<key>"s, "<dict>"s, "<a b='"s,
        "\""s, "\0"s, "<![CDATA["s, " "s}) {
    const std::string text = repeated(part, 1 << 20);
    EXPECT_EQ(kRefused, text_under_k(text)) << part;
    EXPECT_EQ(kRefused, text_under_k("<dict><key>k</key><string>" + text)) << part;
    EXPECT_EQ(kRefused, text_under_k("<dict>" + text)) << part;
  }
}

}  // namespace
