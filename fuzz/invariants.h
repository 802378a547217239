#pragma once

#include "fuzz/require.h"
#include "link/frame.h"
#include "setup/apply.h"
#include "setup/scanner_setup.h"

namespace orvex::fuzz {

/// Each choice field holds a listed value, and what the setup writes it reads back.
inline void require_sound(const ScannerSetup& setup) {
  for (const Parameter& row : parameters()) {
    if (!row.is_text()) require(setup.choice(row.field) < row.choices.size(), "a listed value");
  }
  std::string text;
  const auto tags = Setup_Tag_List(setup);
  for (const auto& tag : tags) text += frame_of(tag);
  ScannerSetup copy;
  Apply_Stream(copy, text + "\r\n", [] {});
  require(Setup_Tag_List(copy) == tags, "a setup that reads back what it writes");
}

}  // namespace orvex::fuzz
