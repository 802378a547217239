#include "aftermath.h"

#include "setup/apply.h"

namespace orvex::testing {

std::string left_behind(Desk& desk, const ScannerSetup& before) {
  std::string text = desk.panel(2).empty() ? "-" : desk.panel(2);
  if (!(desk.program.setup == before)) text += " record";
  if (!desk.line.is_open()) text += " closed";
  return text;
}

bool recovers(Desk& desk) {
  desk.scanner.faults = {};
  desk.line.to_scanner = desk.line.to_tool = {};
  desk.line.plug();
  if (desk.scanner.loading() || desk.scanner.waits_for_restart()) desk.scanner.restart();
  desk.windows.boxes.clear();
  desk.windows.idle(1min);  // 40,000 bytes take 42 s at 9600 Bps
  desk.press(&Program::mnuauto_Click);
  desk.press(&Program::cmdReceive_Click);
  ScannerSetup setup;
  Apply_Stream(setup, desk.scanner.parameters.frames(), [] {});
  return desk.windows.boxes.empty() && desk.panel(2).empty() && desk.program.setup == setup;
}

}  // namespace orvex::testing
