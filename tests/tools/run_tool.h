// tests/tools/run_tool.h: runs the built tool, or another program, and keeps what came out.
#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orbtest {

struct Launch {
  std::vector<std::string> arguments;  // behind the program
  // Variables to set, or to remove when there is no value. Beyond them the program sees the test's
  // environment without what would change a layout: COLUMNS, NO_COLOR, TERM, LANG, LC_ALL.
  std::map<std::string, std::optional<std::string>> environment;
  std::string program;               // empty for the tool
  unsigned short window = 0;         // above 0: standard output is a terminal of so many columns
  std::function<void()> in_child;    // runs between fork and exec, descriptors in place
  std::function<void(pid_t)> watch;  // runs in the parent before anything is read
};

struct Outcome {
  int status = -1;  // exit status; 128 + signal when one ended it
  std::string out;  // of a terminal with plain line ends
  std::string error;
};

// Runs to the end. Throws std::system_error when the program cannot be started.
Outcome run(const Launch& launch);

// The tool with `arguments` and nothing else.
Outcome run_tool(const std::vector<std::string>& arguments);

// Whether `command` is found on the path.
bool has_command(const std::string& command);

// The lines of `text`, without their ends.
std::vector<std::string> lines_of(const std::string& text);

// A folder whose `orbprops` is the built tool, made for the life of the object.
class ToolFolder {
 public:
  ToolFolder();
  ~ToolFolder();
  ToolFolder(const ToolFolder&) = delete;
  ToolFolder& operator=(const ToolFolder&) = delete;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace orbtest
