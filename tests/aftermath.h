#pragma once

#include <string>

#include "testing/virtual/desk.h"

namespace orvex::testing {

/// What a job leaves behind: the text of panel 2, or "-" where it is empty, then what else there
/// is: "record" where the record differs from `before`, "closed" for the port.
std::string left_behind(Desk& desk, const ScannerSetup& before);

/// Puts scanner and line right, and tells whether a scan and a receive then succeed and bring the
/// scanner's setup into the record. A scanner that still takes a file is restarted first.
bool recovers(Desk& desk);

}  // namespace orvex::testing
