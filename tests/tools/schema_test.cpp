// tests/tools/schema_test.cpp: every JSON document of the tool against the published schema.
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/tools/run_tool.h"
#include "tools/orbprops/json.h"
#include "tools/orbprops/properties.h"

namespace {

using nlohmann::json;
using orbtest::Outcome;

constexpr char kSchema[] = ORBPROPS_FOLDER "/orbprops.schema.json";

// Validates each line of standard input; prints "valid", or the first thing wrong, for each.
constexpr char kValidator[] = R"(
import json, sys, jsonschema
schema = json.load(open(sys.argv[1]))
kind = jsonschema.validators.validator_for(schema)
kind.check_schema(schema)
validator = kind(schema)
for line in open(sys.argv[2]):
    error = next(validator.iter_errors(json.loads(line)), None)
    print("valid" if error is None else "invalid: " + error.message.replace("\n", " ")[:300])
)";

class Schema : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* candidate : {"/usr/bin/python3", "python3"}) {
      orbtest::Launch launch;
      launch.program = candidate;
      launch.arguments = {"-c", "import jsonschema"};
      if (orbtest::run(launch).status != 0) continue;
      python_ = candidate;
      return;
    }
    GTEST_SKIP() << "python3-jsonschema is not installed";
  }

  // The verdict on each of `documents`.
  std::vector<std::string> verdicts(const std::vector<json>& documents) const {
    const orbtest::ToolFolder folder;
    const std::string path = folder.path() + "/documents";
    std::ofstream lines(path);
    for (const json& document : documents) lines << document.dump() << "\n";
    lines.close();
    orbtest::Launch launch;
    launch.program = python_;
    launch.arguments = {"-c", kValidator, kSchema, path};
    const Outcome outcome = orbtest::run(launch);
    EXPECT_EQ(0, outcome.status) << outcome.error;
    return orbtest::lines_of(outcome.out);
  }

  std::string python_;
};

json document_of(const std::vector<std::string>& arguments) {
  return json::parse(orbtest::run_tool(arguments).out);
}

TEST_F(Schema, EveryDocumentOfThisMachineIsValid) {
  const std::vector<std::vector<std::string>> commands = {
      {"--json"},
      {"--json", "--timing"},
      {"keys", "--json"},
      {"filesystems", "--json"},
      {"filesystems", "--json", "--timing"},
      {"interfaces", "--json"},
      {"interfaces", "--json", "--loopback", "--timing"},
      {"users", "--json", "--timing"},
      {"get", "--json", "OSType"},
      {"get", "--json", "NumberOfFileSystems", "IsPortable", "LastUpdate"},
      {"get", "--json", "NoSuchKey"}};
  std::vector<json> documents;
  for (const auto& command : commands) documents.push_back(document_of(command));
  const std::vector<std::string> found = verdicts(documents);
  ASSERT_EQ(commands.size(), found.size());
  for (size_t i = 0; i < found.size(); ++i) EXPECT_EQ("valid", found[i]) << documents[i].dump(2);
}

TEST_F(Schema, MachineThatTellsNothingIsValid) {
  orbprops::Answer answer;
  answer.properties.emplace();
  const orbprops::Records records;
  for (const auto& info : orbprops::kProperties) {
    const bool always = info.key == "DefaultLangID";
    answer.properties->push_back({info.key, always ? L"0409" : info.field(records)});
  }
  answer.file_systems.emplace();
  orbprops::Answer users;
  users.users = orbprops::Users{{"a\\\xff"}, {}};
  EXPECT_EQ((std::vector<std::string>{"valid", "valid"}),
            verdicts({json::parse(orbprops::document_json(answer, false)),
                      json::parse(orbprops::document_json(users, true))}));
}

TEST_F(Schema, KnowsEveryFormOfAnAddress) {
  const auto with_address = [](const char* text) {
    orbprops::Answer answer;
    answer.interfaces = {{2, "eth0", "001c42a1b2c3", {{text, "ffff:0:0:0:0:0:0:0", "10.0.0.0"}}}};
    return json::parse(orbprops::document_json(answer, false));
  };
  const std::vector<std::string> found =
      verdicts({with_address("10.0.0.5"), with_address("fe80:0:0:0:0:fc:ff:fe00"),
                with_address("0:0:0:0:0:0:ffff:10.0.0.5"), with_address("::1"),
                with_address("fe80:0:0:0:0:0:0:1%eth0"), with_address("ffff:10.0.0.5")});
  ASSERT_EQ(6U, found.size());
  for (size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(i < 3 ? "valid" : "invalid", found[i].substr(0, found[i].find(':'))) << i;
  }
}

TEST_F(Schema, RefusesWhatTheToolNeverPrints) {
  const json report = document_of({"--json"});
  const auto changed = [&report](auto change) {
    json copy = report;
    change(copy);
    return copy;
  };
  const std::vector<json> wrong = {
      changed([](json& d) { d["SystemInfo"].erase("OSType"); }),
      changed([](json& d) { d["SystemInfo"]["NumOfCPU"] = 4; }),
      changed([](json& d) { d["SystemInfo"]["TotalDiskSpace"] = "1,5"; }),
      changed([](json& d) { d["SystemInfo"]["Humidity"] = "1"; }),
      changed([](json& d) { d.erase("FileSystem"); }),
      changed([](json& d) {
        d["FileSystem"] = {{{"MountPoint", "/"}}};
      }),
      changed([](json& d) {
        d["Timing_in_ms"] = {{"os", -1}};
      }),
      {{"Keys", {"OSType"}}},
      {{"Users", {{"Network", json::array()}}}},
      {{"Interfaces", {{{"Index", 1}}}}},
      {{"osversion", "12"}},
      json::array()};
  const std::vector<std::string> found = verdicts(wrong);
  ASSERT_EQ(wrong.size(), found.size());
  for (size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(0U, found[i].find("invalid: ")) << wrong[i].dump(2);
  }
}

// The schema lists exactly the keys that there are.
TEST(SchemaFile, DescribesEveryKey) {
  std::ifstream file(kSchema);
  const json schema = json::parse(file);
  const json& described = schema["$defs"]["properties"]["properties"];
  EXPECT_EQ(orbprops::kPropertyCount, described.size());
  for (const auto& info : orbprops::kProperties) {
    ASSERT_TRUE(described.contains(std::string(info.key))) << info.key;
    EXPECT_FALSE(described[std::string(info.key)]["description"].get<std::string>().empty());
  }
}

}  // namespace
