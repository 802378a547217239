// The client of RFC 2217 against a hostile server.

#include <fuzzer/FuzzedDataProvider.h>

#include <string>

#include "fuzz/require.h"
#include "network/com_port_client.h"

namespace {

using orvex::ComPortClient;
using orvex::LineSettings;
using orvex::Time;
using orvex::fuzz::require;
using State = ComPortClient::State;

LineSettings some_settings(FuzzedDataProvider& input) {
  return {input.PickValueInArray({1200, 9600, 115200}),
          input.PickValueInArray({orvex::Parity::none, orvex::Parity::odd}),
          input.PickValueInArray({7, 8}), input.PickValueInArray({1, 2})};
}

/// Bytes, a settlement, or a word of RFC 2217, as the input says.
std::string next_words(FuzzedDataProvider& input) {
  const auto byte = [&] { return input.ConsumeIntegral<std::uint8_t>(); };
  const std::uint8_t options[]{orvex::telnet_option::binary,
                               orvex::telnet_option::suppress_go_ahead,
                               orvex::telnet_option::com_port_control, byte()};
  switch (input.ConsumeIntegralInRange(0, 3)) {
    case 0:
      return input.ConsumeRandomLengthString(400);
    case 1:
      return orvex::telnet_settlement(
          static_cast<orvex::TelnetVerb>(input.ConsumeIntegralInRange(251, 254)),
          input.PickValueInArray(options));
    case 2: {
      // An answer that is right, or nearly so.
      const std::string rates[]{
          {'\0', '\0', '\x04', '\xB0'}, {'\0', '\0', '\x25', '\x80'}, {'\0', '\x01', '\xC2', '\0'}};
      return orvex::telnet_subnegotiation(44, '\x65' + input.PickValueInArray(rates));
    }
    default:
      return orvex::telnet_subnegotiation(
          44, std::string{static_cast<char>(input.ConsumeIntegralInRange(100, 113)),
                          static_cast<char>(input.ConsumeIntegralInRange(0, 8))});
  }
}

/// What goes out is whole words: it reads back as them, and its data is what was sent.
struct Reader final : orvex::TelnetDecoder::Handler {
  void on_data(std::string_view bytes) override { data += bytes; }
  void on_settlement(orvex::TelnetVerb, std::uint8_t) override { ++settlements; }
  void on_subnegotiation(std::uint8_t option, std::string_view content) override {
    require(option == 44 && !content.empty(), "words of RFC 2217 alone");
  }
  std::string data;
  int settlements = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider input(bytes, size);
  Time now{};
  ComPortClient client(some_settings(input), now);
  orvex::TelnetDecoder decoder;
  Reader server;
  std::string sent;
  bool was_ready = false;
  while (input.remaining_bytes() > 0 && client.state() != State::failed) {
    now += std::chrono::milliseconds(input.ConsumeIntegralInRange(0, 900));
    client.receive(next_words(input), now);
    client.tick(now);
    was_ready = was_ready || client.state() == State::ready;
    if (client.state() == State::ready) {
      if (input.ConsumeBool()) client.set(some_settings(input), now);
      const std::string data = input.ConsumeRandomLengthString(20);
      client.send(data);
      sent += data;
    }
    if (input.ConsumeIntegralInRange(0, 9) == 0) {
      sent.resize(sent.size() - client.unsent());
      client.discard();
    }
    const std::string out = client.take_output();
    require(out.size() < 10000, "few words at a time");
    decoder.feed(out, server);
    require(client.waiting() <= 32000, "no more than is kept for a reader");
    require(was_ready || client.waiting() == 0, "no data before the port is ready");
    require(client.state() == State::ready || client.state() == State::failed || client.due() > now,
            "a limit to each wait");
  }
  require(server.settlements <= 5 + 513, "each wish answered once");
  require(sent.substr(0, server.data.size()) == server.data, "data as it was sent");
  require(client.state() != State::failed || !client.reason().empty(), "a reason for each failure");
  return 0;
}
