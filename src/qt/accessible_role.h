#pragma once

#include <QAccessible>
#include <functional>

class QWidget;

namespace orvex {

/// Tells screen readers what a widget is where its class doesn't. Where `press` is given, they can
/// run it as the widget's press.
void set_accessible_role(QWidget& widget, QAccessible::Role role, const QString& name,
                         std::function<void()> press = {});

}  // namespace orvex
