#include <windows.h>

#include <algorithm>
#include <string>

#include "platform/files.h"

namespace orvex::platform {
namespace fs = std::filesystem;
namespace {

std::error_code error_of_system(DWORD number) {
  switch (number) {
    case ERROR_FILE_NOT_FOUND:
      return std::make_error_code(std::errc::no_such_file_or_directory);
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_PATHNAME:
      return std::make_error_code(std::errc::not_a_directory);
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return std::make_error_code(std::errc::text_file_busy);
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      return std::make_error_code(std::errc::permission_denied);
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return std::make_error_code(std::errc::no_space_on_device);
    case ERROR_NOT_READY:
      return std::make_error_code(std::errc::no_such_device);
    case ERROR_CRC:
    case ERROR_IO_DEVICE:
      return std::make_error_code(std::errc::io_error);
    case ERROR_FILENAME_EXCED_RANGE:
      return std::make_error_code(std::errc::filename_too_long);
    case ERROR_INVALID_NAME:
      return std::make_error_code(std::errc::invalid_argument);
    default:
      return {static_cast<int>(number), std::system_category()};
  }
}

std::error_code last_error() {
  return error_of_system(::GetLastError());
}

/// A handle of the system that is closed at the end of its scope.
class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle) {}
  ~Handle() { close(); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  HANDLE get() const { return handle_; }
  bool is_valid() const { return handle_ != INVALID_HANDLE_VALUE; }
  void close() {
    if (is_valid()) ::CloseHandle(handle_);
    handle_ = INVALID_HANDLE_VALUE;
  }

 private:
  HANDLE handle_;
};

HANDLE handle_of(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

/// The name in the form that may have more than 260 characters, where it needs that.
std::wstring whole_name(const fs::path& path) {
  std::error_code error;
  const fs::path whole = fs::absolute(path, error).lexically_normal().make_preferred();
  constexpr std::size_t most_usual = 240;  // leaves room for a name of the tool's own beside it
  if (error || whole.native().size() < most_usual || whole.native().starts_with(LR"(\\)")) {
    return path.native();
  }
  return LR"(\\?\)" + whole.native();
}

std::error_code write_whole(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto piece = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1U << 20));
    DWORD written = 0;
    if (!::WriteFile(file, bytes.data(), piece, &written, nullptr)) return last_error();
    bytes.remove_prefix(written);
  }
  // In place of a longer file, the rest of it goes.
  return ::SetEndOfFile(file) && ::FlushFileBuffers(file) ? std::error_code{} : last_error();
}

/// A file of its own name beside the one that is to be replaced.
Handle make_beside(const fs::path& path, std::wstring& name) {
  constexpr int most_tries = 100;
  constexpr std::wstring_view letters = L"abcdefghijklmnopqrstuvwxyz0123456789";
  HANDLE file = INVALID_HANDLE_VALUE;
  for (int tries = 0; tries < most_tries; ++tries) {
    LARGE_INTEGER chance{};
    ::QueryPerformanceCounter(&chance);
    auto seed = static_cast<unsigned long long>(chance.QuadPart) * 6364136223846793005ULL +
                ::GetCurrentProcessId();
    std::wstring last = L".orvex-";
    for (int letter = 0; letter < 6; ++letter) {
      seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
      last += letters[(seed >> 33) % letters.size()];
    }
    name = (path.parent_path() / last).wstring();
    file = ::CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL,
                         nullptr);
    if (file != INVALID_HANDLE_VALUE || ::GetLastError() != ERROR_FILE_EXISTS) break;
  }
  return Handle(file);
}

/// One write, flushed: for a file whose folder takes no new one.
std::error_code write_in_place(const fs::path& path, std::string_view bytes) {
  const Handle file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!file.is_valid()) return last_error();
  return write_whole(file.get(), bytes);
}

}  // namespace

std::error_code replace_file(const fs::path& name, std::string_view bytes, Links links) {
  std::error_code error;
  fs::path path = name;
  if (links == Links::follow && fs::is_symlink(fs::symlink_status(name, error))) {
    path = fs::weakly_canonical(name, error);
    if (error) return error;
  }
  path = whole_name(path);
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
  if (exists && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return std::make_error_code(std::errc::is_a_directory);
  }
  if (exists && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    return std::make_error_code(std::errc::permission_denied);
  }
  std::wstring beside;
  Handle file = make_beside(path, beside);
  if (!file.is_valid()) {
    error = last_error();
    // In the system's own folder users may write the file that the installer made, and no other.
    const bool in_place =
        links == Links::replace && exists && error == std::errc::permission_denied;
    return in_place ? write_in_place(path, bytes) : error;
  }
  error = write_whole(file.get(), bytes);
  file.close();
  constexpr DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  if (!error && !::MoveFileExW(beside.c_str(), path.c_str(), how)) error = last_error();
  if (error) ::DeleteFileW(beside.c_str());
  // One that somebody has open can't be replaced.
  return error == std::errc::text_file_busy ? std::make_error_code(std::errc::permission_denied)
                                            : error;
}

InputFile::~InputFile() {
  close();
}

std::error_code InputFile::open(const fs::path& path, Links links) {
  close();
  const DWORD flags =
      FILE_ATTRIBUTE_NORMAL | (links == Links::replace ? FILE_FLAG_OPEN_REPARSE_POINT : 0);
  const HANDLE file =
      ::CreateFileW(whole_name(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, flags, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    const auto error = last_error();
    std::error_code ignored;
    return fs::is_directory(path, ignored) ? std::make_error_code(std::errc::is_a_directory)
                                           : error;
  }
  handle_ = reinterpret_cast<std::intptr_t>(file);
  if (::GetFileType(file) != FILE_TYPE_DISK) return std::make_error_code(std::errc::invalid_seek);
  BY_HANDLE_FILE_INFORMATION information{};
  if (!::GetFileInformationByHandle(file, &information)) return last_error();
  if (links == Links::replace &&
      (information.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
    return std::make_error_code(std::errc::too_many_symbolic_link_levels);
  }
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
