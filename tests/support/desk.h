#pragma once

#include <functional>
#include <string>
#include <utility>

#include "setup/setup_jobs.h"
#include "simulator/scanner.h"
#include "support/raw_transfer.h"
#include "support/temporary_folder.h"
#include "support/virtual_line.h"
#include "support/virtual_windows.h"
#include "ui/program.h"
#include "upgrade/image_source.h"

namespace orvex::test {

/// All that stands around the tool: the window system, the line, the scanner, a folder for files.
struct Surroundings {
  /// Without a loader of its own the scanner takes files by the raw transfer.
  explicit Surroundings(simulator::MakeLoader make_loader = {})
      : scanner(
            {},
            make_loader ? std::move(make_loader) : [this](Time) { return raw_loader(transfer); }) {}

  EngineFactory raw_engine() {
    return [this](const std::filesystem::path& path, int, Time) {
      return raw_sender(open_image(path), transfer);
    };
  }
  Time now() const { return windows.now(); }

  VirtualWindows windows;
  RawTransfer transfer;
  simulator::Scanner scanner;
  VirtualLine line{windows, scanner};
  TemporaryFolder folder;
};

/// The whole tool at a scanner.
struct Desk : Surroundings {
  Desk() : program(windows, line, raw_engine(), folder.path()) {}
  /// With another file-transfer protocol at both ends.
  Desk(EngineFactory engine, simulator::MakeLoader make_loader)
      : Surroundings(std::move(make_loader)),
        program(windows, line, std::move(engine), folder.path()) {}

  /// Starts the tool; the scanner has been found or the script's user has given up.
  void start() { press(&Program::Main); }
  /// Lets the user work a control to the end of all that it starts.
  template <typename... Arguments>
  void press(void (Program::*handler)(Arguments...), Arguments... arguments) {
    windows.handle([&] { (program.*handler)(arguments...); });
  }
  Form1& form1() { return program.forms.form1; }
  const std::string& panel(int number) { return form1().sbrStatus.Panels[number]; }
  /// Enabled buttons out of send, receive, factory and web, as "SRFW"; "-" for a disabled one.
  std::string buttons() {
    const auto letter = [](const Button& button, char c) { return button.Enabled ? c : '-'; };
    return {letter(form1().cmdSend, 'S'), letter(form1().cmdReceive, 'R'),
            letter(form1().cmdFactory, 'F'), letter(form1().cmdWeb, 'W')};
  }

  Program program;
};

/// The link alone, with every part in reach and the port open at 9600.
struct Bench : Surroundings {
  Bench() {
    windows.schedule(forms.form1.Timer1);
    windows.schedule(MSComm1);
    MSComm1.Receive = [this] { exchange.Read_Port(2); };
    MSComm1.PortOpen(true);
  }

  PortState state;
  Forms forms{Form1(windows, [this] { state.TimedOut = 1; }), {}, {}, {}};
  ScannerSetup setup;
  SerialControl MSComm1{windows, line, raw_engine()};
  Exchange exchange{windows, forms.form1, state, MSComm1,
                    [this](std::string_view tag, const std::string& reply) {
                      work_on_reply(link, setup, tag, reply);
                    }};
  ScannerLink link{windows, forms, state, MSComm1, exchange};
};

}  // namespace orvex::test
