#include "setup/catalogue.h"

namespace orvex {
namespace {

// One line a value keeps the table readable.
// clang-format off
constexpr Choice RSBAUD[]{{"1200", 8, "1200 Bps"},    {"2400", 9, "2400 Bps"},
                          {"4800", 10, "4800 Bps"},   {"9600", 11, "9600 Bps"},
                          {"19200", 12, "19200 Bps"}, {"38400", 13, "38400 Bps"},
                          {"57600", 14, "57600 Bps"}, {"115200", 15, "115200 Bps"}};
constexpr Choice RSPRTY[]{{"NONE", 5, "None"}, {"ODD", 6, "Odd"}, {"EVEN", 7, "Even"}};
constexpr Choice RSBITS[]{{"8", 1, "8 Bits"}, {"7", 2, "7 Bits"}};
constexpr Choice RSSTOP[]{{"1", 3, "1 Bit"}, {"2", 4, "2 Bits"}};
constexpr Choice RSCTSE[]{{"0", 43, "Disable"}, {"1", 42, "Enable"}};
constexpr Choice SPVOLU[]{{"OFF", 22, "Off"}, {"LOW", 23, "Low"},
                          {"MEDIUM", 24, "Medium"}, {"HIGH", 25, "High"}};
constexpr Choice PRECID[]{{"0", 39, "Disable"}, {"1", 38, "Enable"}};
constexpr Choice SUFFCR[]{{"0", 29, "Disable"}, {"1", 28, "Enable"}};
constexpr Choice CD39EN[]{{"0", 31, "Disable"}, {"1", 30, "Enable"}};
constexpr Choice CD39SS[]{{"0", 33, "Hide"}, {"1", 32, "Send"}};
constexpr Choice CD128E[]{{"0", 35, "Disable"}, {"1", 34, "Enable"}};
constexpr Choice PDF417[]{{"0", 37, "Disable"}, {"1", 36, "Enable"}};
constexpr Choice MAG1EN[]{{"0", 17, "Disable"}, {"1", 16, "Enable"}};
constexpr Choice MAG2EN[]{{"0", 19, "Disable"}, {"1", 18, "Enable"}};
constexpr Choice MAG3EN[]{{"0", 21, "Disable"}, {"1", 20, "Enable"}};
constexpr Choice MAGLRC[]{{"0", 47, "Disable"}, {"1", 46, "Enable"}};
constexpr Choice MAGRAW[]{{"0", 55, "Disable"}, {"1", 54, "Enable"}};
constexpr Choice NOREAD[]{{"0", 45, "Disable"}, {"1", 44, "Enable"}};
constexpr Choice POWSET[]{{"0", 27, "Disable"}, {"1", 26, "Enable"}};
constexpr Choice SPPOWB[]{{"0", 40, "Off"}, {"1", 41, "On"}};
constexpr Choice SPPARA[]{{"0", 48, "Off"}, {"1", 49, "On"}};
constexpr Choice SERIEN[]{{"0", 51, "Disable"}, {"1", 50, "Enable"}};

constexpr std::array<Parameter, field_count> table{{
    {Field::RSBAUD, "RSBAUD", RSBAUD, 3, "Frame4", "", 0},
    {Field::RSPRTY, "RSPRTY", RSPRTY, 0, "Frame3", "", 0},
    {Field::RSBITS, "RSBITS", RSBITS, 0, "Frame1", "", 0},
    {Field::RSSTOP, "RSSTOP", RSSTOP, 0, "Frame2", "", 0},
    {Field::RSDELY, "RSDELY", {},     0, "Frame9", "Text10", 3},
    {Field::RSCTSE, "RSCTSE", RSCTSE, 0, "Frame20", "", 0},
    {Field::SPVOLU, "SPVOLU", SPVOLU, 2, "Frame10", "", 0},
    {Field::PREFIX, "PREFIX", {},     0, "Frame5", "Text2", 40},
    {Field::PRECID, "PRECID", PRECID, 0, "Frame6", "", 0},
    {Field::SUFFIX, "SUFFIX", {},     0, "Frame7", "Text3", 40},
    {Field::SUFFCR, "SUFFCR", SUFFCR, 0, "Frame8", "", 0},
    {Field::CD39EN, "CD39EN", CD39EN, 0, "Frame11", "", 0},
    {Field::CD39SS, "CD39SS", CD39SS, 0, "Frame12", "", 0},
    {Field::CD128E, "CD128E", CD128E, 0, "Frame13", "", 0},
    {Field::PDF417, "PDF417", PDF417, 1, "Frame14", "", 0},
    {Field::MAG1EN, "MAG1EN", MAG1EN, 1, "Frame15", "", 0},
    {Field::MAG2EN, "MAG2EN", MAG2EN, 1, "Frame16", "", 0},
    {Field::MAG3EN, "MAG3EN", MAG3EN, 1, "Frame17", "", 0},
    {Field::MAGLRC, "MAGLRC", MAGLRC, 0, "Frame22", "", 0},
    {Field::MAGRAW, "MAGRAW", MAGRAW, 0, "Frame29", "", 0},
    {Field::NOREAD, "NOREAD", NOREAD, 0, "Frame21", "", 0},
    {Field::POWSET, "POWSET", POWSET, 0, "Frame18", "", 0},
    {Field::SPPOWB, "SPPOWB", SPPOWB, 1, "Frame19", "", 0},
    {Field::SPPARA, "SPPARA", SPPARA, 1, "Frame23", "", 0},
    {Field::SERIEN, "SERIEN", SERIEN, 0, "Frame25", "", 0},
}};

constexpr FrameLayout layout[]{
    // name, caption, tab, inside, row, column, row span, option columns
    {"Frame18", "Power Saving Mode",              1, "",        0, 0, 1, 1},
    {"Frame4",  "Baud Rate",                      2, "",        0, 0, 2, 2},
    {"Frame1",  "Data Bits",                      2, "",        0, 1, 1, 2},
    {"Frame2",  "Stop Bits",                      2, "",        1, 1, 1, 2},
    {"Frame3",  "Parity Bits",                    2, "",        2, 0, 1, 3},
    {"Frame20", "CTS / RTS",                      2, "",        2, 1, 1, 2},
    {"Frame9",  "Character Delay",                2, "",        3, 0, 1, 1},
    {"Frame10", "Speaker Volume",                 3, "",        0, 0, 2, 1},
    {"Frame19", "Start-Up Beeps",                 3, "",        0, 1, 1, 1},
    {"Frame23", "Parameter Beeps",                3, "",        1, 1, 1, 1},
    {"Frame5",  "Prefix (Maximum 10 Characters)", 4, "",        0, 0, 1, 1},
    {"Frame6",  "Add Code Identifier to Prefix",  4, "",        1, 0, 1, 2},
    {"Frame25", "(Serial Number) Add to Stream",  4, "",        2, 0, 1, 2},
    {"Frame7",  "Suffix (Maximum 10 Characters)", 5, "",        0, 0, 1, 1},
    {"Frame8",  "Add CR to Suffix",               5, "",        1, 0, 1, 2},
    {"Frame11", "Code 39",                        6, "",        0, 0, 1, 2},
    {"Frame12", "Code 39 Start/Stop Char",        6, "Frame11", 1, 0, 1, 2},
    {"Frame13", "Code 128",                       6, "",        1, 0, 1, 2},
    {"Frame14", "PDF417",                         7, "",        0, 0, 1, 2},
    {"Frame21", "No-Read Message",                7, "",        1, 0, 1, 2},
    {"Frame28", "Track Setting",                  8, "",        0, 0, 2, 1},
    {"Frame15", "Magnetic Track 1",               8, "Frame28", 0, 0, 1, 2},
    {"Frame16", "Magnetic Track 2",               8, "Frame28", 1, 0, 1, 2},
    {"Frame17", "Magnetic Track 3",               8, "Frame28", 2, 0, 1, 2},
    {"Frame22", "LRC",                            8, "",        0, 1, 1, 2},
    {"Frame24", "Raw Data Mode",                  8, "",        1, 1, 1, 1},
    {"Frame29", "Add Code Identifier to Stream",  8, "Frame24", 0, 0, 1, 2},
};
// clang-format on

}  // namespace

const std::array<Parameter, field_count>& parameters() {
  return table;
}

std::span<const FrameLayout> frames() {
  return layout;
}

}  // namespace orvex
