#pragma once

#include <QMenuBar>

#include "program/program.h"
#include "qt/qt_windows.h"

namespace orvex {

/// Fills the menu bar of the main window.
void add_menus(QtWindows& windows, Program& program, QMenuBar& bar);

}  // namespace orvex
