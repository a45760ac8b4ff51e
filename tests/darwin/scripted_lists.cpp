// tests/darwin/scripted_lists.cpp: CoreFoundation objects that know who owns them.
#include <memory>

#include "tests/darwin/scripted_macos.h"
#include "tests/support/faults.h"

namespace orbtest {
namespace {

enum Type : CFTypeID { kText = 7, kDictionary = 18, kArray = 19, kData = 20 };

struct Object {
  Type type = kText;
  std::string bytes;                                       // of a text or of data
  std::map<std::string, std::unique_ptr<Object>> entries;  // of a dictionary, which owns them
};

std::unique_ptr<Object> object_of(const ListValue& value) {
  if (value.kind == ListValue::kNothing) return nullptr;
  auto object = std::make_unique<Object>();
  object->type = value.kind == ListValue::kText    ? kText
                 : value.kind == ListValue::kArray ? kArray
                                                   : kDictionary;
  object->bytes = value.text;
  for (const auto& [key, entry] : value.entries) object->entries[key] = object_of(entry);
  return object;
}

// Hands `object` to the caller, who is to release it.
const Object* hand_over(std::unique_ptr<Object> object) {
  mac().owned.insert(object.get());
  return object.release();
}

// The object behind `reference`, when it is of `type`.
const Object* checked(CFTypeRef reference, Type type) {
  const auto* object = static_cast<const Object*>(reference);
  if (object != nullptr && object->type == type) return object;
  mac().misuse.push_back("an object of another type");
  return nullptr;
}

}  // namespace
}  // namespace orbtest

using orbtest::mac;
using orbtest::Object;

void CFRelease(CFTypeRef reference) {
  const orbtest::FaultsPaused own_memory;
  if (mac().owned.erase(reference) == 0) {
    mac().misuse.push_back("a release of what is not the caller's");
    return;
  }
  delete static_cast<const Object*>(reference);
}

CFTypeID CFGetTypeID(CFTypeRef reference) { return static_cast<const Object*>(reference)->type; }

CFTypeID CFDictionaryGetTypeID() { return orbtest::kDictionary; }

CFTypeID CFStringGetTypeID() { return orbtest::kText; }

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex length) {
  const orbtest::FaultsPaused own_memory;
  if (mac().no_data_objects) return nullptr;
  auto object = std::make_unique<Object>();
  object->type = orbtest::kData;
  object->bytes.assign(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
  return reinterpret_cast<CFDataRef>(orbtest::hand_over(std::move(object)));
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding) {
  const orbtest::FaultsPaused own_memory;
  if (encoding != kCFStringEncodingUTF8) mac().misuse.push_back("a key that is not UTF-8");
  if (mac().text_objects && (*mac().text_objects)-- <= 0) return nullptr;
  auto object = std::make_unique<Object>();
  object->bytes = text;
  return reinterpret_cast<CFStringRef>(orbtest::hand_over(std::move(object)));
}

// A text that does not fit leaves an empty one.
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex capacity,
                           CFStringEncoding encoding) {
  if (encoding != kCFStringEncodingUTF8) mac().misuse.push_back("a text that is not UTF-8");
  const Object* object = orbtest::checked(string, orbtest::kText);
  if (object == nullptr || object->bytes.size() >= static_cast<size_t>(capacity)) {
    buffer[0] = '\0';
    return 0;
  }
  memcpy(buffer, object->bytes.c_str(), object->bytes.size() + 1);
  return 1;
}

Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key,
                                      const void** value) {
  const orbtest::FaultsPaused own_memory;
  const Object* object = orbtest::checked(dictionary, orbtest::kDictionary);
  const Object* name = orbtest::checked(key, orbtest::kText);
  if (object == nullptr || name == nullptr) return 0;
  const auto found = object->entries.find(name->bytes);
  if (found == object->entries.end()) return 0;
  *value = found->second.get();
  return 1;
}

CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef, CFDataRef data,
                                                  CFOptionFlags mutability, CFStringRef*) {
  const orbtest::FaultsPaused own_memory;
  if (mutability != kCFPropertyListImmutable) mac().misuse.push_back("a list that may change");
  const Object* bytes = orbtest::checked(data, orbtest::kData);
  if (bytes == nullptr) return nullptr;
  const auto found = mac().lists.find(bytes->bytes);
  if (found == mac().lists.end()) return nullptr;
  return orbtest::hand_over(orbtest::object_of(found->second));
}
