// tests/torture/torture_test.cpp: runs every row of its program.
#include "tests/support/torture.h"

#include <cctype>

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

INSTANTIATE_TEST_SUITE_P(Rows, TortureTest, testing::ValuesIn(numbers()), [](const auto& row) {
  const Torture& torture = *all_tortures()[row.param];
  return letters_of(std::string(torture.function) + " " + torture.name) + "_" +
         std::to_string(row.index);
});

}  // namespace
