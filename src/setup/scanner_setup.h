#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "setup/catalogue.h"

namespace orvex {

/// One value for each of the scanner's parameters, and the state that the tabs show. A choice field
/// holds one of its listed values at all times.
class ScannerSetup {
 public:
  /// The initial values of the catalogue.
  ScannerSetup();

  /// Position of a choice field's value in its list.
  std::size_t choice(Field field) const { return choices_[index(field)]; }
  std::string_view value(Field field) const {
    return parameter(field).choices[choice(field)].value;
  }
  /// `position` must be one of the field's list.
  void choose(Field field, std::size_t position) { choices_[index(field)] = position; }

  /// A text field's text in UTF-16, as the keyboard gives it.
  const std::u16string& text(Field field) const { return texts_[index(field)]; }
  std::u16string& text(Field field) { return texts_[index(field)]; }

  bool operator==(const ScannerSetup&) const = default;

 private:
  static std::size_t index(Field field) { return static_cast<std::size_t>(field); }

  std::array<std::size_t, field_count> choices_{};
  std::array<std::u16string, field_count> texts_;
};

/// The tag `<NAME=value>` of each field, in catalogue order. A delay that is a whole number has at
/// least three digits; other texts go out unchanged, one byte a character, and "?" stands for what
/// ISO 8859-1 doesn't have.
std::vector<std::string> Setup_Tag_List(const ScannerSetup& setup);

/// What the box of RSDELY makes of its text at each key: every character but a digit becomes "0".
std::u16string digits_only(std::u16string_view text);

/// One byte a character; "?" for a character that ISO 8859-1 doesn't have.
std::string to_latin1(std::u16string_view text);
std::u16string from_latin1(std::string_view bytes);

}  // namespace orvex
