#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/faults.h"
#include "simulator/loader.h"
#include "simulator/parameters.h"
#include "simulator/time.h"

namespace orvex::simulator {

/// What a scanner says about itself, without the line end.
struct Identity {
  std::string application1 = "3.22";
  std::string application2 = "1.07";
  std::string hardware = "2.0B";
  std::string model = "OX-4100";
  std::string web = "www.example.org";
  std::string serial = "0004711";
};

struct Options {
  Identity identity;
  Time ack_delay = std::chrono::milliseconds(5);    ///< from the end of a frame to the ACK
  Time reply_delay = std::chrono::milliseconds(5);  ///< from the ACK to the reply
  int start_up_rate = 9600;                         ///< rate after a restart with new firmware
  bool restarts_itself = false;  ///< with the whole of a file in, instead of waiting for restart()
};

/// A scanner as its line sees it: bytes in, bytes out. It is deaf at a wrong rate, answers frames
/// SOH tags EOT, and takes a firmware file after `<A1CODE=Z>`.
class Scanner {
 public:
  explicit Scanner(Options options = {}, MakeLoader make_loader = {});

  /// Takes bytes that came at `line_rate`; 0 stands for settings at which nothing is understood.
  void hear(std::string_view bytes, int line_rate, Time now);
  /// Some of what it has sent by now, all of it at the present rate(). Asked again until it is
  /// empty it gives everything.
  std::string say(Time now);
  /// When say() is wanted next.
  std::optional<Time> due() const;

  int rate() const;
  /// Moves the scanner to another rate, as its own keys would.
  void rate(int bits_a_second);

  /// The power cycle after a load: with the whole of a file in, the scanner comes up with it, and
  /// otherwise as it was.
  void restart();
  bool loading() const { return loader_ != nullptr; }
  /// True from the end of a file to the restart; the scanner is deaf for so long.
  bool waits_for_restart() const { return waits_for_restart_; }
  /// The whole of the last file that was loaded; empty if none was.
  const std::string& loaded_file() const { return loaded_file_; }

  /// True if a fault wants the line cut; the owner of the line cuts it and tells so.
  bool wants_unplug() const { return unplug_wanted_; }
  void unplugged() { unplug_wanted_ = false; }

  Options options;
  Parameters parameters;
  Faults faults;
  std::vector<std::string> frames;  ///< texts of the frames heard, since the owner cleared them

 private:
  /// What is done once the bytes before it are said.
  using Then = std::function<void(Time)>;
  struct Word {
    Time at;
    std::string bytes;
    Then then;
  };

  void take(std::string_view text, Time now);
  void answer(std::string_view text, Time now);
  void acknowledge(Time now, Then then = {}, std::string reply = {});
  void say_later(Time at, std::string bytes, Then then = {});
  std::optional<std::string> reply_to(std::string_view query) const;
  std::string spoilt(std::string reply) const;
  bool befalls(int& count) const;
  void look_after_loader();

  MakeLoader make_loader_;
  std::unique_ptr<Loader> loader_;
  std::optional<std::string> frame_;  ///< text of the frame under way
  std::deque<Word> words_;
  std::string loaded_file_;
  bool waits_for_restart_ = false;
  bool fault_applies_ = false;
  bool unplug_wanted_ = false;
};

}  // namespace orvex::simulator
