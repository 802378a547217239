#include "upgrade/guards.h"

#include <string>

#include "base/number.h"
#include "base/run_time_error.h"

namespace orvex {

double number_of_digits(std::string revision) {
  std::erase(revision, '.');
  const auto number = read_number(revision);
  if (!number) throw type_mismatch_error();
  return *number;
}

std::int16_t Check_Rev(ScannerLink& link) {
  if (link.exchange.Send_Tag("<APP1RV:>") != 1) return 0;
  if (!link.forms.form3.Visible) return 0;
  const double scanner = number_of_digits(link.forms.form1.labRevision[1].Caption);
  const double image = number_of_digits(link.forms.form3.Text3);
  if (scanner <= image) return 1;
  const auto answer =
      link.windows.MsgBox({.text = "You are about to program the scanner with a OLDER revision\r"
                                   "Do you want to continue ?",
                           .buttons = Buttons::yes_no,
                           .title = "WARNING",
                           .owner = Owner::upload_window});
  return answer == Answer::yes ? 1 : 0;
}

std::int16_t Fast_Load(ScannerLink& link) {
  constexpr std::size_t tail_size = 6;  // ",n,8,1"
  if (!link.forms.form1.mnuload[5].Checked) return 1;
  std::string& saved = link.state.SavedSettings;
  saved = link.MSComm1.Settings();
  if (link.exchange.Send_Tag("<RSBAUD=115200>") != 1) return 0;
  link.MSComm1.Settings("115200" + saved.substr(saved.size() - std::min(saved.size(), tail_size)));
  return 1;
}

void undo_fast_load(ScannerLink& link) {
  const std::string saved = link.state.SavedSettings;
  const auto comma = saved.find(',');
  if (comma == std::string::npos) return;
  link.exchange.Send_Tag("<RSBAUD=" + saved.substr(0, comma) + ">");
  try {
    link.MSComm1.Settings(saved);
  } catch (const RunTimeError&) {
    // The port is gone; its window closes all the same.
  }
}

}  // namespace orvex
