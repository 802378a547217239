#include "ui/web_address.h"

#include <algorithm>
#include <cctype>

#include "window/number.h"

namespace orvex {
namespace {

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}
bool is_letter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The scheme in front of the first ":", in lower case; empty where there is none. What is followed
/// by a digit is the port of a host.
std::string scheme_of(std::string_view text) {
  const auto colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0 || !is_letter(text[0])) return {};
  std::string scheme(text.substr(0, colon));
  const bool fits = std::ranges::all_of(scheme, [](char c) {
    return is_letter(c) || is_digit(c) || c == '+' || c == '-' || c == '.';
  });
  const bool host_and_port = colon + 1 < text.size() && is_digit(text[colon + 1]);
  if (!fits || host_and_port) return {};
  std::ranges::transform(scheme, scheme.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return scheme;
}

}  // namespace

std::optional<std::string> web_address(std::string_view text) {
  while (!text.empty() && text.back() == '\0') text.remove_suffix(1);
  text = trimmed(text);
  const bool plain =
      std::ranges::all_of(text, [](unsigned char c) { return c > 0x20 && c < 0x7F; });
  if (text.empty() || !plain) return std::nullopt;
  const std::string scheme = scheme_of(text);
  if (scheme.empty()) return "http://" + std::string(text);
  if (scheme != "http" && scheme != "https") return std::nullopt;
  return std::string(text);
}

}  // namespace orvex
