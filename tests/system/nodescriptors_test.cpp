// tests/system/nodescriptors_test.cpp: a process that has used up its descriptors. Copies and
// searches there: tests/fileutil/filecopy_test.cpp and dirent_test.cpp.
#include <netdb.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

#include "fileutil/conversions.h"
#include "fileutil/filetree.h"
#include "fileutil/guid.h"
#include "fileutil/paths.h"
#include "fileutil/platformmatch.h"
#include "fileutil/timestamp.h"
#include "fileutil/voxfio.h"
#include "network/netinterface.h"
#include "network/networkutil.h"
#include "platform/system.h"
#include "portability/dynlib.h"
#include "portability/filehandle.h"
#include "portability/selock.h"
#include "portability/signals.h"
#include "portability/threads.h"
#include "session/loggedonusers.h"
#include "sysprops/catalogue.h"
#include "tests/support/scoped_error_word.h"
#include "tests/support/temp_dir.h"
#include "tests/system/surroundings.h"

namespace {

using namespace quillon_com::orb;
using orbtest::ScopedErrorWord;

constexpr unsigned kFailure = 0x80000008;
constexpr uint32_t kRead = 0x80000000;
constexpr int64_t kNoRoom = 259;  // of the last error

bool use_descriptors_up() {
  constexpr rlimit kFew = {32, 32};
  if (setrlimit(RLIMIT_NOFILE, &kFew) != 0) return false;
  while (dup(STDERR_FILENO) >= 0) {
  }
  return errno == EMFILE;
}

void expect_no_files() {
  const orbtest::ScopedErrorWord word;
  EXPECT_EQ(nullptr, voxCreateFileAW("/etc/passwd", kRead, 0, nullptr, 3, 0, nullptr));
  EXPECT_EQ(kNoRoom, voxGetLastError());
  EXPECT_EQ(ScopedErrorWord::kUntouched, nErrno);
  _vxFile_t* file = reinterpret_cast<_vxFile_t*>(&nErrno);
  EXPECT_EQ(kFailure, vxCreateFile("/etc/passwd", kRead, 0, 3, 0, &file));
  EXPECT_EQ(nullptr, file);
  std::array<char, 300> name{"old"};
  EXPECT_EQ(0U, voxGetTempFileName("/tmp", "ab", 7, name.data()));
  EXPECT_STREQ("old", name.data());
}

void expect_no_libraries() {
  char* message = nullptr;
  EXPECT_EQ(nullptr, voxLoadLibrary(ORB_PLAIN_PLUGIN, &message));
  EXPECT_STRNE("", message);
  wchar_t* wide = nullptr;
  EXPECT_EQ(nullptr, voxLoadLibraryW(voxcomn_ansi_to_wide(ORB_PLAIN_PLUGIN).c_str(), &wide));
  EXPECT_STRNE(L"", wide);
  void* image = nullptr;
  std::array<char, 1024> text{};
  EXPECT_EQ(0, load_shared_object_image(&image, ORB_PLAIN_PLUGIN, text.data()));
  EXPECT_STRNE("", text.data());
  EXPECT_EQ(0, voxcomn_GetFileResourceVersionStamp(ORB_PLAIN_PLUGIN, text.data(), text.size()));
}

void expect_no_network() {
  NetInterfaceList list(true);
  EXPECT_FALSE(getNetInterfacesList(list));
  EXPECT_TRUE(list.getIndexes().empty());
  std::string mac = "old";
  EXPECT_FALSE(getMacAddr(mac, "lo"));
  EXPECT_EQ("old", mac);
  ANetworkUtil utility;
  std::string local = "old";
  for (const int timeout : {0, 1}) {
    EXPECT_NE(0,
              utility.qlnGetLocalIPAddress("127.0.0.1", "9", local, true, NI_NUMERICHOST, timeout));
    EXPECT_NE(0,
              utility.qlnGetLocalIPAddressFromList("127.0.0.1;::1", "9", local, false, 0, timeout));
  }
  EXPECT_EQ("old", local);
  unsigned scope = 77;
  EXPECT_FALSE(utility.qlnGetScopeId("fe80::1", scope));
  EXPECT_EQ(77U, scope);
  EXPECT_FALSE(utility.qlnCompareAddressFromPeerAddress("server.example", "443", "192.0.2.1"));
}

void expect_nobody() {
  std::string users = "old";
  session::CollectAllLoggedonUsers(users);
  EXPECT_EQ("", users);
  std::string output = "old";
  EXPECT_FALSE(platform::host().command_output("/bin/echo x", 16, &output));
  EXPECT_EQ("old", output);
}

void expect_a_whole_report() {
  auto values = orbtest::whole_report();
  EXPECT_EQ(orbtest::kReportKeys, values.size());
  EXPECT_EQ(L"N/A", values[L"IPAddress"]);
  EXPECT_EQ(L"N/A", values[L"NETAddress"]);
  EXPECT_NE(L"N/A", values[L"ComputerName"]);
  EXPECT_NE(L"N/A", values[L"TotalPhysicalMemory"]);
  EXPECT_EQ(L"NA", values[L"UserName"]);
  EXPECT_EQ(L"0", values[L"NumberOfFileSystems"]);
}

void* give_back(void* argument) { return argument; }

void expect_handles_threads_and_locks() {
  void* const event = voxCreateEvent(nullptr, 1, 1, nullptr);
  EXPECT_EQ(uint64_t{WAIT_OBJECT_0}, voxWaitForSingleObject(event, 0));
  EXPECT_EQ(1, voxCloseHandle(event));
  void* const thread = voxBeginThread(nullptr, 0, give_back, nullptr, 0, nullptr);
  EXPECT_EQ(uint64_t{WAIT_OBJECT_0}, voxWaitForSingleObject(thread, INFINITE));
  EXPECT_EQ(1, voxCloseHandle(thread));
  EXPECT_NE(-1, vxSO_ProcessAttach());
  EXPECT_EQ(1, vxSO_ThreadAttach());
  _vxSELock_t* lock = nullptr;
  EXPECT_EQ(0U, vxSO_SELockCreate(&lock));
  EXPECT_EQ(1, vxSO_SELockExclusive(lock, 1));
  EXPECT_EQ(1, vxSO_SELockRelease(lock));
}

void expect_texts_and_identifiers() {
  EXPECT_EQ(L"gr\u00FC\u00DF", voxcomn_ansi_to_wide("gr\xC3\xBC\xC3\x9F"));
  char text[39] = {};
  EXPECT_EQ(1, voxcomn_create_guid(nullptr, text, sizeof text));
  EXPECT_EQ('}', text[37]);
  EXPECT_EQ(19U, voxcomn_get_time_stamp_ansi().size());
  EXPECT_TRUE(LogInSystemLog(7, "no descriptors"));
  std::string flat;
  EXPECT_TRUE(FileNameFlattener("a/../b").GetFlatPath(flat));
  EXPECT_TRUE(FileNameResolver("/etc/passwd").GetAbsolutePath(flat));
  EXPECT_TRUE(vxFolderExists("/etc"));
}

struct UsedUpCase {
  const char* name;
  void (*expectations)();
};

void PrintTo(const UsedUpCase& row, std::ostream* out) { *out << row.name; }

class NoDescriptors : public testing::TestWithParam<UsedUpCase> {};

TEST_P(NoDescriptors, Left) { EXPECT_IN(use_descriptors_up, GetParam().expectations); }

INSTANTIATE_TEST_SUITE_P(
    Rules, NoDescriptors,
    testing::Values(UsedUpCase{"NoFileIsOpened", expect_no_files},
                    UsedUpCase{"NoLibraryIsLoadedAndItIsSaid", expect_no_libraries},
                    UsedUpCase{"NoInterfaceAndNoServerIsFound", expect_no_network},
                    UsedUpCase{"NobodyIsLoggedOnAndNoCommandIsStarted", expect_nobody},
                    UsedUpCase{"TheReportIsWhole", expect_a_whole_report},
                    UsedUpCase{"HandlesThreadsAndLocksWork", expect_handles_threads_and_locks},
                    UsedUpCase{"TextsAndIdentifiersAreMade", expect_texts_and_identifiers}),
    [](const auto& row) { return row.param.name; });

}  // namespace
