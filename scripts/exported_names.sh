#!/usr/bin/env bash
# scripts/exported_names.sh: the names that a built library exports, in the form of abi/exports.txt:
# demangled, sorted, what differs between standard libraries left out (inline name spaces, ABI tags),
# string types by their short names.
set -euo pipefail
library=$1
echo "# Every name that the library exports, demangled, one a line, sorted."
if [ "$(head -c 4 "$library" | od -An -c | tr -d ' ')" = '177ELF' ]; then
  nm --dynamic --defined-only --demangle --format=posix "$library"
else
  # Every symbol has an underscore before its name; two of each library are the linker's own.
  llvm-nm --extern-only --defined-only --demangle --format=posix "$library" |
    sed -E '/^(___dso_handle|__mh_dylib_header) /d; s/^_//'
fi | sed -E 's/ [A-Za-z] [0-9a-f]+( [0-9a-f]+)? *$//; s/@@?ORBCOMMON_[0-9.]+$//
  s/std::(__cxx11|__1)::/std::/g; s/\[abi:[a-z0-9]+\]//g; s/> >/>>/g; s/> >/>>/g
  /vLogInSystemLog/s/, (__va_list_tag\*|std::__va_list|char\*)\)$/, va_list)/
  s/std::basic_string<char, std::char_traits<char>, std::allocator<char>>/std::string/g
  s/std::basic_string<wchar_t, std::char_traits<wchar_t>, std::allocator<wchar_t>>/std::wstring/g' |
  grep -vE '^ORBCOMMON_[0-9.]+$' | LC_ALL=C sort -u
