#include "discovery/manual_port.h"

#include <optional>
#include <string>

#include "base/attempts.h"
#include "link/port_store.h"

namespace orvex {
namespace {

constexpr int answer_wait_ms = 1000;

void load(Form4& form4) {
  form4 = Form4{};
  form4.Loaded = true;
  form4.Combo1 = {Combo1_list[0], 0};
  form4.Combo2 = {"9600", -1};
  form4.Combo3 = {"NONE", -1};
}

void take_parity(const ComboBox& Combo3, std::string& TryParity) {
  if (Combo3.ListIndex == 0 || Combo3.Text == "NONE") {
    TryParity = "N";
  } else if (Combo3.ListIndex == 1) {
    TryParity = "O";
  } else if (Combo3.ListIndex == 2) {
    TryParity = "E";
  }
}

/// Why one of the steps up to the reversed port has failed, none if each has worked.
std::optional<std::string> set_up_port(ScannerLink& link) {
  const Form4& form4 = link.forms.form4;
  SerialControl& MSComm1 = link.MSComm1;
  Attempts number, settings, port;
  take_parity(form4.Combo3, link.state.TryParity);
  number([&] { MSComm1.CommPort(form4.Combo1.ListIndex + 1); });
  settings([&] { MSComm1.Settings(form4.Combo2.Text + "," + link.state.TryParity + ",8,1"); });
  port([&] { MSComm1.PortOpen(!MSComm1.PortOpen()); });
  if (number.failed()) return "There is no such port";
  if (port.failed()) return MSComm1.about_port(port.failure()->text);
  if (settings.failed()) return "The port doesn't take this rate";
  return std::nullopt;
}

void tell_unavailable(ScannerLink& link, const std::string& cause) {
  link.windows.MsgBox({.text = "Port is not available", .icon = Icon::exclamation});
  link.exchange.show_closed_port(cause);
}

}  // namespace

bool scanner_answers(ScannerLink& link) {
  Attempts attempts;
  link.windows.pump(Wait::no);
  attempts([&] { link.exchange.empty_receive_side(); });
  attempts([&] { link.exchange.send_ping(); });
  link.state.TimedOut = 0;
  link.forms.form1.Timer1.Interval(answer_wait_ms);
  link.forms.form1.Timer1.Enabled(true);
  return link.exchange.wait_for_ping(attempts) && link.MSComm1.PortOpen();
}

namespace {

void store_port(ScannerLink& link) {
  PortState& state = link.state;
  const SerialControl& MSComm1 = link.MSComm1;
  if (MSComm1.CommPort() == stored_port(state.PortCom) && MSComm1.Settings() == state.PortSet) {
    return;
  }
  // A file that can't be written is no reason to forget the port that works.
  (void)save_ini(state, MSComm1.CommPort(), MSComm1.Settings());
  state.PortCom = std::to_string(MSComm1.CommPort());
  state.PortSet = MSComm1.Settings();
}

}  // namespace

void mnumanual_Click(ScannerLink& link) {
  Form4& form4 = link.forms.form4;
  if (!form4.Loaded) load(form4);
  for (std::size_t item = 0; item < form4.Combo1_tips.size(); ++item) {
    form4.Combo1_tips[item] = link.MSComm1.device_path(static_cast<int>(item) + 1);
  }
  form4.Visible = true;
}

void open_port_by_hand(ScannerLink& link) {
  Form1& form1 = link.forms.form1;
  enable_scanner_buttons(form1, false);
  if (const auto cause = set_up_port(link)) {
    tell_unavailable(link, *cause);
    return;
  }
  link.exchange.show_port_line();
  form1.FrameLED = Indicator::imgConnected;
  Attempts reopen;
  if (!link.MSComm1.PortOpen()) reopen([&] { link.MSComm1.PortOpen(true); });
  if (reopen.failed()) link.exchange.explain_port(reopen.failure()->text);
  if (scanner_answers(link)) {
    link.exchange.show_port_line();
    store_port(link);
  }
  enable_scanner_buttons(form1, true);
  leave_manual_dialog(link);
}

void leave_manual_dialog(ScannerLink& link) {
  link.forms.form4.Visible = false;
}

void close_manual_dialog(ScannerLink& link) {
  link.forms.form4 = Form4{};
}

}  // namespace orvex
