#include "qt/revision_tab.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <functional>

#include "loop/text.h"
#include "qt/pictures.h"
#include "qt/plain_tips.h"

namespace orvex {
namespace {

struct Row {
  const char* caption_control;
  const char* caption;
  const char* value_control;
  std::function<const Label&()> value;
};

/// More characters than the widest screen shows in one line.
constexpr qsizetype most_shown = 4096;

/// Shows that it has the focus: the line around it is all that tells it from a caption. A text that
/// it has no room for is its tip.
class ValueLabel final : public QLabel {
 public:
  void show_value(const QString& value) {
    setText(value.left(most_shown));
    tip_ = tip_of(value.trimmed());
  }

 protected:
  bool event(QEvent* event) override {
    if (event->type() == QEvent::ToolTip) setToolTip(fits() ? QString() : tip_);
    return QLabel::event(event);
  }
  void paintEvent(QPaintEvent* event) override {
    QLabel::paintEvent(event);
    if (!hasFocus()) return;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }

 private:
  bool fits() const {
    const QSize room = contentsRect().size() - QSize(2 * margin(), 2 * margin());
    const QSize wanted = fontMetrics().size(0, text().trimmed());
    return wanted.width() <= room.width() && wanted.height() <= room.height();
  }

  QString tip_;
};

/// A value from the scanner: one line of plain text, however long or strange, that can be copied.
ValueLabel* value_label(const char* name) {
  auto* label = new ValueLabel;
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  label->setFocusPolicy(Qt::StrongFocus);
  label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  // One line, level with its caption.
  constexpr int around = 5;
  label->setMargin(around);
  label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  label->setFixedHeight(label->fontMetrics().lineSpacing() + 2 * around);
  return label;
}

}  // namespace

void add_revision_tab(QtWindows& windows, Program& program, Page& page) {
  Form1& form1 = program.forms.form1;
  const Row rows[]{
      {"Label1(2)", "Application 1", "labRevision(1)",
       [&] { return std::cref(form1.labRevision[1]); }},
      {"Label1(4)", "Application 2", "labRevision(2)",
       [&] { return std::cref(form1.labRevision[2]); }},
      {"Label1(3)", "Hardware", "labRevision(3)", [&] { return std::cref(form1.labRevision[3]); }},
      {"Label1(5)", "Model", "labRevision(4)", [&] { return std::cref(form1.labRevision[4]); }},
      {"Label3", "Serial Number", "Label4", [&] { return std::cref(form1.Label4); }},
      {"Label1(6)", "Web Site", "labWeb", [&] { return std::cref(form1.labWeb); }},
  };
  QGridLayout& grid = page.grid();
  int line = 0;
  for (const Row& row : rows) {
    auto* caption = new QLabel(row.caption);
    caption->setObjectName(row.caption_control);
    ValueLabel* value = value_label(row.value_control);
    caption->setBuddy(value);
    grid.addWidget(caption, line, 0);
    grid.addWidget(value, line++, 1, 1, 2);
    windows.view.bind(
        [get = row.value]() -> const std::string& { return get().Caption; },
        [value, name = row.caption](const std::string& text) {
          value->show_value(to_qt(text));
          value->setAccessibleName(QString("%1: %2").arg(name, value->text().trimmed()));
        });
  }
  auto* web = new QPushButton(icon("web"), "&GoTo Web");
  web->setObjectName("cmdWeb");
  web->setToolTip("Send the web address to your browser");
  web->setIconSize({24, 24});
  grid.addWidget(web, line, 1, Qt::AlignLeft);
  grid.setColumnStretch(2, 1);
  windows.view.bind([&form1] { return form1.cmdWeb.Enabled; },
                    [web](bool enabled) { web->setEnabled(enabled); });
  QObject::connect(web, &QPushButton::clicked, &windows,
                   [&windows, &program] { windows.handle([&] { program.cmdWeb_Click(); }); });
}

}  // namespace orvex
