#include "setup/scanner_setup.h"

#include <algorithm>

#include "base/number.h"

namespace orvex {
namespace {

std::string delay_of(const std::string& text) {
  constexpr std::size_t least_digits = 3;
  const auto number = trimmed(text);
  if (number.empty() || number.find_first_not_of("0123456789") != std::string_view::npos) {
    return text;
  }
  const auto digits = number.substr(std::min(number.find_first_not_of('0'), number.size()));
  return std::string(least_digits - std::min(least_digits, digits.size()), '0') +
         std::string(digits);
}

std::string value_text(const ScannerSetup& setup, const Parameter& row) {
  if (!row.is_text()) return std::string(setup.value(row.field));
  const std::string text = to_latin1(setup.text(row.field));
  return row.field == Field::RSDELY ? delay_of(text) : text;
}

bool is_high_surrogate(char16_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool is_low_surrogate(char16_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

ScannerSetup::ScannerSetup() {
  for (const auto& row : parameters()) choose(row.field, row.initial);
}

std::vector<std::string> Setup_Tag_List(const ScannerSetup& setup) {
  std::vector<std::string> tags;
  tags.reserve(field_count);
  for (const auto& row : parameters()) {
    std::string tag = "<";
    tag += row.name;
    tag += '=';
    tag += value_text(setup, row);
    tag += '>';
    tags.push_back(std::move(tag));
  }
  return tags;
}

std::u16string digits_only(std::u16string_view text) {
  std::u16string digits(text);
  std::ranges::replace_if(
      digits, [](char16_t c) { return c < u'0' || c > u'9'; }, u'0');
  return digits;
}

std::string to_latin1(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] <= 0xFF) {
      bytes += static_cast<char>(text[i]);
      continue;
    }
    bytes += '?';
    const bool pair =
        is_high_surrogate(text[i]) && i + 1 < text.size() && is_low_surrogate(text[i + 1]);
    if (pair) ++i;
  }
  return bytes;
}

std::u16string from_latin1(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) text += static_cast<char16_t>(static_cast<unsigned char>(byte));
  return text;
}

}  // namespace orvex
