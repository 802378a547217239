#include "qt/limited_edit.h"

#include <QFocusEvent>
#include <algorithm>
#include <utility>

namespace orvex {
namespace {

/// A clipboard's line ends and other control characters, which no key gives.
bool is_control(QChar c) {
  return c.unicode() < 0x20 || c.unicode() == 0x7F;
}

/// A text after an edit: what was put in, and what stands before and after it.
struct Edit {
  QString head;
  QString inserted;
  QString tail;
};

/// What made `after` of `before`, in which `selected` was the selection or the caret.
Edit edit_between(const QString& before, const QString& after, const Caret& selected) {
  // As a rule the selection has given way. Equal characters would hide its ends below.
  qsizetype head = std::min<qsizetype>(selected.SelStart, before.size());
  qsizetype tail = std::max<qsizetype>(before.size() - head - selected.SelLength, 0);
  if (after.size() < head + tail || after.left(head) != before.left(head) ||
      after.right(tail) != before.right(tail)) {
    const auto shorter = std::min(before.size(), after.size());
    for (head = 0; head < shorter && before[head] == after[head];) ++head;
    for (tail = 0; tail < shorter - head &&
                   before[before.size() - 1 - tail] == after[after.size() - 1 - tail];) {
      ++tail;
    }
  }
  return {after.left(head), after.mid(head, after.size() - head - tail), after.right(tail)};
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
  const int caret = caret_.focus_wanted ? caret_.SelStart : cursorPosition();
  const QString drawn = QString::fromStdU16String(record_);
  if (text() != drawn) set_text_and_caret(drawn, caret);
  shown_ = record_;
}

void LimitedEdit::take_edit(const QString& edited) {
  if (setting_) return;
  if (record_ != shown_) {
    // A text has come in that this edit didn't see.
    const int caret = caret_.SelStart;
    shown_ = record_;
    set_text_and_caret(QString::fromStdU16String(record_), caret);
    return;
  }
  Edit edit = edit_between(QString::fromStdU16String(shown_), edited, caret_);
  edit.inserted.removeIf(is_control);
  edit.inserted.truncate(std::max<qsizetype>(most_typed_ - edit.head.size() - edit.tail.size(), 0));
  const QString clean = edit.head + edit.inserted + edit.tail;
  const auto caret = cursorPosition() - static_cast<int>(edited.size() - clean.size());
  if (clean != edited || maxLength() > most_typed_) set_text_and_caret(clean, caret);
  windows_.handle([&] { record_ = shown_ = clean.toStdU16String(); });
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
  setCursorPosition(std::clamp(caret, 0, static_cast<int>(text.size())));
  setting_ = false;
  take_caret();
}

}  // namespace orvex
