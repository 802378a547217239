#include "program/program.h"

#include <algorithm>
#include <utility>

#include "base/run_time_error.h"
#include "discovery/auto_baud.h"
#include "discovery/manual_port.h"
#include "link/port_store.h"
#include "setup/setup_jobs.h"
#include "setupfiles/setup_files.h"
#include "setupfiles/symbols.h"

namespace orvex {
namespace {

constexpr int led_offset = 30;

void centre(Geometry& geometry, const WindowSystem& windows) {
  geometry.Left = (windows.screen_width() - geometry.Width) / 2;
  geometry.Top = (windows.screen_height() - geometry.Height) / 2;
}

}  // namespace

Program::Program(WindowSystem& windows, Line& line, EngineFactory make_engine,
                 std::filesystem::path state_folder)
    : link_(windows, line, std::move(make_engine),
            [this](std::string_view tag, const std::string& reply) {
              work_on_reply(link_, setup, tag, reply);
            }),
      forms(link_.forms),
      state_folder_(std::move(state_folder)),
      upgrade_(link_, {[this] { orvex::mnuauto_Click(link_); }, [this] { receive_setup(link_); }}),
      exit_(windows, link_.MSComm1) {
  link_.MSComm1.FileProgress = [this](std::int32_t done) { upgrade_.FileProgress(done); };
  link_.MSComm1.Lost = [this](std::string_view why) { link_.exchange.explain_port(why); };
}

void Program::Main() {
  Load_Ini(link_.state, state_folder_);
  Form_Load();
  Form1& form1 = forms.form1;
  form1.geometry.Height = Form1_height;
  form1.geometry.Width = Form1_width;
  centre(form1.geometry, link_.windows);
  form1.SSTab1.Tab = 0;
  form1.FrameLED_offset = led_offset;
  form1.Visible = true;
  form1.Caption = application_title;
  link_.state.StartUpQuery = -1;
  exclusively([&] { link_.exchange.Send_Tag("<APP1RV:>"); });
  link_.state.StartUpQuery = 0;
}

void Program::Form_Load() {
  Form1& form1 = forms.form1;
  centre(form1.geometry, link_.windows);
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
  if (!link_.MSComm1.PortOpen() || address.empty()) return;
  enable_scanner_buttons(forms.form1, false);
  link_.windows.open_address(address);
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
  orvex::mnuopen_Click(link_.windows, setup);
}

void Program::mnusave_Click() {
  orvex::mnusave_Click(link_.windows, setup);
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
  exit_.stop_transfer();
  link_.windows.end();
}

void Program::Form_Unload() {
  exit_.close();
  link_.windows.end();
}

}  // namespace orvex
