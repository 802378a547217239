#include "ui/program.h"

#include <algorithm>
#include <utility>

#include "discovery/auto_baud.h"
#include "discovery/manual_port.h"
#include "link/port_store.h"
#include "setup/setup_jobs.h"
#include "setupfiles/setup_files.h"
#include "setupfiles/symbols.h"
#include "window/run_time_error.h"

namespace orvex {
namespace {

constexpr int first_height = 7815;
constexpr int first_width = 8980;
constexpr int led_offset = 30;

void centre(Geometry& geometry, const WindowSystem& windows) {
  geometry.Left = (windows.screen_width() - geometry.Width) / 2;
  geometry.Top = (windows.screen_height() - geometry.Height) / 2;
}

}  // namespace

Program::Program(WindowSystem& windows, Line& line, EngineFactory make_engine,
                 std::filesystem::path state_folder)
    : forms{Form1(windows, [this] { state_.TimedOut = 1; }), {}, {}, {}},
      windows_(windows),
      state_folder_(std::move(state_folder)),
      MSComm1_(windows, line, std::move(make_engine)),
      exchange_(windows, forms.form1, state_, MSComm1_,
                [this](std::string_view tag, const std::string& reply) {
                  work_on_reply(link_, setup, tag, reply);
                }),
      link_{windows, forms, state_, MSComm1_, exchange_},
      upgrade_(link_, {[this] { orvex::mnuauto_Click(link_); }, [this] { receive_setup(link_); }}),
      drain_(windows, [] {}) {
  windows.schedule(forms.form1.Timer1);
  windows.schedule(MSComm1_);
  windows.schedule(drain_);
  MSComm1_.Receive = [this] {
    try {
      exchange_.Read_Port(2);
    } catch (const RunTimeError&) {
      // Who waits for these characters meets the failure itself.
    }
  };
  MSComm1_.FileProgress = [this](std::int32_t done) { upgrade_.FileProgress(done); };
}

void Program::Main() {
  Load_Ini(state_, state_folder_);
  Form_Load();
  Form1& form1 = forms.form1;
  form1.geometry.Height = first_height;
  form1.geometry.Width = first_width;
  centre(form1.geometry, windows_);
  form1.SSTab1.Tab = 0;
  form1.FrameLED_offset = led_offset;
  form1.Visible = true;
  form1.Caption = application_title;
  state_.StartUpQuery = -1;
  exclusively([&] { exchange_.Send_Tag("<APP1RV:>"); });
  state_.StartUpQuery = 0;
}

void Program::Form_Load() {
  Form1& form1 = forms.form1;
  centre(form1.geometry, windows_);
  form1.cmdSend.Enabled = form1.cmdReceive.Enabled = form1.cmdFactory.Enabled = false;
  mnuauto_Click();
}

template <typename Job>
void Program::exclusively(Job&& job) {
  if (busy_ || upgrade_.active()) return;
  busy_ = true;
  try {
    job();
  } catch (...) {
    busy_ = false;
    throw;
  }
  busy_ = false;
}

void Program::cmdSend_Click() {
  exclusively([&] { send_setup(link_, setup); });
}

void Program::cmdReceive_Click() {
  exclusively([&] { receive_setup(link_); });
}

void Program::cmdFactory_Click() {
  exclusively([&] { factory_default(link_); });
}

void Program::cmdWeb_Click() {
  const std::string& address = forms.form1.labWeb.Caption;
  if (!MSComm1_.PortOpen() || address.empty()) return;
  enable_scanner_buttons(forms.form1, false);
  windows_.open_address(address);
  enable_scanner_buttons(forms.form1, true);
}

void Program::cmdCtrlPre_Click() {
  bool& visible = forms.form1.Symbol1.Visible;
  visible = !visible;
}

void Program::cmdCtrlSuf_Click() {
  bool& visible = forms.form1.Symbol2.Visible;
  visible = !visible;
}

void Program::CharList_Click(int Index) {
  forms.form1.Symbol1.Visible = false;
  insert(Field::PREFIX, forms.form1.Text2, Index);
}

void Program::CharList2_Click(int Index) {
  forms.form1.Symbol2.Visible = false;
  insert(Field::SUFFIX, forms.form1.Text3, Index);
}

void Program::insert(Field field, Caret& box, int index) {
  const auto symbols = control_symbols();
  const auto symbol = std::ranges::find(symbols, index, &ControlSymbol::index);
  if (symbol != symbols.end()) Insert_Symbol(setup.text(field), box, symbol->name);
}

void Program::Text10_KeyUp() {
  auto& text = setup.text(Field::RSDELY);
  text = digits_only(text);
}

void Program::mnuopen_Click() {
  orvex::mnuopen_Click(windows_, setup);
}

void Program::mnusave_Click() {
  orvex::mnusave_Click(windows_, setup);
}

void Program::mnuauto_Click() {
  exclusively([&] { orvex::mnuauto_Click(link_); });
}

void Program::mnumanual_Click() {
  orvex::mnumanual_Click(link_);
}

void Program::mnuload_Click(int Index) {
  constexpr int mark = 5;
  if (Index == mark) {
    upgrade_.mnuload_Click(Index);
  } else {
    exclusively([&] { upgrade_.mnuload_Click(Index); });
  }
}

void Program::mnuabout_Click() {
  load_form2(link_);
  Form2& form2 = forms.form2;
  form2.Command3.Visible = true;
  form2.Label2.Visible = form2.Label3.Visible = false;
  form2.Modal = form2.Visible = true;
}

void Program::Command3_Click() {
  lay_out_for_scan(forms.form2);
  forms.form2.Visible = false;
}

void Program::Form3_Command1_Click() {
  upgrade_.Command1_Click();
}

void Program::Form3_Close() {
  upgrade_.close();
}

void Program::Form4_Command1_Click() {
  exclusively([&] { open_port_by_hand(link_); });
}

void Program::Form4_Command2_Click() {
  leave_manual_dialog(link_);
}

void Program::Form4_Close() {
  close_manual_dialog(link_);
}

void Program::mnuexit_Click() {
  stop_transfer();
  windows_.end();
}

void Program::stop_transfer() {
  if (!MSComm1_.FileSendOn()) return;
  MSComm1_.FileSendOn(false);
  // The cancel sequence has 150 ms to leave the machine: 18 bytes at 1200 Bps.
  constexpr int most_looks = 15;
  drain_.Interval(10);
  drain_.Enabled(true);
  for (int look = 0; look < most_looks && MSComm1_.OutBufferCount() > 0; ++look) {
    windows_.pump(Wait::for_event);
  }
  drain_.Enabled(false);
}

void Program::Form_Unload() {
  stop_transfer();
  try {
    MSComm1_.PortOpen(false);
  } catch (const RunTimeError&) {
    // The process ends, and the port with it.
  }
  windows_.end();
}

}  // namespace orvex
