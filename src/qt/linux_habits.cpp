#include <QDir>

#include "qt/habits.h"

namespace orvex {

QString style_name() {
  return {};
}

QString first_folder() {
  return QDir::currentPath();
}

/// In a folder that can't exist the dialog finds no notes and writes none.
DialogNotes::DialogNotes() {
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, "/dev/null");
}

DialogNotes::~DialogNotes() = default;

}  // namespace orvex
