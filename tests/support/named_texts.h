// tests/support/named_texts.h: rows of tables that hold an exported text against what it should be.
#pragma once

#include <string>

namespace orbtest {

struct WideName {
  const char* name;
  const std::wstring& constant;
  const wchar_t* text;
};

struct NarrowName {
  const char* name;
  const std::string& constant;
  const char* text;
};

}  // namespace orbtest
