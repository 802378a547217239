// Uploads, plain and fast, against every fault of scanner and line: what the user sees, what the
// scanner has got, and that a scan and a receive put all right once the fault is gone.
#include <gtest/gtest.h>

#include "aftermath.h"

namespace orvex::testing {
namespace {

using simulator::always;
using simulator::Where;

constexpr std::size_t image_size = 6000;
constexpr const char* loaded = "- record loaded restart";

/// An outcome is what left_behind() says, then "loaded" where the scanner has the image, "restart"
/// for the box that says so, "box" for each other but the question before a load, "window" where
/// the upload window still stands. A plain and a fast load come to the same.
struct Fault {
  const char* name;
  const char* outcome;
  void (*set)(Desk&);
};

/// Does something once the receiver has `bytes` of the file.
void at_bytes(Desk& desk, std::size_t bytes, std::function<void(Desk&)> action) {
  desk.loading.taken = [&desk, bytes, action = std::move(action), done = false]() mutable {
    if (done || desk.loading.receiver.file.size() < bytes) return;
    done = true;
    desk.windows.at(desk.now(), [&desk, action] { action(desk); });
  };
}

/// The receiver has nothing to say from a step on, but for these bytes.
void turn_bad(Desk& desk, Step step, const char* says = "") {
  desk.loading.script = {.turns_bad = step, .turns_bad_at = 2048, .says = says, .takes_on = false};
}

const Fault faults[]{
    {"none", loaded, [](Desk&) {}},
    {"silence", "TIME OUT COUNT = 2", [](Desk& d) { d.scanner.faults.silent = always; }},
    {"ACK after 1.5 s", "- closed loaded restart box",
     [](Desk& d) { d.scanner.faults = {.late_acks = always, .late_by = 1500ms}; }},
    {"ACK after 450 ms", loaded,
     [](Desk& d) { d.scanner.faults = {.late_acks = always, .late_by = 445ms}; }},
    {"ACK after 900 ms", "- closed loaded restart box",
     [](Desk& d) { d.scanner.faults = {.late_acks = always, .late_by = 895ms}; }},
    {"load tag, ACK lost", "TIME OUT COUNT = 2",
     [](Desk& d) { d.scanner.faults = {.only = "<A1CODE", .lost_acks = always}; }},
    {"load tag, ACK after 1.5 s", loaded,
     [](Desk& d) {
       d.scanner.faults = {.only = "<A1CODE", .late_acks = always, .late_by = 1500ms};
     }},
    {"a revision without its line end", "TIME OUT COUNT = 0",
     [](Desk& d) { d.scanner.faults.reply_without_end = true; }},
    {"a revision that is no number", "TIME OUT COUNT = 0 box",
     [](Desk& d) { d.scanner.faults.other_reply = "none\r\n"; }},
    {"a last frame without its EOT", "Error in Receiving record loaded restart box",
     [](Desk& d) { d.scanner.faults = {.only = "<SETPAR:>", .frame_without_end = true}; }},
    {"another rate in the data", "-",
     [](Desk& d) { at_bytes(d, 2048, [](Desk& e) { e.scanner.rate(57600); }); }},
    {"another rate after", loaded, [](Desk& d) { d.scanner.options.start_up_rate = 57600; }},
    {"receiver silent at the start", "-", [](Desk& d) { turn_bad(d, Step::start); }},
    {"receiver silent at the offer", "-", [](Desk& d) { turn_bad(d, Step::offer); }},
    {"receiver silent in the data", "-", [](Desk& d) { turn_bad(d, Step::data); }},
    {"receiver silent at the end", "- loaded", [](Desk& d) { turn_bad(d, Step::end); }},
    {"receiver silent at the farewell", "- closed loaded restart box",
     [](Desk& d) { turn_bad(d, Step::farewell); }},
    {"receiver gives up in the data", "-",
     [](Desk& d) { turn_bad(d, Step::data, "\x18\x18\x18\x18\x18"); }},
    {"every 500th byte to the scanner flipped", loaded,
     [](Desk& d) { d.line.to_scanner.flip(Where::every(500)); }},
    {"every 500th byte to the scanner lost", loaded,
     [](Desk& d) { d.line.to_scanner.drop(Where::every(500)); }},
    {"every 500th byte to the scanner doubled", loaded,
     [](Desk& d) { d.line.to_scanner.duplicate(Where::every(500)); }},
    {"every 43rd byte to the tool flipped", "- closed loaded restart box",
     [](Desk& d) { d.line.to_tool.flip(Where::every(43)); }},
    {"the line to the tool held up for 2 s", loaded,
     [](Desk& d) { d.line.to_tool = simulator::LineDamage().delay(Where::at({40}), 2s); }},
    {"unplugged at the load tag", "TIME OUT COUNT = 0 closed box",
     [](Desk& d) { d.scanner.faults = {.only = "<A1CODE", .unplug_after = 1}; }},
    {"unplugged in the data", "- closed",
     [](Desk& d) { at_bytes(d, 2048, [](Desk& e) { e.line.unplug(); }); }},
    {"unplugged behind the last byte", "- closed loaded",
     [](Desk& d) { at_bytes(d, image_size, [](Desk& e) { e.line.unplug(); }); }},
    {"unplugged before the restart", "- closed loaded restart box",
     [](Desk& d) {
       at_bytes(d, image_size,
                [](Desk& e) { e.windows.at(e.now() + 5s, [&e] { e.line.unplug(); }); });
     }},
};

std::string run(Desk& desk, const Fault& fault, bool fast) {
  desk.start();
  desk.scanner.parameters.apply("<SPVOLU=LOW>");
  const ScannerSetup before = desk.program.setup;
  const std::string image = random_image(image_size, 1);
  desk.windows.answers = {{Answer::cancel}};
  fault.set(desk);
  desk.load(image, fast);
  desk.windows.idle(5min);
  desk.windows.answers.clear();
  std::string outcome = left_behind(desk, before);
  if (desk.loading.receiver.file == image) outcome += " loaded";
  for (const ShownBox& shown : desk.windows.boxes) {
    if (shown.box.title == "Application 1 File into ROM...") continue;
    outcome += shown.box.title == "Restart" ? " restart" : " box";
  }
  if (desk.program.forms.form3.Visible) outcome += " window";
  return outcome;
}

TEST(FaultTable, uploads_against_every_fault) {
  for (const Fault& fault : faults) {
    for (const bool fast : {false, true}) {
      const char* const job = fast ? "fast" : "upload";
      SCOPED_TRACE(std::string(job) + ", " + fault.name);
      Desk desk;
      const std::string outcome = run(desk, fault, fast);
      print_row(job, fault.name, outcome, desk.panel(1));
      EXPECT_EQ(outcome, fault.outcome);
      EXPECT_TRUE(recovers(desk));
    }
  }
}

}  // namespace
}  // namespace orvex::testing
