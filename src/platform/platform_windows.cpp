#include <windows.h>
// After windows.h, which it needs.
#include <io.h>
#include <shellapi.h>

#include <algorithm>
#include <array>
#include <iostream>

#include "platform/platform.h"

namespace orvex::platform {
namespace fs = std::filesystem;
namespace {

std::error_code last_error() {
  return {static_cast<int>(::GetLastError()), std::system_category()};
}

HANDLE handle_of(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

std::error_code write_whole(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto piece = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1U << 20));
    DWORD written = 0;
    if (!::WriteFile(file, bytes.data(), piece, &written, nullptr)) return last_error();
    bytes.remove_prefix(written);
  }
  return ::FlushFileBuffers(file) ? std::error_code{} : last_error();
}

}  // namespace

fs::path state_folder() {
  constexpr UINT buffer_size = 145;
  std::array<char, buffer_size> buffer{};
  const UINT length = ::GetWindowsDirectoryA(buffer.data(), buffer_size);
  return fs::path(std::string(buffer.data(), std::min(length, buffer_size - 1)));
}

std::string device_of_port(int number, const fs::path& /*folder*/) {
  return number < 1 ? std::string{} : "COM" + std::to_string(number);
}

DeviceKind kind_of_device(const std::string& path) {
  // Opening tells whether it is there.
  return path.empty() ? DeviceKind::none : DeviceKind::serial_port;
}

bool is_trusted_port(std::intptr_t /*port_handle*/) {
  return true;
}

bool has_odd_lock(const std::string& /*device*/) {
  return false;
}

std::string missing_right(const std::string& /*path*/) {
  return {};  // opening tells
}

std::size_t unsent_bytes(std::intptr_t port_handle) {
  COMSTAT status{};
  if (!::ClearCommError(handle_of(port_handle), nullptr, &status)) return 0;
  return status.cbOutQue;
}

int end_request() {
  return -1;
}

std::string resolved_device(const std::string& name) {
  return name;
}

bool is_terminal(Stream stream) {
  return ::_isatty(static_cast<int>(stream)) != 0;
}

void prepare_streams() {
  ::SetConsoleOutputCP(CP_UTF8);
}

std::optional<std::string> read_line(int /*end_request*/) {
  std::string line;
  if (!std::getline(std::cin, line)) return std::nullopt;
  return line;
}

std::vector<std::string> arguments(int /*count*/, char** /*words*/) {
  int count = 0;
  wchar_t** const words = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  std::vector<std::string> texts;
  for (int i = 1; i < count; ++i) {
    const int size = ::WideCharToMultiByte(CP_UTF8, 0, words[i], -1, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(std::max(size, 1)), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, words[i], -1, text.data(), size, nullptr, nullptr);
    text.pop_back();
    texts.push_back(std::move(text));
  }
  ::LocalFree(words);
  return texts;
}

std::error_code replace_file(const fs::path& name, std::string_view bytes, Links links) {
  std::error_code error;
  fs::path path = name;
  if (links == Links::follow && fs::is_symlink(fs::symlink_status(name, error))) {
    path = fs::weakly_canonical(name, error);
    if (error) return error;
  }
  if (fs::is_directory(path, error)) return std::make_error_code(std::errc::is_a_directory);
  const fs::path beside = path.wstring() + L".orvex-" + std::to_wstring(::GetCurrentProcessId());
  const HANDLE file = ::CreateFileW(beside.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return last_error();
  error = write_whole(file, bytes);
  ::CloseHandle(file);
  constexpr DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  if (!error && !::MoveFileExW(beside.c_str(), path.c_str(), how)) error = last_error();
  if (error) ::DeleteFileW(beside.c_str());
  return error;
}

InputFile::~InputFile() {
  close();
}

std::error_code InputFile::open(const fs::path& path, Links /*links*/) {
  close();
  const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    const auto error = last_error();
    if (error.value() == ERROR_PATH_NOT_FOUND) {
      return std::make_error_code(std::errc::not_a_directory);
    }
    std::error_code ignored;
    return fs::is_directory(path, ignored) ? std::make_error_code(std::errc::is_a_directory)
                                           : error;
  }
  handle_ = reinterpret_cast<std::intptr_t>(file);
  if (::GetFileType(file) != FILE_TYPE_DISK) return std::make_error_code(std::errc::invalid_seek);
  BY_HANDLE_FILE_INFORMATION information{};
  if (!::GetFileInformationByHandle(file, &information)) return last_error();
  size_ = (static_cast<std::uint64_t>(information.nFileSizeHigh) << 32) | information.nFileSizeLow;
  // File times count 100 ns from the year 1601.
  const auto ticks =
      (static_cast<std::uint64_t>(information.ftLastWriteTime.dwHighDateTime) << 32) |
      information.ftLastWriteTime.dwLowDateTime;
  constexpr std::int64_t seconds_to_1970 = 11644473600;
  modified_ = static_cast<std::int64_t>(ticks / 10000000) - seconds_to_1970;
  mode_ = 0100644;
  return {};
}

void InputFile::close() {
  if (handle_ != -1) ::CloseHandle(handle_of(handle_));
  handle_ = -1;
}

std::size_t InputFile::read(std::uint64_t offset, std::span<char> into, std::error_code& error) {
  std::size_t done = 0;
  while (done < into.size()) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset + done);
    place.OffsetHigh = static_cast<DWORD>((offset + done) >> 32);
    const auto piece = static_cast<DWORD>(std::min<std::size_t>(into.size() - done, 1U << 20));
    DWORD got = 0;
    if (!::ReadFile(handle_of(handle_), into.data() + done, piece, &got, &place)) {
      if (::GetLastError() != ERROR_HANDLE_EOF) error = last_error();
      break;
    }
    if (got == 0) break;
    done += got;
  }
  return done;
}

}  // namespace orvex::platform
