#include "qt/splash_window.h"

#include <QCloseEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "loop/text.h"
#include "qt/accessible_role.h"
#include "qt/pictures.h"

namespace orvex {
namespace {

// All in twips.
constexpr int width_of_picture = 4020;
constexpr int height_of_picture = 4335;
constexpr int title_left = 2880;
constexpr int title_top = 3600;
constexpr int port_left = 2520;
constexpr int rate_left = 2880;
constexpr int line_top = 3960;
constexpr int small_gap = 60;

constexpr QSize around_caption(16, 8);  // in pixels

const QColor label_colour(0xE0, 0xE0, 0xE0);

}  // namespace

SplashWindow::SplashWindow(QtWindows& windows, Program& program)
    : QWidget(nullptr, Qt::Dialog | Qt::FramelessWindowHint), windows_(windows), program_(program) {
  setObjectName("Form2");
  set_accessible_role(*this, QAccessible::Dialog, {});
  setWindowTitle(application_title);
  setFixedSize(pixels(width_of_picture), pixels(height_of_picture));
  // The picture is light in every theme, and so is what stands on it.
  QPalette light;
  light.setColor(QPalette::Window, label_colour);
  light.setColor(QPalette::WindowText, Qt::black);
  setPalette(light);
  title_ = add_label("Label1");
  port_ = add_label("Label2");
  rate_ = add_label("Label3");
  ok_ = new QPushButton("&OK", this);
  ok_->setObjectName("Command3");
  ok_->setAutoDefault(true);  // Enter presses it as the space bar does
  ok_->hide();
  connect(ok_, &QPushButton::clicked, this,
          [this] { windows_.handle([this] { program_.Command3_Click(); }); });
  windows.view.bind(
      [&form2 = program.forms.form2] { return std::pair(form2.Visible, form2.Modal); },
      [this](const auto& state) { show_as(state.first, state.second); });
}

void SplashWindow::paintEvent(QPaintEvent* /*event*/) {
  if (picture_.isNull()) {
    picture_ = whole_picture("splash", devicePixelRatioF());
    QTimer::singleShot(0, this, [this] { windows_.handle([this] { add_texts(); }); });
    QTimer::singleShot(0, this, [this] { windows_.handle(first_shown); });
  }
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawPixmap(rect(), picture_);
}

void SplashWindow::closeEvent(QCloseEvent* event) {
  // The window has no close box: "OK" is the only way out.
  if (!windows_.ended()) event->ignore();
}

QLabel* SplashWindow::add_label(const char* name) {
  auto* label = new QLabel(this);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setAutoFillBackground(true);
  QFont font = label->font();
  font.setPointSize(std::max(7, font.pointSize() - 1));
  label->setFont(font);
  label->hide();
  return label;
}

void SplashWindow::add_texts() {
  place_ok();
  const Form2& form2 = program_.forms.form2;
  bind_label(title_, form2.Label1);
  bind_label(port_, form2.Label2);
  bind_label(rate_, form2.Label3);
  windows_.view.bind([&button = form2.Command3] { return button.Visible; },
                     [this](bool visible) {
                       ok_->setVisible(visible);
                       if (visible) ok_->setFocus();
                     });
}

void SplashWindow::place_ok() {
  QRect place(pixels(1680), pixels(3840), pixels(855), pixels(375));
  const QPoint middle = place.center();
  const QSize text = ok_->fontMetrics().size(Qt::TextShowMnemonic, ok_->text());
  place.setSize(place.size().expandedTo(text + around_caption));
  place.moveCenter(middle);
  place.moveBottom(std::min(place.bottom(), height() - pixels(small_gap)));
  ok_->setGeometry(place);
}

void SplashWindow::bind_label(QLabel* label, const Label& record) {
  windows_.view.bind([&record]() -> const std::string& { return record.Caption; },
                     [this, label](const std::string& text) {
                       label->setText(to_qt(text));
                       label->adjustSize();
                       place_labels();
                     });
  windows_.view.bind([&record] { return record.Visible; },
                     [label](bool visible) { label->setVisible(visible); });
}

void SplashWindow::place_labels() {
  const int gap = pixels(small_gap);
  const int end = width() - gap;
  // Port and rate stand side by side, however large the desktop's letters are.
  const int both = port_->width() + rate_->width();
  const int line = std::min(pixels(line_top), height() - gap - port_->height());
  port_->move(std::min(pixels(port_left), end - both), line);
  rate_->move(std::max(pixels(rate_left), port_->x() + port_->width()), line);
  // The title stands above them, and above the button that takes their place.
  QRect title(QPoint(std::min(pixels(title_left), end - title_->width()), pixels(title_top)),
              title_->size());
  title.moveBottom(std::min(title.bottom(), line - 1));
  if (title.intersects(ok_->geometry())) title.moveBottom(ok_->y() - gap);
  title_->move(title.topLeft());
}

void SplashWindow::show_as(bool visible, bool modal) {
  // With another modality than it was shown with, the toolkit would keep the other windows blocked.
  hide();
  setWindowModality(modal ? Qt::ApplicationModal : Qt::NonModal);
  if (visible) {
    const QRect room = screen()->geometry();
    move(room.center() - rect().center());
    if (const QWidget* below = window_below()) {
      winId();  // makes the window that is to lie above the other
      windowHandle()->setTransientParent(below->windowHandle());
    }
  }
  setVisible(visible);
}

}  // namespace orvex
