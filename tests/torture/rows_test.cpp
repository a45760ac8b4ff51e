// tests/torture/rows_test.cpp: looks for exports that have no row.
#include <cctype>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tests/support/torture.h"
#include "tests/torture/removals.h"

namespace {

using orbtest::all_tortures;
using orbtest::kRemovals;
using orbtest::Torture;

// The headers whose every function has a row.
const char* const kHeaders[] = {
    "fileutil/conversions.h", "fileutil/dirent.h",       "fileutil/filetree.h",
    "fileutil/guid.h",        "fileutil/paths.h",        "fileutil/platformmatch.h",
    "fileutil/timestamp.h",   "fileutil/voxfio.h",       "network/ipaddress.h",
    "network/ipv6.h",         "network/netinterface.h",  "network/networkutil.h",
    "portability/Linklist.h", "portability/dynlib.h",    "portability/filehandle.h",
    "portability/handles.h",  "portability/selock.h",    "portability/signals.h",
    "portability/threads.h",  "session/loggedonusers.h", "sysprops/catalogue.h",
    "sysprops/collectors.h",  "sysprops/records.h",
};

std::string text_of(const std::string& name) {
  std::ifstream file(ORB_SOURCE_FOLDER "/" + name);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Whether `declarations` hold a function or a member called `name`.
bool declares(const std::string& declarations, const std::string& name) {
  size_t at = declarations.find(name + "(");
  while (at != std::string::npos && at > 0 &&
         isalnum(static_cast<unsigned char>(declarations[at - 1])) != 0)
    at = declarations.find(name + "(", at + 1);
  return at != std::string::npos;
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
  std::set<std::string> named = kRemovals;
  for (const Torture* row : all_tortures()) named.insert(row->function);
  std::istringstream exports(text_of("abi/exports.txt"));
  size_t functions = 0;
  for (std::string line; std::getline(exports, line);) {
    const std::string name = plain_name(line);
    if (line[0] == '#' || name.empty() || !declares(declared, name)) continue;
    ++functions;
    EXPECT_EQ(1u, named.count(line)) << line << " has no row";
  }
  EXPECT_LE(320u, functions);
}

}  // namespace
