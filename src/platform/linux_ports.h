#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvex::platform {

/// Names of the machine's serial ports, as `ttyS0`: UARTs first, then `ttyUSB`, then `ttyACM`, each
/// in number order. A `ttyS` node without a UART behind it is left out. `class_tty` is the kernel's
/// folder of terminals, /sys/class/tty.
std::vector<std::string> serial_ports(const std::filesystem::path& class_tty);

/// The name of a port in the network that the link stands for; empty where it stands for none, or
/// belongs to another user: the folder may be open to others, and a user's connection goes only
/// where the user or root says. Asked of the link once, as it may change.
std::string network_name_of(const std::filesystem::path& link);
/// True where only the link's owner is in the way of that name.
bool is_foreign_network_link(const std::filesystem::path& link);

enum class DeviceKind {
  none,  ///< no character device, or one of another kind
  serial_port,
  pseudo_terminal,  ///< carries neither parity nor 7 data bits nor DTR and RTS
};
DeviceKind kind_of_device(const std::string& path);

/// False for the pseudo-terminal of a user who is neither the tool's own nor root: behind it sits
/// whoever made it. Asked of the open port, since a name may change its meaning.
bool is_trusted_port(std::intptr_t port_handle);

/// Where the serial port may keep the device's lock: it takes the first of these folders that it
/// can use.
std::vector<std::filesystem::path> locks_of(const std::string& device);

/// True if a lock of the device isn't a regular file of at most 1 KiB. Folders of locks are open
/// to all users, and the serial port waits for a pipe and reads a file of any size.
bool has_odd_lock(const std::string& device);

/// What the user lacks to open the device, as "permission denied (group dialout)", with the group
/// that may; empty if nothing.
std::string missing_right(const std::string& path);

/// Bytes written to an open port that the system has not sent yet; 0 if it can't tell.
std::size_t unsent_bytes(std::intptr_t port_handle);

}  // namespace orvex::platform
