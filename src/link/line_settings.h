#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvex {

enum class Parity { none, odd, even };

struct LineSettings {
  int baud = 9600;  ///< bits a second, one of the eight rates of the scanner
  Parity parity = Parity::none;
  int data_bits = 8;
  int stop_bits = 1;

  bool operator==(const LineSettings&) const = default;
};

/// Reads the four fields of a settings text such as "9600,n,8,1", with blanks around the fields and
/// the parity in either case. None if a field is not one of its values.
std::optional<LineSettings> parse_settings(std::string_view text);

/// The text without blanks around its fields: "  9600,N,8,1" gives "9600,N,8,1".
std::string without_blanks(std::string_view settings);

}  // namespace orvex
