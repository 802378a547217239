#pragma once

#include <filesystem>
#include <string>

/// What differs between the systems Orvex runs on: one source file of each header for each of them.
namespace orvex::platform {

/// The folder of the machine that holds the port configuration file and the links to ports.
std::filesystem::path state_folder();

/// Path of the device that port COM `number` stands for; empty if there is none. A link
/// `com<number>` in `folder` decides, if there is one, also if it leads nowhere: the path is then
/// that of the missing device. Otherwise it is the number-th serial port of the machine.
///
/// A link of the user or of root to a name that begins with rfc2217: gives that name; one of
/// another user gives the path of the link itself.
std::string device_of_port(int number, const std::filesystem::path& folder);

/// Path of the device behind the name that a user gave, without links; the name if there is none.
std::string resolved_device(const std::string& name);

}  // namespace orvex::platform
