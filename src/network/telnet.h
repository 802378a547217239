#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvex {

/// The verbs by which two ends of a telnet connection settle what they do (RFC 854).
enum class TelnetVerb : std::uint8_t { will = 251, wont = 252, doing = 253, dont = 254 };

namespace telnet_option {
inline constexpr std::uint8_t binary = 0;             // RFC 856
inline constexpr std::uint8_t suppress_go_ahead = 3;  // RFC 858
inline constexpr std::uint8_t com_port_control = 44;  // RFC 2217
}  // namespace telnet_option

/// Finds data, settlements and subnegotiations in what a telnet peer sends, cut anywhere. What it
/// keeps is bounded, whatever comes.
class TelnetDecoder {
 public:
  /// Characters of a subnegotiation behind its option; a longer one is passed over whole.
  static constexpr std::size_t most_in_subnegotiation = 256;

  class Handler {
   public:
    virtual ~Handler() = default;
    virtual void on_data(std::string_view bytes) = 0;
    virtual void on_settlement(TelnetVerb verb, std::uint8_t option) = 0;
    virtual void on_subnegotiation(std::uint8_t option, std::string_view content) = 0;
  };

  void feed(std::string_view bytes, Handler& handler);

 private:
  enum class Place { data, command, option, sub_option, sub_content, sub_command };

  void take(char byte, Handler& handler);
  void take_command(std::uint8_t byte, Handler& handler);
  void take_in_subnegotiation(char byte);

  Place place_ = Place::data;
  TelnetVerb verb_ = TelnetVerb::will;
  std::uint8_t option_ = 0;
  std::string content_;
  bool too_long_ = false;
};

/// Bytes as telnet carries them: each 255 doubled.
std::string telnet_data(std::string_view bytes);
std::string telnet_settlement(TelnetVerb verb, std::uint8_t option);
std::string telnet_subnegotiation(std::uint8_t option, std::string_view content);

}  // namespace orvex
