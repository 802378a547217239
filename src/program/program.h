#pragma once

#include <filesystem>

#include "link/line_exit.h"
#include "link/scanner_link.h"
#include "setup/scanner_setup.h"
#include "upgrade/upgrade.h"

namespace orvex {

/// The tool, put together: the scanner link, the one ScannerSetup, and the handlers of all windows.
/// A handler that would start a second exchange or wait while one runs does nothing.
class Program {
  ScannerLink link_;

 public:
  /// `windows` and `line` must outlive the program. `state_folder` holds the port configuration
  /// file.
  Program(WindowSystem& windows, Line& line, EngineFactory make_engine,
          std::filesystem::path state_folder);

  /// The entry: reads the stored port, finds the scanner behind the splash window, shows the main
  /// window and asks for the revision of Application 1.
  void Main();

  // The handlers, under the names of their controls.
  void cmdSend_Click();
  void cmdReceive_Click();
  void cmdFactory_Click();
  void cmdWeb_Click();
  void cmdExit_Click() { Form_Unload(); }
  void cmdCtrlPre_Click();
  void cmdCtrlSuf_Click();
  void CharList_Click(int Index);
  void CharList2_Click(int Index);
  void Text10_KeyUp();
  void mnuopen_Click();
  void mnusave_Click();
  void mnuexit_Click();
  void mnuauto_Click();
  void mnumanual_Click();
  void mnuload_Click(int Index);
  /// The items of the menu "Table", by the tab they select.
  void mnuTable_Click(int tab) { forms.form1.SSTab1.Tab = tab; }
  void mnuabout_Click();
  void Command3_Click();        ///< OK of the About box
  void Form3_Command1_Click();  ///< cancel of the upload window
  void Form3_Close();           ///< the upload window's own close control
  void Form4_Command1_Click();  ///< "Open Port" of the manual dialog
  void Form4_Command2_Click();  ///< cancel of the manual dialog
  void Form4_Close();           ///< the manual dialog's own close control
  /// The main window's close: closes the port, unloads the windows and ends the process.
  void Form_Unload();

  Forms& forms;
  ScannerSetup setup;

 private:
  void Form_Load();
  void insert(Field field, Caret& box, int index);
  /// Runs a job on the line, unless one runs already.
  template <typename Job>
  void exclusively(Job&& job);

  std::filesystem::path state_folder_;
  Upgrade upgrade_;
  LineExit exit_;
  bool busy_ = false;
};

}  // namespace orvex
