#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace orvex {

/// The scanner's parameters under the names of their tags, in the order in which they are written.
enum class Field {
  RSBAUD,
  RSPRTY,
  RSBITS,
  RSSTOP,
  RSDELY,
  RSCTSE,
  SPVOLU,
  PREFIX,
  PRECID,
  SUFFIX,
  SUFFCR,
  CD39EN,
  CD39SS,
  CD128E,
  PDF417,
  MAG1EN,
  MAG2EN,
  MAG3EN,
  MAGLRC,
  MAGRAW,
  NOREAD,
  POWSET,
  SPPOWB,
  SPPARA,
  SERIEN
};
inline constexpr std::size_t field_count = 25;

/// One value of a choice field: its text in a tag, and its option button.
struct Choice {
  std::string_view value;
  int option;  ///< number of the button: 8 for Option8
  std::string_view caption;
};

/// One parameter. A text field has no choices.
struct Parameter {
  Field field;
  std::string_view name;
  std::span<const Choice> choices;
  std::size_t initial;        ///< position in `choices` at the start of the tool
  std::string_view frame;     ///< name of its frame in `frames`
  std::string_view text_box;  ///< name of a text field's box
  int most_typed;             ///< characters that a user can type into it

  bool is_text() const { return choices.empty(); }
};

/// A frame on a tab, with its place in a grid of the tab or of the frame around it.
struct FrameLayout {
  std::string_view name;
  std::string_view caption;
  int tab;
  std::string_view inside;  ///< name of the frame around it, empty if it lies on the tab
  int row;
  int column;
  int row_span;
  int option_columns;  ///< columns in which its option buttons stand
};

inline constexpr std::array<std::string_view, 9> tab_captions{
    " Revision Numbers", "Power Saving", "RS232",          "Speaker Volume", "Prefix", "Suffix",
    "Linear Codes",      "PDF417",       "Magnetic Stripe"};

/// All 25 parameters, in the order of Field.
const std::array<Parameter, field_count>& parameters();
inline const Parameter& parameter(Field field) {
  return parameters()[static_cast<std::size_t>(field)];
}

/// All frames with parameters in them, and those around them, in the order of the Tab key; outer
/// frames come first.
std::span<const FrameLayout> frames();

}  // namespace orvex
