#pragma once

#include <deque>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "link/line.h"
#include "simulator/line_damage.h"
#include "simulator/scanner.h"
#include "testing/virtual/virtual_windows.h"

namespace orvex::testing {

/// A serial line with a simulated scanner at its far end. A byte takes ten bits of the sender's
/// present rate, in either direction.
class VirtualLine final : public Line, public Actor {
 public:
  VirtualLine(VirtualWindows& windows, simulator::Scanner& scanner);

  // The script.
  int scanner_port = 1;           ///< port with the scanner at its end
  std::set<int> ports{1, 2};      ///< the machine's ports; no other can be opened
  bool refuses_open = false;      ///< whoever wants to open it
  bool refuses_settings = false;  ///< whoever wants to change them
  bool paced = true;              ///< false: bytes take no time
  bool stands = false;            ///< nothing leaves, as where the device takes nothing
  Time latency{};                 ///< each way, of a line in the network
  Time setting_time{};            ///< what its server takes to open or set the port
  simulator::LineDamage to_scanner;
  simulator::LineDamage to_tool;
  /// The device goes away and comes back.
  void unplug();
  void plug() { plugged_ = true; }
  /// Moves the scanner to the line's settings, as its own keys would.
  void match_scanner();
  /// Puts bytes on the line to the tool as if the scanner had sent them, at the scanner's rate.
  void inject(std::string_view bytes) { put_on_way(bytes, scanner_settings()); }

  // The record.
  struct Frame {
    Time at;  ///< when it was handed over
    std::string text;
    int baud;
  };
  std::vector<Frame> frames;  ///< what was written in one piece between SOH and EOT
  std::size_t bytes_written = 0;
  int opens = 0;
  int port = 0;  ///< that was opened last
  LineSettings settings;
  /// The texts of all frames so far, joined.
  std::string texts() const;

  void listen(Listener& listener) override { listener_ = &listener; }
  void open(int com_port, const LineSettings& settings) override;
  void close() override;
  bool is_open() const override { return open_; }
  std::string device_path(int com_port) const override;
  Time configure(const LineSettings& settings) override;
  void write(std::string_view bytes) override;
  std::string read() override;
  std::size_t waiting() const override { return received_.size(); }
  std::size_t unsent() const override { return outgoing_.size(); }
  void discard_unsent() override;

  std::optional<Time> due() const override;
  bool act() override;

 private:
  /// A byte on its way, with the settings at which it was sent.
  struct OnWay {
    char byte;
    Time at;
    LineSettings format;
  };

  Time await_server();
  LineSettings scanner_settings() const;
  void start_next();
  void move_outgoing();
  void let_scanner_hear();
  void put_on_way(std::string_view bytes, const LineSettings& format);
  bool move_incoming();
  void require_open() const;

  VirtualWindows& windows_;
  simulator::Scanner& scanner_;
  Listener* listener_ = nullptr;
  bool open_ = false;
  bool plugged_ = true;
  std::deque<char> outgoing_;
  Time outgoing_done_{};  ///< when the first byte of outgoing_ is through
  LineSettings outgoing_format_;
  std::deque<OnWay> at_scanner_;  ///< behind the wire, but held up by damage
  std::deque<OnWay> incoming_;
  Time incoming_free_{};
  std::string received_;
};

}  // namespace orvex::testing
