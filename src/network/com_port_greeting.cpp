#include "network/com_port_greeting.h"

namespace orvex {
namespace {

using telnet_option::binary;
using telnet_option::com_port_control;
using telnet_option::suppress_go_ahead;

constexpr std::string_view knows_not = "the server doesn't know RFC 2217";
constexpr std::string_view passes_not = "the server doesn't pass all bytes";

}  // namespace

std::string ComPortGreeting::wishes() {
  std::string words = telnet_settlement(TelnetVerb::will, com_port_control);
  for (const std::uint8_t option : {binary, suppress_go_ahead}) {
    words += telnet_settlement(TelnetVerb::will, option);
    words += telnet_settlement(TelnetVerb::doing, option);
  }
  return words;
}

std::string ComPortGreeting::answer_to(TelnetVerb verb, std::uint8_t option) {
  const bool is_com_port = option == com_port_control;
  const bool is_wish = is_com_port || option == binary || option == suppress_go_ahead;
  switch (verb) {
    case TelnetVerb::doing:
      knows_com_port_ = knows_com_port_ || is_com_port;
      takes_all_bytes_ = takes_all_bytes_ || option == binary;
      return is_wish ? std::string{} : once(TelnetVerb::wont, option);
    case TelnetVerb::will:
      knows_com_port_ = knows_com_port_ || is_com_port;
      gives_all_bytes_ = gives_all_bytes_ || option == binary;
      if (is_com_port) return once(TelnetVerb::doing, option);
      return is_wish ? std::string{} : once(TelnetVerb::dont, option);
    case TelnetVerb::dont:
      if (is_com_port) refusal_ = knows_not;
      [[fallthrough]];
    case TelnetVerb::wont:
      if (option == binary) refusal_ = passes_not;
  }
  return {};
}

std::string_view ComPortGreeting::missing() const {
  return knows_com_port_ ? passes_not : knows_not;
}

std::string ComPortGreeting::once(TelnetVerb verb, std::uint8_t option) {
  constexpr std::size_t options = 256;
  const auto first = static_cast<std::size_t>(TelnetVerb::will);
  auto said = said_[(static_cast<std::size_t>(verb) - first) * options + option];
  if (said) return {};
  said = true;
  return telnet_settlement(verb, option);
}

}  // namespace orvex
