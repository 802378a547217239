// Uploads, plain and fast, against every fault of scanner and line: what the user sees, what the
// scanner has got, and that a scan and a receive put all right once the fault is gone.
#include <gtest/gtest.h>

#include "support/aftermath.h"
#include "upgrade/zmodem_desk.h"

namespace orvex::test {
namespace {

using simulator::always;
using simulator::Where;

constexpr std::size_t image_size = 6000;

/// An outcome is what left_behind() says, then "loaded" where the scanner has the image, "restart"
/// for the box that says so, "box" for each other but the question ahead of a load, "window" where
/// the upload window still stands.
struct Fault {
  const char* name;
  void (*set)(ZmodemDesk&);
  const char* plain;
  const char* fast;
};

/// Does something once the receiver has `bytes` of the file.
void at_bytes(ZmodemDesk& desk, std::size_t bytes, std::function<void(ZmodemDesk&)> action) {
  desk.taken = [&desk, bytes, action = std::move(action), done = false]() mutable {
    if (done || desk.receiver.file.size() < bytes) return;
    done = true;
    desk.windows.at(desk.now(), [&desk, action] { action(desk); });
  };
}

/// The receiver has nothing to say from a step on, but for these bytes.
void turn_bad(ZmodemDesk& desk, Step step, const char* says = "") {
  desk.script = {.turns_bad = step, .turns_bad_at = 2048, .says = says};
}

const Fault faults[]{
    {"none", [](ZmodemDesk&) {}, "- record loaded restart", "- record loaded restart"},
    {"one frame unheard", [](ZmodemDesk& d) { d.scanner.faults.silent = 1; },
     "- record loaded restart", "- record loaded restart"},
    {"silence", [](ZmodemDesk& d) { d.scanner.faults.silent = always; }, "TIME OUT COUNT = 2",
     "TIME OUT COUNT = 2"},
    {"two NAKs", [](ZmodemDesk& d) { d.scanner.faults.refused = 2; }, "- record loaded restart",
     "- record loaded restart"},
    {"only NAKs", [](ZmodemDesk& d) { d.scanner.faults.refused = always; }, "TIME OUT COUNT = 2",
     "TIME OUT COUNT = 2"},
    {"one ACK lost", [](ZmodemDesk& d) { d.scanner.faults.lost_acks = 1; },
     "- record loaded restart", "- record loaded restart"},
    {"all ACKs lost", [](ZmodemDesk& d) { d.scanner.faults.lost_acks = always; },
     "TIME OUT COUNT = 2", "TIME OUT COUNT = 2"},
    {"ACK after 1.5 s",
     [](ZmodemDesk& d) {
       d.scanner.faults.late_acks = always;
       d.scanner.faults.late_by = 1500ms;
     },
     "- closed loaded restart box", "- closed loaded restart box"},
    {"load tag refused",
     [](ZmodemDesk& d) { d.scanner.faults = {.only = "<A1CODE", .refused = always}; },
     "TIME OUT COUNT = 2", "TIME OUT COUNT = 2"},
    {"load tag unheard",
     [](ZmodemDesk& d) { d.scanner.faults = {.only = "<A1CODE", .silent = always}; },
     "TIME OUT COUNT = 2", "TIME OUT COUNT = 2"},
    {"load tag, ACK lost",
     [](ZmodemDesk& d) { d.scanner.faults = {.only = "<A1CODE", .lost_acks = always}; },
     "TIME OUT COUNT = 2", "TIME OUT COUNT = 2"},
    {"load tag, ACK after 1.5 s",
     [](ZmodemDesk& d) {
       d.scanner.faults = {.only = "<A1CODE", .late_acks = always, .late_by = 1500ms};
     },
     "- record loaded restart", "- record loaded restart"},
    {"junk ahead of the ACK",
     [](ZmodemDesk& d) { d.scanner.faults.junk_before_ack = "\xF8\x01\xFF"; },
     "- record loaded restart", "- record loaded restart"},
    {"a revision cut", [](ZmodemDesk& d) { d.scanner.faults.cut_reply = 3; }, "TIME OUT COUNT = 0",
     "TIME OUT COUNT = 0"},
    {"a revision without its line end",
     [](ZmodemDesk& d) { d.scanner.faults.reply_without_end = true; }, "TIME OUT COUNT = 0",
     "TIME OUT COUNT = 0"},
    {"a revision that is no number",
     [](ZmodemDesk& d) { d.scanner.faults.other_reply = "none\r\n"; }, "TIME OUT COUNT = 0 box",
     "TIME OUT COUNT = 0 box"},
    {"a revision of 40,000 bytes",
     [](ZmodemDesk& d) { d.scanner.faults = {.only = "<APP1RV:>", .padded_reply = 40000}; },
     "TIME OUT COUNT = 0", "TIME OUT COUNT = 0"},
    {"a last frame without its EOT",
     [](ZmodemDesk& d) { d.scanner.faults = {.only = "<SETPAR:>", .frame_without_end = true}; },
     "Error in Receiving record loaded restart box",
     "Error in Receiving record loaded restart box"},
    {"another rate before", [](ZmodemDesk& d) { d.scanner.rate(57600); }, "TIME OUT COUNT = 2",
     "TIME OUT COUNT = 2"},
    {"another rate, with junk",
     [](ZmodemDesk& d) {
       d.scanner.rate(57600);
       d.scanner.faults.junk_at_wrong_rate = true;
     },
     "TIME OUT COUNT = 2", "TIME OUT COUNT = 2"},
    {"another rate in the data",
     [](ZmodemDesk& d) { at_bytes(d, 2048, [](ZmodemDesk& e) { e.scanner.rate(57600); }); }, "-",
     "-"},
    {"another rate after", [](ZmodemDesk& d) { d.scanner.options.start_up_rate = 57600; },
     "- record loaded restart", "- record loaded restart"},
    {"receiver silent at the start", [](ZmodemDesk& d) { turn_bad(d, Step::start); }, "-", "-"},
    {"receiver silent at the offer", [](ZmodemDesk& d) { turn_bad(d, Step::offer); }, "-", "-"},
    {"receiver silent in the data", [](ZmodemDesk& d) { turn_bad(d, Step::data); }, "-", "-"},
    {"receiver silent at the end", [](ZmodemDesk& d) { turn_bad(d, Step::end); }, "- loaded",
     "- loaded"},
    {"receiver silent at the farewell", [](ZmodemDesk& d) { turn_bad(d, Step::farewell); },
     "- closed loaded restart box", "- closed loaded restart box"},
    {"receiver gives up in the data",
     [](ZmodemDesk& d) { turn_bad(d, Step::data, "\x18\x18\x18\x18\x18"); }, "-", "-"},
    {"every 500th byte to the scanner flipped",
     [](ZmodemDesk& d) { d.line.to_scanner.flip(Where::every(500)); }, "- record loaded restart",
     "- record loaded restart"},
    {"every 500th byte to the scanner lost",
     [](ZmodemDesk& d) { d.line.to_scanner.drop(Where::every(500)); }, "- record loaded restart",
     "- record loaded restart"},
    {"every 500th byte to the scanner doubled",
     [](ZmodemDesk& d) { d.line.to_scanner.duplicate(Where::every(500)); },
     "- record loaded restart", "- record loaded restart"},
    {"every byte to the scanner doubled",
     [](ZmodemDesk& d) { d.line.to_scanner.duplicate(Where::every(1)); }, "TIME OUT COUNT = 2",
     "TIME OUT COUNT = 2"},
    {"every 40th byte to the tool flipped",
     [](ZmodemDesk& d) { d.line.to_tool.flip(Where::every(40)); },
     "Error in App1 Rev record loaded restart", "Error in App1 Rev record loaded restart"},
    {"every 40th byte to the tool lost",
     [](ZmodemDesk& d) { d.line.to_tool.drop(Where::every(40)); },
     "Error in App1 Rev record loaded restart", "- record loaded restart"},
    {"every byte to the tool doubled",  // and the revision no number
     [](ZmodemDesk& d) { d.line.to_tool.duplicate(Where::every(1)); }, "TIME OUT COUNT = 0 box",
     "TIME OUT COUNT = 0 box"},
    {"the line to the tool held up for 2 s",
     [](ZmodemDesk& d) { d.line.to_tool = simulator::LineDamage().delay(Where::at({40}), 2s); },
     "- record loaded restart", "- record loaded restart"},
    {"unplugged at the first frame", [](ZmodemDesk& d) { d.scanner.faults.unplug_after = 1; },
     "TIME OUT COUNT = 0 closed box", "TIME OUT COUNT = 0 closed box"},
    {"unplugged at the load tag",
     [](ZmodemDesk& d) { d.scanner.faults = {.only = "<A1CODE", .unplug_after = 1}; },
     "TIME OUT COUNT = 0 closed box", "TIME OUT COUNT = 0 closed box"},
    {"unplugged in the data",
     [](ZmodemDesk& d) { at_bytes(d, 2048, [](ZmodemDesk& e) { e.line.unplug(); }); }, "- closed",
     "- closed"},
    {"unplugged behind the last byte",
     [](ZmodemDesk& d) { at_bytes(d, image_size, [](ZmodemDesk& e) { e.line.unplug(); }); },
     "- closed loaded", "- closed loaded"},
    {"unplugged before the restart",
     [](ZmodemDesk& d) {
       at_bytes(d, image_size,
                [](ZmodemDesk& e) { e.windows.at(e.now() + 5s, [&e] { e.line.unplug(); }); });
     },
     "- closed loaded restart box", "- closed loaded restart box"},
};

std::string run(ZmodemDesk& desk, const Fault& fault, bool fast) {
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
  if (desk.receiver.file == image) outcome += " loaded";
  bool restart = false;
  for (const ShownBox& shown : desk.windows.boxes) {
    if (shown.box.title == "Application 1 File into ROM...") continue;
    restart = restart || shown.box.title == "Restart";
    outcome += shown.box.title == "Restart" ? " restart" : " box";
  }
  if (desk.program.forms.form3.Loaded) outcome += " window";
  EXPECT_TRUE(!restart || desk.receiver.file == image);
  return outcome;
}

TEST(FaultTable, uploads_against_every_fault) {
  print_row("job", "fault", "panel 2, and what else", "panel 1");
  for (const Fault& fault : faults) {
    for (const bool fast : {false, true}) {
      const char* const job = fast ? "fast" : "upload";
      SCOPED_TRACE(std::string(job) + ", " + fault.name);
      ZmodemDesk desk;
      const std::string outcome = run(desk, fault, fast);
      print_row(job, fault.name, outcome, desk.panel(1));
      EXPECT_EQ(outcome, fast ? fault.fast : fault.plain);
      EXPECT_TRUE(recovers(desk));
    }
  }
}

}  // namespace
}  // namespace orvex::test
