// Every job against every fault of scanner and line: what the user sees, what becomes of the record
// and the port, and that a scan and a receive put all right once the fault is gone.
#include <gtest/gtest.h>

#include <array>

#include "aftermath.h"

namespace orvex::testing {
namespace {

using simulator::always;
using simulator::Where;

struct Job {
  const char* name;
  void (Program::*handler)();
};
constexpr std::array jobs{
    Job{"scan", &Program::mnuauto_Click}, Job{"receive", &Program::cmdReceive_Click},
    Job{"send", &Program::cmdSend_Click}, Job{"factory", &Program::cmdFactory_Click},
    Job{"manual", &Program::Form4_Command1_Click}};

/// What left_behind() says after each of the jobs, with "box" for each message box.
using Outcomes = std::array<const char*, jobs.size()>;

#define START "TIME OUT COUNT = 0"
constexpr Outcomes harmless{START, "- record", "-", "- record", START};
/// A ping is sent once a rate, so the scan misses what the other jobs send again.
constexpr Outcomes one_ping_lost{START " closed box", "- record", "-", "- record", START};
constexpr Outcomes no_answer{START " closed box", "Error in Receiving", "Error in Sending",
                             "Error in Sending Defaults", START};
constexpr Outcomes found_again{START, "Error in Receiving", "Error in Sending",
                               "Error in Sending Defaults", START};
constexpr Outcomes no_setup{START, "Error in Receiving", "-", "Error in Receiving", START};

struct Fault {
  const char* name;
  Outcomes outcomes;
  void (*set)(Desk&);
};

const Fault faults[]{
    {"none", harmless, [](Desk&) {}},
    {"one frame unheard", one_ping_lost, [](Desk& d) { d.scanner.faults.silent = 1; }},
    {"silence", no_answer, [](Desk& d) { d.scanner.faults.silent = always; }},
    {"two NAKs", one_ping_lost, [](Desk& d) { d.scanner.faults.refused = 2; }},
    {"only NAKs", no_answer, [](Desk& d) { d.scanner.faults.refused = always; }},
    // The second answer to a query is taken for the answer to the next one.
    {"ACK after 1.5 s",
     {START " closed box", "Error in App1 Rev record box", "-", "- record", START},
     [](Desk& d) { d.scanner.faults = {.late_acks = always, .late_by = 1500ms}; }},
    {"ACK after 450 ms", harmless,
     [](Desk& d) { d.scanner.faults = {.late_acks = always, .late_by = 445ms}; }},
    {"ACK after 900 ms",
     {START " closed box", "- record", "-", "- record", START},
     [](Desk& d) { d.scanner.faults = {.late_acks = always, .late_by = 895ms}; }},
    {"one ACK lost",
     {START " closed box", "- record", "Error in Sending", "- record", START},
     [](Desk& d) { d.scanner.faults.lost_acks = 1; }},
    {"junk before the ACK", harmless,
     [](Desk& d) { d.scanner.faults.junk_before_ack = "\xF8\x01\xFF"; }},
    {"a reply cut in its first frame", no_setup, [](Desk& d) { d.scanner.faults.cut_reply = 5; }},
    {"a revision without its line end",
     {START, "Error in Hardware Rev record", "-", "Error in Hardware Rev record", START},
     [](Desk& d) { d.scanner.faults = {.only = "<HARDRV:>", .reply_without_end = true}; }},
    {"a reply of 40,000 bytes", no_setup, [](Desk& d) { d.scanner.faults.padded_reply = 40000; }},
    {"a last frame without its EOT",
     {START, "Error in Receiving record box", "-", "Error in Receiving record box", START},
     [](Desk& d) { d.scanner.faults = {.only = "<SETPAR:>", .frame_without_end = true}; }},
    {"a revision that is no number",
     {START, "Error in App1 Rev record box", "-", "Error in App1 Rev record box", START},
     [](Desk& d) { d.scanner.faults = {.only = "<APP1RV:>", .other_reply = "none\r\n"}; }},
    {"another rate", found_again, [](Desk& d) { d.scanner.rate(57600); }},
    {"another rate, with junk", found_again,
     [](Desk& d) {
       d.scanner.rate(57600);
       d.scanner.faults.junk_at_wrong_rate = true;
     }},
    {"unplugged at the first frame",
     {START " closed box", "Error in Receiving closed box", "Error in Sending closed box",
      "Error in Sending Defaults closed box", START " closed"},
     [](Desk& d) { d.scanner.faults.unplug_after = 1; }},
    {"unplugged at the second frame",
     {START, "Error in App1 Rev record closed box", "-", "Error in Receiving closed box", START},
     [](Desk& d) { d.scanner.faults.unplug_after = 2; }},
    {"every 7th byte to the scanner flipped", no_answer,
     [](Desk& d) { d.line.to_scanner.flip(Where::every(7)); }},
    {"every 50th byte to the tool lost", harmless,
     [](Desk& d) { d.line.to_tool.drop(Where::every(50)); }},
    {"every byte to the tool doubled",
     {START, "Error in App1 Rev box", "-", "Error in App1 Rev box", START},
     [](Desk& d) { d.line.to_tool.duplicate(Where::every(1)); }},
    {"the line to the tool held up for 2 s",
     {START " closed box", "Error in App1 Rev record box", "-", "- record", START},
     [](Desk& d) { d.line.to_tool = simulator::LineDamage().delay(Where::at({0}), 2s); }},
};

TEST(FaultTable, every_job_against_every_fault) {
  for (const Fault& fault : faults) {
    for (std::size_t i = 0; i < jobs.size(); ++i) {
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
}  // namespace orvex::testing
