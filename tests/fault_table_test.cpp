// Every job against every fault of scanner and line: what the user sees, what becomes of the record
// and the port, and that a scan and a receive put all right once the fault is gone.
#include <gtest/gtest.h>

#include "support/aftermath.h"

namespace orvex::test {
namespace {

using simulator::always;
using simulator::Where;

struct Job {
  const char* name;
  void (Program::*handler)();
};
constexpr Job jobs[]{{"scan", &Program::mnuauto_Click},
                     {"receive", &Program::cmdReceive_Click},
                     {"send", &Program::cmdSend_Click},
                     {"factory", &Program::cmdFactory_Click},
                     {"manual", &Program::Form4_Command1_Click}};

/// An outcome is what left_behind() says, with "box" for each message box.
struct Fault {
  const char* name;
  void (*set)(Desk&);
  const char* outcomes[std::size(jobs)];
};

#define START "TIME OUT COUNT = 0"
const Fault faults[]{
    {"none", [](Desk&) {}, {START, "- record", "-", "- record", START}},
    {"one frame unheard",
     [](Desk& d) { d.scanner.faults.silent = 1; },
     {START " closed box", "- record", "-", "- record", START}},
    {"silence",
     [](Desk& d) { d.scanner.faults.silent = always; },
     {START " closed box", "Error in Receiving", "Error in Sending", "Error in Sending Defaults",
      START}},
    {"two NAKs",
     // A ping is sent once a rate, so the scan misses what the other jobs send again.
     [](Desk& d) { d.scanner.faults.refused = 2; },
     {START " closed box", "- record", "-", "- record", START}},
    {"only NAKs",
     [](Desk& d) { d.scanner.faults.refused = always; },
     {START " closed box", "Error in Receiving", "Error in Sending", "Error in Sending Defaults",
      START}},
    {"ACK after 1.5 s",  // the second answer to a query is taken for the answer to the next one
     [](Desk& d) {
       d.scanner.faults.late_acks = always;
       d.scanner.faults.late_by = 1500ms;
     },
     {START " closed box", "Error in App1 Rev record box", "-", "- record", START}},
    {"one ACK lost",
     [](Desk& d) { d.scanner.faults.lost_acks = 1; },
     {START " closed box", "- record", "Error in Sending", "- record", START}},
    {"all ACKs lost",
     [](Desk& d) { d.scanner.faults.lost_acks = always; },
     {START " closed box", "Error in Receiving", "Error in Sending", "Error in Sending Defaults",
      START}},
    {"junk ahead of the ACK",
     [](Desk& d) { d.scanner.faults.junk_before_ack = "\xF8\x01\xFF"; },
     {START, "- record", "-", "- record", START}},
    {"a reply cut in its first frame",
     [](Desk& d) { d.scanner.faults.cut_reply = 5; },
     {START, "Error in Receiving", "-", "Error in Receiving", START}},
    {"a reply without its line end",
     [](Desk& d) { d.scanner.faults.reply_without_end = true; },
     {START, "Error in Receiving", "-", "Error in Receiving", START}},
    {"a revision without its line end",
     [](Desk& d) { d.scanner.faults = {.only = "<HARDRV:>", .reply_without_end = true}; },
     {START, "Error in Hardware Rev record", "-", "Error in Hardware Rev record", START}},
    {"a reply of 40,000 bytes",
     [](Desk& d) { d.scanner.faults.padded_reply = 40000; },
     {START, "Error in Receiving", "-", "Error in Receiving", START}},
    {"a last frame without its EOT",
     [](Desk& d) { d.scanner.faults = {.only = "<SETPAR:>", .frame_without_end = true}; },
     {START, "Error in Receiving record box", "-", "Error in Receiving record box", START}},
    {"a revision that is no number",
     [](Desk& d) { d.scanner.faults = {.only = "<APP1RV:>", .other_reply = "none\r\n"}; },
     {START, "Error in App1 Rev record box", "-", "Error in App1 Rev record box", START}},
    {"another rate",
     [](Desk& d) { d.scanner.rate(57600); },
     {START, "Error in Receiving", "Error in Sending", "Error in Sending Defaults", START}},
    {"another rate, with junk",
     [](Desk& d) {
       d.scanner.rate(57600);
       d.scanner.faults.junk_at_wrong_rate = true;
     },
     {START, "Error in Receiving", "Error in Sending", "Error in Sending Defaults", START}},
    {"unplugged at the first frame",
     [](Desk& d) { d.scanner.faults.unplug_after = 1; },
     {START " closed box", "Error in Receiving closed box", "Error in Sending closed box",
      "Error in Sending Defaults closed box", START " closed"}},
    {"unplugged at the second frame",
     [](Desk& d) { d.scanner.faults.unplug_after = 2; },
     {START, "Error in App1 Rev record closed box", "-", "Error in Receiving closed box", START}},
    {"every 7th byte to the scanner flipped",
     [](Desk& d) { d.line.to_scanner.flip(Where::every(7)); },
     {START " closed box", "Error in Receiving", "Error in Sending", "Error in Sending Defaults",
      START}},
    {"every 50th byte to the tool lost",
     [](Desk& d) { d.line.to_tool.drop(Where::every(50)); },
     {START, "- record", "-", "- record", START}},
    {"every byte to the tool doubled",
     [](Desk& d) { d.line.to_tool.duplicate(Where::every(1)); },
     {START, "Error in App1 Rev box", "-", "Error in App1 Rev box", START}},
    {"the line to the tool held up for 2 s",
     [](Desk& d) { d.line.to_tool = simulator::LineDamage().delay(Where::at({0}), 2s); },
     {START " closed box", "Error in App1 Rev record box", "-", "- record", START}},
};

TEST(FaultTable, every_job_against_every_fault) {
  print_row("job", "fault", "panel 2, and what else", "panel 1");
  for (const Fault& fault : faults) {
    for (std::size_t i = 0; i < std::size(jobs); ++i) {
      Desk desk;
      desk.start();
      desk.press(&Program::mnumanual_Click);
      desk.scanner.parameters.apply("<SPVOLU=LOW><PREFIX=[STX]>");
      desk.program.setup.choose(Field::RSBAUD, 4);
      const ScannerSetup before = desk.program.setup;
      fault.set(desk);
      desk.windows.answers = {{Answer::cancel}};
      desk.press(jobs[i].handler);
      std::string outcome = left_behind(desk, before);
      for (std::size_t box = 0; box < desk.windows.boxes.size(); ++box) outcome += " box";
      print_row(jobs[i].name, fault.name, outcome, desk.panel(1));
      EXPECT_EQ(outcome, fault.outcomes[i]) << jobs[i].name << ", " << fault.name;
      EXPECT_TRUE(recovers(desk)) << jobs[i].name << ", " << fault.name;
    }
  }
}

}  // namespace
}  // namespace orvex::test
