// tests/torture/torture_test.cpp: runs every row, and looks for exports that have none.
#include "tests/support/torture.h"

#include <cctype>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace {

using orbtest::all_tortures;
using orbtest::Torture;

std::string letters_of(const std::string& text) {
  std::string letters;
  bool upper = true;
  for (const char each : text) {
    const bool kept = isalnum(static_cast<unsigned char>(each)) != 0 || each == '_';
    if (kept)
      letters += static_cast<char>(upper ? toupper(static_cast<unsigned char>(each)) : each);
    upper = !kept;
  }
  return letters;
}

class TortureTest : public testing::TestWithParam<size_t> {};

TEST_P(TortureTest, GivesTheAnswerOfTheRow) { orbtest::torture(*all_tortures()[GetParam()]); }

std::vector<size_t> numbers() {
  std::vector<size_t> all(all_tortures().size());
  for (size_t each = 0; each < all.size(); ++each) all[each] = each;
  return all;
}

// The headers whose every function has a row.
const char* const kHeaders[] = {
    "fileutil/dirent.h",      "fileutil/voxfio.h",    "fileutil/conversions.h",
    "portability/Linklist.h", "portability/dynlib.h", "portability/filehandle.h",
    "portability/handles.h",  "portability/selock.h", "portability/signals.h",
    "portability/threads.h",
};

std::string text_of(const std::string& name) {
  std::ifstream file(ORB_SOURCE_FOLDER "/" + name);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The name of an export without its scope and its parameters.
std::string plain_name(const std::string& exported) {
  const std::string name = exported.substr(0, exported.find('('));
  const size_t scope = name.rfind("::");
  return scope == std::string::npos ? name : name.substr(scope + 2);
}

TEST(TortureRows, CoverEveryExportOfTheirHeaders) {
  std::string declared;
  for (const char* header : kHeaders) declared += text_of(header);
  std::set<std::string> named;
  for (const Torture* row : all_tortures()) named.insert(row->function);
  std::istringstream exports(text_of("abi/exports.txt"));
  size_t functions = 0;
  for (std::string line; std::getline(exports, line);) {
    const std::string name = plain_name(line);
    const size_t at = declared.find(name + "(");
    const bool whole = at != std::string::npos && at > 0 &&
                       isalnum(static_cast<unsigned char>(declared[at - 1])) == 0;
    if (line[0] == '#' || name.empty() || !whole) continue;
    ++functions;
    EXPECT_EQ(1u, named.count(line)) << line << " has no row";
  }
  EXPECT_LE(130u, functions);
}

INSTANTIATE_TEST_SUITE_P(Rows, TortureTest, testing::ValuesIn(numbers()), [](const auto& row) {
  const Torture& torture = *all_tortures()[row.param];
  return letters_of(std::string(torture.function) + " " + torture.name) + "_" +
         std::to_string(row.index);
});

}  // namespace
