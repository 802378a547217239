#include "upgrade/upgrade.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "base/attempts.h"
#include "base/run_time_error.h"
#include "upgrade/guards.h"

namespace orvex {
namespace {

constexpr int load_item = 2;
constexpr int fast_load_item = 5;
constexpr std::string_view load_tag = "<A1CODE=Z>";
constexpr FileDialog dialog{"Select a BIN file", "All files", "BIN Files (*.bin)"};

constexpr int animation_ms = 100;
constexpr int verdict_ms = 7000;
constexpr int watch_ms = 1000;
constexpr int animation_cells = 18;

MessageBox box_for(const RunTimeError& error) {
  switch (error.number) {
    case error_number::file_already_open:
      return {.text = "Cannot copy an open file. Close it and try again.",
              .icon = Icon::information,
              .title = "Note"};
    case error_number::disk_not_ready:
    case error_number::path_not_found:
      return {.text = "Cannot open the drive", .icon = Icon::information, .title = "Note"};
    default:
      return {.text = "Error # " + std::to_string(error.number) + " " + error.text,
              .icon = Icon::critical,
              .title = "Error"};
  }
}

}  // namespace

/// What the events of a load do in one of its phases; none if they do nothing.
struct Upgrade::Moves {
  Move cancelled = nullptr;      ///< the user has said Yes to the cancel
  Move closed = nullptr;         ///< Form3 was closed by its close control
  Move failed = nullptr;         ///< an error came to the trap
  Move transfer_over = nullptr;  ///< Timer3 finds that the transfer has ended
  Move verdict_due = nullptr;    ///< Timer2
};

const Upgrade::Moves& Upgrade::moves() const {
  using U = Upgrade;
  static constexpr Moves before_exchange{&U::cancel, &U::Form_Unload, &U::Form_Unload};
  static constexpr Moves in_exchange{&U::leave, &U::Form_Unload, &U::Form_Unload};
  // A transfer that could not begin is watched already, so the verdict ends it.
  static constexpr Moves watched{&U::cancel, &U::Form_Unload, nullptr, &U::settle};
  static constexpr Moves settled{&U::cancel, &U::Form_Unload, nullptr, nullptr, &U::judge};
  static constexpr Moves on_the_way_out{.closed = &U::hide};
  static constexpr Moves none{};
  switch (phase_) {
    case LoadPhase::head_shown:
      return before_exchange;
    case LoadPhase::asking:
    case LoadPhase::preparing:
      return in_exchange;
    case LoadPhase::transferring:
      return watched;
    case LoadPhase::settling:
      return settled;
    case LoadPhase::left:
    case LoadPhase::cancelling:
      return on_the_way_out;
    case LoadPhase::idle:
    case LoadPhase::restarting:
      break;
  }
  return none;
}

void Upgrade::make(Move move) {
  if (move != nullptr) (this->*move)();
}

Upgrade::Upgrade(ScannerLink& link, Jobs after_load)
    : link_(link),
      after_load_(std::move(after_load)),
      Timer1_(link.windows, [this] { runtop(); }),
      Timer2_(link.windows, [this] { make(moves().verdict_due); }),
      Timer3_(link.windows, [this] {
        if (!link_.MSComm1.FileBusy()) make(moves().transfer_over);
      }) {
  Timer1_.Interval(animation_ms);
  Timer2_.Interval(verdict_ms);
  for (Timer* timer : {&Timer1_, &Timer2_, &Timer3_}) link.windows.schedule(*timer);
}

void Upgrade::mnuload_Click(int Index) {
  if (Index == fast_load_item) {
    bool& mark = link_.forms.form1.mnuload[fast_load_item].Checked;
    mark = !mark;
    return;
  }
  if (Index != load_item) return;
  const auto path = link_.windows.show_open(dialog);
  if (!path || path->empty()) return;
  try {
    load_image(*path);
  } catch (const RunTimeError& error) {
    make(moves().failed);
    link_.windows.MsgBox(box_for(error));
  }
}

void Upgrade::Command1_Click() {
  if (moves().cancelled == nullptr) return;
  const auto answer = link_.windows.MsgBox({.text = "Do you want to CANCEL the file transfer?",
                                            .buttons = Buttons::yes_no,
                                            .title = "Abort file transfer...",
                                            .owner = Owner::upload_window,
                                            .refuses_by_default = true});
  if (answer == Answer::yes) make(moves().cancelled);
}

void Upgrade::close() {
  make(moves().closed);
}

void Upgrade::FileProgress(std::int32_t done) {
  Form3& form3 = link_.forms.form3;
  if (!form3.Visible) return;
  ProgressBar& bar = form3.ProgressBar1;
  bar.Visible = true;
  bar.Min = 0;
  bar.Max = static_cast<float>(std::max(link_.MSComm1.FileTotal(), 1));
  bar.Value = std::min(static_cast<float>(done), bar.Max);
  // Above 16 MiB a float may take one byte less for all.
  if (done < link_.MSComm1.FileTotal() && bar.Value >= bar.Max) {
    bar.Value = std::nextafter(bar.Max, 0.0F);
  }
}

void Upgrade::load_image(const std::filesystem::path& path) {
  const auto header = Read_Image_Header(path);
  if (!header) return;
  show_form3(*header);
  const auto answer = link_.windows.MsgBox({.text = "Do You Want to Update the ROM?",
                                            .buttons = Buttons::yes_no,
                                            .title = "Application 1 File into ROM...",
                                            .owner = Owner::upload_window});
  if (phase_ != LoadPhase::head_shown) return;
  if (answer == Answer::yes) {
    prepare_and_start(path);
  } else {
    Form_Unload();
  }
}

void Upgrade::show_form3(const ImageHeader& header) {
  Form_Load();
  Form3& form3 = link_.forms.form3;
  form3.Text1 = " " + header.CodeSize;
  form3.Text2 = " " + header.CodeCrc;
  form3.Text3 = " " + header.CodeVersion;
  form3.Text4 = " " + header.CodeDate;
  form3.ProgressBar1.Visible = false;
  form3.Visible = true;
}

void Upgrade::Form_Load() {
  link_.forms.form3 = Form3{};
  phase_ = LoadPhase::head_shown;
  SavedRThreshold_ = link_.MSComm1.RThreshold();
  SavedSThreshold_ = link_.MSComm1.SThreshold();
  link_.MSComm1.RThreshold(0);
  link_.MSComm1.SThreshold(0);
  Timer3_.Interval(watch_ms);
  link_.state.UploadFrame = 0;
}

void Upgrade::Form_Unload() {
  phase_ = LoadPhase::idle;
  link_.forms.form3 = Form3{};
  for (Timer* timer : {&Timer1_, &Timer2_, &Timer3_}) timer->Enabled(false);
  link_.MSComm1.RThreshold(SavedRThreshold_);
  link_.MSComm1.SThreshold(SavedSThreshold_);
  link_.MSComm1.ComType(0);
  link_.MSComm1.InputMode(0);
  link_.MSComm1.Protocol(0);
  link_.MSComm1.FileSendOn(false);
  link_.windows.dismiss_boxes(Owner::upload_window);
}

void Upgrade::prepare_and_start(const std::filesystem::path& path) {
  bool ready = false;
  try {
    ready = prepare();
  } catch (const RunTimeError&) {
    // A load that the user has left says nothing more.
    if (is_preparing()) throw;
  }
  if (phase_ == LoadPhase::left) {
    cancel();
  } else if (is_preparing()) {
    ready ? Start_Upload(path) : Form_Unload();
  }
}

bool Upgrade::prepare() {
  phase_ = LoadPhase::asking;
  if (Check_Rev(link_) != 1 || !is_preparing()) return false;
  phase_ = LoadPhase::preparing;
  if (Fast_Load(link_) != 1 || !is_preparing()) return false;
  return link_.exchange.Send_Tag(load_tag) == 1;
}

bool Upgrade::is_preparing() const {
  return phase_ == LoadPhase::asking || phase_ == LoadPhase::preparing;
}

void Upgrade::Start_Upload(const std::filesystem::path& path) {
  SerialControl& MSComm1 = link_.MSComm1;
  phase_ = LoadPhase::transferring;
  Timer3_.Enabled(true);
  link_.forms.form1.sbrStatus.Panels[2].clear();
  MSComm1.InputLen(0);
  MSComm1.ComType(0);
  MSComm1.InputMode(1);
  MSComm1.Protocol(5);
  MSComm1.RThreshold(0);
  MSComm1.SThreshold(0);
  MSComm1.FileName(path);
  MSComm1.FileSendOn(true);
  Timer1_.Enabled(true);
}

void Upgrade::leave() {
  phase_ = LoadPhase::left;
  hide();
}

void Upgrade::hide() {
  link_.forms.form3.Visible = false;
}

void Upgrade::cancel() {
  // From here on no verdict may fall: a cancel stays one, also of a load that was complete.
  phase_ = LoadPhase::cancelling;
  link_.MSComm1.FileSendOn(false);
  if (link_.forms.form1.mnuload[fast_load_item].Checked) undo_fast_load(link_);
  Form_Unload();
}

void Upgrade::runtop() {
  std::int16_t& cell = link_.state.UploadFrame;
  cell = static_cast<std::int16_t>((cell + 1) % animation_cells);
  link_.forms.form3.Picture1 = cell;
}

void Upgrade::settle() {
  phase_ = LoadPhase::settling;
  Timer2_.Enabled(true);
}

void Upgrade::judge() {
  const ProgressBar& bar = link_.forms.form3.ProgressBar1;
  const bool complete = bar.Value >= bar.Max && bar.Value <= bar.Max;
  Form_Unload();
  if (!complete) return;
  phase_ = LoadPhase::restarting;
  welcome_new_firmware();
  phase_ = LoadPhase::idle;
}

void Upgrade::welcome_new_firmware() {
  link_.windows.MsgBox({.text = "RESTART the scanner by DISCONNET and RECONNECT the power cable\r"
                                "then press OK to continue",
                        .icon = Icon::information,
                        .title = "Restart"});
  after_load_.mnuauto_Click();
  if (!link_.MSComm1.PortOpen()) return;
  link_.state.TimedOut = 0;
  link_.forms.form1.Timer1.Enabled(true);
  Attempts attempts;
  attempts([&] { link_.exchange.send_ping(); });
  if (link_.exchange.wait_for_ping(attempts)) after_load_.cmdReceive_Click();
}

}  // namespace orvex
