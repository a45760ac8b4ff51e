// fileutil/guid.cpp: makes version-1 GUIDs and writes their text.
#include "fileutil/guid.h"

#include <bit>
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
constexpr uint64_t kRandomNode = uint64_t{0x80} << 40;  // no machine's address

constexpr size_t kTextLength = 36;
constexpr size_t kBracedLength = kTextLength + 2;

portability::ProcessMutex generators_mutex;

int64_t microseconds(const platform::System& system) {
  const timeval now = system.wall_time();
  return int64_t{now.tv_sec} * kSecond + now.tv_usec;
}

uint8_t random_byte() { return static_cast<uint8_t>(rand() & 255); }

// A number with its most significant byte first in memory, and back.
uint64_t big_endian(uint64_t number) {
  return std::endian::native == std::endian::little ? __builtin_bswap64(number) : number;
}

template <size_t bytes>
void write_number(uint64_t number, void* out) {
  number = big_endian(number << (64 - 8 * bytes));
  std::memcpy(out, &number, bytes);
}

uint64_t read_number(const uint8_t* bytes) {
  uint64_t number = 0;
  std::memcpy(&number, bytes, sizeof number);
  return big_endian(number);
}

void write_guid(const GuidNumbers& numbers, voxGuid* guid) {
  write_number<8>(numbers.first, guid->bytes);
  write_number<8>(numbers.second, guid->bytes + 8);
}

// How far the letter of the digit 10 is behind the place that follows '9'.
constexpr uint64_t kLowerCase = 'a' - '0' - 10;
constexpr uint64_t kUpperCase = 'A' - '0' - 10;

// The eight hexadecimal digits of a 32-bit number, a byte each, all made at once.
uint64_t digits(uint64_t value, uint64_t letters) {
  constexpr uint64_t kEachByte = 0x0101010101010101;
  value = (value << 16 | value) & 0x0000FFFF0000FFFF;
  value = (value << 8 | value) & 0x00FF00FF00FF00FF;
  value = (value << 4 | value) & 0x0F0F0F0F0F0F0F0F;
  const uint64_t above_nine = (value + 6 * kEachByte) >> 4 & kEachByte;
  return value + '0' * kEachByte + above_nine * letters;
}

// 36 characters, without a terminator. The text reads each of the first three fields in the reverse
// of its order in the GUID.
void write_text(const GuidNumbers& numbers, uint64_t letters, char* text) {
  const uint64_t low = __builtin_bswap32(static_cast<uint32_t>(numbers.first >> 32));
  const uint64_t middle = __builtin_bswap16(static_cast<uint16_t>(numbers.first >> 16));
  const uint64_t high = __builtin_bswap16(static_cast<uint16_t>(numbers.first));
  const uint64_t middle_and_high = digits(middle << 16 | high, letters);
  const uint64_t sequence_and_node = digits(numbers.second >> 32, letters);
  write_number<8>(digits(low, letters), text);
  text[8] = '-';
  write_number<4>(middle_and_high >> 32, text + 9);
  text[13] = '-';
  write_number<4>(middle_and_high, text + 14);
  text[18] = '-';
  write_number<4>(sequence_and_node >> 32, text + 19);
  text[23] = '-';
  write_number<4>(sequence_and_node, text + 24);
  write_number<8>(digits(numbers.second & 0xFFFFFFFF, letters), text + 28);
}

GuidGenerator& process_generator() {
  static constinit GuidGenerator generator;
  return generator;
}

}  // namespace

uint64_t GuidGenerator::choose_first_node() {
  const portability::Hold held(generators_mutex);
  if (initialised_.load(std::memory_order_relaxed)) return 0;
  uint64_t node = 0;
  for (size_t i = 0; i < 6; ++i) node = node << 8 | random_byte();
  initialised_.store(true, std::memory_order_release);
  return node | kRandomNode;
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

GuidNumbers GuidGenerator::next(const platform::System& system) {
  const uint64_t node = initialised_.load(std::memory_order_acquire) ? 0 : choose_first_node();

  const int64_t reference = reference_.load(std::memory_order_acquire);
  Moment moment{microseconds(system), 0, clock_sequence_.load(std::memory_order_relaxed)};
  if (reference == 0 || moment.time <= reference) {
    moment = settle(system, moment.time);
  } else if (adjustment_.load(std::memory_order_relaxed) != 0) {
    adjustment_.store(0, std::memory_order_relaxed);
  }

  const uint64_t time = static_cast<uint64_t>(moment.time) * 10 + moment.adjustment + kUnitsOf1970;
  return {time << 32 | (time >> 16 & 0xFFFF0000) | time >> 48 | kVersion,
          (uint64_t{moment.sequence} | kVariant) << 48 | node};
}

void GuidGenerator::create(const platform::System& system, voxGuid* guid) {
  write_guid(next(system), guid);
}

int create_guid_text(GuidGenerator& generator, const platform::System& system, voxGuid* out,
                     char* text, unsigned size) {
  if (text == nullptr) return 0;
  const GuidNumbers made = generator.next(system);
  char cut[kBracedLength];
  char* const braced = size < kBracedLength ? cut : text;
  braced[0] = '{';
  write_text(made, kUpperCase, braced + 1);
  braced[kBracedLength - 1] = '}';
  if (braced == cut) {
    std::memcpy(text, cut, size);
  } else {
    std::memset(text + kBracedLength, 0, size - kBracedLength);
  }
  if (out != nullptr) write_guid(made, out);
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
  const uint8_t* const bytes = guid->bytes;
  orb::write_text({orb::read_number(bytes), orb::read_number(bytes + 8)}, orb::kLowerCase, text);
  text[orb::kTextLength] = '\0';
  return text;
}

int voxcomn_create_guid(voxGuid* out, char* text, unsigned size) {
  return orb::create_guid_text(orb::process_generator(), orb::platform::host(), out, text, size);
}
