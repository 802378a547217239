#include "loop/event_loop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>
#include <algorithm>
#include <chrono>

namespace orvex {

EventLoop::EventLoop(Screen& screen) : screen_(screen) {
  clock_.start();
  wake_.setSingleShot(true);
  wake_.setTimerType(Qt::PreciseTimer);
  connect(&wake_, &QTimer::timeout, this, [this] { handle([this] { run_due(); }); });
}

Time EventLoop::now() const {
  return Time(clock_.nsecsElapsed());
}

void EventLoop::pump(Wait wait) {
  require_running();
  // What was due may be all that the caller waits for.
  const bool had_due = run_due();
  const bool had_events = dispatch(QEventLoop::AllEvents) || had_due;
  const bool sleeps = !had_events && wait == Wait::for_event;
  screen_.pumped(sleeps);
  if (sleeps) {
    arm();
    dispatch(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  require_running();
}

void EventLoop::end() {
  ended_ = true;
  // Not at once: the toolkit asks windows that are still up, and they refuse.
  QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit,
                            Qt::QueuedConnection);
}

void EventLoop::require_running() const {
  if (ended_) throw Ended{};
}

bool EventLoop::run(const std::function<void()>& handler) {
  try {
    handler();
  } catch (const Ended&) {
    return false;
  }
  return true;
}

bool EventLoop::dispatch(QEventLoop::ProcessEventsFlags flags) {
  return QThread::currentThread()->eventDispatcher()->processEvents(flags);
}

bool EventLoop::run_due() {
  bool had_due = false;
  for (Scheduled* scheduled : scheduled_) {
    const auto due = scheduled->due();
    if (!due || *due > now()) continue;
    scheduled->run();
    had_due = true;
  }
  return had_due;
}

void EventLoop::arm() {
  std::optional<Time> next = screen_.due();
  for (const Scheduled* scheduled : scheduled_) {
    const auto due = scheduled->due();
    if (due && (!next || *due < *next)) next = due;
  }
  if (!next) {
    wake_.stop();
    return;
  }
  // One that wakes sooner arms itself anew, which costs less than a new start at each event.
  if (wake_.isActive() && armed_for_ <= *next) return;
  armed_for_ = *next;
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(std::max(*next - now(), Time{}));
  wake_.start(wait);
}

}  // namespace orvex
