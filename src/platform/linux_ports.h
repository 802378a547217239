#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace orvex::platform {

/// Names of the machine's serial ports, as `ttyS0`: UARTs first, then `ttyUSB`, then `ttyACM`, each
/// in number order. A `ttyS` node without a UART behind it is left out. `class_tty` is the kernel's
/// folder of terminals, /sys/class/tty.
std::vector<std::string> serial_ports(const std::filesystem::path& class_tty);

}  // namespace orvex::platform
