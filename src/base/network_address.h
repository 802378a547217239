#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvex {

/// A serial port in the network: a host name or address, without brackets, and the TCP port of its
/// server.
struct NetworkAddress {
  std::string host;
  std::uint16_t port = 2217;

  bool operator==(const NetworkAddress&) const = default;
};

/// True where a name is meant as that of a port in the network, well-formed or not.
bool is_network_name(std::string_view name);

/// Reads rfc2217://HOST, rfc2217://HOST:PORT or rfc2217://[IPV6]:PORT, with a slash at the end or
/// without. A host has at most 253 characters: letters, digits, and "-", "." and "_"; within
/// brackets hexadecimal digits, ":" and ".", and a zone behind "%". None where it is anything else.
std::optional<NetworkAddress> parse_network_address(std::string_view name);

}  // namespace orvex
