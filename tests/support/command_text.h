// tests/support/command_text.h: what a shell command prints, as a second source for a test.
#pragma once

#include <cstdio>
#include <string>

namespace orbtest {

// Standard output of `command` without its last newline, byte by byte widened; empty when the
// command cannot be run.
inline std::wstring command_text(const std::string& command) {
  std::wstring text;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return text;
  for (int c = getc(pipe); c != EOF; c = getc(pipe)) text.push_back(static_cast<wchar_t>(c));
  pclose(pipe);
  if (!text.empty() && text.back() == L'\n') text.pop_back();
  return text;
}

}  // namespace orbtest
