#include "qt/menus.h"

#include <QAction>
#include <QMenu>
#include <functional>

namespace orvex {
namespace {

class Menus {
 public:
  Menus(QtWindows& windows, QMenuBar& bar) : windows_(windows), bar_(bar) {}

  void menu(const char* name, const char* caption) {
    menu_ = bar_.addMenu(caption);
    menu_->setObjectName(name);
  }

  void separator(const char* name) { menu_->addSeparator()->setObjectName(name); }

  /// An item without a record of its own is never disabled.
  QAction* item(const char* name, const char* caption, std::function<void()> click,
                const MenuItem* record = nullptr) {
    QAction* action = menu_->addAction(caption);
    action->setObjectName(name);
    QtWindows& windows = windows_;
    QObject::connect(action, &QAction::triggered, &windows,
                     [&windows, click = std::move(click)] { windows.handle(click); });
    if (record != nullptr) {
      windows_.view.bind([record] { return record->Enabled; },
                         [action](bool enabled) { action->setEnabled(enabled); });
    }
    return action;
  }

  void mark(QAction* action, const MenuItem& record) {
    action->setCheckable(true);
    // The toolkit turns the mark over by itself before the handler does.
    windows_.view.always([action, &record] { action->setChecked(record.Checked); });
  }

 private:
  QtWindows& windows_;
  QMenuBar& bar_;
  QMenu* menu_ = nullptr;
};

struct TabItem {
  const char* name;
  const char* caption;
};

constexpr TabItem tab_items[]{
    {"mnuSend", "Revision &Numbers"},
    {"mnuPower", "P&ower Saving"},
    {"mnuRs232", "&RS232"},
    {"mnuSpeaker", "Speaker &Volume"},
    {"mnuPrefix", "&Prefix"},
    {"mnuSuffix", "&Suffix"},
    {"mnuLinear", "&Linear Codes"},
    {"mnuPDF417", "P&DF417"},
    {"mnuMagnetic", "&Magnetic Stripe"},
};

}  // namespace

void add_menus(QtWindows& windows, Program& program, QMenuBar& bar) {
  Form1& form1 = program.forms.form1;
  Menus menus(windows, bar);

  menus.menu("mnufile", "&File");
  menus.item("mnuopen", "&Open Setup...", [&] { program.mnuopen_Click(); });
  menus.item("mnusave", "&Save SetUp As...", [&] { program.mnusave_Click(); });
  menus.separator("mnusep1");
  menus.item("mnuexit", "&Exit", [&] { program.mnuexit_Click(); });

  menus.menu("mnuSearchS", "&PC Port Setting");
  menus.item(
      "mnuauto", "&Auto Baud Detect", [&] { program.mnuauto_Click(); }, &form1.mnuauto);
  menus.item(
      "mnumanual", "&Manual Baud Setting...", [&] { program.mnumanual_Click(); }, &form1.mnumanual);

  menus.menu("mnuupgrade", "&Upgrade");
  menus.item("mnuload(2)", "Load Application &1 File into ROM...",
             [&] { program.mnuload_Click(2); });
  menus.separator("mnuload(4)");
  menus.mark(
      menus.item("mnuload(5)", "Auto Fast Load @ 115200 Bps", [&] { program.mnuload_Click(5); }),
      form1.mnuload.at(5));

  menus.menu("mnuTable", "&Table");
  int tab = 0;
  for (const TabItem& entry : tab_items) {
    menus.item(entry.name, entry.caption, [&program, tab] { program.mnuTable_Click(tab); });
    ++tab;
  }

  menus.menu("mnuhelp", "&Help");
  menus.item("mnutech", "&Support...", [] {})->setEnabled(false);
  menus.item(
      "mnuabout", "&About Orvex...", [&] { program.mnuabout_Click(); }, &form1.mnuabout);
}

}  // namespace orvex
