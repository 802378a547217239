#include "ui/qt/revision_tab.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <functional>

#include "ui/qt/pictures.h"
#include "ui/qt/text.h"

namespace orvex {
namespace {

struct Row {
  const char* caption_control;
  const char* caption;
  const char* value_control;
  std::function<const Label&()> value;
};

/// Shows that it has the focus, as a text box does.
class ValueLabel final : public QLabel {
 protected:
  void paintEvent(QPaintEvent* event) override {
    QLabel::paintEvent(event);
    if (!hasFocus()) return;
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Text));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }
};

/// A value from the scanner: one line of plain text, however long or strange, that can be copied.
QLabel* value_label(const char* name) {
  auto* label = new ValueLabel;
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  label->setFocusPolicy(Qt::StrongFocus);
  label->setFrameShape(QFrame::StyledPanel);
  label->setAutoFillBackground(true);
  label->setBackgroundRole(QPalette::Base);
  label->setForegroundRole(QPalette::Text);
  label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  label->setMargin(3);
  label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  label->setFixedHeight(label->fontMetrics().lineSpacing() + 10);
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
    QLabel* value = value_label(row.value_control);
    caption->setBuddy(value);
    grid.addWidget(caption, line, 0);
    grid.addWidget(value, line++, 1, 1, 2);
    windows.view.bind(
        [get = row.value]() -> const std::string& { return get().Caption; },
        [value, name = row.caption](const std::string& text) {
          value->setText(to_qt(text));
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
