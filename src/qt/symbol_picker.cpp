#include "qt/symbol_picker.h"

#include <QFocusEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <utility>

#include "loop/text.h"
#include "qt/accessible_role.h"
#include "setupfiles/symbols.h"

namespace orvex {
namespace {

constexpr QSize room_in_cell(10, 5);

class SymbolLabel final : public QLabel {
 public:
  explicit SymbolLabel(const QString& name) : QLabel(name) {
    setAlignment(Qt::AlignCenter);
    setFrameShape(QFrame::StyledPanel);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Button);
    setForegroundRole(QPalette::ButtonText);
  }

  std::function<void()> pick;
  std::function<void(int)> move;

 protected:
  void mousePressEvent(QMouseEvent* event) override { event->accept(); }

  void mouseReleaseEvent(QMouseEvent* event) override {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) pick();
  }

  void keyPressEvent(QKeyEvent* event) override {
    switch (event->key()) {
      case Qt::Key_Return:
      case Qt::Key_Enter:
      case Qt::Key_Space:
        pick();
        break;
      case Qt::Key_Up:
      case Qt::Key_Down:
      case Qt::Key_Left:
      case Qt::Key_Right:
        move(event->key());
        break;
      default:
        QLabel::keyPressEvent(event);
    }
  }

  void focusInEvent(QFocusEvent* event) override {
    highlight(true);
    QLabel::focusInEvent(event);
  }

  void focusOutEvent(QFocusEvent* event) override {
    highlight(false);
    QLabel::focusOutEvent(event);
  }

 private:
  void highlight(bool on) {
    setBackgroundRole(on ? QPalette::Highlight : QPalette::Button);
    setForegroundRole(on ? QPalette::HighlightedText : QPalette::ButtonText);
  }
};

}  // namespace

SymbolPicker::SymbolPicker(const QString& array, const std::function<void(int)>& picked) {
  setFrameShape(QFrame::StyledPanel);
  // The window opens large enough for it.
  QSizePolicy policy = sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  setSizePolicy(policy);
  set_accessible_role(*this, QAccessible::Grouping, "Control characters");
  auto* grid = new QGridLayout(this);
  grid->setSpacing(3);
  grid->setContentsMargins(6, 6, 6, 6);
  for (const ControlSymbol& symbol : control_symbols()) {
    const std::size_t position = labels_.size();
    auto* label = new SymbolLabel(to_qt(symbol.name));
    label->setObjectName(QString("%1(%2)").arg(array).arg(symbol.index));
    label->pick = [picked, index = symbol.index] { picked(index); };
    set_accessible_role(*label, QAccessible::Button, label->text(), label->pick);
    const QString code = QString::asprintf("%02X", symbol.index);
    label->setToolTip(to_qt(symbol.meaning) + ", " + code);
    label->setAccessibleDescription(label->toolTip());
    label->move = [this, position](int key) { move_from(position, key); };
    const auto place = static_cast<int>(position);
    grid->addWidget(label, place % symbols_in_column, place / symbols_in_column);
    labels_.push_back(label);
  }
  QSize largest;
  for (const QLabel* label : labels_) largest = largest.expandedTo(label->sizeHint());
  for (QLabel* label : labels_) label->setMinimumSize(largest + room_in_cell);
}

void SymbolPicker::come_after(QWidget& control) {
  QWidget* before = &control;
  for (QLabel* label : labels_) {
    setTabOrder(before, label);
    before = label;
  }
}

void SymbolPicker::move_from(std::size_t position, int key) {
  const auto size = static_cast<int>(labels_.size());
  int next = static_cast<int>(position);
  if (key == Qt::Key_Up) next -= 1;
  if (key == Qt::Key_Down) next += 1;
  if (key == Qt::Key_Left) next -= symbols_in_column;
  if (key == Qt::Key_Right) next += symbols_in_column;
  if (next >= 0 && next < size) labels_[static_cast<std::size_t>(next)]->setFocus();
}

}  // namespace orvex
