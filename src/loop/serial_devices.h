#pragma once

#include <string>
#include <vector>

namespace orvex {

/// A serial device of the machine; what the system doesn't know is empty. Texts are UTF-8.
struct SerialDevice {
  std::string path;  ///< under which it is opened
  std::string manufacturer;
  std::string product;
  std::string serial;
};

std::vector<SerialDevice> serial_devices();

}  // namespace orvex
