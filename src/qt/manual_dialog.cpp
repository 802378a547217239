#include "qt/manual_dialog.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <utility>

#include "loop/text.h"
#include "qt/plain_tips.h"
#include "qt/screen_room.h"

namespace orvex {

ManualDialog::ManualDialog(QtWindows& windows, Program& program, QWidget* parent)
    : QDialog(parent), windows_(windows), program_(program) {
  setObjectName("Form4");
  setWindowTitle("Comm Port Settings");
  auto* column = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  column->addLayout(form);
  Form4& form4 = program.forms.form4;
  add_combo(*form, "Combo1", "Port", Combo1_list, form4.Combo1);
  add_combo(*form, "Combo2", "Baud rate", Combo2_list, form4.Combo2);
  add_combo(*form, "Combo3", "Parity", Combo3_list, form4.Combo3);
  auto* row = new QHBoxLayout;
  column->addLayout(row);
  add_button(*row, "Command1", "&Open Port", &Program::Form4_Command1_Click);
  add_button(*row, "Command2", "&Cancel", &Program::Form4_Command2_Click);
  setMinimumWidth(width_for_title(*this));
  add_port_tips();
  windows.view.bind([&form4] { return form4.Visible; }, [this](bool visible) { show_as(visible); });
}

void ManualDialog::reject() {
  close();
}

void ManualDialog::closeEvent(QCloseEvent* event) {
  if (windows_.ended()) return;
  event->ignore();
  windows_.handle([this] { program_.Form4_Close(); });
}

void ManualDialog::add_combo(QFormLayout& form, const char* name, const char* caption,
                             std::span<const char* const> list, ComboBox& record) {
  auto* combo = new QComboBox;
  combo->setObjectName(name);
  combo->setEditable(true);
  combo->setInsertPolicy(QComboBox::NoInsert);
  // Completion would turn a typed "none" into the item "NONE".
  combo->setCompleter(nullptr);
  for (const char* item : list) combo->addItem(item);
  combo->setAccessibleName(caption);
  combo->lineEdit()->setAccessibleName(caption);
  form.addRow(caption, combo);
  connect(combo, &QComboBox::editTextChanged, this, [this, combo, &record](const QString& text) {
    windows_.handle([&] {
      record.Text = from_qt(text);
      record.ListIndex = combo->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    });
  });
  windows_.view.bind([&record]() -> const std::string& { return record.Text; },
                     [combo](const std::string& text) {
                       if (combo->currentText() == to_qt(text)) return;
                       combo->setCurrentIndex(combo->findText(to_qt(text)));
                       combo->setEditText(to_qt(text));
                     });
}

void ManualDialog::add_port_tips() {
  auto* ports = findChild<QComboBox*>("Combo1");
  windows_.view.bind(
      [&form4 = program_.forms.form4] {
        return std::pair(form4.Combo1_tips, form4.Combo1.ListIndex);
      },
      [ports](const auto& state) {
        const auto& [tips, chosen] = state;
        for (int item = 0; item < ports->count(); ++item) {
          const std::string& path = tips.at(static_cast<std::size_t>(item));
          const QString tip =
              path.empty() ? QString("No device") : tip_of(QString::fromLocal8Bit(path.c_str()));
          ports->setItemData(item, tip, Qt::ToolTipRole);
          if (item == chosen) ports->setToolTip(tip);
        }
        if (chosen < 0) ports->setToolTip({});
      });
}

void ManualDialog::add_button(QLayout& row, const char* name, const char* caption,
                              void (Program::*click)()) {
  auto* button = new QPushButton(caption);
  button->setObjectName(name);
  row.addWidget(button);
  connect(button, &QPushButton::clicked, this, [&windows = windows_, &program = program_, click] {
    windows.handle([&] { (program.*click)(); });
  });
}

void ManualDialog::show_as(bool visible) {
  setWindowModality(Qt::ApplicationModal);
  if (!visible) {
    placed_ = program_.forms.form4.Loaded;  // one that was only hidden comes back where it was
  } else {
    if (!std::exchange(placed_, true)) {
      adjustSize();
      move(screen()->geometry().center() - rect().center());
    }
    findChild<QWidget*>("Combo1")->setFocus();
  }
  setVisible(visible);
}

}  // namespace orvex
