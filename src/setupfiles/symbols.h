#pragma once

#include <array>
#include <span>
#include <string_view>

#include "setup/scanner_setup.h"
#include "window/controls.h"

namespace orvex {

/// A control character of the pickers, under the code that is its index there.
struct ControlSymbol {
  int index;
  std::string_view name;     ///< without its brackets
  std::string_view meaning;  ///< its name in full, as ISO 646 has it
};

/// The 33 symbols in the order of the pickers, which show them in columns of seven.
std::span<const ControlSymbol> control_symbols();
inline constexpr int symbols_in_column = 7;

/// Puts "[", name, "]" into the text in place of the selection, asks for the focus and sets the
/// caret behind the symbol.
void Insert_Symbol(std::u16string& text, Caret& box, std::string_view name);

}  // namespace orvex
