// tests/torture/text_rows.cpp: fileutil/conversions.h under torture.
#include <algorithm>
#include <cwchar>
#include <memory>

#include "fileutil/conversions.h"
#include "tests/support/torture.h"

namespace {

using namespace quillon_com::orb;
using orbtest::plain_row;
using orbtest::Torture;
using orbtest::Trial;

char digits[80];

const orbtest::Tortures numbers({
    plain_row("voxItoa", "made", [] { return static_cast<void*>(voxItoa(-7, digits, 10)); }),
    plain_row("voxItot", "made", [] { return static_cast<void*>(voxItot(7, digits, 8)); }),
    plain_row("voxUltot", "made", [] { return static_cast<void*>(voxUltot(7, digits, 16)); }),
    plain_row("voxI64toa", "made", [] { return static_cast<void*>(voxI64toa(7, digits, 16)); }),
    plain_row("voxI64tot", "made", [] { return static_cast<void*>(voxI64tot(7, digits, 8)); }),
    plain_row("voxTtoi64", "12", [] { return voxTtoi64("12"); }),
    plain_row("voxAtoi64", "12", [] { return voxAtoi64("12"); }),
    plain_row("voxTstrtok_r", "a",
              [] {
                static char text[] = "a b";
                char* rest = nullptr;
                text[1] = ' ';
                return static_cast<const char*>(voxTstrtok_r(text, " ", &rest));
              }),
    plain_row("voxStandardUtoA", "2",
              [] {
                char narrow[8];
                return voxStandardUtoA(L"ab", 8, narrow);
              }),
    plain_row("voxStandardAtoU", "2",
              [] {
                wchar_t wide[8];
                return voxStandardAtoU("ab", 8, wide);
              }),
    // Texts that overlap need a copy, on the heap when they are long.
    {"voxcomn_unicode_to_utf8",
     "",
     "0",
     [](Trial& trial) {
       std::vector<wchar_t> text(60000, L'a');
       text[20000] = L'\0';
       unsigned size = 4 * 60000;
       trial.call([&] {
         return voxcomn_unicode_to_utf8(text.data(), reinterpret_cast<char*>(text.data()), &size);
       });
     },
     {{"malloc", "2147483656"}}},
    {"voxcomn_utf8_to_unicode",
     "",
     "0",
     [](Trial& trial) {
       std::vector<wchar_t> text(60000, L'a');
       auto* narrow = reinterpret_cast<char*>(text.data());
       std::fill_n(narrow, 50000, 'a');
       narrow[50000] = '\0';
       int size = 60000;
       trial.call([&] { return voxcomn_utf8_to_unicode(narrow, text.data(), &size); });
     },
     {{"malloc", "2147483656"}}},
    plain_row("quillon_com::orb::isBigEndian()", "0", [] { return isBigEndian(); }),
});

// Texts beyond every buffer on the stack, so that memory is asked for.
std::string long_text() { return std::string(40000, ' ') + std::string(40000, 'a'); }
std::wstring long_wide_text() { return std::wstring(80000, L'a'); }

// What a function makes of `text`, and an empty one without memory, by its length.
template <class Text, class Call>
Torture empty_without_memory(const char* function, const char* length, const Text& text,
                             Call call) {
  return {function,
          "",
          length,
          [text, call](Trial& trial) {
            trial.answer(std::to_string([&] {
              const auto result = std::make_unique<decltype(call(text))>();
              trial.call([&] { *result = call(text); });
              return result->size();
            }()));
          },
          {{"operator new", "0"}}};
}

const orbtest::Tortures strings({
    // ASCII alone would go into the result at once.
    empty_without_memory("quillon_com::orb::voxcomn_ansi_to_wide(std::string const&)", "80001",
                         long_text() + "\xC3\xA9", voxcomn_ansi_to_wide),
    empty_without_memory("quillon_com::orb::voxcomn_wide_to_ansi(std::wstring const&)", "80000",
                         long_wide_text(), voxcomn_wide_to_ansi),
    empty_without_memory("quillon_com::orb::voxcomn_long_to_wide_string(long const&)", "9",
                         123456789L, voxcomn_long_to_wide_string),
    empty_without_memory("quillon_com::orb::voxcomn_ulong_to_wide_string(unsigned long const&)",
                         "9", 123456789UL, voxcomn_ulong_to_wide_string),
    empty_without_memory("quillon_com::orb::voxcomn_long_to_ansi_string(long const&)", "19",
                         1234567890123456789L, voxcomn_long_to_ansi_string),
    empty_without_memory("quillon_com::orb::voxcomn_convert_to_upper(std::string const&)", "80000",
                         long_text(), voxcomn_convert_to_upper),
    empty_without_memory("quillon_com::orb::voxcomn_convert_to_lower(std::string const&)", "80000",
                         long_text(), voxcomn_convert_to_lower),
    empty_without_memory("quillon_com::orb::voxcomn_strip_leading_whitespace(std::string const&)",
                         "40000", long_text(), voxcomn_strip_leading_whitespace),
    empty_without_memory("quillon_com::orb::voxcomn_strip_trailing_whitespace(std::string const&)",
                         "80000", long_text(), voxcomn_strip_trailing_whitespace),
});

}  // namespace
