#include "base/number.h"

#include <charconv>

namespace orvex {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view white = " \t\r\n\v\f";
  const auto first = text.find_first_not_of(white);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(white) - first + 1);
}

std::optional<double> read_number(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  if (text.find_first_not_of("+-.0123456789eE") != std::string_view::npos) return std::nullopt;
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace orvex
