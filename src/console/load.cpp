#include "console/load.h"

#include <chrono>

#include "base/run_time_error.h"
#include "discovery/auto_baud.h"
#include "upgrade/guards.h"

namespace orvex {
namespace {

constexpr int load_item = 2;
constexpr int fast_load_item = 5;
constexpr int pause_ms = 500;

}  // namespace

void Load::send(const Options& options) {
  Console& console = session_.console;
  console.boxes.clear();
  console.file = options.file;
  console.allow_older = options.allow_older;
  session_.link.forms.form1.mnuload[fast_load_item].Checked = options.fast;
  session_.upgrade.mnuload_Click(load_item);
  if (!session_.link.MSComm1.FileBusy()) throw not_started();
  watch_transfer();
  if (session_.restart_due) return;
  const QString why = QString::fromStdString(session_.link.MSComm1.FileReason());
  throw Failure{exit_code::transfer_failed,
                "The transfer failed" + (why.isEmpty() ? QString() : ": " + why)};
}

Failure Load::not_started() const {
  if (!session_.console.allow_older && session_.console.has_shown(older_image_title)) {
    return {exit_code::wrong_use,
            "The image is older than the scanner's firmware; --allow-older loads it all the same"};
  }
  return session_.failed("The load did not start");
}

void Load::watch_transfer() {
  Console& console = session_.console;
  const ProgressBar& bar = session_.link.forms.form3.ProgressBar1;
  const Time begun = console.now();
  while (session_.link.MSComm1.FileBusy()) {
    console.pump(Wait::for_event);
    if (bar.Visible) console.show_progress(bar.Value, bar.Max);
  }
  transfer_seconds_ = std::chrono::duration<double>(console.now() - begun).count();
  if (bar.Visible) console.show_progress(bar.Value, bar.Max);
  console.show_progress(0, 0);
  while (session_.upgrade.active()) console.pump(Wait::for_event);
}

void Load::await_restart(int seconds, double image_revision) {
  Console& console = session_.console;
  console.say(
      "RESTART the scanner by disconnecting and reconnecting its power cable. Waiting for " +
      QString::number(seconds) + " s at most.");
  console.give_up_at = console.now() + std::chrono::seconds(seconds);
  Look last = Look::silent;
  try {
    for (last = look(image_revision); last != Look::back; last = look(image_revision)) {
      session_.pause(pause_ms);
    }
    console.give_up_at.reset();
    return;
  } catch (const TimeUp&) {
    console.give_up_at.reset();
  }
  if (last == Look::silent) {
    throw Failure{exit_code::no_scanner, "The scanner has not come back after the load"};
  }
  throw Failure{exit_code::scanner_failed, "The scanner still says revision " +
                                               session_.reply("<APP1RV:>").value_or(QString()) +
                                               " after the load"};
}

Load::Look Load::look(double image_revision) {
  ScannerLink& link = session_.link;
  mnuauto_Click(link);
  if (!link.MSComm1.PortOpen()) return Look::silent;
  if (link.exchange.Send_Tag("<APP1RV:>") != 1) return Look::silent;
  try {
    const double revision = number_of_digits(link.forms.form1.labRevision[1].Caption);
    const bool same = revision >= image_revision && revision <= image_revision;
    return same ? Look::back : Look::old_revision;
  } catch (const RunTimeError&) {
    return Look::old_revision;
  }
}

}  // namespace orvex
