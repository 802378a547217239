#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QObject>
#include <QTimer>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "base/timer.h"
#include "window/window_system.h"

namespace orvex {

/// What shows the tool's records to a user: real windows, or a console.
class Screen {
 public:
  virtual ~Screen() = default;
  /// True while it draws: what changes meanwhile is no user's edit and reaches no handler.
  virtual bool is_drawing() const = 0;
  /// A handler has run, so the records may have changed.
  virtual void handled() = 0;
  /// The same for what came from the line, which can be much: showing it may wait for more.
  virtual void heard_line() = 0;
  /// A pump has delivered what was pending. `sleeps` tells that it is going to sleep.
  virtual void pumped(bool sleeps) = 0;
  /// The moment at which it wants to show something; none if never.
  virtual std::optional<Time> due() const = 0;
};

/// The tool's event loop on Qt Core: the clock, the pump and what is scheduled. Every signal that
/// leads into the tool goes through handle().
class EventLoop final : public QObject, public Clock {
 public:
  /// `screen` must outlive the loop's last pump.
  explicit EventLoop(Screen& screen);

  Time now() const override;
  /// As WindowSystem::pump().
  void pump(Wait wait);
  /// As WindowSystem::schedule().
  void schedule(Scheduled& scheduled) { scheduled_.push_back(&scheduled); }

  /// Runs a handler of the tool, unless the screen draws or the process ends.
  template <typename Handler>
  void handle(Handler&& handler) {
    if (screen_.is_drawing() || ended_) return;
    if (!run(std::function<void()>(std::forward<Handler>(handler)))) return;
    screen_.handled();
    arm();
  }

  /// The same for what comes from the line.
  template <typename Handler>
  void handle_line(Handler&& handler) {
    if (screen_.is_drawing() || ended_) return;
    if (!run(std::function<void()>(std::forward<Handler>(handler)))) return;
    screen_.heard_line();
    arm();
  }

  /// Sees to it that the loop wakes when the next thing is due.
  void arm();
  /// From now on no handler runs, and each pump throws Ended.
  void end();
  bool ended() const { return ended_; }
  /// Throws Ended if the process is to end.
  void require_running() const;

 private:
  /// False if the handler was left because the process ends.
  static bool run(const std::function<void()>& handler);
  /// True if there was an event.
  static bool dispatch(QEventLoop::ProcessEventsFlags flags);
  /// True if something was.
  bool run_due();

  Screen& screen_;
  QElapsedTimer clock_;
  QTimer wake_;
  Time armed_for_{};
  std::vector<Scheduled*> scheduled_;
  bool ended_ = false;
};

}  // namespace orvex
