#include "setupfiles/symbols.h"

#include <algorithm>

namespace orvex {

std::span<const ControlSymbol> control_symbols() {
  static constexpr std::array<ControlSymbol, 33> symbols{{
      {0, "NUL", "Null"},
      {1, "SOH", "Start of heading"},
      {2, "STX", "Start of text"},
      {3, "ETX", "End of text"},
      {4, "EOT", "End of transmission"},
      {5, "ENQ", "Enquiry"},
      {6, "ACK", "Acknowledge"},
      {7, "BEL", "Bell"},
      {8, "BS", "Backspace"},
      {9, "HT", "Horizontal tab"},
      {10, "LF", "Line feed"},
      {11, "VT", "Vertical tab"},
      {12, "FF", "Form feed"},
      {13, "CR", "Carriage return"},
      {14, "SO", "Shift out"},
      {15, "SI", "Shift in"},
      {16, "DLE", "Data link escape"},
      {17, "DC1", "Device control 1"},
      {18, "DC2", "Device control 2"},
      {19, "DC3", "Device control 3"},
      {20, "DC4", "Device control 4"},
      {21, "NAK", "Negative acknowledge"},
      {22, "SYN", "Synchronous idle"},
      {23, "ETB", "End of transmission block"},
      {24, "CAN", "Cancel"},
      {25, "EM", "End of medium"},
      {26, "SUB", "Substitute"},
      {27, "ESC", "Escape"},
      {28, "FS", "File separator"},
      {29, "GS", "Group separator"},
      {30, "RS", "Record separator"},
      {31, "US", "Unit separator"},
      {127, "DEL", "Delete"},
  }};
  return symbols;
}

void Insert_Symbol(std::u16string& text, Caret& box, std::string_view name) {
  const auto size = static_cast<int>(text.size());
  const int start = std::clamp(box.SelStart, 0, size);
  const int length = std::clamp(box.SelLength, 0, size - start);
  const std::u16string symbol = u"[" + from_latin1(name) + u"]";
  text.replace(static_cast<std::size_t>(start), static_cast<std::size_t>(length), symbol);
  box = {.SelStart = start + static_cast<int>(symbol.size()), .SelLength = 0, .focus_wanted = true};
}

}  // namespace orvex
