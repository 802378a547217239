#include "network/com_port_client.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "base/network_address.h"

namespace orvex::testing {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using State = ComPortClient::State;

std::string bytes(std::string_view hex) {
  std::string out;
  while (!hex.empty()) {
    out += static_cast<char>(std::stoi(std::string(hex.substr(0, 2)), nullptr, 16));
    hex.remove_prefix(std::min<std::size_t>(3, hex.size()));
  }
  return out;
}

// What ser2net 4.3.11 says of itself, and to purge, 4800 Bps, 8 data bits, no parity, 1 stop bit.
const std::string ser2net_greets =
    bytes("ff fb 03 ff fd 03 ff fb 01 ff fe 01 ff fd 00 ff fb 00 ff fd 2c");
const std::string ser2net_takes = bytes(
    "ff fa 2c 6b 00 ff f0 ff fd 03 ff fa 2c 70 03 ff f0 ff fa 2c 65 00 00 12 c0 ff f0 "
    "ff fa 2c 66 08 ff f0 ff fa 2c 67 01 ff f0 ff fa 2c 68 01 ff f0 ff fa 2c 69 01 ff f0");
// The same of sredird 2.2.1, which has eight bytes for a rate.
const std::string sredird_greets = bytes("ff fb 00 ff fd 00 ff fb 01 ff fb 03 ff fd 03 ff fd 2c");
const std::string sredird_takes = bytes(
    "ff fa 2c 6b 66 ff f0 ff fa 2c 70 03 ff f0 ff fa 2c 65 00 00 12 c0 00 00 00 00 ff f0 "
    "ff fa 2c 66 08 ff f0 ff fa 2c 67 01 ff f0 ff fa 2c 68 01 ff f0 ff fa 2c 69 01 ff f0");
const std::string refuses_odd_parity = bytes("ff fa 2c 67 01 ff f0");
const std::string takes_odd_parity = bytes("ff fa 2c 67 02 ff f0");
const std::string suspends = bytes("ff fa 2c 6c ff f0");
const std::string resumes = bytes("ff fa 2c 6d ff f0");
const LineSettings at_4800{4800, Parity::none, 8, 1};
const LineSettings odd{4800, Parity::odd, 8, 1};

/// One that has found its server ready.
ComPortClient ready_client() {
  ComPortClient client(at_4800, Time{});
  client.receive(ser2net_greets, Time{});
  client.receive(ser2net_takes, Time{});
  client.take_output();
  return client;
}

TEST(ComPortClient, comes_to_terms_with_real_servers_wherever_their_words_are_cut) {
  for (const auto& [greets, takes] :
       {std::pair{ser2net_greets, ser2net_takes}, std::pair{sredird_greets, sredird_takes}}) {
    for (const std::size_t piece : {std::size_t{1}, std::size_t{2}, std::size_t{1000}}) {
      ComPortClient client(at_4800, Time{});
      // WILL COM-PORT-OPTION; WILL, DO BINARY; WILL, DO SUPPRESS-GO-AHEAD.
      EXPECT_EQ(client.take_output(), bytes("ff fb 2c ff fb 00 ff fd 00 ff fb 03 ff fd 03"));
      const auto hear = [&](const std::string& words) {
        for (std::size_t i = 0; i < words.size(); i += piece) {
          client.receive(words.substr(i, piece), Time{});
        }
      };
      hear(greets);
      ASSERT_EQ(client.state(), State::setting);
      // An echo is refused. No flow control, DTR, RTS; purge; the four settings.
      EXPECT_EQ(client.take_output(),
                bytes("ff fe 01 ff fa 2c 05 01 ff f0 ff fa 2c 05 08 ff f0 ff fa 2c 05 0b ff f0 "
                      "ff fa 2c 0c 03 ff f0 ff fa 2c 01 00 00 12 c0 ff f0 ff fa 2c 02 08 ff f0 "
                      "ff fa 2c 03 01 ff f0 ff fa 2c 04 01 ff f0"));
      hear("noise" + takes);
      EXPECT_EQ(client.state(), State::ready);
      EXPECT_EQ(client.take_data(), "");
      hear("a\xFF\xFF"s + "b" + bytes("ff f1") + "c");
      EXPECT_EQ(client.take_data(), "a\xFF"s + "bc");
    }
  }
}

TEST(ComPortClient, a_server_that_does_not_play_leads_to_its_words) {
  const std::string wrong_rate = bytes("ff fa 2c 65 00 00 25 80 ff f0");
  const std::string rest = ser2net_takes.substr(ser2net_takes.find(bytes("2c 66")) - 2);
  const struct {
    std::string says;
    const char* reason;
    Time at;
  } table[]{
      {"", "no answer from the server", 4s},
      {"login: ", "the server doesn't know RFC 2217", 4s},
      {bytes("ff fb 01 ff fb 03"), "the server doesn't know RFC 2217", 4s},
      {bytes("ff fe 2c"), "the server doesn't know RFC 2217", 0s},
      {bytes("ff fd 2c"), "the server doesn't pass all bytes", 4s},
      {bytes("ff fd 2c ff fc 00"), "the server doesn't pass all bytes", 0s},
      {bytes("ff fd 2c ff fe 00"), "the server doesn't pass all bytes", 0s},
      {ser2net_greets, "no answer from the server", 4s},
      {ser2net_greets + bytes("ff fa 2c 65 ff f0") + rest, "the server refused 4800 Bps", 0s},
      {ser2net_greets + wrong_rate + rest, "the server refused 4800 Bps", 0s},
      {ser2net_greets + "\xFF\xFA,\x65" + std::string(100000, '\0'), "no answer from the server",
       4s},
  };
  for (const auto& row : table) {
    SCOPED_TRACE(row.reason);
    ComPortClient client(at_4800, Time{});
    // What comes after the greeting in the same piece is no answer to what wasn't asked yet.
    client.receive(row.says.substr(0, ser2net_greets.size()), Time{});
    client.receive(row.says.substr(std::min(row.says.size(), ser2net_greets.size())), Time{});
    if (row.at > Time{}) {
      client.tick(row.at - 1ns);
      EXPECT_NE(client.state(), State::failed);
      EXPECT_EQ(client.due(), row.at);
      client.tick(row.at);
    }
    EXPECT_EQ(client.state(), State::failed);
    EXPECT_EQ(client.reason(), row.reason);
  }
}

TEST(ComPortClient, a_refused_setting_is_undone_and_one_that_stays_undone_ends_it) {
  ComPortClient client = ready_client();
  client.set(odd, 1s);
  EXPECT_EQ(client.take_output(), bytes("ff fa 2c 03 02 ff f0"));
  client.receive(refuses_odd_parity, 1s);
  ASSERT_EQ(client.state(), State::undoing);
  client.send("x");
  EXPECT_EQ(client.take_output().size(), 3U * 7 + 10) << "all four settings, and no data yet";
  client.receive(sredird_takes, 1s);
  EXPECT_EQ(client.state(), State::ready);
  EXPECT_EQ(client.refusal(), "the server refused odd parity");
  EXPECT_EQ(client.take_output(), "x");

  client.set(odd, 2s);
  client.receive(takes_odd_parity, 2s);
  EXPECT_EQ(client.refusal(), "");
  client.set(at_4800, 3s);
  client.receive(takes_odd_parity, 3s);
  client.receive(bytes("ff fa 2c 65 00 00 12 c0 ff f0 ff fa 2c 66 08 ff f0 ff fa 2c 67 01 ff f0 "
                       "ff fa 2c 68 01 ff f0"),
                 3s);
  EXPECT_EQ(client.reason(), "the server refused odd parity");
}

TEST(ComPortClient, data_waits_for_the_settings_and_for_a_server_that_has_suspended_it) {
  ComPortClient client = ready_client();
  client.send("a\xFF");
  client.set(odd, Time{});
  client.send("b");
  EXPECT_EQ(client.take_output(), "a\xFF\xFF" + bytes("ff fa 2c 03 02 ff f0"));
  EXPECT_EQ(client.take_output(), "");
  client.receive(takes_odd_parity + suspends, Time{});
  client.send("c");
  EXPECT_EQ(client.take_output(), "");
  EXPECT_EQ(client.unsent(), 2U);
  client.receive(resumes, Time{});
  EXPECT_EQ(client.take_output(), "bc");
  client.receive(suspends, Time{});
  client.send("d");
  client.discard();
  EXPECT_EQ(client.take_output(), bytes("ff fa 2c 0c 02 ff f0"));
  EXPECT_TRUE(client.is_discarding());
  client.receive(bytes("ff fa 2c 70 02 ff f0"), Time{});
  EXPECT_FALSE(client.is_discarding());
  client.receive(resumes, Time{});
  EXPECT_EQ(client.take_output(), "");
}

TEST(ComPortClient, options_and_data_without_end_are_answered_and_kept_to_a_bound) {
  ComPortClient client = ready_client();
  std::string all;
  for (int verb = 0xFB; verb <= 0xFE; ++verb) {
    for (int option = 1; option < 256; ++option) {
      if (option != 44) all += {'\xFF', static_cast<char>(verb), static_cast<char>(option)};
    }
  }
  client.receive(all, Time{});
  EXPECT_EQ(client.take_output().size(), 3U * (253 + 252))
      << "WONT and DONT, once each; one was said at first";
  client.receive(all, Time{});
  EXPECT_EQ(client.take_output(), "");
  for (int i = 0; i < 10; ++i) client.receive(std::string(10000, 'x'), Time{});
  EXPECT_EQ(client.take_data().size(), 32000U);
  EXPECT_EQ(client.state(), State::ready);
}

TEST(NetworkAddress, is_read_strictly) {
  const std::string longest(253, 'a');
  const struct {
    std::string name;
    std::optional<NetworkAddress> address;
  } table[]{
      {"rfc2217://till7.example:2300", NetworkAddress{"till7.example", 2300}},
      {"rfc2217://till7.example", NetworkAddress{"till7.example", 2217}},
      {"rfc2217://10.0.0.7:1/", NetworkAddress{"10.0.0.7", 1}},
      {"rfc2217://[::1]:65535", NetworkAddress{"::1", 65535}},
      {"rfc2217://[fe80::1%eth0]", NetworkAddress{"fe80::1%eth0", 2217}},
      {"rfc2217://" + longest, NetworkAddress{longest, 2217}},
      {"rfc2217://" + longest + "a", {}},
      {"rfc2217://", {}},
      {"rfc2217://:2217", {}},
      {"rfc2217:till7", {}},
      {"rfc2217://till7:", {}},
      {"rfc2217://till7:0", {}},
      {"rfc2217://till7:65536", {}},
      {"rfc2217://till7:+1", {}},
      {"rfc2217://till7:1x", {}},
      {"rfc2217://me@till7", {}},
      {"rfc2217://till7/path", {}},
      {"rfc2217://till 7", {}},
      {"rfc2217://till7\n", {}},
      {"rfc2217://::1", {}},
      {"rfc2217://[::1", {}},
      {"rfc2217://[::1]x", {}},
      {"rfc2217://[till7]", {}},
      {"rfc2217://[fe80::1%]", {}},
      {"RFC2217://till7", {}},
      {"/dev/ttyS0", {}},
  };
  for (const auto& row : table) {
    EXPECT_EQ(parse_network_address(row.name), row.address) << row.name;
  }
}

}  // namespace
}  // namespace orvex::testing
