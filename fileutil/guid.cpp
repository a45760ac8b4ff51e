// fileutil/guid.cpp: makes version-1 GUIDs and writes their text.
#include "fileutil/guid.h"

#include <cstdlib>
#include <cstring>

#include "fileutil/guidgenerator.h"
#include "platform/system.h"
#include "portability/forks.h"

namespace quillon_com::orb {
namespace {

constexpr int64_t kSecond = 1000000;                   // microseconds
constexpr uint64_t kUnitsOf1970 = 0x01B21DD213814000;  // of 100 ns since 1582-10-15
constexpr uint32_t kMostAdjustment = 10;
constexpr uint16_t kSequenceBits = 0x1FFF;
constexpr uint16_t kVersion = 0x1000;
constexpr uint16_t kVariant = 0x8000;

constexpr size_t kTextLength = 36;
constexpr size_t kBracedLength = kTextLength + 2;

portability::ProcessMutex generators_mutex;

int64_t microseconds(const platform::System& system) {
  const timeval now = system.wall_time();
  return int64_t{now.tv_sec} * kSecond + now.tv_usec;
}

uint8_t random_byte() { return static_cast<uint8_t>(rand() & 255); }

void write_field(uint64_t value, size_t bytes, uint8_t* out) {
  while (bytes > 0) {
    out[--bytes] = static_cast<uint8_t>(value);
    value >>= 8;
  }
}

// 36 characters, without a terminator.
void write_text(const uint8_t* bytes, const char* digits, char* text) {
  constexpr size_t kOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  for (size_t i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) *text++ = '-';
    const unsigned byte = bytes[kOrder[i]];
    *text++ = digits[byte >> 4];
    *text++ = digits[byte & 15];
  }
}

GuidGenerator& process_generator() {
  static constinit GuidGenerator generator;
  return generator;
}

}  // namespace

void GuidGenerator::choose_first_node(uint8_t* node) {
  const portability::Hold held(generators_mutex);
  if (initialised_.load(std::memory_order_relaxed)) return;
  for (size_t i = 0; i < 6; ++i) node[i] = random_byte();
  node[0] |= 0x80;
  initialised_.store(true, std::memory_order_release);
}

void GuidGenerator::choose_reference(int64_t now) {
  const unsigned high = random_byte();
  const unsigned low = random_byte();
  clock_sequence_.store(static_cast<uint16_t>((high << 8 | low) & kSequenceBits),
                        std::memory_order_relaxed);
  reference_.store(now - kSecond, std::memory_order_release);
}

GuidGenerator::Moment GuidGenerator::settle(const platform::System& system, int64_t now) {
  const portability::Hold held(generators_mutex);
  if (reference_.load(std::memory_order_relaxed) == 0) choose_reference(now);
  const int64_t reference = reference_.load(std::memory_order_relaxed);
  uint32_t adjustment = adjustment_.load(std::memory_order_relaxed);
  while (now == reference && adjustment >= kMostAdjustment) now = microseconds(system);
  uint16_t sequence = clock_sequence_.load(std::memory_order_relaxed);
  if (now < reference) {
    sequence = (sequence + 1) & kSequenceBits;
    clock_sequence_.store(sequence, std::memory_order_relaxed);
  }
  adjustment = now == reference ? adjustment + 1 : 0;
  adjustment_.store(adjustment, std::memory_order_relaxed);
  return {now, adjustment, sequence};
}

void GuidGenerator::create(const platform::System& system, voxGuid* guid) {
  uint8_t* const bytes = guid->bytes;
  std::memset(bytes + 10, 0, 6);
  if (!initialised_.load(std::memory_order_acquire)) choose_first_node(bytes + 10);

  const int64_t reference = reference_.load(std::memory_order_acquire);
  Moment moment{microseconds(system), 0, clock_sequence_.load(std::memory_order_relaxed)};
  if (reference == 0 || moment.time <= reference) {
    moment = settle(system, moment.time);
  } else if (adjustment_.load(std::memory_order_relaxed) != 0) {
    adjustment_.store(0, std::memory_order_relaxed);
  }

  const uint64_t time = static_cast<uint64_t>(moment.time) * 10 + moment.adjustment + kUnitsOf1970;
  write_field(time, 4, bytes);
  write_field(time >> 32, 2, bytes + 4);
  write_field(time >> 48 | kVersion, 2, bytes + 6);
  write_field(moment.sequence | kVariant, 2, bytes + 8);
}

int create_guid_text(GuidGenerator& generator, const platform::System& system, voxGuid* out,
                     char* text, unsigned size) {
  if (text == nullptr) return 0;
  voxGuid guid;
  generator.create(system, &guid);
  char braced[kBracedLength + 1] = "{";
  write_text(guid.bytes, "0123456789ABCDEF", braced + 1);
  braced[kBracedLength - 1] = '}';
  strncpy(text, braced, size);
  if (out != nullptr) *out = guid;
  return 1;
}

}  // namespace quillon_com::orb

namespace orb = quillon_com::orb;

voxGuid* voxCoCreateGuid(voxGuid* guid) {
  if (guid != nullptr) orb::process_generator().create(orb::platform::host(), guid);
  return guid;
}

char* voxUuidToStringA(const voxGuid* guid, char* text) {
  if (guid == nullptr || text == nullptr) return nullptr;
  orb::write_text(guid->bytes, "0123456789abcdef", text);
  text[orb::kTextLength] = '\0';
  return text;
}

int voxcomn_create_guid(voxGuid* out, char* text, unsigned size) {
  return orb::create_guid_text(orb::process_generator(), orb::platform::host(), out, text, size);
}
