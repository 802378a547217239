#pragma once

#include <QSettings>
#include <QString>
#include <QVariantMap>

/// What differs between the desktops of the systems: one source file for each of them.
namespace orvex {

/// Name of the style that the windows are drawn in; empty for the desktop's own.
QString style_name();

/// The folder in which the first file dialog starts.
QString first_folder();

/// Keeps the notes of the toolkit's file dialog from the user's settings. It must live longer than
/// the dialog, from before its making to after its end.
class DialogNotes {
 public:
  DialogNotes();
  ~DialogNotes();
  DialogNotes(const DialogNotes&) = delete;
  DialogNotes& operator=(const DialogNotes&) = delete;

 private:
  QVariantMap before_;  ///< those of the user's other programs, where they can't be kept apart
};

}  // namespace orvex
