#include "platform/process.h"

#include <windows.h>
// After windows.h, which it needs.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace orvex::platform {
namespace {

std::string utf8_of(const wchar_t* text, int length) {
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(std::max(size, 0)), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text, length, bytes.data(), size, nullptr, nullptr);
  return bytes;
}

}  // namespace

bool is_terminal(Stream stream) {
  return ::_isatty(static_cast<int>(stream)) != 0;
}

void prepare_streams() {
  ::SetConsoleOutputCP(CP_UTF8);
  // Lines end as they are written, so that both systems print the same.
  ::_setmode(::_fileno(stdout), _O_BINARY);
}

std::optional<std::string> read_line() {
  constexpr DWORD longest_line = 4096;
  std::array<wchar_t, longest_line> line{};
  DWORD got = 0;
  // Ctrl-C ends the read with nothing.
  if (!::ReadConsoleW(::GetStdHandle(STD_INPUT_HANDLE), line.data(), longest_line, &got, nullptr) ||
      got == 0) {
    return std::nullopt;
  }
  while (got > 0 && (line[got - 1] == L'\n' || line[got - 1] == L'\r')) --got;
  return utf8_of(line.data(), static_cast<int>(got));
}

std::vector<std::string> arguments(int /*count*/, char** /*words*/) {
  int count = 0;
  wchar_t** const words = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  std::vector<std::string> texts;
  for (int word = 1; word < count; ++word) {
    texts.push_back(utf8_of(words[word], ::lstrlenW(words[word])));
  }
  ::LocalFree(words);
  return texts;
}

}  // namespace orvex::platform
