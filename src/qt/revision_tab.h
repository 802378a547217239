#pragma once

#include "program/program.h"
#include "qt/page.h"
#include "qt/qt_windows.h"

namespace orvex {

/// Fills the tab " Revision Numbers": what the scanner says of itself, and the web button.
void add_revision_tab(QtWindows& windows, Program& program, Page& page);

}  // namespace orvex
