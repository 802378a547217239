#pragma once

#include <string>
#include <vector>

#include "setup/catalogue.h"

namespace orvex::testing {

struct ListedValue {
  const char* text;  ///< as its tag has it
  int option;        ///< number of its option button
  const char* caption;
};

/// A parameter as it is written down for people. The catalogue that the program works by, its tags,
/// files and windows are held against this.
struct ListedParameter {
  const char* name;
  std::vector<ListedValue> values;  ///< none of a text
  std::string initial;
  const char* frame;
  const char* frame_caption;
  int tab;
  const char* text_box = "";
  int most_typed = 0;

  std::string tag(const std::string& value) const {
    return "<" + std::string(name) + "=" + value + ">";
  }
};

/// In the order in which they are written.
inline const std::vector<ListedParameter>& parameter_table() {
  // clang-format off
  static const std::vector<ListedParameter> table{
      {"RSBAUD", {{"1200", 8, "1200 Bps"}, {"2400", 9, "2400 Bps"}, {"4800", 10, "4800 Bps"},
                  {"9600", 11, "9600 Bps"}, {"19200", 12, "19200 Bps"}, {"38400", 13, "38400 Bps"},
                  {"57600", 14, "57600 Bps"}, {"115200", 15, "115200 Bps"}},
       "9600", "Frame4", "Baud Rate", 2},
      {"RSPRTY", {{"NONE", 5, "None"}, {"ODD", 6, "Odd"}, {"EVEN", 7, "Even"}},
       "NONE", "Frame3", "Parity Bits", 2},
      {"RSBITS", {{"8", 1, "8 Bits"}, {"7", 2, "7 Bits"}}, "8", "Frame1", "Data Bits", 2},
      {"RSSTOP", {{"1", 3, "1 Bit"}, {"2", 4, "2 Bits"}}, "1", "Frame2", "Stop Bits", 2},
      {"RSDELY", {}, "", "Frame9", "Character Delay", 2, "Text10", 3},
      {"RSCTSE", {{"0", 43, "Disable"}, {"1", 42, "Enable"}}, "0", "Frame20", "CTS / RTS", 2},
      {"SPVOLU", {{"OFF", 22, "Off"}, {"LOW", 23, "Low"}, {"MEDIUM", 24, "Medium"}, {"HIGH", 25, "High"}},
       "MEDIUM", "Frame10", "Speaker Volume", 3},
      {"PREFIX", {}, "", "Frame5", "Prefix (Maximum 10 Characters)", 4, "Text2", 40},
      {"PRECID", {{"0", 39, "Disable"}, {"1", 38, "Enable"}}, "0", "Frame6", "Add Code Identifier to Prefix", 4},
      {"SUFFIX", {}, "", "Frame7", "Suffix (Maximum 10 Characters)", 5, "Text3", 40},
      {"SUFFCR", {{"0", 29, "Disable"}, {"1", 28, "Enable"}}, "0", "Frame8", "Add CR to Suffix", 5},
      {"CD39EN", {{"0", 31, "Disable"}, {"1", 30, "Enable"}}, "0", "Frame11", "Code 39", 6},
      {"CD39SS", {{"0", 33, "Hide"}, {"1", 32, "Send"}}, "0", "Frame12", "Code 39 Start/Stop Char", 6},
      {"CD128E", {{"0", 35, "Disable"}, {"1", 34, "Enable"}}, "0", "Frame13", "Code 128", 6},
      {"PDF417", {{"0", 37, "Disable"}, {"1", 36, "Enable"}}, "1", "Frame14", "PDF417", 7},
      {"MAG1EN", {{"0", 17, "Disable"}, {"1", 16, "Enable"}}, "1", "Frame15", "Magnetic Track 1", 8},
      {"MAG2EN", {{"0", 19, "Disable"}, {"1", 18, "Enable"}}, "1", "Frame16", "Magnetic Track 2", 8},
      {"MAG3EN", {{"0", 21, "Disable"}, {"1", 20, "Enable"}}, "1", "Frame17", "Magnetic Track 3", 8},
      {"MAGLRC", {{"0", 47, "Disable"}, {"1", 46, "Enable"}}, "0", "Frame22", "LRC", 8},
      {"MAGRAW", {{"0", 55, "Disable"}, {"1", 54, "Enable"}}, "0", "Frame29", "Add Code Identifier to Stream", 8},
      {"NOREAD", {{"0", 45, "Disable"}, {"1", 44, "Enable"}}, "0", "Frame21", "No-Read Message", 7},
      {"POWSET", {{"0", 27, "Disable"}, {"1", 26, "Enable"}}, "0", "Frame18", "Power Saving Mode", 1},
      {"SPPOWB", {{"0", 40, "Off"}, {"1", 41, "On"}}, "1", "Frame19", "Start-Up Beeps", 3},
      {"SPPARA", {{"0", 48, "Off"}, {"1", 49, "On"}}, "1", "Frame23", "Parameter Beeps", 3},
      {"SERIEN", {{"0", 51, "Disable"}, {"1", 50, "Enable"}}, "0", "Frame25", "(Serial Number) Add to Stream", 4},
  };
  // clang-format on
  return table;
}

}  // namespace orvex::testing
