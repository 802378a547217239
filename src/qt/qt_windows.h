#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "loop/event_loop.h"
#include "qt/view.h"
#include "window/window_system.h"

namespace orvex {

class PlainNameDialog;

/// The window system on Qt. Every signal that leads into the tool goes through handle().
class QtWindows final : public QObject, public WindowSystem, private Screen {
 public:
  Time now() const override { return loop.now(); }
  void pump(Wait wait) override { loop.pump(wait); }
  Answer MsgBox(const MessageBox& box) override;
  void dismiss_boxes(Owner owner) override;
  std::optional<std::filesystem::path> show_open(const FileDialog& dialog) override;
  std::optional<std::filesystem::path> show_save(const FileDialog& dialog) override;
  int screen_width() const override;
  int screen_height() const override;
  void schedule(Scheduled& scheduled) override { loop.schedule(scheduled); }
  void open_address(std::string_view text) override;
  void end() override;

  /// Runs a handler of the tool and draws the windows after it. Does nothing while the windows are
  /// drawn: what changes then is no user's edit.
  template <typename Handler>
  void handle(Handler&& handler) {
    loop.handle(std::forward<Handler>(handler));
  }

  void draw();
  bool ended() const { return loop.ended(); }

  EventLoop loop{*this};
  View view;
  /// The windows that own message boxes; asked for outside of a draw.
  std::function<QWidget*(Owner)> window_of = [](Owner) { return nullptr; };

 private:
  struct OpenBox {
    QPointer<QMessageBox> box;
    Owner owner;
  };

  bool is_drawing() const override { return drawing_; }
  void handled() override { draw(); }
  void heard_line() override;
  void pumped(bool sleeps) override;
  std::optional<Time> due() const override { return draw_due_; }
  void draw_by(Time due);
  std::optional<std::filesystem::path> run_dialog(PlainNameDialog& dialog, const FileDialog& texts);

  std::vector<OpenBox> boxes_;
  QString last_folder_;
  Time drawn_at_{};
  std::optional<Time> draw_due_;
  bool drawing_ = false;
};

/// Twips as pixels of the screen, and back.
int pixels(int twips);
int twips(int pixels);

}  // namespace orvex
