#include "qt/qt_windows.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QScreen>
#include <algorithm>

#include "base/run_time_error.h"
#include "loop/text.h"

#include "qt/habits.h"
#include "qt/message_window.h"
#include "qt/plain_name_dialog.h"
#include "qt/web_address.h"

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

}  // namespace

int pixels(int twips) {
  return qRound(twips * dots_per_inch() / twips_in_inch);
}

int twips(int pixels) {
  return qRound(pixels * twips_in_inch / dots_per_inch());
}

Answer QtWindows::MsgBox(const MessageBox& box) {
  loop.require_running();
  draw();  // which may show or hide the window that the box belongs to
  const QPointer<QWidget> parent = window_of(box.owner);
  MessageWindow window(box, !parent.isNull() && parent->isVisible() ? parent.data() : nullptr);
  boxes_.push_back({&window, box.owner});
  loop.arm();
  window.exec();
  std::erase_if(boxes_, [&](const OpenBox& open) { return open.box == &window; });
  loop.require_running();
  // Not every desktop hands the keyboard back to the window that asked.
  const bool user_is_here = window.clickedButton() != nullptr;
  if (user_is_here && !parent.isNull() && parent->isVisible()) parent->activateWindow();
  return window.answer();
}

void QtWindows::dismiss_boxes(Owner owner) {
  for (const OpenBox& open : boxes_) {
    if (open.owner == owner && open.box) open.box->done(QDialog::Rejected);
  }
}

std::optional<std::filesystem::path> QtWindows::show_open(const FileDialog& texts) {
  PlainNameDialog dialog(window_of(Owner::active_window));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  return run_dialog(dialog, texts);
}

std::optional<std::filesystem::path> QtWindows::show_save(const FileDialog& texts) {
  PlainNameDialog dialog(window_of(Owner::active_window));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  return run_dialog(dialog, texts);
}

std::optional<std::filesystem::path> QtWindows::run_dialog(PlainNameDialog& dialog,
                                                           const FileDialog& texts) {
  loop.require_running();
  dialog.setObjectName("CommonDialog1");
  dialog.setWindowTitle(to_qt(texts.title));
  dialog.setNameFilters({to_qt(texts.first_filter) + " (*)", to_qt(texts.second_filter)});
  dialog.selectNameFilter(to_qt(texts.second_filter));
  dialog.setDirectory(last_folder_.isEmpty() ? first_folder() : last_folder_);
  draw();
  loop.arm();
  const bool accepted = dialog.exec() == QDialog::Accepted;
  loop.require_running();
  const QString path = dialog.chosen();
  if (!accepted || path.isEmpty()) return std::nullopt;
  last_folder_ = QFileInfo(path).absolutePath();
  // What both systems take for UTF-8.
  const QByteArray bytes = path.toUtf8();
  return std::filesystem::path(std::u8string(bytes.begin(), bytes.end()));
}

int QtWindows::screen_width() const {
  return twips(QGuiApplication::primaryScreen()->geometry().width());
}

int QtWindows::screen_height() const {
  return twips(QGuiApplication::primaryScreen()->geometry().height());
}

void QtWindows::open_address(std::string_view text) {
  if (const auto address = web_address(text)) QDesktopServices::openUrl(*address);
}

void QtWindows::end() {
  loop.end();
  // Each window that is up runs an event loop of its own, which its close ends.
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (auto* dialog = qobject_cast<QDialog*>(window)) dialog->done(QDialog::Rejected);
    window->hide();
  }
}

void QtWindows::draw() {
  if (drawing_ || ended()) return;
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

void QtWindows::heard_line() {
  draw_by(drawn_at_ + draw_step);
}

void QtWindows::pumped(bool sleeps) {
  draw_by(sleeps ? now() + line_first : drawn_at_ + draw_step);
}

}  // namespace orvex
