// tools/orbprops/table.cpp: pads, wraps and stacks cells.
#include "tools/orbprops/table.h"

#include <algorithm>

namespace orbprops {
namespace {

constexpr size_t kGap = 2;              // blanks between columns
constexpr size_t kFewestForValue = 12;  // below that a value stands under its key
constexpr size_t kDeeper = 2;           // further indent of such a value

size_t columns_of(const Cell& cell) {
  size_t columns = 0;
  for (const Shown& piece : cell) columns += piece.columns;
  return columns;
}

std::string blanks(size_t count) { return std::string(count, ' '); }

void end_line(std::string& out) {
  out.erase(out.find_last_not_of(' ') + 1);
  out += '\n';
}

// Where the line that starts at `first` ends: the index of the piece behind it.
size_t line_end(const Cell& cell, size_t first, size_t room) {
  size_t columns = 0;
  size_t behind_blank = first;
  for (size_t i = first; i < cell.size(); ++i) {
    columns += cell[i].columns;
    if (columns > room && i > first) return behind_blank > first ? behind_blank : i;
    if (cell[i].bytes == " ") behind_blank = i + 1;
  }
  return cell.size();
}

std::vector<size_t> widths_of(const Table& table) {
  std::vector<size_t> widths;
  for (size_t i = 0; i < table.columns.size(); ++i) {
    size_t width = table.columns[i].title.size();
    for (const auto& row : table.rows) width = std::max(width, columns_of(row[i]));
    widths.push_back(width);
  }
  return widths;
}

std::string row_line(const Table& table, const std::vector<Cell>& row,
                     const std::vector<size_t>& widths, size_t indent) {
  std::string out = blanks(indent);
  for (size_t i = 0; i < row.size(); ++i) {
    const Shown cell = join(row[i], 0, row[i].size());
    const std::string padding = blanks(widths[i] - cell.columns);
    if (i > 0) out += blanks(kGap);
    out += table.columns[i].right ? padding + cell.bytes : cell.bytes + padding;
  }
  end_line(out);
  return out;
}

std::string title_line(const Table& table, const std::vector<size_t>& widths, size_t indent,
                       const Style& style) {
  std::vector<Cell> titles;
  for (const Column& column : table.columns) {
    titles.push_back({{paint(column.title, Ink::title, style), column.title.size()}});
  }
  return row_line(table, titles, widths, indent);
}

std::string stacked_lines(const Table& table, size_t indent, const Style& style) {
  size_t key_columns = 0;
  for (const Column& column : table.columns) {
    key_columns = std::max(key_columns, column.title.size());
  }
  std::string out;
  for (const auto& row : table.rows) {
    std::vector<Pair> pairs;
    for (size_t i = 0; i < row.size(); ++i) {
      if (!table.columns[i].title.empty()) pairs.push_back({table.columns[i].title, row[i]});
    }
    if (!out.empty()) out += '\n';
    out += pair_lines(pairs, indent, key_columns, style);
  }
  return out;
}

}  // namespace

std::vector<Shown> wrap(const Cell& cell, size_t room) {
  std::vector<Shown> lines;
  size_t first = 0;
  do {
    size_t end = room == 0 ? cell.size() : line_end(cell, first, room);
    lines.push_back(join(cell, first, end));
    first = end;
  } while (first < cell.size());
  return lines;
}

std::string pair_lines(const std::vector<Pair>& pairs, size_t indent, size_t key_columns,
                       const Style& style) {
  std::string out;
  for (const Pair& pair : pairs) {
    const size_t key_width = std::max(key_columns, pair.key.size());
    size_t lead = indent + key_width + kGap;
    out += blanks(indent) + paint(pair.key, Ink::title, style);
    if (pair.value.empty()) {
      out += '\n';
      continue;
    }
    const bool below = style.columns != 0 && style.columns < lead + kFewestForValue;
    if (below) {
      end_line(out);
      lead = indent + kDeeper;
      out += blanks(lead);
    } else {
      out += blanks(lead - indent - pair.key.size());
    }
    bool first = true;
    const size_t room = style.columns == 0 ? 0 : style.columns - lead;
    for (const Shown& line : wrap(pair.value, room)) {
      if (!first) out += blanks(lead);
      out += line.bytes;
      end_line(out);
      first = false;
    }
  }
  return out;
}

size_t table_columns(const Table& table) {
  size_t columns = 0;
  for (size_t width : widths_of(table)) columns += width + kGap;
  return columns == 0 ? 0 : columns - kGap;
}

std::string table_lines(const Table& table, size_t indent, const Style& style) {
  if (style.columns != 0 && indent + table_columns(table) > style.columns) {
    return stacked_lines(table, indent, style);
  }
  const std::vector<size_t> widths = widths_of(table);
  std::string out = title_line(table, widths, indent, style);
  for (const auto& row : table.rows) out += row_line(table, row, widths, indent);
  return out;
}

}  // namespace orbprops
