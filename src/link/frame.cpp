#include "link/frame.h"

#include <algorithm>

namespace orvex {

std::string frame_of(std::string_view text) {
  std::string frame;
  frame.reserve(text.size() + 2);
  frame += SOH;
  frame += text;
  frame += EOT;
  return frame;
}

bool is_query(std::string_view text) {
  const auto is_name_character = [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
  };
  return text.size() == 9 && text.starts_with('<') && text.ends_with(":>") &&
         std::ranges::all_of(text.substr(1, 6), is_name_character);
}

}  // namespace orvex
