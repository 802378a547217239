#pragma once

#include "program/program.h"
#include "qt/page.h"
#include "qt/qt_windows.h"

namespace orvex {

/// Adds the button "CTRL CH" and the picker that it opens to the page of the prefix or the suffix.
/// In the order of the Tab key they come right after the text box that they serve.
void add_prefix_picker(QtWindows& windows, Program& program, Page& page);
void add_suffix_picker(QtWindows& windows, Program& program, Page& page);

}  // namespace orvex
