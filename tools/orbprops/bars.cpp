// tools/orbprops/bars.cpp: works out and draws usage bars.
#include "tools/orbprops/bars.h"

#include <algorithm>
#include <cmath>
#include <cwchar>

namespace orbprops {
namespace {

constexpr double kWarningPart = 0.75;
constexpr double kBadPart = 0.90;

std::optional<double> number(const std::wstring& text) {
  wchar_t* end = nullptr;
  const double value = wcstod(text.c_str(), &end);
  if (text.empty() || end != text.c_str() + text.size() || !std::isfinite(value)) return {};
  return value;
}

std::string repeat(const char* piece, size_t times) {
  std::string out;
  while (times-- > 0) out += piece;
  return out;
}

}  // namespace

std::optional<double> used_part(const std::wstring& total, const std::wstring& free) {
  const auto all = number(total);
  const auto left = number(free);
  if (!all || !left || *all <= 0 || *left < 0 || *left > *all) return {};
  return (*all - *left) / *all;
}

std::string percent(double part) { return std::to_string(std::lround(part * 100)) + "%"; }

std::string bar(double part, size_t columns, const Style& style) {
  if (columns < 3) return {};
  const size_t room = columns - 2;
  auto filled = static_cast<size_t>(std::lround(std::clamp(part, 0.0, 1.0) * double(room)));
  if (part > 0) filled = std::max<size_t>(filled, 1);
  if (part < 1) filled = std::min(filled, room - 1);
  const bool blocks = style.charset == Charset::utf8;
  Ink ink = part >= kWarningPart ? Ink::warning : Ink::good;
  if (part >= kBadPart) ink = Ink::bad;
  return "[" + paint(repeat(blocks ? "\u2588" : "#", filled), ink, style) +
         paint(repeat(blocks ? "\u2591" : "-", room - filled), Ink::faint, style) + "]";
}

}  // namespace orbprops
