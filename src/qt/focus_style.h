#pragma once

#include <QProxyStyle>

namespace orvex {

/// The desktop's style with a focus that is seen on dark colours as well: a line in the colour of
/// the text around what has it, once keys are used.
class FocusStyle final : public QProxyStyle {
 public:
  FocusStyle();

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;

 private:
  /// Some desktops fill all of them, chosen or not, with one strong colour.
  void draw_option_button(const QStyleOption& option, QPainter* painter,
                          const QWidget* widget) const;
};

}  // namespace orvex
