#include "network/telnet.h"

#include <utility>

namespace orvex {
namespace {

constexpr std::uint8_t end_of_subnegotiation = 240;
constexpr std::uint8_t subnegotiation = 250;
constexpr std::uint8_t interpret_as_command = 255;
constexpr char iac = static_cast<char>(interpret_as_command);

}  // namespace

void TelnetDecoder::feed(std::string_view bytes, Handler& handler) {
  while (!bytes.empty()) {
    if (place_ != Place::data) {
      take(bytes.front(), handler);
      bytes.remove_prefix(1);
      continue;
    }
    const std::size_t plain = bytes.find(iac);
    if (plain != 0) handler.on_data(bytes.substr(0, plain));
    if (plain == std::string_view::npos) return;
    place_ = Place::command;
    bytes.remove_prefix(plain + 1);
  }
}

void TelnetDecoder::take(char byte, Handler& handler) {
  switch (place_) {
    case Place::data:
    case Place::command:
      return take_command(static_cast<std::uint8_t>(byte), handler);
    case Place::option:
      place_ = Place::data;
      return handler.on_settlement(verb_, static_cast<std::uint8_t>(byte));
    case Place::sub_option:
      option_ = static_cast<std::uint8_t>(byte);
      content_.clear();
      too_long_ = false;
      place_ = Place::sub_content;
      return;
    case Place::sub_content:
      if (byte != iac) return take_in_subnegotiation(byte);
      place_ = Place::sub_command;
      return;
    case Place::sub_command:
      place_ = Place::sub_content;
      if (byte == iac) return take_in_subnegotiation(byte);
      place_ = Place::data;
      if (static_cast<std::uint8_t>(byte) != end_of_subnegotiation) {
        // It was broken off by the command that begins here.
        return take_command(static_cast<std::uint8_t>(byte), handler);
      }
      if (!too_long_) handler.on_subnegotiation(option_, std::exchange(content_, {}));
      return;
  }
}

void TelnetDecoder::take_command(std::uint8_t byte, Handler& handler) {
  place_ = Place::data;
  if (byte == interpret_as_command) {
    handler.on_data({&iac, 1});
  } else if (byte == subnegotiation) {
    place_ = Place::sub_option;
  } else if (byte > subnegotiation) {
    verb_ = static_cast<TelnetVerb>(byte);
    place_ = Place::option;
  }
  // All other commands are for terminals.
}

void TelnetDecoder::take_in_subnegotiation(char byte) {
  too_long_ = too_long_ || content_.size() == most_in_subnegotiation;
  if (!too_long_) content_ += byte;
}

std::string telnet_data(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  for (const char byte : bytes) {
    out += byte;
    if (byte == iac) out += iac;
  }
  return out;
}

std::string telnet_settlement(TelnetVerb verb, std::uint8_t option) {
  return {iac, static_cast<char>(verb), static_cast<char>(option)};
}

std::string telnet_subnegotiation(std::uint8_t option, std::string_view content) {
  return std::string{iac, static_cast<char>(subnegotiation), static_cast<char>(option)} +
         telnet_data(content) + iac + static_cast<char>(end_of_subnegotiation);
}

}  // namespace orvex
