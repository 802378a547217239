#include "base/network_address.h"

#include <algorithm>
#include <charconv>

namespace orvex {
namespace {

constexpr std::string_view scheme = "rfc2217:";
constexpr std::size_t longest_host = 253;  // RFC 1035 leaves so much of its 255
constexpr std::string_view hex_digits = "0123456789abcdefABCDEF";
constexpr std::string_view letters_and_digits =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

bool consists_of(std::string_view text, std::string_view some, std::string_view others) {
  return !text.empty() && text.size() <= longest_host && std::ranges::all_of(text, [&](char c) {
    return some.find(c) != std::string_view::npos || others.find(c) != std::string_view::npos;
  });
}

bool is_host(std::string_view text) {
  return consists_of(text, letters_and_digits, "-._");
}

bool is_address(std::string_view text) {
  const std::size_t zone = text.find('%');
  if (zone != std::string_view::npos && !is_host(text.substr(zone + 1))) return false;
  text = text.substr(0, zone);
  return consists_of(text, hex_digits, ":.") && text.find(':') != std::string_view::npos;
}

std::optional<std::uint16_t> port_of(std::string_view text) {
  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc{} || end != text.data() + text.size() || port == 0) return std::nullopt;
  return port;
}

}  // namespace

bool is_network_name(std::string_view name) {
  return name.starts_with(scheme);
}

std::optional<NetworkAddress> parse_network_address(std::string_view name) {
  if (!is_network_name(name)) return std::nullopt;
  name.remove_prefix(scheme.size());
  if (!name.starts_with("//")) return std::nullopt;
  name.remove_prefix(2);
  if (name.ends_with('/')) name.remove_suffix(1);

  const bool bracketed = name.starts_with('[');
  const std::size_t host_end = bracketed ? name.find(']') : name.find(':');
  const std::string_view host = name.substr(bracketed ? 1 : 0, host_end - (bracketed ? 1 : 0));
  if (bracketed && host_end == std::string_view::npos) return std::nullopt;
  if (!(bracketed ? is_address(host) : is_host(host))) return std::nullopt;

  NetworkAddress address{.host = std::string(host)};
  if (host_end == std::string_view::npos) return address;
  name.remove_prefix(host_end + (bracketed ? 1 : 0));
  if (name.empty()) return address;
  const auto port = name.front() == ':' ? port_of(name.substr(1)) : std::nullopt;
  if (!port) return std::nullopt;
  address.port = *port;
  return address;
}

}  // namespace orvex
