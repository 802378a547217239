#pragma once

#include <string>
#include <system_error>

namespace orvex {

/// A failure that a handler shows to the user or passes over. It never leaves a handler.
struct RunTimeError {
  int number = 0;    ///< see the constants below and error_of()
  std::string text;  ///< the failure's own words, in the system's encoding
};

namespace error_number {
inline constexpr int overflow = 6;
inline constexpr int type_mismatch = 13;
inline constexpr int file_not_found = 53;
inline constexpr int file_already_open = 55;
inline constexpr int device_error = 57;
inline constexpr int disk_full = 61;
inline constexpr int permission_denied = 70;
inline constexpr int disk_not_ready = 71;
inline constexpr int path_file_access = 75;
inline constexpr int path_not_found = 76;
inline constexpr int invalid_value = 380;
inline constexpr int cancelled = 32755;
/// Platform errors without a number of the list above stand at this base plus their own number.
inline constexpr int platform_base = 1000;
}  // namespace error_number

RunTimeError overflow_error();
RunTimeError type_mismatch_error();
RunTimeError port_not_open_error();

/// The number and text for an error of the platform. Every error has one.
RunTimeError error_of(std::error_code error);

}  // namespace orvex
