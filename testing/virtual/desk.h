#pragma once

#include <string>

#include "program/program.h"
#include "setup/setup_jobs.h"
#include "simulator/scanner.h"
#include "testing/virtual/loading.h"
#include "testing/virtual/temporary_folder.h"
#include "testing/virtual/virtual_line.h"
#include "testing/virtual/virtual_windows.h"

namespace orvex::testing {

/// All that stands around the tool: the window system, the line, a scanner that takes firmware and
/// comes up with it, a folder for files.
struct Surroundings {
  Surroundings() { scanner.options.restarts_itself = true; }
  Time now() const { return windows.now(); }

  VirtualWindows windows;
  Loading loading;
  simulator::Scanner scanner{{}, loading.loader()};
  VirtualLine line{windows, scanner};
  TemporaryFolder folder;
};

/// The whole tool at a scanner.
struct Desk : Surroundings {
  /// Starts the tool; the scanner has been found or the script's user has given up.
  void start() { press(&Program::Main); }
  /// Lets the user work a control to the end of all that it starts.
  template <typename... Arguments>
  void press(void (Program::*handler)(Arguments...), Arguments... arguments) {
    windows.handle([&] { (program.*handler)(arguments...); });
  }
  /// A load from the menu to the return of the click, with Yes to the first question.
  void load(const std::string& image, bool fast);

  Form1& form1() { return program.forms.form1; }
  const std::string& panel(int number) { return form1().sbrStatus.Panels[number]; }
  /// Enabled buttons out of send, receive, factory and web, as "SRFW"; "-" for a disabled one.
  std::string buttons();

  Program program{windows, line, loading.sender(), folder.path()};
};

/// The link alone, with every part in reach and the port open at 9600.
struct LinkDesk : Surroundings {
  LinkDesk();

  ScannerSetup setup;
  ScannerLink link{windows, line, loading.sender(),
                   [this](std::string_view tag, const std::string& reply) {
                     work_on_reply(link, setup, tag, reply);
                   }};
  PortState& state = link.state;
  Forms& forms = link.forms;
  SerialControl& MSComm1 = link.MSComm1;
  Exchange& exchange = link.exchange;
};

}  // namespace orvex::testing
