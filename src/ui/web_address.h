#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvex {

/// The http or https address that a scanner's text stands for. White space around it is dropped,
/// and a text without a scheme is an http address. None for any other scheme, for a text with white
/// space, control or 8-bit characters inside, and for an empty one: a scanner can't make the
/// desktop open a file or start a program.
std::optional<std::string> web_address(std::string_view text);

}  // namespace orvex
