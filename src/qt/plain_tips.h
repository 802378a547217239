#pragma once

#include <QObject>
#include <QString>

namespace orvex {

/// While it lives, all tool tips of the application are plain text, those of lists and dialogs
/// included. Left alone, the toolkit reads a tip that looks like markup as such, and a tip may hold
/// what another user put into the name of a device.
class PlainTips final : public QObject {
 public:
  /// A QApplication must exist.
  PlainTips();

  bool eventFilter(QObject* watched, QEvent* event) override;
};

/// A text of any length as a tip: at most 1,000 characters in lines of 60, and an ellipsis for what
/// is left out. Line ends and control characters are blanks.
QString tip_of(const QString& text);

}  // namespace orvex
