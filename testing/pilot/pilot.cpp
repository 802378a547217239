#include "testing/pilot/pilot.h"

#include <QAbstractButton>
#include <QAction>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <random>
#include <stdexcept>

namespace orvex {
namespace {

constexpr int look_ms = 10;

template <typename Control>
Control& require(Control* control, const QString& name) {
  if (control == nullptr) throw std::runtime_error("no control " + name.toStdString());
  return *control;
}

}  // namespace

Pilot::Pilot(const QStringList& simulator_options, int port) {
  if (port != 0) scanner_ = start_scanner(simulator_options, folder(), port);
  restart_tool();
  looker_.callOnTimeout([this] { look_for_dialogs(); });
  look();
}

void Pilot::restart_tool() {
  end_tool();
  desktop_ = std::make_unique<Desktop>(folder().toStdString());
}

void Pilot::look() {
  looker_.start(look_ms);
}

Pilot::~Pilot() {
  desktop_.reset();
  QFile log(qEnvironmentVariable("ORVEX_WIRE_LOG"));
  if (!scanner_ || log.fileName().isEmpty() || !log.open(QIODevice::Append)) return;
  wait_for([] { return false; }, 50);  // the simulator may have to say something yet
  log.write(scanner_log().toLocal8Bit());
}

void Pilot::start() {
  desktop_->windows.handle([this] { desktop_->program.Main(); });
}

QString Pilot::text(const QString& name, const QString& window) const {
  if (auto* edit = find<QLineEdit>(name, window)) return edit->text();
  return require(find<QLabel>(name, window), name).text();
}

bool Pilot::can_choose(const QString& name) const {
  return require(desktop_->main_window->findChild<QAction*>(name), name).isEnabled();
}

void Pilot::click(const QString& name, const QString& window) {
  if (auto* button = find<QAbstractButton>(name, window)) {
    button->click();
    return;
  }
  if (auto* action = require(window_named(window), window).findChild<QAction*>(name)) {
    action->trigger();
    return;
  }
  QTest::mouseClick(&require(find<QLabel>(name, window), name), Qt::LeftButton);
}

void Pilot::type(const QString& name, const QString& keys, const QString& window) {
  QWidget& control = require(find(name, window), name);
  control.setFocus();
  QTest::keyClicks(&control, keys);
}

void Pilot::answer_next_box(const QString& button) {
  answers_.append(button);
}

void Pilot::choose_next_file(const QString& path) {
  files_.append(path);
}

QByteArray Pilot::image(const char* revision, int size) {
  QByteArray bytes(size, '\0');
  std::mt19937 random(7);
  for (char& byte : bytes) byte = static_cast<char>(random());
  bytes.replace(48, 8, QByteArray::number(size).leftJustified(8)).replace(64, 4, "1A2B");
  return bytes.replace(80, 7, QByteArray(revision).leftJustified(7)).replace(96, 11, "22 Nov 2026");
}

void Pilot::load_image(const QByteArray& image) {
  QFile file(folder() + "/image.bin");
  if (!file.open(QIODevice::WriteOnly)) throw std::runtime_error("can't write an image");
  file.write(image);
  file.close();
  choose_next_file(file.fileName());
  answer_next_box("Yes");
  click("mnuload(2)");
}

bool Pilot::wait_for(const std::function<bool()>& condition, int most_ms) {
  QElapsedTimer clock;
  clock.start();
  QTimer wake;
  wake.start(look_ms);
  while (!condition()) {
    if (clock.elapsed() > most_ms) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  return true;
}

void Pilot::tell_scanner(const QString& command) {
  scanner_->tell(command);
}

QString Pilot::scanner_log() {
  scanner_log_ += scanner_->printed();
  return QString::fromLocal8Bit(scanner_log_);
}

QWidget* Pilot::window_named(const QString& name) {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->objectName() == name) return window;
  }
  return nullptr;
}

void Pilot::look_for_dialogs() {
  if (!answer_box()) choose_file();
}

bool Pilot::answer_box() {
  auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
  if (box == nullptr || boxes_are_left_) return false;
  if (answers_.isEmpty()) {
    boxes_.append("unexpected box: " + box->text());
    box->reject();
    // One that a file dialog asks would come again and again.
    if (auto* dialog = qobject_cast<QFileDialog*>(box->parentWidget())) dialog->reject();
    return true;
  }
  for (QAbstractButton* button : box->buttons()) {
    if (button->text().remove('&') != answers_.first()) continue;
    answers_.removeFirst();
    boxes_.append(box->windowTitle() + ": " + box->text());
    button->click();
    return true;
  }
  return false;
}

bool Pilot::choose_file() {
  auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
  if (dialog == nullptr || files_.isEmpty()) return false;
  dialogs_.append(dialog->windowTitle() + '|' + dialog->selectedNameFilter());
  auto* name = dialog->findChild<QLineEdit*>("fileNameEdit");
  name->setText(files_.takeFirst());
  // Not from within the timer that looks, which would miss what the dialog asks.
  QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
  return true;
}

}  // namespace orvex
