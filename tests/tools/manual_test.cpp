// tests/tools/manual_test.cpp: the manual page renders and tells everything.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/tools/run_tool.h"
#include "tools/orbprops/arguments.h"
#include "tools/orbprops/properties.h"

namespace {

constexpr char kPage[] = ORBPROPS_FOLDER "/orbprops.1";

std::string page_source() {
  std::ifstream file(kPage);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

TEST(Manual, RendersWithoutAWarning) {
  if (!orbtest::has_command("groff")) GTEST_SKIP() << "groff is not installed";
  orbtest::Launch launch;
  launch.program = "groff";
  launch.arguments = {"-ww", "-t", "-man", "-Tutf8", kPage};
  const orbtest::Outcome outcome = orbtest::run(launch);
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ("", outcome.error);
  EXPECT_NE(std::string::npos, outcome.out.find("show the system properties of this machine"));
}

TEST(Manual, PassesItsLinter) {
  if (!orbtest::has_command("mandoc")) GTEST_SKIP() << "mandoc is not installed";
  orbtest::Launch launch;
  launch.program = "mandoc";
  launch.arguments = {"-T", "lint", "-W", "warning", kPage};
  const orbtest::Outcome outcome = orbtest::run(launch);
  EXPECT_EQ(0, outcome.status);
  EXPECT_EQ("", outcome.out + outcome.error);
}

TEST(Manual, DescribesEveryKeyCommandAndOption) {
  const std::string source = page_source();
  for (const auto& info : orbprops::kProperties) {
    std::string meaning(info.meaning);
    if (const size_t dash = meaning.find("-1"); dash != std::string::npos) {
      meaning.replace(dash, 1, "\\-");
    }
    EXPECT_NE(std::string::npos, source.find(std::string(info.key) + "|" + meaning + "\n"))
        << info.key;
  }
  for (const std::string& name : orbprops::command_names()) {
    EXPECT_NE(std::string::npos,
              source.find("\n.B" + std::string(name == "get" ? "I get" : " " + name)))
        << name;
  }
  for (std::string name : orbprops::option_names()) {
    for (size_t i = 0; (i = name.find('-', i)) != std::string::npos; i += 2) {
      name.replace(i, 1, "\\-");
    }
    EXPECT_NE(std::string::npos, source.find(name)) << name;
  }
}

TEST(Manual, CarriesTheVersion) {
  EXPECT_NE(std::string::npos, page_source().find("\"orbcommon " ORB_VERSION "\""));
}

}  // namespace
