// tests/soak/machine_areas.cpp: rounds of libraries, signals, the log, the network, the users and
// the property report.
#include <netinet/in.h>
#include <pthread.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <map>
#include <set>
#include <string>

#include "config/configkeys.h"
#include "fileutil/platformmatch.h"
#include "network/netinterface.h"
#include "network/networkutil.h"
#include "portability/dynlib.h"
#include "portability/signals.h"
#include "session/loggedonusers.h"
#include "sysprops/catalogue.h"
#include "tests/soak/soak.h"

namespace soak {
namespace {

using namespace quillon_com::orb;

void use_libraries(Worker& worker) {
  char* message = nullptr;
  void* const library = voxLoadLibrary(ORB_PLAIN_PLUGIN, &message);
  worker.expect(library != nullptr, "a library is loaded");
  worker.expect(voxGetProcAddress(library, "plain_number", &message) != nullptr, "it has a symbol");
  char text[32] = {};
  worker.expect(voxLoadString(library, 7, text, sizeof text) == 6, "and a text");
  worker.expect(voxDisableThreadLibraryCalls(library) == 1, "it is in the table");
  worker.expect(voxFreeLibrary(library) == 1, "it is released");
  char stamp[32] = {};
  worker.expect(
      voxcomn_GetFileResourceStringVersionStamp(ORB_SMALL_PLUGIN, stamp, sizeof stamp) == 1 &&
          std::strcmp(stamp, "1.2.3.4") == 0,
      "a plug-in states its version");
}

thread_local int calls_back = 0;

// The dispatcher calls back for one signal and ends with the other.
void dispatch_signals(Worker& worker) {
  calls_back = 0;
  SignalHandler handler;
  handler.addSignalToBlock(SIGUSR1);
  handler.addSignalToBlock(SIGUSR2);
  handler.registerOnSignalCallback(SIGUSR1, [] { ++calls_back; });
  pthread_kill(pthread_self(), SIGUSR1);
  pthread_kill(pthread_self(), SIGUSR2);
  handler();
  worker.expect(calls_back == 1, "a signal calls back once");
  handler.unblockSignal(SIGUSR1);
  handler.unblockSignal(SIGUSR2);
}

// Opens and closes the log; the program's mask keeps the message itself back.
void write_to_the_log(Worker& worker) {
  worker.expect(LogInSystemLog(7, "worker %u", worker.number()), "the log is written");
  worker.expect(LogInSystemLog(7, "soak", "worker %u", worker.number()), "with another tag too");
}

void list_interfaces(Worker& worker) {
  NetInterfaceList list(true);
  if (!getNetInterfacesList(list)) return;  // no interface of this machine has an address
  worker.expect(!list.getIndexes().empty(), "what is listed has an index");
  for (const int index : list.getIndexes()) {
    NetInterface each;
    worker.expect(list.getNetInterface(static_cast<unsigned>(index), each), "each is found");
    worker.expect(!each.getIPAddress().empty() && each.getMACAddress().size() == 12,
                  "each has addresses");
    std::string mac;
    worker.expect(getMACAddressFromIPAddress(mac, each.getIPAddress().front().getIPAddress(), list),
                  "an address leads to its interface");
  }
}

// Closes without the wait of a minute that would use up the ports.
void close_at_once(int socket) {
  const linger none = {1, 0};
  setsockopt(socket, SOL_SOCKET, SO_LINGER, &none, sizeof none);
  close(socket);
}

void connect_to_itself(Worker& worker) {
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const place = reinterpret_cast<sockaddr*>(&address);
  const bool listens = bind(listener, place, size) == 0 && listen(listener, 4) == 0 &&
                       getsockname(listener, place, &size) == 0;
  worker.expect(listens, "the loopback interface is up");
  const int client = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ANetworkUtil utility;
  worker.expect(utility.ConnectWithTimeout(client, place, sizeof address, 5) == 0, "it connects");
  worker.expect(utility.qlnNetToString(place, NI_NUMERICHOST) == "127.0.0.1", "to its address");
  std::string local;
  worker.expect(utility.qlnGetLocalIPAddress("127.0.0.1", std::to_string(ntohs(address.sin_port)),
                                             local, true, NI_NUMERICHOST, 5) == 0 &&
                    local == "127.0.0.1",
                "the address that it is reached from is told");
  close_at_once(client);
  close(listener);
}

void list_users(Worker& worker) {
  const std::lock_guard one(shared().accounting);
  std::set<std::string> network;
  std::set<std::string> local;
  session::CollectLoggedonUsers(network, local, false);
  std::string all = "old";
  session::CollectAllLoggedonUsers(all);
  worker.expect((network.empty() && local.empty()) == all.empty() && all.size() <= 128,
                "the users make one line");
}

void report(Worker& worker) {
  const std::lock_guard one(shared().accounting);
  sysprops::ISysProps properties;
  std::map<std::wstring, std::wstring> values;
  std::map<std::wstring, std::pair<std::wstring, std::wstring>> file_systems;
  worker.expect(properties.GetAllSystemProperties(values, file_systems), "a report is made");
  worker.expect(values.size() == 30 && values[L"OSType"] != L"N/A", "it has its thirty keys");
  worker.expect(values[L"TotalPhysicalMemory"] != L"N/A", "memory is told");
}

void answer_single_properties(Worker& worker) {
  worker.expect(!voxcomn_get_os_type().empty() && !voxcomn_get_cpu_type().empty(),
                "single properties are answered");
  worker.expect(voxcomn_get_total_memory() != L"N/A", "memory too");
  worker.expect(sysprops::ISysProps().GetOneSystemProperty(L"NumberOfFileSystems").empty(),
                "but for the one that nobody claims");
}

}  // namespace

const std::vector<Area>& machine_areas() {
  static const std::vector<Area> areas = {
      {"libraries", 1, use_libraries},       {"signals", 1, dispatch_signals},
      {"system log", 4, write_to_the_log},   {"interfaces", 2, list_interfaces},
      {"connections", 8, connect_to_itself}, {"users", 2, list_users},
      {"property report", 8, report},        {"single properties", 2, answer_single_properties},
  };
  return areas;
}

}  // namespace soak
