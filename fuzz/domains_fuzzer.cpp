// fuzz/domains_fuzzer.cpp: any answer of the directory service, any account name, any group name.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>

#include "fuzz/check.h"
#include "session/collect.h"
#include "tests/support/fake_system.h"

using orbfuzz::check;
using namespace quillon_com::orb::session;

namespace {

bool is_alnum(char byte) { return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z'); }

std::string plain_trimmed(std::string text) {
  while (!text.empty() && !is_alnum(text.front())) text.erase(0, 1);
  while (!text.empty() && !is_alnum(text.back())) text.pop_back();
  return text;
}

// The first 1024 bytes as a text of C, in lower case.
std::string plain_answer(const std::string& output) {
  char buffer[1025] = {};
  std::memcpy(buffer, output.data(), output.size() < 1024 ? output.size() : 1024);
  for (char& byte : buffer) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte + 32);
  }
  return buffer;
}

// The domains before their last trimming, byte by byte.
std::string plain_principals(const std::string& answer) {
  std::string domains;
  std::string line;
  for (char byte : answer + "\n") {
    if (byte != '\n') {
      line += byte;
      continue;
    }
    const std::string name = plain_trimmed(line);
    const char* at = std::strchr(name.c_str(), '@');
    if (at != nullptr) domains += std::string(at + 1) + "|";
    line.clear();
  }
  return domains;
}

std::string plain_authority(const std::string& answer) {
  const char* at = std::strchr(answer.c_str(), '@');
  const char* end = at == nullptr ? nullptr : std::strchr(at, ';');
  return end == nullptr ? "" : std::string(at + 1, end);
}

void check_attribute(const std::string& output, const std::string& attribute,
                     std::string (*rule)(const std::string&)) {
  orbtest::FakeSystem system;
  system.commands["/usr/bin/dscl /Search read /Users/u  |  /usr/bin/grep " + attribute] = output;
  std::string domain = "old";
  const bool found = FindDomainNameViaDscl(system, "u", attribute, &domain);
  const std::string answer = plain_answer(output);
  const bool asked = answer.find('@') != std::string::npos;
  const std::string expected = asked ? rule(answer) : "";
  check(found == !expected.empty());
  check(domain == (answer.empty() ? "old" : plain_trimmed(expected)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static FILE* const discarded = std::fopen("/dev/null", "w");
  const std::string text(reinterpret_cast<const char*>(data), size);
  // Behind a first byte that asks for it, the answer reaches the end of what is read.
  const bool is_long = size > 0 && size < 1024 && data[0] >= 0xF0;
  const std::string answer = is_long ? std::string(1024 - size / 2, ' ') + text : text;
  if (size % 2 == 0)
    check_attribute(answer, "userPrincipalName", plain_principals);
  else
    check_attribute(answer, "OriginalAuthenticationAuthority", plain_authority);

  // The text as an account name: whatever is run ends inside 255 bytes and holds the name as one
  // word.
  orbtest::FakeSystem system;
  system.sessions.push_back({7, "1", text, "tty1"});
  system.groups[text] = text;
  std::set<std::string> network;
  std::set<std::string> local;
  collect_logged_on_users(system, discarded, &network, &local, false);
  check(network.size() + local.size() >= 1);
  for (const std::string& command : system.commands_run) {
    check(command.size() <= 255);
    check(text.find_first_of(" \t\n|&;<>()$`\\\"'*?[]#~=%!{}/") == std::string::npos);
    check(text.find('\0') == std::string::npos && !text.empty());
  }
  return 0;
}
