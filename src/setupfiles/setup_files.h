#pragma once

#include "link/scanner_link.h"
#include "setup/scanner_setup.h"

namespace orvex {

/// Saves the setup, but for RSCTSE, under a name that the user chooses. A failure shows its box.
void mnusave_Click(WindowSystem& windows, const ScannerSetup& setup);

/// Takes a setup file that the user chooses into the setup. A failure shows its box.
void mnuopen_Click(WindowSystem& windows, ScannerSetup& setup);

/// The whole of the file at `path`, 256 MiB at most. Throws RunTimeError if it can't be read.
std::string read_setup_file(WindowSystem& windows, const std::filesystem::path& path);

/// The content of a setup file: 24 tags, each in a frame of its own.
std::string setup_file_text(const ScannerSetup& setup);

}  // namespace orvex
