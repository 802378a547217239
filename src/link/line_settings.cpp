#include "link/line_settings.h"

#include <array>
#include <utility>
#include <vector>

#include "base/number.h"

namespace orvex {
namespace {

template <typename Value>
using Word = std::pair<std::string_view, Value>;

constexpr std::array<Word<int>, 8> rates{{{"1200", 1200},
                                          {"2400", 2400},
                                          {"4800", 4800},
                                          {"9600", 9600},
                                          {"19200", 19200},
                                          {"38400", 38400},
                                          {"57600", 57600},
                                          {"115200", 115200}}};
constexpr std::array<Word<Parity>, 6> parities{{{"n", Parity::none},
                                                {"N", Parity::none},
                                                {"o", Parity::odd},
                                                {"O", Parity::odd},
                                                {"e", Parity::even},
                                                {"E", Parity::even}}};
constexpr std::array<Word<int>, 2> data_bits{{{"8", 8}, {"7", 7}}};
constexpr std::array<Word<int>, 2> stop_bits{{{"1", 1}, {"2", 2}}};

std::vector<std::string_view> fields_of(std::string_view text) {
  std::vector<std::string_view> fields;
  while (true) {
    const auto comma = text.find(',');
    fields.push_back(trimmed(text.substr(0, comma)));
    if (comma == std::string_view::npos) return fields;
    text.remove_prefix(comma + 1);
  }
}

template <typename Value, std::size_t count>
std::optional<Value> value_of(std::string_view field, const std::array<Word<Value>, count>& words) {
  for (const auto& [word, value] : words) {
    if (word == field) return value;
  }
  return std::nullopt;
}

}  // namespace

std::optional<LineSettings> parse_settings(std::string_view text) {
  const auto fields = fields_of(text);
  if (fields.size() != 4) return std::nullopt;
  const auto rate = value_of(fields[0], rates);
  const auto parity = value_of(fields[1], parities);
  const auto data = value_of(fields[2], data_bits);
  const auto stop = value_of(fields[3], stop_bits);
  if (!rate || !parity || !data || !stop) return std::nullopt;
  return LineSettings{*rate, *parity, *data, *stop};
}

std::string without_blanks(std::string_view settings) {
  std::string text;
  for (const auto field : fields_of(settings)) {
    if (!text.empty()) text += ',';
    text += field;
  }
  return text;
}

}  // namespace orvex
