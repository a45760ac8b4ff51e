// tools/orbprops/layout.cpp: lays answers out with the tables and bars.
#include "tools/orbprops/layout.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "tools/orbprops/bars.h"
#include "tools/orbprops/properties.h"
#include "tools/orbprops/table.h"

namespace orbprops {
namespace {

constexpr size_t kReportIndent = 2;
constexpr size_t kMostBarColumns = 32;
constexpr size_t kFewestBarColumns = 8;

size_t longest_key() {
  size_t longest = 0;
  for (const PropertyInfo& info : kProperties) longest = std::max(longest, info.key.size());
  return longest;
}

// How far the lines of a group stand in: two blanks, or what the longest key leaves of the window.
size_t report_indent(const Style& style) {
  if (style.columns == 0) return kReportIndent;
  const size_t rest = style.columns - std::min(style.columns, longest_key());
  return std::min(kReportIndent, rest);
}

Cell value_cell(const Property& property, const Style& style) {
  Cell cell = glyphs(std::wstring_view(property.value), style.charset);
  if (!style.colour || !is_unanswered(property.key, property.value)) return cell;
  const Shown value = join(cell, 0, cell.size());
  return {{paint(value.bytes, Ink::faint, style), value.columns}};
}

std::string heading(std::string_view text, const Style& style) {
  return paint(text, Ink::title, style) + "\n";
}

// Columns that a bar may take beside `table` and its gap; 0 when there is no room for one.
size_t bar_columns(const Table& table, size_t indent, const Style& style) {
  const size_t taken = indent + table_columns(table) + 2;
  if (!style.terminal || style.columns < taken + kFewestBarColumns) return 0;
  return std::min(style.columns - taken, kMostBarColumns);
}

Cell cell_of(std::string_view text, const Style& style) { return glyphs(text, style.charset); }

}  // namespace

std::string report_text(const Answer& answer, const Style& style) {
  std::string out;
  std::vector<Pair> pairs;
  const size_t key_columns = longest_key();
  const size_t indent = report_indent(style);
  for (size_t i = 0; i < kPropertyCount; ++i) {
    const std::string_view group = kProperties[i].group;
    const Property& property = (*answer.properties)[i];
    pairs.push_back({std::string(property.key), value_cell(property, style)});
    if (i + 1 < kPropertyCount && kProperties[i + 1].group == group) continue;
    out += heading(group, style) + pair_lines(pairs, indent, key_columns, style) + "\n";
    pairs.clear();
  }
  const std::string volumes = file_systems_text(*answer.file_systems, indent, style);
  if (volumes.empty()) {
    out.pop_back();
  } else {
    out += heading("File systems", style) + volumes;
  }
  return out;
}

std::string values_text(const std::vector<Property>& properties, const Style& style) {
  std::string out;
  for (const Property& property : properties) {
    if (properties.size() > 1) out.append(property.key).append(" ");
    out += show(std::wstring_view(property.value), style.charset).bytes + "\n";
  }
  return out;
}

std::string keys_text(const Style& style) {
  std::string out;
  if (!style.terminal) {
    for (const PropertyInfo& info : kProperties) out.append(info.key).append("\n");
    return out;
  }
  std::vector<Pair> pairs;
  pairs.reserve(kPropertyCount);
  for (const PropertyInfo& info : kProperties) {
    pairs.push_back({std::string(info.key), cell_of(info.meaning, style)});
  }
  return pair_lines(pairs, 0, longest_key(), style);
}

std::string file_systems_text(const std::vector<FileSystem>& file_systems, size_t indent,
                              const Style& style) {
  if (file_systems.empty()) return {};
  Table table{{{"MOUNT POINT"}, {"TOTAL MB", true}, {"FREE MB", true}, {"USED", true}}, {}};
  for (const FileSystem& volume : file_systems) {
    const auto used = used_part(volume.total_mb, volume.free_mb);
    table.rows.push_back({glyphs(std::wstring_view(volume.mount_point), style.charset),
                          glyphs(std::wstring_view(volume.total_mb), style.charset),
                          glyphs(std::wstring_view(volume.free_mb), style.charset),
                          cell_of(used ? percent(*used) : "-", style)});
  }
  if (const size_t columns = bar_columns(table, indent, style); columns > 0) {
    table.columns.push_back({""});
    for (size_t i = 0; i < file_systems.size(); ++i) {
      const auto used = used_part(file_systems[i].total_mb, file_systems[i].free_mb);
      table.rows[i].push_back(used ? Cell{{bar(*used, columns, style), columns}} : Cell{});
    }
  }
  return table_lines(table, indent, style);
}

std::string interfaces_text(const std::vector<Interface>& interfaces, const Style& style) {
  Table table{{{"INDEX", true}, {"NAME"}, {"HARDWARE"}, {"ADDRESS"}, {"MASK"}, {"SUBNET"}}, {}};
  for (const Interface& interface : interfaces) {
    for (const Address& address : interface.addresses) {
      table.rows.push_back(
          {cell_of(std::to_string(interface.index), style), cell_of(interface.name, style),
           cell_of(interface.hardware_address, style), cell_of(address.address, style),
           cell_of(address.mask, style), cell_of(address.subnet, style)});
    }
  }
  return table.rows.empty() ? std::string() : table_lines(table, 0, style);
}

std::string users_text(const Users& users, const Style& style) {
  std::string out;
  for (const std::string& name : users.network) {
    out += "network  " + show(std::string_view(name), style.charset).bytes + "\n";
  }
  for (const std::string& name : users.local) {
    out += "local    " + show(std::string_view(name), style.charset).bytes + "\n";
  }
  return out;
}

std::string timings_text(const std::vector<Timing>& timings) {
  size_t longest = 0;
  for (const Timing& timing : timings) longest = std::max(longest, timing.name.size());
  std::string out;
  for (const Timing& timing : timings) {
    std::array<char, 48> number{};
    snprintf(number.data(), number.size(), "%10.3f ms\n", timing.milliseconds);
    out += timing.name + std::string(longest - timing.name.size(), ' ') + number.data();
  }
  return out;
}

}  // namespace orbprops
