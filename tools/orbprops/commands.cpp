// tools/orbprops/commands.cpp: collect, lay out, print, judge.
#include "tools/orbprops/commands.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/orbprops/collect.h"
#include "tools/orbprops/json.h"
#include "tools/orbprops/layout.h"
#include "tools/orbprops/nearest.h"
#include "tools/orbprops/output.h"
#include "tools/orbprops/properties.h"

namespace orbprops {
namespace {

void complain_of_key(const std::string& key) {
  std::vector<std::string_view> keys;
  keys.reserve(kPropertyCount);
  for (const PropertyInfo& info : kProperties) keys.push_back(info.key);
  const std::string_view near = nearest(key, keys);
  const std::string what =
      "unknown key \"" + show(std::string_view(key), Charset::ascii).bytes + "\"; ";
  if (near.empty()) {
    complain(what + "\"orbprops keys\" lists all");
  } else {
    complain(what + "did you mean " + std::string(near) + "?");
  }
}

// Those of the wanted keys that exist; complains of the others.
std::vector<std::string_view> known_keys(const std::vector<std::string>& wanted) {
  std::vector<std::string_view> keys;
  for (const std::string& key : wanted) {
    if (const PropertyInfo* info = find_property(key)) {
      keys.push_back(info->key);
    } else {
      complain_of_key(key);
    }
  }
  return keys;
}

void collect(const Options& options, const std::vector<std::string_view>& keys, Answer& answer) {
  switch (options.command) {
    case Command::get:
      return collect_properties(keys, answer);
    case Command::filesystems:
      return collect_file_systems(answer);
    case Command::interfaces:
      return collect_interfaces(options.loopback, answer);
    case Command::users:
      return collect_users(answer);
    default:
      return collect_report(answer);
  }
}

std::string text_of(const Options& options, const Answer& answer) {
  if (options.json) {
    if (options.command == Command::get) return values_json(*answer.properties);
    return document_json(answer, options.timing);
  }
  const Style style = style_of(STDOUT_FILENO);
  switch (options.command) {
    case Command::get:
      return values_text(*answer.properties, style);
    case Command::keys:
      return keys_text(style);
    case Command::filesystems:
      return file_systems_text(*answer.file_systems, 0, style);
    case Command::interfaces:
      return interfaces_text(*answer.interfaces, style);
    case Command::users:
      return users_text(*answer.users, style);
    default:
      return report_text(answer, style);
  }
}

// What a strict caller misses in `answer`; empty when nothing is.
std::string missing_in(const Answer& answer) {
  std::string missing;
  const auto add = [&missing](std::string_view what) {
    missing.append(missing.empty() ? "" : ", ").append(what);
  };
  if (answer.properties) {
    for (const Property& property : *answer.properties) {
      if (is_unanswered(property.key, property.value)) add(property.key);
    }
  }
  if (answer.file_systems && answer.file_systems->empty()) add("file systems");
  if (answer.interfaces && answer.interfaces->empty()) add("interfaces");
  if (answer.users && answer.users->network.empty() && answer.users->local.empty()) add("users");
  return missing;
}

int list_keys(const Options& options) {
  Answer answer;
  answer.keys.emplace();
  for (const PropertyInfo& info : kProperties) answer.keys->push_back(info.key);
  return print(text_of(options, answer), kAnswered);
}

}  // namespace

int print(std::string_view text, int status) {
  int error = write_all(STDOUT_FILENO, text);
  // A full disk behind a network may be told of only now.
  if (close(STDOUT_FILENO) != 0 && error == 0) error = errno;
  if (error == 0) return status;
  complain(std::string("standard output: ") + strerror(error));
  return kNotAnswered;
}

int run(const Options& options) {
  if (options.command == Command::keys) return list_keys(options);
  std::vector<std::string_view> keys = known_keys(options.keys);
  int status = keys.size() == options.keys.size() ? kAnswered : kNotAnswered;

  Answer answer;
  {
    const Diversion diversion(options.verbose);
    if (diversion.error() != 0) {
      complain(std::string("cannot divert standard output: ") + strerror(diversion.error()));
      return kNotAnswered;
    }
    collect(options, keys, answer);
  }
  if (options.strict) {
    if (const std::string missing = missing_in(answer); !missing.empty()) {
      complain("not answered: " + missing);
      status = kNotAnswered;
    }
  }
  status = print(text_of(options, answer), status);
  const bool timings_in_document = options.json && options.command != Command::get;
  if (options.timing && !timings_in_document) {
    write_all(STDERR_FILENO, timings_text(answer.timings));
  }
  return status;
}

}  // namespace orbprops
