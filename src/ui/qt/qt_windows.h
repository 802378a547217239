#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "ui/qt/view.h"
#include "window/window_system.h"

class QFileDialog;

namespace orvex {

/// The window system on Qt. Every signal that leads into the tool goes through handle().
class QtWindows final : public QObject, public WindowSystem {
 public:
  QtWindows();

  Time now() const override;
  void pump(Wait wait) override;
  Answer MsgBox(const MessageBox& box) override;
  void dismiss_boxes(Owner owner) override;
  std::optional<std::filesystem::path> show_open(const FileDialog& dialog) override;
  std::optional<std::filesystem::path> show_save(const FileDialog& dialog) override;
  int screen_width() const override;
  int screen_height() const override;
  void schedule(Scheduled& scheduled) override { scheduled_.push_back(&scheduled); }
  void open_address(std::string_view text) override;
  void end() override;

  /// Runs a handler of the tool and draws the windows after it. Does nothing while the windows are
  /// drawn: what changes then is no user's edit.
  template <typename Handler>
  void handle(Handler&& handler) {
    if (drawing_ || ended_) return;
    guarded(std::function<void()>(std::forward<Handler>(handler)), Draw::now);
  }

  /// The same for what comes from the line, which can be much: the draw waits for a few
  /// milliseconds of it.
  template <typename Handler>
  void handle_line(Handler&& handler) {
    if (drawing_ || ended_) return;
    guarded(std::function<void()>(std::forward<Handler>(handler)), Draw::soon);
  }

  void draw();
  bool ended() const { return ended_; }

  View view;
  /// The windows that own message boxes; asked for outside of a draw.
  std::function<QWidget*(Owner)> window_of = [](Owner) { return nullptr; };

 private:
  struct OpenBox {
    QPointer<QMessageBox> box;
    Owner owner;
  };

  enum class Draw { now, soon };

  void guarded(const std::function<void()>& handler, Draw when);
  /// True where there was an event.
  static bool dispatch(QEventLoop::ProcessEventsFlags flags);
  void draw_by(Time due);
  void run_due();
  void arm();
  std::optional<std::filesystem::path> run_dialog(QFileDialog& dialog, const FileDialog& texts);

  QElapsedTimer clock_;
  QTimer wake_;
  Time armed_for_{};
  std::vector<Scheduled*> scheduled_;
  std::vector<OpenBox> boxes_;
  QString last_folder_;
  Time drawn_at_{};
  std::optional<Time> draw_due_;
  bool drawing_ = false;
  bool ended_ = false;
};

/// Twips as pixels of the screen, and back.
int pixels(int twips);
int twips(int pixels);

}  // namespace orvex
