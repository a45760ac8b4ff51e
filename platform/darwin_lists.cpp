// platform/darwin_lists.cpp: texts of a property list, through CoreFoundation.

// The parser of both forms that the oldest systems have too.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <utility>

#include "platform/darwin_system.h"

namespace quillon_com::orb::platform {
namespace {

struct Release {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

// An object that this code created and gives back; empty when the creation failed.
using Owned = std::unique_ptr<const void, Release>;

constexpr CFIndex kTextCapacity = 256;  // bytes, with the terminator

Owned parse(const std::string& bytes) {
  const Owned data(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                static_cast<CFIndex>(bytes.size())));
  if (!data) return nullptr;
  return Owned(CFPropertyListCreateFromXMLData(nullptr, static_cast<CFDataRef>(data.get()),
                                               kCFPropertyListImmutable, nullptr));
}

std::optional<std::string> text_under(CFDictionaryRef dictionary, const void* key) {
  const void* value = nullptr;  // the dictionary's
  if (!CFDictionaryGetValueIfPresent(dictionary, key, &value) || value == nullptr ||
      CFGetTypeID(value) != CFStringGetTypeID()) {
    return std::nullopt;
  }
  char buffer[kTextCapacity] = {};
  if (!CFStringGetCString(static_cast<CFStringRef>(value), buffer, kTextCapacity,
                          kCFStringEncodingUTF8)) {
    return std::nullopt;
  }
  return buffer;
}

}  // namespace

bool DarwinSystem::property_list_texts(const std::string& bytes,
                                       const std::vector<std::string>& keys,
                                       std::vector<std::optional<std::string>>* texts) const {
  const Owned list = parse(bytes);
  if (!list || CFGetTypeID(list.get()) != CFDictionaryGetTypeID()) return false;
  std::vector<std::optional<std::string>> found;
  for (const std::string& name : keys) {
    const Owned key(CFStringCreateWithCString(nullptr, name.c_str(), kCFStringEncodingUTF8));
    if (!key) return false;
    found.push_back(text_under(static_cast<CFDictionaryRef>(list.get()), key.get()));
  }
  *texts = std::move(found);
  return true;
}

}  // namespace quillon_com::orb::platform
