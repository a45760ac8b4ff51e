// platform/linux_text.h: what the texts below /proc, /sys, /etc and /run say; pure functions.
//
// Every function takes a text as it was read: it may be empty, cut short anywhere, hold zero bytes
// or be no such text at all. Work and memory grow linearly with its length. Safe from any thread.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/system.h"

namespace quillon_com::orb::platform {

// Takes the first line off `rest` and returns it without its line end; `rest` keeps what follows.
std::string_view take_line(std::string_view* rest);

// `text` without the blanks, tabs, carriage returns and line ends at both ends.
std::string_view trimmed(std::string_view text);

// A decimal count: digits alone, blanks around them ignored; nothing when it is empty, holds
// anything else or passes 64 bits.
std::optional<uint64_t> decimal_count(std::string_view text);

// The first line without the blanks at its ends, up to its first zero byte.
std::string first_line(std::string_view text);

// A name that the kernel keeps: empty where it says "(none)".
std::string name_unless_none(std::string name);

// The figure called `name` ("MemTotal") of a memory table, in the table's kB of 1024 bytes; nothing
// when no line states it or its bytes would pass 64 bits. The first such line counts.
std::optional<uint64_t> memory_kilobytes(std::string_view table, std::string_view name);

// The moment of the boot that the kernel's statistics state, in seconds since 1970; nothing when no
// line does. The first such line counts.
std::optional<uint64_t> boot_seconds(std::string_view statistics);

// The number of processors in a list of ranges ("0-3,8"); nothing when it is malformed, empty or
// passes an int.
std::optional<int> listed_processors(std::string_view list);

// The settings of a text of NAME=value lines in the form of os-release: single or double quotes
// around a value are removed, a backslash outside single quotes gives the character after it (in
// double quotes only one of " $ ` and backslash), an unquoted value ends at a blank, lines
// that start with "#" and lines without a proper name are passed over, a later line wins.
std::map<std::string, std::string> settings_of(std::string_view text);

// The text before " release " in the first line of `text`; empty when it is not there.
std::string words_before_release(std::string_view text);

// The record of one session file called `id`, as a user-accounting entry of type 7; nothing when
// the session belongs to no user (a class other than "user" and "user-...") or is closing.
std::optional<SessionEntry> session_of(std::string_view id, std::string_view text);

}  // namespace quillon_com::orb::platform
