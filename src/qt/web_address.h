#pragma once

#include <QUrl>
#include <optional>
#include <string_view>

namespace orvex {

/// The address in a text of a scanner, for the desktop's browser. One without a scheme is http.
/// None if the text names another scheme or holds blanks, control or 8-bit characters between its
/// ends: a scanner can't have the desktop open a file or start a program.
std::optional<QUrl> web_address(std::string_view text);

}  // namespace orvex
