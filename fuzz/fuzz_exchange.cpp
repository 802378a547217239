// A whole receive on a line that says what it likes, when it likes.

#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz/invariants.h"
#include "testing/virtual/desk.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace std::chrono_literals;
  using orvex::fuzz::require;
  FuzzedDataProvider input(data, size);
  orvex::testing::LinkDesk desk;
  desk.scanner.faults.silent =
      input.ConsumeBool() ? orvex::simulator::always : input.ConsumeIntegralInRange(0, 3);
  desk.line.paced = input.ConsumeBool();
  orvex::Time at{};
  while (input.remaining_bytes() > 0) {
    at += std::chrono::milliseconds(input.ConsumeIntegralInRange(0, 1500));
    desk.windows.at(
        at, [&desk, bytes = input.ConsumeRandomLengthString(200)] { desk.line.inject(bytes); });
  }
  orvex::receive_setup(desk.link);
  // Seven queries, each with three waits for its ACK and one for its reply.
  require(desk.windows.now() <= 7 * (3 * 1000ms + 1500ms), "an end in time");
  require(desk.forms.form1.cmdReceive.Enabled && desk.forms.form1.cmdSend.Enabled,
          "buttons that come back");
  require(desk.state.ReplyText.size() <= orvex::most_in_reply, "a reply of a bounded size");
  require(desk.forms.form1.labWeb.Caption.size() <= 17, "an address of 17 characters");
  orvex::fuzz::require_sound(desk.setup);
  return 0;
}
