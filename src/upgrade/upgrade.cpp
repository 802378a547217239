#include "upgrade/upgrade.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "base/attempts.h"
#include "base/run_time_error.h"
#include "base/while.h"
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

Upgrade::Upgrade(ScannerLink& link, Jobs after_load)
    : link_(link),
      after_load_(std::move(after_load)),
      Timer1_(link.windows, [this] { runtop(); }),
      Timer2_(link.windows, [this] { Timer2_Timer(); }),
      Timer3_(link.windows, [this] { Timer3_Timer(); }) {
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
    // Once the transfer is watched, the verdict closes the window.
    if (!Timer3_.Enabled()) close();
    link_.windows.MsgBox(box_for(error));
  }
}

void Upgrade::Command1_Click() {
  if (cancelling_) return;
  const auto answer = link_.windows.MsgBox({.text = "Do you want to CANCEL the file transfer?",
                                            .buttons = Buttons::yes_no,
                                            .title = "Abort file transfer...",
                                            .owner = Owner::upload_window,
                                            .refuses_by_default = true});
  if (answer != Answer::yes || !link_.forms.form3.Loaded || cancelling_) return;
  if (preparing_) {
    cancel_wanted_ = true;
    link_.forms.form3.Visible = false;
    return;
  }
  cancel();
}

void Upgrade::close() {
  Form3& form3 = link_.forms.form3;
  if (!form3.Loaded) return;
  form3 = Form3{};
  for (Timer* timer : {&Timer1_, &Timer2_, &Timer3_}) timer->Enabled(false);
  link_.MSComm1.RThreshold(SavedRThreshold_);
  link_.MSComm1.SThreshold(SavedSThreshold_);
  link_.MSComm1.ComType(0);
  link_.MSComm1.InputMode(0);
  link_.MSComm1.Protocol(0);
  link_.MSComm1.FileSendOn(false);
  link_.windows.dismiss_boxes(Owner::upload_window);
}

void Upgrade::FileProgress(std::int32_t done) {
  Form3& form3 = link_.forms.form3;
  if (!form3.Loaded) return;
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

bool Upgrade::active() const {
  return link_.forms.form3.Loaded || cancelling_ || after_verdict_;
}

void Upgrade::load_image(const std::filesystem::path& path) {
  const auto header = Read_Image_Header(path);
  if (!header) return;
  show_form3(*header);
  const auto answer = link_.windows.MsgBox({.text = "Do You Want to Update the ROM?",
                                            .buttons = Buttons::yes_no,
                                            .title = "Application 1 File into ROM...",
                                            .owner = Owner::upload_window});
  if (answer == Answer::yes && link_.forms.form3.Loaded) {
    prepare_and_start(path);
  } else {
    close();
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
  link_.forms.form3.Loaded = true;
  SavedRThreshold_ = link_.MSComm1.RThreshold();
  SavedSThreshold_ = link_.MSComm1.SThreshold();
  link_.MSComm1.RThreshold(0);
  link_.MSComm1.SThreshold(0);
  Timer3_.Interval(watch_ms);
  link_.state.UploadFrame = 0;
}

void Upgrade::prepare_and_start(const std::filesystem::path& path) {
  bool ready = false;
  {
    cancel_wanted_ = false;
    const While preparing(preparing_);
    try {
      ready = Check_Rev(link_) == 1 && !left_by_user() && Fast_Load(link_) == 1 &&
              !left_by_user() && link_.exchange.Send_Tag(load_tag) == 1;
    } catch (const RunTimeError&) {
      if (!left_by_user()) throw;
    }
  }
  if (std::exchange(cancel_wanted_, false)) {
    cancel();
  } else if (!ready) {
    close();
  } else if (link_.forms.form3.Loaded) {
    Start_Upload(path);
  }
}

bool Upgrade::left_by_user() {
  return cancel_wanted_ || !link_.forms.form3.Loaded;
}

void Upgrade::Start_Upload(const std::filesystem::path& path) {
  SerialControl& MSComm1 = link_.MSComm1;
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

void Upgrade::cancel() {
  const While cancelling(cancelling_);
  // From here on no verdict may fall: a cancel stays one, also of a load that was complete.
  Timer2_.Enabled(false);
  Timer3_.Enabled(false);
  link_.MSComm1.FileSendOn(false);
  if (link_.forms.form1.mnuload[fast_load_item].Checked) undo_fast_load(link_);
  close();
}

void Upgrade::runtop() {
  std::int16_t& cell = link_.state.UploadFrame;
  cell = static_cast<std::int16_t>((cell + 1) % animation_cells);
  link_.forms.form3.Picture1 = cell;
}

void Upgrade::Timer3_Timer() {
  if (!link_.MSComm1.FileBusy()) Timer2_.Enabled(true);
}

void Upgrade::Timer2_Timer() {
  Timer2_.Enabled(false);
  const ProgressBar& bar = link_.forms.form3.ProgressBar1;
  const bool complete = bar.Value >= bar.Max && bar.Value <= bar.Max;
  const While after_verdict(after_verdict_);
  close();
  if (complete) welcome_new_firmware();
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
