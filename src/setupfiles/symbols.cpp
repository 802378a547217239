#include "setupfiles/symbols.h"

#include <algorithm>

namespace orvex {

std::span<const ControlSymbol> control_symbols() {
  static constexpr std::array<ControlSymbol, 33> symbols{{
      {0, "NUL"},  {1, "SOH"},  {2, "STX"},  {3, "ETX"},  {4, "EOT"},   {5, "ENQ"},  {6, "ACK"},
      {7, "BEL"},  {8, "BS"},   {9, "HT"},   {10, "LF"},  {11, "VT"},   {12, "FF"},  {13, "CR"},
      {14, "SO"},  {15, "SI"},  {16, "DLE"}, {17, "DC1"}, {18, "DC2"},  {19, "DC3"}, {20, "DC4"},
      {21, "NAK"}, {22, "SYN"}, {23, "ETB"}, {24, "CAN"}, {25, "EM"},   {26, "SUB"}, {27, "ESC"},
      {28, "FS"},  {29, "GS"},  {30, "RS"},  {31, "US"},  {127, "DEL"},
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
