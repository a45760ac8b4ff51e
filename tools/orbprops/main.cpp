// tools/orbprops/main.cpp: the report tool: shows the system properties of this machine.
#include <clocale>
#include <ctime>
#include <exception>

#include "tools/orbprops/commands.h"
#include "tools/orbprops/output.h"
#include "tools/orbprops/text.h"

int main(int argc, char** argv) {
  using namespace orbprops;
  if (!secure_descriptors()) {
    complain("standard output is closed");
    return kNotAnswered;
  }
  // What every process that reports does. The characters are all of the locale that matters here:
  // numbers keep their point, and loading the other categories would take longer than collecting.
  setlocale(LC_CTYPE, "");
  tzset();
  locale_charset();
  try {
    std::string error;
    const std::optional<Options> options = parse_arguments(argc, argv, error);
    if (!options) {
      complain(error + "\nTry \"orbprops --help\".");
      return kUsage;
    }
    if (options->command == Command::help) return print(kHelp, kAnswered);
    if (options->command == Command::version) {
      return print("orbprops " ORB_VERSION "\n", kAnswered);
    }
    return run(*options);
  } catch (const std::exception& failure) {
    complain(failure.what());
    return kNotAnswered;
  }
}
