// sysprops/helpers.cpp: text conversion, rounding to the grid, account and machine names.
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include "fileutil/conversions.h"
#include "portability/outofmemory.h"
#include "sysprops/collect.h"
#include "sysprops/records.h"

namespace quillon_com::orb::sysprops {

using portability::unless_out_of_memory;

namespace {

struct Free {
  void operator()(void* memory) const { free(memory); }
};

template <class T>
using Buffer = std::unique_ptr<T[], Free>;

// A zeroed buffer of `count` elements; null when memory runs out.
template <class T>
Buffer<T> zeroed(size_t count) {
  return Buffer<T>(static_cast<T*>(calloc(count, sizeof(T))));
}

template <class T>
T grid_point(T value, T upper, T lower, unsigned steps) {
  const T step = (upper - lower) / steps;
  T previous = lower;
  for (unsigned i = 0; i < steps; ++i) {
    const T current = previous + step;
    // The first holds for a value that is no number too; by the second, no later point moves
    // either.
    if (!(value > current) || current == previous) break;
    previous = current;
  }
  return previous;
}

}  // namespace

std::string sysprops_wide_to_ansi(const std::wstring& text) {
  auto capacity = static_cast<unsigned>(text.size() * 6 + 1);
  const Buffer<char> bytes = zeroed<char>(text.size() * 6 + 1);
  if (!bytes) return {};
  voxcomn_unicode_to_utf8(text.c_str(), bytes.get(), &capacity);
  return unless_out_of_memory(std::string(), [&] { return std::string(bytes.get()); });
}

std::wstring sysprops_ansi_to_wide(const std::string& text) {
  auto capacity = static_cast<int>(text.size() + 1);
  const Buffer<wchar_t> characters = zeroed<wchar_t>(text.size() + 1);
  if (!characters) return {};
  voxcomn_utf8_to_unicode(text.c_str(), characters.get(), &capacity);
  return unless_out_of_memory(std::wstring(), [&] { return std::wstring(characters.get()); });
}

template <class T>
T get_closest_floor(const T& value, const T& upper, const T& lower, const unsigned& steps) {
  if (steps == 0) return std::min(value, lower);
  const T point = grid_point(value, upper, lower, steps);
  return point == T{0} ? value : point;
}

template ORB_EXPORT unsigned long long get_closest_floor<unsigned long long>(
    const unsigned long long&, const unsigned long long&, const unsigned long long&,
    const unsigned&);
template ORB_EXPORT double get_closest_floor<double>(const double&, const double&, const double&,
                                                     const unsigned&);

bool GetPwUid(unsigned uid, std::string& name) {
  const long limit = sysconf(_SC_GETPW_R_SIZE_MAX);
  size_t size = limit > 0 ? static_cast<size_t>(limit) : 1024;
  Buffer<char> texts(static_cast<char*>(malloc(size)));
  if (!texts) return false;

  passwd account{};
  passwd* found = nullptr;
  int result = 0;
  while ((result = getpwuid_r(uid, &account, texts.get(), size, &found)) == ERANGE) {
    size *= 2;
    char* larger = static_cast<char*>(realloc(texts.get(), size));
    if (larger == nullptr) return false;
    (void)texts.release();  // realloc has taken it
    texts.reset(larger);
  }
  if (result != 0 || found == nullptr) return false;
  return unless_out_of_memory(false, [&] {
    name = account.pw_name;
    return true;
  });
}

bool computer_name(const platform::System& system, std::string& name) {
  platform::KernelNames names;
  if (!system.kernel_names(&names)) return false;
  name = names.node.substr(0, names.node.find('.'));
  return true;
}

bool getComputerName(std::string& name) {
  return unless_out_of_memory(false, [&] { return computer_name(platform::host(), name); });
}

}  // namespace quillon_com::orb::sysprops
