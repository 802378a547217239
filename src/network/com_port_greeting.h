#pragma once

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>

#include "network/telnet.h"

namespace orvex {

/// What client and server settle about the connection: RFC 2217, and that all bytes pass in both
/// directions. Each thing is asked for once, and each wish of the server answered once, so that two
/// ends can't go on for ever.
class ComPortGreeting {
 public:
  /// What the client asks for.
  static std::string wishes();

  /// Takes a word of the server and gives the answer, empty where none is due.
  std::string answer_to(TelnetVerb verb, std::uint8_t option);

  bool is_done() const { return knows_com_port_ && takes_all_bytes_ && gives_all_bytes_; }
  /// Why it can't be done or has been taken back; empty where nothing was refused.
  std::string_view refusal() const { return refusal_; }
  /// What is missing, in the same words.
  std::string_view missing() const;

 private:
  std::string once(TelnetVerb verb, std::uint8_t option);

  bool knows_com_port_ = false;
  bool takes_all_bytes_ = false;
  bool gives_all_bytes_ = false;
  std::string_view refusal_;
  std::bitset<1024> said_;  ///< by verb and option
};

}  // namespace orvex
