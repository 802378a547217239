#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/clock.h"
#include "link/line_settings.h"
#include "network/com_port_greeting.h"
#include "network/telnet.h"

namespace orvex {

/// The client's side of RFC 2217, by which a serial port at the other end of a telnet connection is
/// set: bytes in, bytes out, a clock handed in. It knows no socket.
///
/// What it keeps and what it says are bounded, whatever the server says.
class ComPortClient final : private TelnetDecoder::Handler {
 public:
  /// For each step of the server: a lost packet is sent again within it, and a slow box sets its
  /// port.
  static constexpr Time answer_limit = std::chrono::seconds(4);

  enum class State {
    greeting,  ///< awaits that the server takes RFC 2217 and all bytes both ways; fails in time
    setting,   ///< awaits the server's word on each setting; fails in time
    undoing,   ///< so too, on the settings from before, as one was refused
    ready,     ///< the port has the settings
    failed,    ///< for good, by reason()
  };

  /// Greets the server. Data before the port is ready for the first time is dropped.
  ComPortClient(const LineSettings& settings, Time now);

  void receive(std::string_view bytes, Time now);
  /// Lets a limit pass; wanted at or after due().
  void tick(Time now);
  std::optional<Time> due() const;

  State state() const { return state_; }
  /// Why it failed, in a few words.
  const std::string& reason() const { return reason_; }

  /// Asks for new settings. To be called where it is ready.
  void set(const LineSettings& settings, Time now);
  /// Which setting was refused last, in a few words; empty where all were taken.
  const std::string& refusal() const { return refusal_; }

  /// Data for the port. It goes out behind all that was sent before, and not while the server has
  /// the flow suspended.
  void send(std::string_view data);
  /// Drops the data that is still here and has the server drop what it has not sent.
  void discard();
  /// Bytes of data that are still here.
  std::size_t unsent() const { return data_out_.size(); }
  /// The server has not said yet that it has dropped what it had.
  bool is_discarding() const { return discarding_; }

  /// All that may go to the server now, whole words of it.
  std::string take_output();
  /// All data that has come, at most 32,000 bytes of it since it was last taken.
  std::string take_data();
  std::size_t waiting() const { return data_in_.size(); }

 private:
  /// One of the four settings, as the two ends talk of it.
  struct Item {
    std::uint8_t command = 0;
    std::int64_t value = 0;
    bool answered = false;
    bool refused = false;
  };

  void on_data(std::string_view bytes) override;
  void on_settlement(TelnetVerb verb, std::uint8_t option) override;
  void on_subnegotiation(std::uint8_t option, std::string_view content) override;

  void begin_port(Time now);
  void ask(const LineSettings& settings, bool all, Time now);
  void settle(Time now);
  void fail(std::string_view reason);

  State state_ = State::greeting;
  std::string reason_;
  std::string refusal_;
  Time give_up_;
  TelnetDecoder decoder_;
  ComPortGreeting greeting_;
  bool heard_ = false;
  bool suspended_ = false;
  bool discarding_ = false;
  std::optional<LineSettings> settings_;  ///< none before it is ready for the first time
  LineSettings wanted_;
  std::array<Item, 4> items_{};
  std::string output_;
  std::string data_out_;
  std::string data_in_;
};

}  // namespace orvex
