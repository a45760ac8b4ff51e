// tools/orbprops/table.h: aligned columns and key-value pairs that fit the window.
#pragma once

#include <string>
#include <vector>

#include "tools/orbprops/terminal.h"
#include "tools/orbprops/text.h"

namespace orbprops {

// The characters of a cell, or any other pieces that a line is not broken in.
using Cell = std::vector<Shown>;

// A key and its value.
struct Pair {
  std::string key;  // printable ASCII
  Cell value;
};

struct Column {
  std::string title;   // printable ASCII
  bool right = false;  // its cells stand at the right, as numbers do
};

struct Table {
  std::vector<Column> columns;
  std::vector<std::vector<Cell>> rows;  // a cell for each column
};

// The lines of `cell` in at most `room` columns each, broken behind a blank where there is one. A
// piece wider than `room` has a line of its own. One empty line for an empty cell; one line when
// `room` is 0, which is without limit.
std::vector<Shown> wrap(const Cell& cell, size_t room);

// One line per pair, more where a value is wrapped: `indent` blanks, the key in `key_columns` at
// least, two blanks, the value. Where the window leaves a value less than twelve columns it stands
// below its key. Lines end without blanks.
std::string pair_lines(const std::vector<Pair>& pairs, size_t indent, size_t key_columns,
                       const Style& style);

// The columns that `table` takes, its gaps of two blanks included, without an indent.
size_t table_columns(const Table& table);

// A line of titles and one line per row. A table that does not fit the window is written row by
// row instead, as pairs of title and cell with an empty line between rows; cells without a title
// are then left out. Nothing is cut. Lines end without blanks.
std::string table_lines(const Table& table, size_t indent, const Style& style);

}  // namespace orbprops
