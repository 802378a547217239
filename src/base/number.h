#pragma once

#include <optional>
#include <string_view>

namespace orvex {

/// Reads a text as a decimal number, whatever the language of the desktop: an optional sign,
/// digits with an optional point, an optional exponent. White space around it doesn't matter.
/// None if the text is no finite number.
std::optional<double> read_number(std::string_view text);

/// The text without the white space (blanks, tabs, line ends) at its two ends.
std::string_view trimmed(std::string_view text);

}  // namespace orvex
