// platform/system.h: the facts of a machine, one virtual function per fact.
//
// A fact is one system call or one file read: no rule, order, rounding, default or wording lives
// below this line, and no rule above it asks which system it runs on. `host()` is the machine that
// the process runs on; tests script a machine of their own. Every function may be called from
// several threads at once. None stores an error word, logs or throws on purpose (memory that runs
// out throws std::bad_alloc). Unless a comment says otherwise, a function that returns false leaves
// its output arguments untouched.
#pragma once

#include <sys/socket.h>
#include <sys/time.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quillon_com::orb::platform {

// A socket address as the system delivered it.
struct SocketAddress {
  sockaddr_storage bytes{};    // zero beyond `size`
  std::optional<size_t> size;  // bytes that the system stated, 0 included; absent without address

  bool present() const { return size.has_value(); }
  const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&bytes); }
  sockaddr* get() { return reinterpret_cast<sockaddr*>(&bytes); }
};

// One entry of the system's list of interface addresses.
struct InterfaceEntry {
  std::string name;       // of the interface; an address label's ":1" is not part of it
  unsigned flags = 0;     // IFF_ bits
  SocketAddress address;  // absent for an entry without one
  // Absent for an entry without one. May be shorter than its family's record, down to no byte at
  // all (the mask 0.0.0.0 of some systems), and its family may read 0.
  SocketAddress netmask;
  // The six bytes at the hardware-address position; set for link-layer entries only.
  std::optional<std::array<unsigned char, 6>> link_address;
};

// One record of the user-accounting database; texts end at their first zero byte or field end.
struct SessionEntry {
  int type = 0;  // ut_type
  std::string id;
  std::string user;
  std::string line;
};

// The kernel's own names.
struct KernelNames {
  std::string node;
  std::string machine;
  std::string release;
};

// A count of clock ticks since some moment in the past.
struct TickCount {
  int64_t ticks = 0;
  int64_t per_second = 0;  // not positive when the system does not tell
};

// What a system that names its processors itself says of them.
struct ProcessorTexts {
  std::string architecture;          // "x86_64"
  std::string model;                 // empty when the system tells none
  std::optional<uint64_t> clock_hz;  // nominal clock
};

// What a system that knows the build of the machine says of it.
enum class Chassis {
  not_stated,  // this system does not tell; the model name is the only witness
  unknown,     // it would tell, but nothing could be read
  portable,
  stationary,
};

// The identification texts of a system that keeps no version list.
struct ReleaseTexts {
  std::map<std::string, std::string> fields;  // of os-release, unquoted: NAME, VERSION_ID, …
  std::string legacy_name;  // by the older release files, where the fields hold no NAME; else empty
  std::string debian_version;  // the first line of /etc/debian_version
  int chassis_type = 0;        // DMI number; 0 when unknown
};

// The memory at one moment; what cannot be read is absent.
struct MemoryFigures {
  std::optional<uint64_t> total;       // bytes
  std::optional<uint64_t> free_pages;  // of page_size bytes
  uint64_t page_size = 0;
};

// One mounted file system.
struct Volume {
  std::string mount_point;
  bool local = false;        // its storage belongs to this machine
  uint64_t block_size = 0;   // bytes
  uint64_t blocks = 0;       // of block_size
  uint64_t free_blocks = 0;  // of block_size, those kept for the superuser included
};

class System {
 public:
  virtual ~System() = default;

  // Network.
  // The entries in the system's order. `entries` is replaced.
  virtual bool interface_entries(std::vector<InterfaceEntry>* entries) const = 0;
  // The index of the interface called `name`; 0 when there is none.
  virtual unsigned interface_index(const std::string& name) const = 0;
  // The same for each of `names`, in their order; a system may ask for all at less cost.
  virtual std::vector<unsigned> interface_indexes(const std::vector<std::string>& names) const;
  // Whether a datagram socket of `family` can be opened.
  virtual bool family_usable(int family) const = 0;
  // Whether the resolver takes `zoned_address` ("fe80::1%2") as a numeric address.
  virtual bool zone_accepted(const std::string& zoned_address) const = 0;

  // Names of the machine.
  virtual bool host_name(std::string* name) const = 0;
  // The official name that the resolver gives for `name`: at most one look-up's wait.
  virtual bool official_host_name(const std::string& name, std::string* official) const = 0;
  virtual bool kernel_domain(std::string* domain) const = 0;  // empty when none is set
  virtual bool domain_name(std::string* domain) const = 0;    // getdomainname's; may be empty
  virtual bool kernel_names(KernelNames* names) const = 0;

  // Time.
  virtual time_t wall_clock() const = 0;              // seconds since 1970
  virtual timeval wall_time() const = 0;              // the same clock with its microseconds
  virtual bool boot_time(time_t* seconds) const = 0;  // since 1970
  virtual TickCount tick_count() const = 0;
  virtual bool local_time(time_t seconds, tm* broken_down) const = 0;
  virtual bool utc_time(time_t seconds, tm* broken_down) const = 0;
  // tzname[0] as the C library holds it; false when there is none.
  virtual bool zone_name(std::string* name) const = 0;

  // Sessions and accounts.
  // The next record of the process-wide cursor; false after the last one.
  virtual bool next_session_entry(SessionEntry* entry) const = 0;
  virtual void rewind_sessions() const = 0;
  // The name of the primary group of the account `user`.
  virtual bool primary_group(const std::string& user, std::string* group) const = 0;
  // At most `limit` bytes of what `command` prints, run by the shell. False when it cannot be
  // started.
  virtual bool command_output(const std::string& command, size_t limit,
                              std::string* output) const = 0;

  // Files.
  virtual bool file_size(const std::string& path, uint64_t* size) const = 0;
  // At most `limit` bytes of a file that can be opened; fewer, or none, when reading stops short.
  virtual bool file_bytes(const std::string& path, size_t limit, std::string* bytes) const = 0;
  // The texts that the dictionary at the top of the property list `bytes` holds under `keys`, in
  // the order of `keys`; an absent key, or one whose value is no text, gives nullopt. False when
  // `bytes` is no property list or no dictionary.
  virtual bool property_list_texts(const std::string& bytes, const std::vector<std::string>& keys,
                                   std::vector<std::optional<std::string>>* texts) const = 0;
  // False on a system whose version lists are its only identification, or that holds such a list.
  virtual bool release_texts(ReleaseTexts* texts) const = 0;

  // Processor.
  virtual bool processor_count(int* count) const = 0;
  // False on a system that is asked through Gestalt instead.
  virtual bool processor_texts(ProcessorTexts* texts) const = 0;
  // False when the selector is not answered: `response` then stays as it was.
  virtual bool gestalt(uint32_t selector, int32_t* response) const = 0;
  virtual bool hardware_model(std::string* model) const = 0;
  virtual Chassis chassis() const = 0;

  // Memory and storage.
  virtual bool total_memory(uint64_t* bytes) const = 0;
  virtual bool free_memory(uint64_t* pages, uint64_t* page_size) const = 0;
  // Both at once, for a system that reads them from one source.
  virtual MemoryFigures memory_figures() const;
  // The mounted file systems in the system's order, those of other machines only where listing
  // them asks none of them; empty when the table cannot be read.
  virtual std::vector<Volume> volumes() const = 0;
};

// The machine that the process runs on; lives until the process ends.
const System& host();

}  // namespace quillon_com::orb::platform
