// tests/tools/json_test.cpp: tools/orbprops/json.h, character by character and read back.
#include "tools/orbprops/json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using orbprops::Answer;

TEST(Json, ValuesAreAnObjectInTheOrderAsked) {
  EXPECT_EQ("{\n  \"OSType\": \"Linux\",\n  \"CPUType\": \"x\"\n}\n",
            orbprops::values_json({{"OSType", L"Linux"}, {"CPUType", L"x"}}));
  EXPECT_EQ("{}\n", orbprops::values_json({}));
}

TEST(Json, KeyThatOccursTwiceStandsThereOnce) {
  EXPECT_EQ("{\n  \"OSType\": \"Linux\"\n}\n",
            orbprops::values_json({{"OSType", L"Linux"}, {"OSType", L"Linux"}}));
}

TEST(Json, ReportHasItsSectionsUnderTheWireNames) {
  Answer answer;
  answer.properties = {{"OSType", L"Linux"}};
  answer.file_systems = {{L"/", L"3906.25", L"976.56"}};
  answer.timings = {{"network", 1.23456}, {"total", 2}};
  EXPECT_EQ(
      "{\n"
      "  \"SystemInfo\": {\n"
      "    \"OSType\": \"Linux\"\n"
      "  },\n"
      "  \"FileSystem\": [\n"
      "    {\n"
      "      \"MountPoint\": \"/\",\n"
      "      \"Total_Disk_Space_in_MB\": \"3906.25\",\n"
      "      \"Free_Disk_Space_in_MB\": \"976.56\"\n"
      "    }\n"
      "  ],\n"
      "  \"Timing_in_ms\": {\n"
      "    \"network\": 1.235,\n"
      "    \"total\": 2.0\n"
      "  }\n"
      "}\n",
      orbprops::document_json(answer, true));
}

TEST(Json, TimingsAreLeftOutUnlessAskedFor) {
  Answer answer;
  answer.file_systems.emplace();
  answer.timings = {{"disk", 1}};
  EXPECT_EQ("{\n  \"FileSystem\": []\n}\n", orbprops::document_json(answer, false));
}

TEST(Json, InterfaceCarriesItsAddresses) {
  Answer answer;
  answer.interfaces = {{2, "eth0", "001c42a1b2c3", {{"10.0.0.5", "255.0.0.0", "10.0.0.0"}}}};
  const auto document = nlohmann::json::parse(orbprops::document_json(answer, false));
  EXPECT_EQ(nlohmann::json::parse(R"({"Interfaces": [{"Index": 2, "Name": "eth0",
                "NETAddress": "001c42a1b2c3", "Addresses": [{"IPAddress": "10.0.0.5",
                "SubnetMask": "255.0.0.0", "SubnetAddress": "10.0.0.0"}]}]})"),
            document);
}

TEST(Json, UsersAreTwoLists) {
  Answer answer;
  answer.users = orbprops::Users{{"corp\\jdoe"}, {"ann", "root"}};
  const auto document = nlohmann::json::parse(orbprops::document_json(answer, false));
  EXPECT_EQ(
      nlohmann::json::parse(R"({"Users": {"Network": ["corp\\jdoe"], "Local": ["ann", "root"]}})"),
      document);
}

TEST(Json, KeysAreAList) {
  Answer answer;
  answer.keys = {"OSType", "CPUType"};
  EXPECT_EQ("{\n  \"Keys\": [\n    \"OSType\",\n    \"CPUType\"\n  ]\n}\n",
            orbprops::document_json(answer, false));
}

// Every byte sequence gives a document that a strict reader takes, without a raw control character.
TEST(Json, NamesOfAnyBytesStayValid) {
  const std::vector<std::string> names = {
      "caf\xe9",      "\xff\xfe", "\x1b[31m",     "a\nb", "\"\\",        std::string("\0z", 2),
      "\xed\xa0\x80", "\xc2\x9b", "\xe2\x80\xae", "\x7f", "\xe6\x97\xa5"};
  const std::vector<std::string> read_back = {"caf\xef\xbf\xbd",
                                              "\xef\xbf\xbd\xef\xbf\xbd",
                                              "\x1b[31m",
                                              "a\nb",
                                              "\"\\",
                                              std::string("\0z", 2),
                                              "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd",
                                              "\xc2\x9b",
                                              "\xe2\x80\xae",
                                              "\x7f",
                                              "\xe6\x97\xa5"};
  Answer answer;
  answer.users = orbprops::Users{names, {}};
  const std::string text = orbprops::document_json(answer, false);
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    EXPECT_TRUE(byte == '\n' || (byte >= 0x20 && byte != 0x7f)) << i;
  }
  EXPECT_EQ(std::string::npos, text.find("\xc2\x9b"));
  EXPECT_EQ(std::string::npos, text.find("\xe2\x80\xae"));
  EXPECT_EQ(read_back,
            nlohmann::json::parse(text)["Users"]["Network"].get<std::vector<std::string>>());
}

TEST(Json, MountPointsOfAnyCharactersStayValid) {
  Answer answer;
  answer.file_systems = {{L"/a\u00e9\n" + std::wstring(1, wchar_t(0xd800)), L"1.00", L"0.00"}};
  const auto document = nlohmann::json::parse(orbprops::document_json(answer, false));
  EXPECT_EQ("/a\xc3\xa9\n\xef\xbf\xbd", document["FileSystem"][0]["MountPoint"]);
}

}  // namespace
