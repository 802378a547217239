#include "qt/plain_name_dialog.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>

namespace orvex {

PlainNameDialog::PlainNameDialog(QWidget* parent) : QFileDialog(parent) {
  // Desktops' own dialogs add endings to names and ask questions of their own.
  setOption(QFileDialog::DontUseNativeDialog);
  name_ = findChild<QLineEdit*>("fileNameEdit");
  connect(name_, &QLineEdit::textChanged, this, &PlainNameDialog::keep_button_enabled);
}

QString PlainNameDialog::chosen() const {
  return with_quotes_.isEmpty() ? selectedFiles().value(0) : with_quotes_;
}

void PlainNameDialog::accept() {
  if (!has_quotes()) {
    QFileDialog::accept();
    return;
  }
  const QString path = directory().absoluteFilePath(name_->text());
  if (QFileInfo(path).isDir()) {
    setDirectory(path);
    name_->clear();
    return;
  }
  with_quotes_ = path;
  // Past the toolkit's own reading of the name. NOLINTNEXTLINE(bugprone-parent-virtual-call)
  QDialog::accept();
}

bool PlainNameDialog::has_quotes() const {
  return name_->text().contains('"');
}

void PlainNameDialog::keep_button_enabled() {
  // The toolkit looks for the file that it would take the name for.
  if (!has_quotes()) return;
  const auto which = acceptMode() == AcceptOpen ? QDialogButtonBox::Open : QDialogButtonBox::Save;
  auto* button = findChild<QDialogButtonBox*>("buttonBox")->button(which);
  if (button != nullptr) button->setEnabled(true);
}

}  // namespace orvex
