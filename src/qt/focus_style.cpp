#include "qt/focus_style.h"

#include <QApplication>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

#include "qt/habits.h"

namespace orvex {
namespace {

constexpr qreal corner = 2;
constexpr qreal inside_button = 3.5;

void draw_line(QPainter& painter, const QRectF& around, const QColor& colour) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(colour);
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(around, corner, corner);
  painter.restore();
}

bool is_worked_by_keys(const QStyleOption& option) {
  return option.state.testFlag(QStyle::State_KeyboardFocusChange);
}

}  // namespace

FocusStyle::FocusStyle() : QProxyStyle(QStyleFactory::create(style_name())) {}

void FocusStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const {
  if (element == PE_IndicatorRadioButton) {
    draw_option_button(*option, painter, widget);
  } else if (element != PE_FrameFocusRect) {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
  } else if (is_worked_by_keys(*option)) {
    draw_line(*painter, QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5),
              option->palette.color(QPalette::WindowText));
  }
}

void FocusStyle::draw_option_button(const QStyleOption& option, QPainter* painter,
                                    const QWidget* widget) const {
  QStyleOptionButton with_base;
  if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option)) {
    with_base = *button;
  } else {
    with_base.QStyleOption::operator=(option);
  }
  with_base.palette.setBrush(QPalette::Base, QApplication::palette().brush(QPalette::Base));
  QProxyStyle::drawPrimitive(PE_IndicatorRadioButton, &with_base, painter, widget);
}

void FocusStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
  QProxyStyle::drawControl(element, option, painter, widget);
  if (element != CE_PushButton || !option->state.testFlag(State_HasFocus)) return;
  if (!is_worked_by_keys(*option)) return;
  draw_line(
      *painter,
      QRectF(option->rect).adjusted(inside_button, inside_button, -inside_button, -inside_button),
      option->palette.color(QPalette::ButtonText));
}

}  // namespace orvex
