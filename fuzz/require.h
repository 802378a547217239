#pragma once

#include <cstdio>
#include <cstdlib>

namespace orvex::fuzz {

/// Ends the run as a finding where an invariant doesn't hold.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

}  // namespace orvex::fuzz
