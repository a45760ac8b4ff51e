// session/domains.cpp: the directory domain of an account, by its group and by the directory
// service.
#include <algorithm>
#include <exception>
#include <vector>

#include "platform/system.h"
#include "session/collect.h"
#include "session/loggedonusers.h"

namespace quillon_com::orb::session {
namespace {

constexpr size_t kCommandRoom = 255;  // bytes of a command
constexpr size_t kAnswerRoom = 1024;  // bytes read of its output

std::string directory_command(const std::string& user, const std::string& attribute) {
  std::string command =
      "/usr/bin/dscl /Search read /Users/" + user + "  |  /usr/bin/grep " + attribute;
  if (command.size() > kCommandRoom) command.resize(kCommandRoom);
  return command;
}

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  split(text, '\n', lines);
  if (lines.empty()) lines.push_back(text);
  return lines;
}

// The domains of the principal names in `answer`, each followed by "|".
std::string principal_domains(const std::string& answer) {
  std::string domains;
  for (const std::string& line : lines_of(answer)) {
    const std::string name = trimmer(line.c_str());
    const size_t at = name.find('@');
    if (at != std::string::npos) domains += name.substr(at + 1) + "|";
  }
  return domains;
}

// The realm of the authentication authority in `answer`, which holds an "@".
std::string authority_domain(const std::string& answer) {
  const size_t start = answer.find('@') + 1;
  const size_t end = answer.find(';', start);
  return end == std::string::npos ? std::string() : answer.substr(start, end - start);
}

bool shell_safe(char byte) {
  const auto value = static_cast<unsigned char>(byte);
  return (value >= 'a' && value <= 'z') || (value >= 'A' && value <= 'Z') ||
         (value >= '0' && value <= '9') || value > 0x7F ||
         std::string("._-+@").find(byte) != std::string::npos;
}

bool domain_of_group(const platform::System& system, FILE* lines, const std::string& user,
                     std::string* domain) {
  std::string group;
  if (!system.primary_group(user, &group)) return false;
  toLower(group);
  if (group.find("domain users") == std::string::npos) return false;
  std::vector<std::string> parts;
  split(group, '\\', parts);
  if (parts.empty()) return false;
  *domain = parts.front();
  std::fprintf(lines, "found group struct %s. \n", domain->c_str());
  return true;
}

}  // namespace

bool fit_for_command(const std::string& word) {
  return !word.empty() && word != "." && word != ".." && word.front() != '-' &&
         std::all_of(word.begin(), word.end(), shell_safe);
}

bool find_domain_by_group(const platform::System& system, FILE* lines, const std::string& user,
                          std::string* domain) {
  try {
    return domain_of_group(system, lines, user, domain);
  } catch (const std::exception&) {
    std::fputs("Domain name can't not be found.\n", lines);
    return false;
  }
}

bool FindDomainNameViaDscl(const platform::System& system, const std::string& user,
                           const std::string& attribute, std::string* domain) {
  if (!fit_for_command(user) || !fit_for_command(attribute)) return false;
  std::string answer;
  if (!system.command_output(directory_command(user, attribute), kAnswerRoom, &answer)) {
    return false;
  }
  answer.resize(std::min(answer.find('\0'), answer.size()));
  if (answer.empty()) return false;
  domain->clear();
  toLower(answer);
  if (answer.find('@') == std::string::npos) return false;
  if (attribute == "OriginalAuthenticationAuthority") *domain = authority_domain(answer);
  if (attribute == "userPrincipalName") *domain = principal_domains(answer);
  if (domain->empty()) return false;
  *domain = trimmer(domain->c_str());
  return true;
}

bool FindDomainName(const std::string& user, std::string& domain) {
  return find_domain_by_group(platform::host(), myfd(), user, &domain);
}

}  // namespace quillon_com::orb::session
