#include "link/serial_control.h"

#include <gtest/gtest.h>

#include "testing/virtual/desk.h"

namespace orvex::testing {
namespace {

/// The number of the failure that a step ends in, 0 if it works.
template <typename Step>
int failure_of(Step&& step) {
  try {
    step();
  } catch (const RunTimeError& error) {
    return error.number;
  }
  return 0;
}

struct SerialControlTest : ::testing::Test, LinkDesk {};

TEST_F(SerialControlTest, settings_reach_the_line_with_each_of_their_fields) {
  const struct {
    const char* text;
    const char* reads_back;
    LineSettings line;
  } table[]{{"  9600,N,8,1", "9600,N,8,1", {9600, Parity::none, 8, 1}},
            {" 19200,E,8,1", "19200,E,8,1", {19200, Parity::even, 8, 1}},
            {"115200,n,8,1", "115200,n,8,1", {115200, Parity::none, 8, 1}},
            {"38400,o,7,2", "38400,o,7,2", {38400, Parity::odd, 7, 2}}};
  for (const auto& row : table) {
    MSComm1.Settings(row.text);
    EXPECT_EQ(MSComm1.Settings(), row.reads_back);
    EXPECT_EQ(line.settings, row.line) << row.text;
  }
  EXPECT_EQ(line.opens, 1) << "a change of settings never closes the port";
  MSComm1.PortOpen(false);
  MSComm1.Settings("  2400,E,8,1");
  MSComm1.PortOpen(true);
  EXPECT_EQ(line.settings, (LineSettings{2400, Parity::even, 8, 1}));
}

TEST_F(SerialControlTest, settings_that_are_none_change_nothing) {
  for (const char* text : {"300,n,8,1", "9600,x,8,1", "9600,n,6,1", "9600,n,8,3", "9600,n,8",
                           "9600,n,8,1,", "", "fast,n,8,1", "09600,n,8,1", "9600,none,8,1"}) {
    EXPECT_EQ(failure_of([&] { MSComm1.Settings(text); }), error_number::invalid_value) << text;
  }
  EXPECT_EQ(MSComm1.Settings(), "9600,N,8,1");
  EXPECT_EQ(line.settings, (LineSettings{9600, Parity::none, 8, 1}));
}

TEST_F(SerialControlTest, port_numbers_are_1_to_6_and_a_port_that_fails_stays_closed) {
  MSComm1.PortOpen(false);
  for (const int number : {-1, 0, 7}) {
    EXPECT_EQ(failure_of([&] { MSComm1.CommPort(number); }), error_number::invalid_value);
  }
  MSComm1.CommPort(6);
  EXPECT_NE(failure_of([&] { MSComm1.PortOpen(true); }), 0);
  EXPECT_FALSE(MSComm1.PortOpen());
  EXPECT_EQ(failure_of([&] { MSComm1.PortOpen(false); }), 0);
  EXPECT_NE(failure_of([&] { MSComm1.Output("x"); }), 0);
  EXPECT_NE(failure_of([&] { MSComm1.Input(); }), 0);
}

TEST_F(SerialControlTest, the_receive_event_waits_for_its_threshold_and_0_switches_it_off) {
  for (const int threshold : {1, 3, 0}) {
    exchange.empty_receive_side();
    MSComm1.RThreshold(threshold);
    line.inject("ab");
    windows.idle(1s);
    EXPECT_EQ(state.RxAccum, threshold == 1 ? "ab" : "") << threshold;
    EXPECT_EQ(exchange.Read_Port(1), "ab") << threshold;
    EXPECT_EQ(exchange.Read_Port(1), "");
  }
}

TEST_F(SerialControlTest, an_unread_line_keeps_its_buffer_and_no_more) {
  line.paced = false;
  MSComm1.RThreshold(0);
  line.inject(std::string(in_buffer_size + 5, 'x'));
  windows.idle(1ms);
  EXPECT_EQ(MSComm1.Input().size(), in_buffer_size);
}

TEST_F(SerialControlTest, why_a_transfer_failed_stays_readable_after_it) {
  MSComm1.FileName(folder.write("image.bin", random_image(200, 1)));
  MSComm1.Protocol(5);
  const struct {
    std::function<void()> end;
    const char* reason;
  } table[]{{[&] { windows.idle(31s); }, "the scanner did not ask for the file"},
            {[&] { MSComm1.FileSendOn(false); }, "stopped by the user"},
            {[&] { line.unplug(); }, "the line is gone"}};
  for (const auto& row : table) {
    MSComm1.FileSendOn(true);
    EXPECT_EQ(MSComm1.FileReason(), "");
    row.end();
    EXPECT_FALSE(MSComm1.FileBusy());
    EXPECT_EQ(MSComm1.FileReason(), row.reason);
  }
}

}  // namespace
}  // namespace orvex::testing
