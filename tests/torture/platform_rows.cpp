// tests/torture/platform_rows.cpp: facts of platform/posix_system.h that no export of this system
// reaches, or none alone, under torture.
#include "platform/posix_system.h"

#include "platform/system.h"
#include "tests/support/temp_dir.h"
#include "tests/support/torture.h"

namespace {

using orbtest::Trial;
using quillon_com::orb::platform::host;

const std::string kText = "a text that an object cannot hold by itself";

// A fact that is a text; the text behind the result, "untouched" where it is.
template <class Fact>
void text_fact(Trial& trial, Fact fact) {
  std::string text = "untouched";
  trial.call([&] { return fact(&text); });
  trial.answer(trial.answer() + (" " + text));
}

const orbtest::Tortures rows({
    // The child is waited for and the pipe closed, whatever becomes of the output.
    {"platform::System::command_output",
     "",
     "1 a text that an object cannot hold by itself\n",
     [](Trial& trial) {
       const std::string command = "/bin/echo " + kText;
       text_fact(trial,
                 [&](std::string* text) { return host().command_output(command, 1000, text); });
     },
     {{"stat", "0 untouched"},
      {"popen", "0 untouched"},
      {"fcntl", "1 a text that an object cannot hold by itself\n"},
      {"fcntl onwards", "1 "},
      {"read#1", "1 "},
      {"read#2", "1 a text that an object cannot hold by itself\n"},
      {"pclose", "1 a text that an object cannot hold by itself\n"},
      {"operator new", "no memory untouched"}}},
    {"platform::System::file_bytes",
     "",
     "1 a text that an object cannot hold by itself",
     [](Trial& trial) {
       const orbtest::TempDir folder;
       const std::string path = folder.write("file", kText);
       text_fact(trial, [&](std::string* text) { return host().file_bytes(path, 1000, text); });
     },
     {{"open", "0 untouched"},
      {"read#1", "1 "},
      {"read#2", "1 a text that an object cannot hold by itself"},
      {"close", "1 a text that an object cannot hold by itself"},
      {"operator new", "no memory untouched"}}},
    {"platform::System::zone_accepted",
     "",
     "1",
     [](Trial& trial) {
       const std::string address = "fe80::1%2";
       trial.call([&] { return host().zone_accepted(address); });
     },
     {{"getaddrinfo", "0"}}},
    {"platform::System::family_usable",
     "",
     "1",
     [](Trial& trial) { trial.call([] { return host().family_usable(AF_UNIX); }); },
     {{"socket", "0"}, {"close", "1"}}},
});

}  // namespace
