// tests/support/latin_locale.h: a locale whose bytes above 127 are letters, for one scope.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "tests/support/scoped_environment.h"
#include "tests/support/scoped_locale.h"
#include "tests/support/temp_dir.h"

namespace orbtest {

// Compiles a German locale in ISO 8859-15 and makes it the LC_CTYPE locale; the destructor gives
// back what it was. `set` is false where localedef or its sources (package "locales") are missing.
class LatinLocale {
 public:
  LatinLocale() {
    const std::string command =
        "localedef -f ISO-8859-15 -i de_DE '" + folder_.path("latin") + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) == 0) locale_.emplace("latin");
  }

  bool set() const { return locale_ && locale_->set(); }

 private:
  TempDir folder_;
  ScopedEnvironment path_{"LOCPATH", folder_.path()};
  std::optional<ScopedLocale> locale_;
};

}  // namespace orbtest
