#include "qt/picker_button.h"

#include <QGridLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "qt/pictures.h"
#include "qt/symbol_picker.h"

namespace orvex {
namespace {

/// From the lower edge of a frame to that of a button level with the text box in it.
constexpr int below_button = 9;

struct Parts {
  const char* text_box;
  const char* button;
  const char* picker;
  const char* array;
  Panel& record;
  void (Program::*toggle)();
  void (Program::*pick)(int);
};

void add_picker(QtWindows& windows, Program& program, Page& page, const Parts& parts) {
  auto* button = new QPushButton(icon("control-char"), "CTRL CH");
  button->setObjectName(parts.button);
  button->setAccessibleDescription("Shows or hides the control characters");
  auto* picker = new SymbolPicker(parts.array, [&windows, &program, pick = parts.pick](int index) {
    windows.handle([&] { (program.*pick)(index); });
  });
  picker->setObjectName(parts.picker);
  auto* beside = new QVBoxLayout;
  beside->setContentsMargins(0, 0, 0, below_button);
  beside->addStretch();
  beside->addWidget(button);
  QGridLayout& grid = page.grid();
  const int below = grid.rowCount();
  grid.addLayout(beside, 0, 1);
  grid.addWidget(picker, below, 0, 1, 2, Qt::AlignLeft);
  grid.setColumnStretch(0, 1);
  QWidget::setTabOrder(page.findChild<QWidget*>(parts.text_box), button);
  picker->come_after(*button);
  QObject::connect(button, &QPushButton::clicked, &windows,
                   [&windows, &program, toggle = parts.toggle] {
                     windows.handle([&] { (program.*toggle)(); });
                   });
  windows.view.bind([&record = parts.record] { return record.Visible; },
                    [&page, picker](bool visible) {
                      picker->setVisible(visible);
                      if (visible) page.reveal(*picker);
                    });
}

}  // namespace

void add_prefix_picker(QtWindows& windows, Program& program, Page& page) {
  add_picker(windows, program, page,
             {"Text2", "cmdCtrlPre", "Symbol1", "CharList", program.forms.form1.Symbol1,
              &Program::cmdCtrlPre_Click, &Program::CharList_Click});
}

void add_suffix_picker(QtWindows& windows, Program& program, Page& page) {
  add_picker(windows, program, page,
             {"Text3", "cmdCtrlSuf", "Symbol2", "CharList2", program.forms.form1.Symbol2,
              &Program::cmdCtrlSuf_Click, &Program::CharList2_Click});
}

}  // namespace orvex
