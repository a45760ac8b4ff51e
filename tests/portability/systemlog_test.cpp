// tests/portability/systemlog_test.cpp: the writers of portability/signals.h, through a real log.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "portability/signals.h"
#include "tests/portability/call_script.h"
#include "tests/portability/log_socket.h"

namespace {

using quillon_com::orb::LogInSystemLog;
using quillon_com::orb::vLogInSystemLog;

bool with_list(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const bool logged = vLogInSystemLog(priority, format, arguments);
  va_end(arguments);
  return logged;
}

bool with_tag_and_list(int priority, const char* ident, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const bool logged = vLogInSystemLog(priority, ident, format, arguments);
  va_end(arguments);
  return logged;
}

#define ASSERT_LOGGED(expected, ...)                               \
  do {                                                             \
    const auto logged = orbtest::logged_by([&] __VA_ARGS__);       \
    if (!logged) GTEST_SKIP() << "needs root: a mount name space"; \
    EXPECT_EQ(expected, *logged);                                  \
  } while (false)

// The number is 8, the user facility, and the priority.
TEST(SystemLog, MessageHasTagPriorityAndUserFacility) {
  ASSERT_LOGGED("<11>[ORB]: number 7 text x\n<14>[ORB]: other\n<8>[ORB]: lowest\n", {
    EXPECT_TRUE(LogInSystemLog(3, "number %d text %c", 7, 'x'));
    EXPECT_TRUE(LogInSystemLog(6, "other"));
    EXPECT_TRUE(LogInSystemLog(0, "lowest"));
  });
}

TEST(SystemLog, TagIsTheCallersWhenGiven) {
  ASSERT_LOGGED("<12>mine: number 7 text x\n<11>[ORB]: after\n", {
    EXPECT_TRUE(LogInSystemLog(4, "mine", "number %d text %c", 7, 'x'));
    EXPECT_TRUE(LogInSystemLog(3, "after"));
  });
}

TEST(SystemLog, QuirkTextAfterTheFormatMakesTheFormatTheTag) {
  ASSERT_LOGGED("<11>%s: name\n", { EXPECT_TRUE(LogInSystemLog(3, "%s", "name")); });
}

TEST(SystemLog, ListsWriteTheSame) {
  ASSERT_LOGGED("<11>[ORB]: 1 two\n<13>mine: 3 four\n", {
    EXPECT_TRUE(with_list(3, "%d %s", 1, "two"));
    EXPECT_TRUE(with_tag_and_list(5, "mine", "%d %s", 3, "four"));
  });
}

TEST(SystemLog, NullFormatWritesNothing) {
  ASSERT_LOGGED("", {
    const char* none = nullptr;
    EXPECT_TRUE(with_list(3, none));
    EXPECT_TRUE(with_tag_and_list(3, "mine", none));
  });
}

TEST(SystemLog, EachMessageOpensAndClosesTheLog) {
  ASSERT_LOGGED("<11>[ORB]: one\n<11>mine: two\n", {
    const orbtest::CallScript script;
    LogInSystemLog(3, "one");
    with_tag_and_list(3, "mine", "two");
    const std::vector<std::string> expected = {"open [ORB] 10 8", "close", "open mine 10 8",
                                               "close"};
    if (script.log_calls != expected) _exit(1);
  });
}

// The console is the fallback where nobody listens.
TEST(SystemLog, UnheardMessageGoesToTheConsole) {
  const auto console = orbtest::in_mount_namespace([] {
    if (!orbtest::cover_folder("/dev")) return false;
    orbtest::write_file("/dev/console", "");
    LogInSystemLog(3, "nobody listens");
    std::ifstream in("/dev/console");
    std::string line;
    std::getline(in, line);
    printf("%s", line.c_str());
    return true;
  });
  if (!console) GTEST_SKIP() << "needs root: a mount name space";
  EXPECT_EQ("[ORB]: nobody listens\r", *console);
}

}  // namespace
