#pragma once

#include <QString>
#include <filesystem>
#include <optional>
#include <vector>

#include "window/window_system.h"

namespace orvex {

/// Title of the question that an image older than the scanner's firmware leads to.
inline constexpr std::string_view older_image_title = "WARNING";

/// Leaves a wait whose time is up. Thrown by a pump outside of handlers only.
struct TimeUp {};

/// The window system of a program without windows. Boxes are no dialogs here but outcomes, which
/// whoever has started a job looks at when it is over; file dialogs give the one file of the
/// command.
class Console : public WindowSystem {
 public:
  // What the jobs to come are answered.
  std::filesystem::path file;      ///< to their file dialogs
  bool allow_older = false;        ///< to the warning of an older image
  std::optional<Time> give_up_at;  ///< pumps throw TimeUp from then on

  /// The boxes that jobs have shown since they were cleared here.
  std::vector<MessageBox> boxes;
  /// The text of the last of them that told of an error; empty if there was none.
  QString last_error() const;
  /// True if a box of this title was among them.
  bool has_shown(std::string_view title) const;

  void pump(Wait wait) final;
  Answer MsgBox(const MessageBox& box) final;
  void dismiss_boxes(Owner /*owner*/) final {}
  std::optional<std::filesystem::path> show_open(const FileDialog& /*dialog*/) final;
  std::optional<std::filesystem::path> show_save(const FileDialog& /*dialog*/) final;
  int screen_width() const final { return 0; }
  int screen_height() const final { return 0; }
  void open_address(std::string_view /*text*/) final {}

  /// Tells the user something on the way.
  virtual void say(const QString& text) = 0;
  /// Shows how much of a transfer is done, or 0 of 0 that none runs any more.
  virtual void show_progress(double done, double total) = 0;
  /// True if there is somebody to ask.
  virtual bool can_ask() const = 0;
  /// Asks a question whose answer is yes or no. Throws Ended as pump() does.
  virtual bool ask(const QString& question) = 0;

 protected:
  /// As WindowSystem::pump().
  virtual void deliver(Wait wait) = 0;
  /// Throws Ended if the process is to end.
  virtual void require_running() const = 0;
};

}  // namespace orvex
