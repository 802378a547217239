#include "ui/qt/limited_edit.h"

#include <QFocusEvent>
#include <algorithm>
#include <utility>

namespace orvex {
namespace {

/// A clipboard's line ends and other control characters, which no key gives.
bool is_control(QChar c) {
  return c.unicode() < 0x20 || c.unicode() == 0x7F;
}

/// `after` without the control characters that it has more than `before`.
QString without_pasted_controls(const QString& before, const QString& after) {
  qsizetype head = 0;
  const qsizetype shorter = std::min(before.size(), after.size());
  while (head < shorter && before[head] == after[head]) ++head;
  qsizetype tail = 0;
  while (tail < shorter - head &&
         before[before.size() - 1 - tail] == after[after.size() - 1 - tail]) {
    ++tail;
  }
  QString inserted = after.mid(head, after.size() - head - tail);
  inserted.removeIf(is_control);
  return after.left(head) + inserted + after.right(tail);
}

}  // namespace

LimitedEdit::LimitedEdit(QtWindows& windows, std::u16string& record, Caret& caret, int most_typed)
    : windows_(windows), record_(record), caret_(caret), most_typed_(most_typed) {
  setMaxLength(most_typed);
  connect(this, &QLineEdit::textChanged, this, &LimitedEdit::take_edit);
  connect(this, &QLineEdit::cursorPositionChanged, this, &LimitedEdit::take_caret);
  connect(this, &QLineEdit::selectionChanged, this, &LimitedEdit::take_caret);
  windows.view.bind([this]() -> const std::u16string& { return record_; },
                    [this](const auto&) { show_record(); });
  windows.view.always([this] {
    if (!std::exchange(caret_.focus_wanted, false)) return;
    setCursorPosition(caret_.SelStart);  // a pick may leave the text as it was
    setFocus();
  });
}

void LimitedEdit::keyReleaseEvent(QKeyEvent* event) {
  QLineEdit::keyReleaseEvent(event);
  if (key_up) windows_.handle(key_up);
}

void LimitedEdit::focusInEvent(QFocusEvent* event) {
  // By the Tab key the toolkit would select everything.
  const int caret = cursorPosition();
  const int start = selectionStart();
  const auto length = static_cast<int>(selectedText().size());
  QLineEdit::focusInEvent(event);
  if (event->reason() != Qt::TabFocusReason && event->reason() != Qt::BacktabFocusReason) return;
  if (start >= 0) {
    setSelection(start, length);
  } else {
    setCursorPosition(caret);
  }
}

void LimitedEdit::focusOutEvent(QFocusEvent* event) {
  // A pick replaces the selection, although its button has taken the focus.
  const int start = selectionStart();
  const auto length = static_cast<int>(selectedText().size());
  QLineEdit::focusOutEvent(event);
  if (start >= 0) setSelection(start, length);
}

void LimitedEdit::show_record() {
  const QString shown = QString::fromStdU16String(record_);
  const int caret = caret_.focus_wanted ? caret_.SelStart : cursorPosition();
  if (text() != shown) set_text_and_caret(shown, std::min(caret, static_cast<int>(shown.size())));
}

void LimitedEdit::take_edit(const QString& edited) {
  if (setting_) return;
  const QString before = QString::fromStdU16String(record_);
  const QString clean = without_pasted_controls(before, edited);
  const auto caret = cursorPosition() - static_cast<int>(edited.size() - clean.size());
  if (clean != edited || maxLength() > most_typed_) set_text_and_caret(clean, caret);
  windows_.handle([&] { record_ = clean.toStdU16String(); });
  take_caret();
}

void LimitedEdit::take_caret() {
  if (setting_) return;
  caret_.SelStart = selectionStart() >= 0 ? selectionStart() : cursorPosition();
  caret_.SelLength = static_cast<int>(selectedText().size());
}

void LimitedEdit::set_text_and_caret(const QString& text, int caret) {
  setting_ = true;
  setMaxLength(std::max(most_typed_, static_cast<int>(text.size())));
  setText(text);
  setCursorPosition(caret);
  setting_ = false;
  take_caret();
}

}  // namespace orvex
