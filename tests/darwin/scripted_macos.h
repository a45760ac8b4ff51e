// tests/darwin/scripted_macos.h: what the scripted macOS of this program answers.
//
// The functions that the headers beside this file declare answer from one record, `mac()`. They
// keep to the system's own manners where these matter: they fill no more than they are given, state
// what they filled, and leave alone what they do not answer. What a test leaves empty fails.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <utmpx.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace orbtest {

// One entry of the interface list. An address is the bytes that the kernel delivers, of which the
// first states the length; they lie in memory of that length, rounded up to four bytes.
struct MacInterface {
  std::string name;
  unsigned flags = 0;
  std::optional<std::string> address;
  std::optional<std::string> netmask;
};

// A value of a property list.
struct ListValue {
  enum Kind { kText, kArray, kDictionary, kNothing } kind = kText;
  std::string text;
  std::map<std::string, ListValue> entries;

  static ListValue of_text(const std::string& text) { return {kText, text, {}}; }
  static ListValue array() { return {kArray, "", {}}; }
  static ListValue nothing() { return {kNothing, "", {}}; }  // a null pointer
  static ListValue dictionary(std::map<std::string, ListValue> entries) {
    return {kDictionary, "", std::move(entries)};
  }
};

struct Mac {
  std::optional<std::vector<MacInterface>> interfaces;
  std::map<std::string, unsigned> indexes;  // by interface name
  std::set<int> unusable_families;
  std::map<std::string, std::optional<std::string>> officials;  // host name -> its record's name

  std::map<std::pair<int, int>, std::string> kernel_values;  // bytes, by number
  std::map<std::string, std::string> named_values;           // bytes, by name
  std::map<uint32_t, int32_t> gestalts;
  std::optional<uint32_t> free_pages;
  std::optional<uint64_t> page_size;

  // The mount table at each call; the last one stays. An absent one makes the call fail.
  std::vector<std::optional<std::vector<struct statfs>>> mounts;
  bool mounts_overstated = false;  // the count is the table's even when fewer records fit

  std::vector<struct utmpx> sessions;
  size_t session_cursor = 0;

  std::map<std::string, ListValue> lists;  // by their bytes; others cannot be parsed
  bool no_data_objects = false;
  std::optional<int> text_objects;  // how many can be made before one fails

  // What the code under test did.
  size_t mount_calls = 0;
  int host_rights = 0;          // taken and not given back
  int host_rights_taken = 0;    // in all
  int interface_lists = 0;      // taken and not released
  int address_lists = 0;        // of the resolver, as those
  std::set<const void*> owned;  // CoreFoundation objects made and not released
  std::vector<std::string> misuse;
};

Mac& mac();

// The bytes of a number of the width that the kernel gives it.
template <class T>
std::string bytes_of(const T& value) {
  static_assert(std::is_trivially_copyable_v<T>);
  std::string bytes(sizeof value, '\0');
  memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

// Socket addresses as the kernel writes them. A mask's trailing zero bytes are trimmed.
std::string ipv4_address(const std::string& text);
std::string ipv4_mask(const std::string& text, unsigned char family = 0);
std::string ipv6_address(const std::string& text, uint32_t scope = 0);
std::string ipv6_mask(const std::string& text);
std::string link_address(const std::string& name, const std::string& hardware);

struct statfs mounted_volume(const std::string& mount_point, uint32_t flags, uint32_t block_size,
                             uint64_t blocks, uint64_t free_blocks);

// A record of the user-accounting database; texts are cut to their fields, without a terminator
// where they fill them.
struct utmpx session_record(short type, const std::string& id, const std::string& user,
                            const std::string& line);

// Starts every test with a Mac that answers nothing, and ends it by looking for what was taken and
// not given back and for calls that the system would not bear.
class MacTest : public testing::Test {
 protected:
  void SetUp() override { mac() = Mac(); }
  void TearDown() override {
    EXPECT_EQ(0, mac().host_rights) << "rights to the host port";
    EXPECT_EQ(0, mac().interface_lists) << "interface lists";
    EXPECT_EQ(0, mac().address_lists) << "address lists";
    EXPECT_EQ(0u, mac().owned.size()) << "CoreFoundation objects";
    EXPECT_EQ(std::vector<std::string>(), mac().misuse);
  }
};

}  // namespace orbtest
