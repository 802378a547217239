#include "testing/virtual/desk.h"

namespace orvex::testing {

void Desk::load(const std::string& image, bool fast) {
  form1().mnuload[5].Checked = fast;
  // Its time and rights go along in the offer, and shift all behind them.
  const auto path = folder.write("image.bin", image);
  const std::chrono::sys_seconds changed(1700000000s);
  std::filesystem::last_write_time(path, std::chrono::file_clock::from_sys(changed));
  std::filesystem::permissions(path, std::filesystem::perms{0644});
  windows.files = {path};
  windows.answers.push_front({Answer::yes});
  press(&Program::mnuload_Click, 2);
}

std::string Desk::buttons() {
  const auto letter = [](const Button& button, char c) { return button.Enabled ? c : '-'; };
  return {letter(form1().cmdSend, 'S'), letter(form1().cmdReceive, 'R'),
          letter(form1().cmdFactory, 'F'), letter(form1().cmdWeb, 'W')};
}

LinkDesk::LinkDesk() {
  MSComm1.PortOpen(true);
}

}  // namespace orvex::testing
