#include "ui/qt/qt_windows.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QScreen>
#include <QThread>
#include <algorithm>

#include "platform/platform.h"
#include "ui/qt/text.h"
#include "ui/web_address.h"
#include "window/run_time_error.h"

namespace orvex {
namespace {

using namespace std::chrono_literals;

constexpr double twips_in_inch = 1440;
/// While events follow each other, the windows are drawn no more often than this.
constexpr Time draw_step = 33ms;
/// Where cores are few, the system takes a frame to the line only once this process sleeps: a draw
/// stands back for so long.
constexpr Time line_first = 1ms;

double dots_per_inch() {
  return QGuiApplication::primaryScreen()->logicalDotsPerInch();
}

QMessageBox::StandardButtons standard_buttons(Buttons buttons) {
  switch (buttons) {
    case Buttons::retry_cancel:
      return QMessageBox::Retry | QMessageBox::Cancel;
    case Buttons::yes_no:
      return QMessageBox::Yes | QMessageBox::No;
    case Buttons::ok:
      break;
  }
  return QMessageBox::Ok;
}

QMessageBox::Icon standard_icon(Icon icon) {
  switch (icon) {
    case Icon::information:
      return QMessageBox::Information;
    case Icon::exclamation:
      return QMessageBox::Warning;
    case Icon::critical:
      return QMessageBox::Critical;
    case Icon::none:
      break;
  }
  return QMessageBox::NoIcon;
}

Answer answer_of(const QMessageBox& box, Buttons buttons) {
  switch (box.standardButton(box.clickedButton())) {
    case QMessageBox::Retry:
      return Answer::retry;
    case QMessageBox::Yes:
      return Answer::yes;
    default:
      break;
  }
  if (buttons == Buttons::retry_cancel) return Answer::cancel;
  return buttons == Buttons::yes_no ? Answer::no : Answer::ok;
}

}  // namespace

int pixels(int twips) {
  return qRound(twips * dots_per_inch() / twips_in_inch);
}

int twips(int pixels) {
  return qRound(pixels * twips_in_inch / dots_per_inch());
}

QtWindows::QtWindows() {
  clock_.start();
  wake_.setSingleShot(true);
  wake_.setTimerType(Qt::PreciseTimer);
  connect(&wake_, &QTimer::timeout, this, [this] { handle([this] { run_due(); }); });
}

Time QtWindows::now() const {
  return Time(clock_.nsecsElapsed());
}

bool QtWindows::dispatch(QEventLoop::ProcessEventsFlags flags) {
  return QThread::currentThread()->eventDispatcher()->processEvents(flags);
}

void QtWindows::pump(Wait wait) {
  if (ended_) throw Ended{};
  run_due();
  const bool had_events = dispatch(QEventLoop::AllEvents);
  const bool sleeps = !had_events && wait == Wait::for_event;
  draw_by(sleeps ? now() + line_first : drawn_at_ + draw_step);
  if (sleeps) {
    arm();
    dispatch(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  if (ended_) throw Ended{};
}

Answer QtWindows::MsgBox(const MessageBox& box) {
  if (ended_) throw Ended{};
  QWidget* parent = window_of(box.owner);
  if (parent != nullptr && !parent->isVisible()) parent = nullptr;
  QMessageBox window(parent);
  window.setObjectName("MsgBox");
  window.setWindowTitle(to_qt(box.title));
  window.setTextFormat(Qt::PlainText);
  window.setText(to_qt(box.text).trimmed().replace('\r', '\n'));
  window.setIcon(standard_icon(box.icon));
  window.setStandardButtons(standard_buttons(box.buttons));
  boxes_.push_back({&window, box.owner});
  draw();
  arm();
  window.exec();
  std::erase_if(boxes_, [&](const OpenBox& open) { return open.box == &window; });
  if (ended_) throw Ended{};
  return answer_of(window, box.buttons);
}

void QtWindows::dismiss_boxes(Owner owner) {
  for (const OpenBox& open : boxes_) {
    if (open.owner == owner && open.box) open.box->done(QDialog::Rejected);
  }
}

std::optional<std::filesystem::path> QtWindows::show_open(const FileDialog& texts) {
  QFileDialog dialog(window_of(Owner::active_window));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  return run_dialog(dialog, texts);
}

std::optional<std::filesystem::path> QtWindows::show_save(const FileDialog& texts) {
  QFileDialog dialog(window_of(Owner::active_window));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  return run_dialog(dialog, texts);
}

std::optional<std::filesystem::path> QtWindows::run_dialog(QFileDialog& dialog,
                                                           const FileDialog& texts) {
  if (ended_) throw Ended{};
  // Desktops' own dialogs add endings to names and ask questions of their own.
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setObjectName("CommonDialog1");
  dialog.setWindowTitle(to_qt(texts.title));
  dialog.setNameFilters({to_qt(texts.first_filter) + " (*)", to_qt(texts.second_filter)});
  dialog.selectNameFilter(to_qt(texts.second_filter));
  dialog.setDirectory(last_folder_.isEmpty() ? QDir::currentPath() : last_folder_);
  draw();
  arm();
  const bool accepted = dialog.exec() == QDialog::Accepted;
  if (ended_) throw Ended{};
  if (!accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  last_folder_ = dialog.directory().absolutePath();
  return std::filesystem::path(QFile::encodeName(dialog.selectedFiles().first()).toStdString());
}

int QtWindows::screen_width() const {
  return twips(QGuiApplication::primaryScreen()->geometry().width());
}

int QtWindows::screen_height() const {
  return twips(QGuiApplication::primaryScreen()->geometry().height());
}

void QtWindows::open_address(std::string_view text) {
  if (const auto address = web_address(text)) platform::open_web_address(*address);
}

void QtWindows::end() {
  ended_ = true;
  // Each window that is up runs an event loop of its own, which its close ends.
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (auto* dialog = qobject_cast<QDialog*>(window)) dialog->done(QDialog::Rejected);
    window->hide();
  }
  QCoreApplication::quit();
}

void QtWindows::draw() {
  if (drawing_ || ended_) return;
  drawing_ = true;
  view.draw();
  drawing_ = false;
  draw_due_.reset();
  drawn_at_ = now();
}

void QtWindows::draw_by(Time due) {
  if (!draw_due_ && !view.is_stale()) return;
  draw_due_ = std::min(due, draw_due_.value_or(due));
  if (*draw_due_ <= now()) draw();
}

void QtWindows::guarded(const std::function<void()>& handler, Draw when) {
  try {
    handler();
  } catch (const Ended&) {
    return;
  }
  if (when == Draw::now) {
    draw();
  } else {
    draw_by(drawn_at_ + draw_step);
  }
  arm();
}

void QtWindows::run_due() {
  for (Scheduled* scheduled : scheduled_) {
    const auto due = scheduled->due();
    if (due && *due <= now()) scheduled->run();
  }
}

void QtWindows::arm() {
  std::optional<Time> next = draw_due_;
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
