#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace orvex {

/// The record of the scanner link. There is one, for the whole life of the process.
struct PortState {
  std::int16_t TimedOut = 0;       ///< 1 ends a running wait as failed
  std::string TryParity;           ///< "N", "O" or "E"; empty until a scan or the dialog sets it
  std::string ReplyText;           ///< what the running exchange has received
  std::string RxAccum;             ///< received and not yet taken
  std::string PortCom;             ///< stored port number as text
  std::string PortSet;             ///< stored settings of the port
  std::filesystem::path WinDir;    ///< folder of the port configuration file
  std::filesystem::path IniPath;   ///< the port configuration file
  std::string SavedSettings;       ///< settings of the port before a fast load
  std::int16_t StartUpQuery = 0;   ///< -1 while the first query runs
  std::int16_t App1RevNumber = 0;  ///< revision of Application 1 as a number, 321 for 3.21
  std::int16_t UploadFrame = 0;    ///< cell of the upload animation, 0 to 17
};

}  // namespace orvex
