#include "base/run_time_error.h"

#include <algorithm>
#include <array>

namespace orvex {
namespace {

struct KnownError {
  std::errc condition;
  int number;
  const char* text;
};

constexpr std::array known_errors{
    KnownError{std::errc::no_such_file_or_directory, error_number::file_not_found,
               "File not found"},
    KnownError{std::errc::text_file_busy, error_number::file_already_open, "File already open"},
    KnownError{std::errc::device_or_resource_busy, error_number::file_already_open,
               "File already open"},
    KnownError{std::errc::io_error, error_number::device_error, "Device I/O error"},
    KnownError{std::errc::no_space_on_device, error_number::disk_full, "Disk full"},
    KnownError{std::errc::file_too_large, error_number::disk_full, "Disk full"},
    KnownError{std::errc::permission_denied, error_number::permission_denied, "Permission denied"},
    KnownError{std::errc::operation_not_permitted, error_number::permission_denied,
               "Permission denied"},
    KnownError{std::errc::read_only_file_system, error_number::permission_denied,
               "Permission denied"},
    KnownError{std::errc::no_such_device, error_number::disk_not_ready, "Disk not ready"},
    KnownError{std::errc::no_such_device_or_address, error_number::disk_not_ready,
               "Disk not ready"},
    KnownError{std::errc::is_a_directory, error_number::path_file_access, "Path/File access error"},
    KnownError{std::errc::invalid_seek, error_number::path_file_access, "Path/File access error"},
    KnownError{std::errc::filename_too_long, error_number::path_file_access,
               "Path/File access error"},
    KnownError{std::errc::too_many_symbolic_link_levels, error_number::path_file_access,
               "Path/File access error"},
    KnownError{std::errc::not_a_directory, error_number::path_not_found, "Path not found"},
};

}  // namespace

RunTimeError overflow_error() {
  return {error_number::overflow, "Overflow"};
}

RunTimeError type_mismatch_error() {
  return {error_number::type_mismatch, "Type mismatch"};
}

RunTimeError port_not_open_error() {
  return {error_number::device_error, "The port is not open"};
}

RunTimeError error_of(std::error_code error) {
  const auto* known = std::ranges::find_if(
      known_errors, [&](const KnownError& candidate) { return error == candidate.condition; });
  if (known != known_errors.end()) return {known->number, known->text};
  return {error_number::platform_base + error.value(), error.message()};
}

}  // namespace orvex
