// sysprops/gestaltnames.cpp: the tables of processor and architecture codes.
#include <cstring>
#include <iterator>

#include "sysprops/collectors.h"

namespace quillon_com::orb::sysprops {

namespace {

struct CodeName {
  long code;
  const char* name;
};

// A four-character code: its characters from the highest byte down.
consteval long code(const char (&text)[5]) {
  return (long{text[0]} << 24) | (long{text[1]} << 16) | (long{text[2]} << 8) | long{text[3]};
}

constexpr CodeName kProcessors[] = {
    {0, "68000"},
    {1, "68010"},
    {2, "68020"},
    {3, "68030"},
    {4, "68040"},
    {0x101, "601"},
    {0x103, "603"},
    {0x104, "604"},
    {0x106, "603e"},
    {0x107, "603ev"},
    {0x108, "750"},
    {0x109, "604e"},
    {0x10A, "604ev"},
    {0x10C, "G4"},
    {0x110, "G47450"},
    {code("i486"), "486"},
    {code("i586"), "Pentium"},
    {code("i5pr"), "PentiumPro"},
    {code("i5ii"), "PentiumII"},
    {code("i5iv"), "Pentium 4"},
    {code("ixxx"), "X86"},
};

constexpr CodeName kArchitectures[] = {
    {1, "MC680x0"},
    {2, "PowerPC"},
    {10, "Intel"},
};

template <size_t Count>
bool copy_name(const CodeName (&table)[Count], long code, char* destination) {
  if (destination == nullptr) return false;
  for (const CodeName& entry : table) {
    if (entry.code != code) continue;
    memcpy(destination, entry.name, strlen(entry.name) + 1);
    return true;
  }
  return false;
}

}  // namespace

bool ConvertGestaltCPUTypeToString(long code, char* destination) {
  return copy_name(kProcessors, code, destination);
}

bool ConvertGestaltSysArchToString(long code, char* destination) {
  return copy_name(kArchitectures, code, destination);
}

}  // namespace quillon_com::orb::sysprops
