#pragma once

#include <functional>
#include <string_view>

#include "setup/scanner_setup.h"

namespace orvex {

/// Takes one tag into the setup. A tag that isn't known, or whose value isn't listed, changes
/// nothing.
void Apply_Tag(ScannerSetup& setup, std::string_view tag);

/// Called inside a frame, in a long text now and then only, so that the window stays alive.
using KeepAlive = std::function<void()>;

/// Takes each frame SOH tag EOT of the text into the setup, in their order. Characters between
/// frames, a frame without its EOT and a tag of more than 32,767 characters change nothing.
void Apply_Stream(ScannerSetup& setup, std::string_view text, const KeepAlive& keep_alive);

/// The same for a scanner's reply, which has at most 32,767 characters and ends no frame without
/// its EOT; otherwise an overflow is thrown after the frames that end before that point.
void apply_reply(ScannerSetup& setup, std::string_view reply, const KeepAlive& keep_alive);

}  // namespace orvex
