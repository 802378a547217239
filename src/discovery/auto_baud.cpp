#include "discovery/auto_baud.h"

#include <array>
#include <string>

#include "base/attempts.h"
#include "link/port_store.h"

namespace orvex {
namespace {

constexpr int answer_wait_ms = 500;
constexpr std::array<std::string_view, 8> rates{"  9600,", " 19200,", "115200,", " 57600,",
                                                " 38400,", "  4800,", "  2400,", "  1200,"};

enum class Exit { closed, found, failed };

/// One pass over the rates, and the windows around it.
class Scan {
 public:
  explicit Scan(ScannerLink& link)
      : link_(link), form1_(link.forms.form1), form2_(link.forms.form2) {}

  void run() {
    enable_menus(false);
    form1_.SSTab1.Enabled = false;
    if (link_.state.TryParity.empty()) link_.state.TryParity = "N";
    Exit exit = pass();
    while (exit == Exit::failed && wants_retry()) exit = pass();
    if (exit == Exit::closed) leave_closed();
    if (exit == Exit::failed) leave_cancelled();
    enable_menus(true);
  }

 private:
  void enable_menus(bool enabled) {
    form1_.mnuauto.Enabled = form1_.mnumanual.Enabled = form1_.mnuabout.Enabled = enabled;
  }

  Exit pass() {
    open_port();
    if (!link_.MSComm1.PortOpen()) return Exit::closed;
    link_.exchange.show_port_line();
    form1_.FrameLED = Indicator::imgConnected;
    link_.state.TimedOut = 0;
    form1_.Timer1.Interval(answer_wait_ms);
    load_form2(link_);
    lay_out_for_scan(form2_);  // the end of an upload may find it as the About box
    form2_.Visible = true;
    attempts_([&] { link_.exchange.empty_receive_side(); });
    for (const auto rate : rates) {
      if (!answers_at(rate)) continue;
      found();
      return Exit::found;
    }
    return Exit::failed;
  }

  void open_port() {
    const int port = stored_port(link_.state.PortCom);
    if (port != 0) {
      attempts_([&] { link_.MSComm1.CommPort(port); });
    } else {
      link_.windows.MsgBox({.text = "Invalid port number"});
    }
    attempts_([&] { link_.MSComm1.PortOpen(false); });
    attempts_([&] { link_.MSComm1.PortOpen(true); });
    if (!attempts_.failed()) return;
    link_.windows.MsgBox({.text = "Port is not available at COM:" + link_.state.PortCom +
                                  "\rYou can change the port settings from\r"
                                  "PC Port Setting -> Manual Baud Setting...\r"});
  }

  bool answers_at(std::string_view rate) {
    PortState& state = link_.state;
    set_line(std::string(rate) + state.TryParity + ",8,1");
    link_.windows.pump(Wait::no);
    state.RxAccum.clear();
    attempts_([&] { state.ReplyText = link_.exchange.Read_Port(1); });
    form2_.Label3.Caption = rate.substr(0, 6);
    form2_.Label2.Caption = "COM:" + std::to_string(link_.MSComm1.CommPort()) + " at";
    state.ReplyText.clear();
    state.TimedOut = 0;
    form1_.Timer1.Enabled(true);
    attempts_([&] { link_.exchange.send_ping(); });
    return link_.exchange.wait_for_ping(attempts_);
  }

  /// The ticks measure the scanner's time: what another machine needs to set the line is not in it.
  void set_line(const std::string& settings) {
    const Time began = link_.windows.now();
    const auto tick = form1_.Timer1.due();
    Time waited{};
    attempts_([&] { waited = link_.MSComm1.Settings(settings); });
    if (tick && waited > Time{}) form1_.Timer1.tick_at(*tick - began + link_.windows.now());
  }

  void found() {
    form2_.Visible = false;
    form1_.cmdSend.Enabled = form1_.cmdReceive.Enabled = form1_.cmdFactory.Enabled = true;
    form1_.SSTab1.Enabled = true;
    link_.exchange.show_port_line();
    attempts_([&] { link_.MSComm1.InputLen(0); });
  }

  bool wants_retry() {
    return link_.windows.MsgBox({.text = "Connection Failed", .buttons = Buttons::retry_cancel}) ==
           Answer::retry;
  }

  void leave_closed() {
    const auto& failure = attempts_.failure();
    link_.exchange.show_closed_port(link_.MSComm1.about_port(failure ? failure->text : "closed"));
  }

  void leave_cancelled() {
    if (link_.MSComm1.PortOpen()) link_.exchange.explain_port("closed");
    attempts_([&] { link_.MSComm1.PortOpen(false); });
    form1_.SSTab1.Enabled = true;
    form1_.cmdSend.Enabled = form1_.cmdReceive.Enabled = form1_.cmdFactory.Enabled = false;
    form1_.cmdWeb.Enabled = true;
    form2_.Visible = false;
  }

  ScannerLink& link_;
  Form1& form1_;
  Form2& form2_;
  Attempts attempts_;
};

}  // namespace

void mnuauto_Click(ScannerLink& link) {
  Scan(link).run();
}

void lay_out_for_scan(Form2& form2) {
  form2.Modal = form2.Command3.Visible = false;
  form2.Label2.Visible = form2.Label3.Visible = true;
}

void load_form2(ScannerLink& link) {
  Form2& form2 = link.forms.form2;
  if (form2.Loaded) return;
  form2.Loaded = true;
  form2.Label1.Caption = application_title;
}

}  // namespace orvex
