#pragma once

#include <cstdint>
#include <string>

#include "link/scanner_link.h"

namespace orvex {

/// Asks the scanner for the revision of its Application 1 and warns before an image that is older,
/// revisions being compared as the numbers that all their digits make. Gives 1 to go on, 0 where
/// the query failed, the user left Form3 meanwhile or turned the warning down. Throws a type
/// mismatch if a revision is no number.
std::int16_t Check_Rev(ScannerLink& link);

/// The number that all digits of a revision make, as 321 for "3.21". Throws a type mismatch where
/// they make none.
double number_of_digits(std::string revision);

/// Moves the line to 115200 Bps if the menu's mark asks for it. Gives 1 when the load can go on
/// and 0 when the scanner didn't acknowledge the change. May throw RunTimeError.
std::int16_t Fast_Load(ScannerLink& link);

/// The way back from a fast load: tells the scanner its old rate and sets the port to its old
/// settings. Does nothing if none are saved.
void undo_fast_load(ScannerLink& link);

}  // namespace orvex
