#include "qt/message_window.h"

#include <QGridLayout>
#include <QShowEvent>

#include "loop/text.h"
#include "qt/screen_room.h"

namespace orvex {
namespace {

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

QMessageBox::StandardButton default_button(const MessageBox& box) {
  switch (box.buttons) {
    case Buttons::retry_cancel:
      return box.refuses_by_default ? QMessageBox::Cancel : QMessageBox::Retry;
    case Buttons::yes_no:
      return box.refuses_by_default ? QMessageBox::No : QMessageBox::Yes;
    case Buttons::ok:
      break;
  }
  return QMessageBox::Ok;
}

}  // namespace

MessageWindow::MessageWindow(const MessageBox& box, QWidget* parent)
    : QMessageBox(parent), buttons_(box.buttons) {
  setObjectName("MsgBox");
  setWindowTitle(to_qt(box.title));
  setTextFormat(Qt::PlainText);
  setText(QString::fromLocal8Bit(box.text.c_str()).trimmed().replace('\r', '\n'));
  setIcon(standard_icon(box.icon));
  setStandardButtons(standard_buttons(box.buttons));
  setDefaultButton(default_button(box));
  // The toolkit fits the box to its layout again whenever it is shown.
  auto* grid = qobject_cast<QGridLayout*>(layout());
  const int columns = grid->columnCount();
  grid->addItem(new QSpacerItem(width_for_title(*this), 0), grid->rowCount(), 0, 1, columns);
}

Answer MessageWindow::answer() const {
  switch (standardButton(clickedButton())) {
    case QMessageBox::Retry:
      return Answer::retry;
    case QMessageBox::Yes:
      return Answer::yes;
    default:
      break;
  }
  if (buttons_ == Buttons::retry_cancel) return Answer::cancel;
  return buttons_ == Buttons::yes_no ? Answer::no : Answer::ok;
}

void MessageWindow::showEvent(QShowEvent* event) {
  QMessageBox::showEvent(event);
  const auto* owner = dynamic_cast<const KeptInView*>(parentWidget());
  if (owner == nullptr || event->spontaneous()) return;
  const QWidget& parent = *parentWidget();
  QRect wanted({}, size());
  wanted.moveCenter(parent.geometry().center());
  move(place_beside(owner->kept_in_view(), wanted, frame_above(parent), room_on(*parent.screen())));
}

}  // namespace orvex
