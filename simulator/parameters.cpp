#include "simulator/parameters.h"

#include <algorithm>
#include <array>

namespace orvex::simulator {
namespace {

/// A parameter of the scanner. Its values stand between blanks; the first is the factory's. A
/// parameter without values takes any text, or only digits.
struct Row {
  std::string_view name;
  std::string_view values;
  bool digits = false;
};

constexpr std::array<Row, 25> rows{{
    {"RSBAUD", "9600 1200 2400 4800 19200 38400 57600 115200"},
    {"RSPRTY", "NONE ODD EVEN"},
    {"RSBITS", "8 7"},
    {"RSSTOP", "1 2"},
    {"RSDELY", "", true},
    {"RSCTSE", "0 1"},
    {"SPVOLU", "HIGH OFF LOW MEDIUM"},
    {"PREFIX", ""},
    {"PRECID", "0 1"},
    {"SUFFIX", ""},
    {"SUFFCR", "1 0"},
    {"CD39EN", "1 0"},
    {"CD39SS", "0 1"},
    {"CD128E", "1 0"},
    {"PDF417", "1 0"},
    {"MAG1EN", "1 0"},
    {"MAG2EN", "1 0"},
    {"MAG3EN", "1 0"},
    {"MAGLRC", "0 1"},
    {"MAGRAW", "0 1"},
    {"NOREAD", "0 1"},
    {"POWSET", "0 1"},
    {"SPPOWB", "1 0"},
    {"SPPARA", "1 0"},
    {"SERIEN", "0 1"},
}};

/// The parameter whose set tag begins here, if there is one.
const Row* row_at(std::string_view tags) {
  if (tags.size() < 9 || tags[0] != '<' || tags[7] != '=') return nullptr;
  const auto row = std::ranges::find(rows, tags.substr(1, 6), &Row::name);
  return row == rows.end() ? nullptr : &*row;
}

/// Bytes of the tag at the head of `tags`; a text may hold any character, also ">".
std::size_t tag_size(std::string_view tags) {
  for (auto end = tags.find('>'); end != std::string_view::npos; end = tags.find('>', end + 1)) {
    const auto behind = tags.substr(end + 1);
    if (behind.empty() || row_at(behind) != nullptr) return end + 1;
  }
  return 0;
}

bool takes(const Row& row, std::string_view value) {
  if (row.digits) return value.find_first_not_of("0123456789") == std::string_view::npos;
  if (row.values.empty()) return true;
  const std::string word = " " + std::string(value) + " ";
  const std::string all = " " + std::string(row.values) + " ";
  return value.find(' ') == std::string_view::npos && all.find(word) != std::string::npos;
}

}  // namespace

Parameters::Parameters() {
  for (const auto& row : rows) {
    values_.emplace(row.name, row.values.substr(0, row.values.find(' ')));
  }
}

bool Parameters::apply(std::string_view tags) {
  auto changed = values_;
  while (!tags.empty()) {
    const Row* row = row_at(tags);
    const std::size_t size = row != nullptr ? tag_size(tags) : 0;
    if (size == 0) return false;
    const auto value = tags.substr(8, size - 9);
    if (!takes(*row, value)) return false;
    changed.find(row->name)->second = value;
    tags.remove_prefix(size);
  }
  values_ = std::move(changed);
  return true;
}

std::string Parameters::frames() const {
  std::string text;
  for (const auto& row : rows) {
    text += "\x01<" + std::string(row.name) + "=" + (*this)[row.name] + ">\x04";
  }
  return text;
}

}  // namespace orvex::simulator
