#pragma once

namespace orvex {

/// Gives the application its style and its icon.
void set_look();

}  // namespace orvex
