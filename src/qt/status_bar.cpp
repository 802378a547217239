#include "qt/status_bar.h"

#include <QFrame>
#include <QLabel>
#include <algorithm>

#include "loop/text.h"
#include "qt/accessible_role.h"
#include "qt/pictures.h"
#include "qt/plain_tips.h"

namespace orvex {
namespace {

constexpr int lamp_side = 16;
constexpr int indicator_side = 20;
constexpr int indicator_left = 7;

QLabel* lamp(QWidget* frame, const char* name, const char* picture_name, const char* tip) {
  auto* label = new QLabel(frame);
  label->setObjectName(name);
  label->setToolTip(tip);
  label->setAccessibleName(tip);
  label->setPixmap(picture(picture_name, {lamp_side, lamp_side}, label->devicePixelRatioF()));
  label->setFixedSize(lamp_side, lamp_side);
  return label;
}

}  // namespace

StatusBarView::StatusBarView(QtWindows& windows, Form1& form1) {
  setObjectName("sbrStatus");
  setMinimumHeight(std::max(indicator_side, fontMetrics().height()) + 8);
  setContentsMargins(indicator_left + indicator_side, 0, 0, 0);
  add_panel(windows, form1, 1, 3);
  add_panel(windows, form1, 2, 2);
  add_indicator(windows, form1);
}

void StatusBarView::add_panel(QtWindows& windows, Form1& form1, int number, int stretch) {
  auto* panel = new QLabel;
  panel->setObjectName(QString("sbrStatus.Panels(%1)").arg(number));
  panel->setTextFormat(Qt::PlainText);
  // The text of panel 1 is the tool's own and short; panel 2 takes what is left.
  panel->setSizePolicy(number == 1 ? QSizePolicy::Minimum : QSizePolicy::Ignored,
                       QSizePolicy::Preferred);
  addWidget(panel, stretch);
  windows.view.bind(
      [&form1, number]() -> const std::string& { return form1.sbrStatus.Panels.at(number); },
      [panel, empty = number == 1 ? "No port" : "No message"](const std::string& text) {
        panel->setText(to_qt(text));
        panel->setAccessibleName(text.empty() ? empty : panel->text());
      });
  if (number != 1) return;
  windows.view.bind([&form1]() -> const std::string& { return form1.port_tip; },
                    [panel](const std::string& tip) {
                      panel->setToolTip(tip_of(QString::fromLocal8Bit(tip.c_str())));
                    });
}

void StatusBarView::add_indicator(QtWindows& windows, Form1& form1) {
  indicator_ = new QFrame(this);
  indicator_->setObjectName("FrameLED");
  set_accessible_role(*indicator_, QAccessible::Grouping, "Port indicator");
  QLabel* connected = lamp(indicator_, "imgConnected", "lamp-connected", "Port is open");
  QLabel* not_connected =
      lamp(indicator_, "imgNotConnected", "lamp-disconnected", "Port is closed");
  lamps_ = {connected, not_connected};
  windows.view.bind([&form1] { return form1.FrameLED_offset; },
                    [this](int offset) {
                      indicator_->move(indicator_left, pixels(offset));
                      place_lamps();
                    });
  windows.view.bind([&form1] { return form1.FrameLED; },
                    [connected, not_connected](Indicator front) {
                      const bool open = front == Indicator::imgConnected;
                      (open ? connected : not_connected)->raise();
                      // Both pictures are partly clear, so the one behind must not shine through.
                      connected->setVisible(open);
                      not_connected->setVisible(!open);
                    });
}

void StatusBarView::resizeEvent(QResizeEvent* event) {
  QStatusBar::resizeEvent(event);
  place_lamps();
}

void StatusBarView::place_lamps() {
  // As much room below as above, so that the lamps stand level with the texts.
  indicator_->resize(indicator_side, height() - 2 * indicator_->y());
  for (QLabel* label : lamps_) {
    label->move((indicator_side - lamp_side) / 2, (indicator_->height() - lamp_side) / 2);
  }
}

}  // namespace orvex
