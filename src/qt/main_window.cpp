#include "qt/main_window.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTabBar>
#include <QVBoxLayout>
#include <tuple>
#include <utility>

#include "loop/text.h"
#include "qt/menus.h"
#include "qt/page.h"
#include "qt/picker_button.h"
#include "qt/pictures.h"
#include "qt/revision_tab.h"
#include "qt/screen_room.h"
#include "qt/setup_tabs.h"
#include "qt/side_tabs.h"
#include "qt/status_bar.h"

namespace orvex {
namespace {

/// What styles put above and below a page besides its frame, in pixels.
constexpr int above_and_below_page = 8;

constexpr std::size_t prefix_tab = 4;
constexpr std::size_t suffix_tab = 5;

/// What Shift+F1 shows; the tool tips are short.
void explain_buttons(const QWidget& window) {
  constexpr std::pair<const char*, const char*> explanations[]{
      {"cmdReceive",
       "Reads the scanner's setup into the tabs. Until then they show initial values."},
      {"cmdSend",
       "Receive, change, Send: this writes all that the tabs show into the scanner. Without a "
       "Receive before, these are initial values, not the scanner's."},
      {"cmdFactory",
       "Puts the scanner back to its factory setup, without a question, and reads it."}};
  for (const auto& [button, text] : explanations) {
    window.findChild<QWidget*>(button)->setWhatsThis(text);
  }
}

}  // namespace

MainWindow::MainWindow(QtWindows& windows, Program& program)
    : windows_(windows), program_(program), focus_keeper_(*this) {
  setObjectName("Form1");
  windows.view.always([this] { focus_keeper_.before_draw(); });
  add_menus(windows, program, *menuBar());
  auto* centre = new QWidget;
  auto* column = new QVBoxLayout(centre);
  column->addWidget(make_tabs(), 1);
  column->addLayout(make_buttons());
  setCentralWidget(centre);
  explain_buttons(*centre);
  setStatusBar(new StatusBarView(windows, program.forms.form1));
  bind_geometry();
  windows.view.always([this] { focus_keeper_.after_draw(); });
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  windows_.handle([this] { program_.Form_Unload(); });
}

QWidget* MainWindow::make_tabs() {
  auto* tabs = new SideTabs;
  tabs->setObjectName("SSTab1");
  std::vector<Page*> pages;
  for (const auto caption : tab_captions) {
    pages.push_back(new Page);
    tabs->addTab(pages.back(), to_qt(caption));
  }
  add_revision_tab(windows_, program_, *pages[0]);
  const SetupTabs setup_tabs(windows_, program_, pages);
  add_prefix_picker(windows_, program_, *pages[prefix_tab]);
  add_suffix_picker(windows_, program_, *pages[suffix_tab]);
  for (Page* page : pages) page->close_grid();

  Form1& form1 = program_.forms.form1;
  windows_.view.bind([&form1] { return form1.SSTab1.Tab; },
                     [tabs](int tab) { tabs->setCurrentIndex(tab); });
  windows_.view.bind([&form1] { return form1.SSTab1.Enabled; },
                     [tabs](bool enabled) { tabs->setEnabled(enabled); });
  connect(tabs, &QTabWidget::currentChanged, this,
          [this](int tab) { windows_.handle([&] { program_.forms.form1.SSTab1.Tab = tab; }); });
  return tabs;
}

QHBoxLayout* MainWindow::make_buttons() {
  struct ButtonParts {
    const char* name;
    const char* caption;
    const char* tip;
    const char* picture;
    const Button* record;  // none if it is never disabled
    void (Program::*click)();
  };
  Form1& form1 = program_.forms.form1;
  auto* row = new QHBoxLayout;
  for (const ButtonParts& parts :
       {ButtonParts{"cmdReceive", "&Receive", "Receive the current setup", "receive",
                    &form1.cmdReceive, &Program::cmdReceive_Click},
        ButtonParts{"cmdSend", "&Send", "Send setup to the scanner ", "send", &form1.cmdSend,
                    &Program::cmdSend_Click},
        ButtonParts{"cmdFactory", "&Factory", "Restore the Factory Default setup", "factory",
                    &form1.cmdFactory, &Program::cmdFactory_Click},
        ButtonParts{"cmdExit", "E&xit", "", "exit", nullptr, &Program::cmdExit_Click}}) {
    auto* button = new QPushButton(icon(parts.picture), parts.caption);
    button->setObjectName(parts.name);
    button->setToolTip(parts.tip);
    button->setIconSize({24, 24});
    button->setMinimumHeight(38);
    row->addWidget(button);
    if (parts.record != nullptr) {
      windows_.view.bind([record = parts.record] { return record->Enabled; },
                         [button](bool enabled) { button->setEnabled(enabled); });
    }
    connect(button, &QPushButton::clicked, this,
            [&windows = windows_, &program = program_, click = parts.click] {
              windows.handle([&] { (program.*click)(); });
            });
  }
  return row;
}

QSize MainWindow::size_for_pages() const {
  const auto* tabs = findChild<QTabWidget*>("SSTab1");
  QSize page;
  for (const auto* area : findChildren<QScrollArea*>()) {
    page = page.expandedTo(area->widget()->minimumSizeHint());
  }
  const int frame = 2 * style()->pixelMetric(QStyle::PM_DefaultFrameWidth);
  const QMargins margins = centralWidget()->layout()->contentsMargins();
  const int around = minimumSizeHint().height() - tabs->minimumSizeHint().height();
  return {
      tabs->tabBar()->sizeHint().width() + page.width() + frame + margins.left() + margins.right(),
      page.height() + frame + above_and_below_page + around};
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
        const QRect room = room_on(*screen());
        const QRect usual(pixels(left), pixels(top), pixels(width), pixels(height));
        QRect wanted({}, usual.size().expandedTo(size_for_pages()).boundedTo(room.size()));
        wanted.moveCenter(usual.center());
        resize(wanted.size());
        move(place_in(room, wanted));
      });
  windows_.view.bind([&form1]() -> const std::string& { return form1.Caption; },
                     [this](const std::string& caption) { setWindowTitle(to_qt(caption)); });
  windows_.view.bind([&form1] { return form1.Visible; },
                     [this](bool visible) { setVisible(visible); });
}

}  // namespace orvex
