#include "ui/qt/main_window.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>
#include <tuple>

#include "ui/qt/menus.h"
#include "ui/qt/pictures.h"
#include "ui/qt/revision_tab.h"
#include "ui/qt/setup_tabs.h"
#include "ui/qt/side_tabs.h"
#include "ui/qt/status_bar.h"
#include "ui/qt/symbol_picker.h"
#include "ui/qt/text.h"

namespace orvex {
namespace {

constexpr int prefix_tab = 4;
constexpr int suffix_tab = 5;

/// A page with a grid, which scrolls where the window is too small for it.
QScrollArea* make_page(QWidget*& page) {
  page = new QWidget;
  auto* grid = new QGridLayout(page);
  grid->setContentsMargins(6, 6, 6, 6);
  grid->setHorizontalSpacing(8);
  grid->setVerticalSpacing(10);
  auto* area = new QScrollArea;
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidget(page);
  return area;
}

/// Keeps the frames at the top of their page.
void close_grid(QWidget& page) {
  auto* grid = static_cast<QGridLayout*>(page.layout());
  grid->setRowStretch(grid->rowCount(), 1);
}

}  // namespace

MainWindow::MainWindow(QtWindows& windows, Program& program)
    : windows_(windows), program_(program) {
  setObjectName("Form1");
  add_menus(windows, program, *menuBar());
  auto* centre = new QWidget;
  auto* column = new QVBoxLayout(centre);
  column->addWidget(make_tabs(), 1);
  column->addLayout(make_buttons());
  setCentralWidget(centre);
  setStatusBar(new StatusBarView(windows, program.forms.form1));
  bind_geometry();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  windows_.handle([this] { program_.Form_Unload(); });
}

QWidget* MainWindow::make_tabs() {
  auto* tabs = new SideTabs;
  tabs->setObjectName("SSTab1");
  std::vector<QWidget*> pages;
  for (const auto caption : tab_captions) {
    QWidget* page = nullptr;
    tabs->addTab(make_page(page), to_qt(caption));
    pages.push_back(page);
  }
  add_revision_tab(windows_, program_, *pages[0]);
  const SetupTabs setup_tabs(windows_, program_, pages);
  add_symbol_pickers(pages);
  for (QWidget* page : pages) close_grid(*page);

  Form1& form1 = program_.forms.form1;
  windows_.view.bind([&form1] { return form1.SSTab1.Tab; },
                     [tabs](int tab) { tabs->setCurrentIndex(tab); });
  windows_.view.bind([&form1] { return form1.SSTab1.Enabled; },
                     [tabs](bool enabled) { tabs->setEnabled(enabled); });
  connect(tabs, &QTabWidget::currentChanged, this,
          [this](int tab) { windows_.handle([&] { program_.forms.form1.SSTab1.Tab = tab; }); });
  return tabs;
}

void MainWindow::add_symbol_pickers(const std::vector<QWidget*>& pages) {
  struct PickerParts {
    int tab;
    const char* button;
    const char* frame;
    const char* array;
    Panel& record;
    void (Program::*toggle)();
    void (Program::*pick)(int);
  };
  Form1& form1 = program_.forms.form1;
  for (const PickerParts& parts :
       {PickerParts{prefix_tab, "cmdCtrlPre", "Symbol1", "CharList", form1.Symbol1,
                    &Program::cmdCtrlPre_Click, &Program::CharList_Click},
        PickerParts{suffix_tab, "cmdCtrlSuf", "Symbol2", "CharList2", form1.Symbol2,
                    &Program::cmdCtrlSuf_Click, &Program::CharList2_Click}}) {
    auto* button = new QPushButton(icon("control-char"), "CTRL CH");
    button->setObjectName(parts.button);
    button->setAccessibleDescription("Shows or hides the control characters");
    auto* picker = new SymbolPicker(
        parts.array, [&windows = windows_, &program = program_, pick = parts.pick](int index) {
          windows.handle([&] { (program.*pick)(index); });
        });
    picker->setObjectName(parts.frame);
    auto* grid = static_cast<QGridLayout*>(pages[static_cast<std::size_t>(parts.tab)]->layout());
    const int below = grid->rowCount();
    grid->addWidget(button, 0, 1, Qt::AlignVCenter | Qt::AlignLeft);
    grid->addWidget(picker, below, 0, 1, 2, Qt::AlignLeft);
    grid->setColumnStretch(0, 1);
    connect(button, &QPushButton::clicked, this,
            [&windows = windows_, &program = program_, toggle = parts.toggle] {
              windows.handle([&] { (program.*toggle)(); });
            });
    windows_.view.bind([&record = parts.record] { return record.Visible; },
                       [picker](bool visible) { picker->setVisible(visible); });
  }
}

QHBoxLayout* MainWindow::make_buttons() {
  struct ButtonParts {
    const char* name;
    const char* caption;
    const char* tip;
    const char* picture;
    const Button& record;
    void (Program::*click)();
  };
  Form1& form1 = program_.forms.form1;
  auto* row = new QHBoxLayout;
  for (const ButtonParts& parts :
       {ButtonParts{"cmdReceive", "&Receive", "Receive the current setup", "receive",
                    form1.cmdReceive, &Program::cmdReceive_Click},
        ButtonParts{"cmdSend", "&Send", "Send setup to the scanner ", "send", form1.cmdSend,
                    &Program::cmdSend_Click},
        ButtonParts{"cmdFactory", "&Factory", "Restore the Factory Default setup", "factory",
                    form1.cmdFactory, &Program::cmdFactory_Click},
        ButtonParts{"cmdExit", "E&xit", "", "exit", form1.cmdExit, &Program::cmdExit_Click}}) {
    auto* button = new QPushButton(icon(parts.picture), parts.caption);
    button->setObjectName(parts.name);
    button->setToolTip(parts.tip);
    button->setIconSize({24, 24});
    button->setMinimumHeight(38);
    row->addWidget(button);
    windows_.view.bind([&record = parts.record] { return record.Enabled; },
                       [button](bool enabled) { button->setEnabled(enabled); });
    connect(button, &QPushButton::clicked, this,
            [&windows = windows_, &program = program_, click = parts.click] {
              windows.handle([&] { (program.*click)(); });
            });
  }
  return row;
}

QSize MainWindow::size_for_pages() const {
  QSize beyond_areas;
  for (const QScrollArea* area : findChildren<QScrollArea*>()) {
    beyond_areas =
        beyond_areas.expandedTo(area->widget()->minimumSizeHint() - area->minimumSizeHint());
  }
  const QMargins margins = centralWidget()->layout()->contentsMargins();
  const int tabs = findChild<QTabWidget*>("SSTab1")->minimumSizeHint().width();
  return {tabs + beyond_areas.width() + margins.left() + margins.right(),
          minimumSizeHint().height() + beyond_areas.height()};
}

void MainWindow::bind_geometry() {
  Form1& form1 = program_.forms.form1;
  windows_.view.bind(
      [&form1] {
        const Geometry& at = form1.geometry;
        return std::tuple(at.Left, at.Top, at.Width, at.Height);
      },
      [this](const auto& at) {
        const auto& [left, top, width, height] = at;
        // With larger type the pages need more, and a small screen still has to hold the buttons.
        const QRect room = screen()->availableGeometry();
        const QSize wanted = QSize(pixels(width), pixels(height)).expandedTo(size_for_pages());
        resize(wanted.boundedTo(room.size()));
        const QPoint grown((wanted.width() - pixels(width)) / 2,
                           (wanted.height() - pixels(height)) / 2);
        const QPoint corner = QPoint(pixels(left), pixels(top)) - grown;
        move(std::max(corner.x(), room.left()), std::max(corner.y(), room.top()));
      });
  windows_.view.bind([&form1]() -> const std::string& { return form1.Caption; },
                     [this](const std::string& caption) { setWindowTitle(to_qt(caption)); });
  windows_.view.bind([&form1] { return form1.Visible; },
                     [this](bool visible) { setVisible(visible); });
}

}  // namespace orvex
