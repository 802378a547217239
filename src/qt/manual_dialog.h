#pragma once

#include <QDialog>
#include <span>

#include "program/program.h"
#include "qt/qt_windows.h"

class QFormLayout;

namespace orvex {

/// Form4 on the screen: the manual port dialog.
class ManualDialog final : public QDialog {
 public:
  ManualDialog(QtWindows& windows, Program& program, QWidget* parent);

  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void add_combo(QFormLayout& form, const char* name, const char* caption,
                 std::span<const char* const> list, ComboBox& record);
  /// The device behind each entry of Combo1.
  void add_port_tips();
  void add_button(QLayout& row, const char* name, const char* caption, void (Program::*click)());
  void show_as(bool visible);

  QtWindows& windows_;
  Program& program_;
  bool placed_ = false;
};

}  // namespace orvex
