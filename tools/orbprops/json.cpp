// tools/orbprops/json.cpp: builds the documents.
#include "tools/orbprops/json.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "tools/orbprops/text.h"

namespace orbprops {
namespace {

using Json = nlohmann::ordered_json;

Json object_of(const std::vector<Property>& properties) {
  Json object = Json::object();
  for (const Property& property : properties) {
    object[std::string(property.key)] = to_utf8(property.value);
  }
  return object;
}

Json array_of(const std::vector<FileSystem>& file_systems) {
  Json array = Json::array();
  for (const FileSystem& volume : file_systems) {
    array.push_back(Json{{"MountPoint", to_utf8(volume.mount_point)},
                         {"Total_Disk_Space_in_MB", to_utf8(volume.total_mb)},
                         {"Free_Disk_Space_in_MB", to_utf8(volume.free_mb)}});
  }
  return array;
}

Json array_of(const std::vector<Interface>& interfaces) {
  Json array = Json::array();
  for (const Interface& interface : interfaces) {
    Json addresses = Json::array();
    for (const Address& address : interface.addresses) {
      addresses.push_back(Json{{"IPAddress", to_utf8(address.address)},
                               {"SubnetMask", to_utf8(address.mask)},
                               {"SubnetAddress", to_utf8(address.subnet)}});
    }
    array.push_back(Json{{"Index", interface.index},
                         {"Name", to_utf8(interface.name)},
                         {"NETAddress", to_utf8(interface.hardware_address)},
                         {"Addresses", std::move(addresses)}});
  }
  return array;
}

Json array_of(const std::vector<std::string>& names) {
  Json array = Json::array();
  for (const std::string& name : names) array.push_back(to_utf8(name));
  return array;
}

Json object_of(const std::vector<Timing>& timings) {
  Json object = Json::object();
  for (const Timing& timing : timings) {
    object[timing.name] = std::round(timing.milliseconds * 1000) / 1000;
  }
  return object;
}

std::string text_of(const Json& document) { return without_controls(document.dump(2)) + "\n"; }

}  // namespace

std::string document_json(const Answer& answer, bool with_timings) {
  Json document = Json::object();
  if (answer.properties) document["SystemInfo"] = object_of(*answer.properties);
  if (answer.file_systems) document["FileSystem"] = array_of(*answer.file_systems);
  if (answer.interfaces) document["Interfaces"] = array_of(*answer.interfaces);
  if (answer.users) {
    document["Users"] = Json{{"Network", array_of(answer.users->network)},
                             {"Local", array_of(answer.users->local)}};
  }
  if (answer.keys) document["Keys"] = *answer.keys;
  if (with_timings) document["Timing_in_ms"] = object_of(answer.timings);
  return text_of(document);
}

std::string values_json(const std::vector<Property>& properties) {
  return text_of(object_of(properties));
}

}  // namespace orbprops
