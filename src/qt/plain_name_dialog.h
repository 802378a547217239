#pragma once

#include <QFileDialog>

#include "qt/habits.h"

class QLineEdit;

namespace orvex {

/// The toolkit's own file dialog, which takes one name as it stands in its box. The toolkit would
/// read double quotes as marks around each of several names.
class PlainNameDialog final : private DialogNotes, public QFileDialog {
 public:
  explicit PlainNameDialog(QWidget* parent);

  /// The whole path of what was accepted; empty if nothing was.
  QString chosen() const;

 protected:
  void accept() override;

 private:
  bool has_quotes() const;
  void keep_button_enabled();

  QLineEdit* name_;
  QString with_quotes_;
};

}  // namespace orvex
