#pragma once

#include <QGridLayout>
#include <QString>
#include <QWidget>
#include <map>
#include <string_view>

#include "program/program.h"
#include "qt/page.h"
#include "qt/qt_windows.h"
#include "setup/catalogue.h"

class QGroupBox;

namespace orvex {

/// The frames, option buttons and text boxes of the setup's tabs, as the catalogue lays them out.
class SetupTabs {
 public:
  /// `pages` are the nine pages of the tab control.
  SetupTabs(QtWindows& windows, Program& program, const std::vector<Page*>& pages);

 private:
  void add_frame(const FrameLayout& frame);
  void add_options(const Parameter& row);
  void add_text_box(const Parameter& row);
  void add_picture(const Parameter& row, std::size_t position, QGridLayout& grid, int grid_row);
  void set_tab_order();
  Caret& caret_of(Field field);

  QtWindows& windows_;
  Program& program_;
  const std::vector<Page*>& pages_;
  std::map<std::string_view, QGroupBox*> frames_;
};

}  // namespace orvex
