#include <windows.h>
// After windows.h.
#include <shlwapi.h>

#include <QStandardPaths>

#include "qt/habits.h"

namespace orvex {
namespace {

/// Where the toolkit has them, in the registry.
constexpr const char* toolkit = "QtProject";
constexpr const char* group = "FileDialog";

}  // namespace

/// The toolkit's style after the system's has no dark colours.
QString style_name() {
  return "Fusion";
}

/// A program starts in its own folder or in the system's.
QString first_folder() {
  return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

DialogNotes::DialogNotes() {
  QSettings notes(QSettings::UserScope, toolkit);
  notes.beginGroup(group);
  for (const QString& key : notes.allKeys()) before_[key] = notes.value(key);
}

DialogNotes::~DialogNotes() {
  {
    QSettings notes(QSettings::UserScope, toolkit);
    notes.remove(group);
    notes.beginGroup(group);
    for (auto note = before_.cbegin(); note != before_.cend(); ++note) {
      notes.setValue(note.key(), note.value());
    }
  }
  for (const wchar_t* key :
       {LR"(Software\QtProject\OrganizationDefaults)", LR"(Software\QtProject)"}) {
    ::SHDeleteEmptyKeyW(HKEY_CURRENT_USER, key);
  }
}

}  // namespace orvex
