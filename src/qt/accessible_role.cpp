#include "qt/accessible_role.h"

#include <QAccessibleWidget>
#include <QWidget>
#include <utility>

namespace orvex {
namespace {

/// A child of the widget, so that it goes with it.
class RoleNote final : public QObject {
 public:
  RoleNote(QWidget& widget, QAccessible::Role as, std::function<void()> on_press)
      : QObject(&widget), role(as), press(std::move(on_press)) {}

  QAccessible::Role role;
  std::function<void()> press;
};

class NotedWidget final : public QAccessibleWidget {
 public:
  NotedWidget(QWidget& widget, const RoleNote& note)
      : QAccessibleWidget(&widget, note.role), note_(note) {}

  QStringList actionNames() const override {
    QStringList names = QAccessibleWidget::actionNames();
    if (note_.press && widget()->isEnabled()) names.prepend(pressAction());
    return names;
  }

  void doAction(const QString& name) override {
    if (name == pressAction() && note_.press && widget()->isEnabled()) {
      note_.press();
    } else {
      QAccessibleWidget::doAction(name);
    }
  }

 private:
  const RoleNote& note_;
};

QAccessibleInterface* interface_of(const QString& /*class_name*/, QObject* object) {
  auto* widget = qobject_cast<QWidget*>(object);
  if (widget == nullptr) return nullptr;
  for (const QObject* child : widget->children()) {
    if (const auto* note = dynamic_cast<const RoleNote*>(child)) {
      return new NotedWidget(*widget, *note);  // the toolkit owns it
    }
  }
  return nullptr;
}

}  // namespace

void set_accessible_role(QWidget& widget, QAccessible::Role role, const QString& name,
                         std::function<void()> press) {
  QAccessible::installFactory(interface_of);
  // A text that was set before has made an interface already, one for the widget's class.
  QAccessibleInterface* made = QAccessible::queryAccessibleInterface(&widget);
  QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(made));
  new RoleNote(widget, role, std::move(press));  // the widget owns it
  widget.setAccessibleName(name);
}

}  // namespace orvex
