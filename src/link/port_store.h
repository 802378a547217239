#pragma once

#include <filesystem>
#include <string_view>

#include "link/port_state.h"

namespace orvex {

inline constexpr std::string_view ini_name = "Orvex.INI";

/// Reads the port configuration file in `folder` into WinDir, IniPath, PortCom and PortSet, and
/// repairs it by the default content if it can't be used. Nothing of it is told to the user; a
/// repair that can't write goes on with the defaults.
void Load_Ini(PortState& state, const std::filesystem::path& folder);

/// Replaces the port configuration file by one line with these values. False if it couldn't.
bool save_ini(const PortState& state, int comm_port, std::string_view settings);

/// PortCom as a port number, 0 if it is none of 1 to 6.
int stored_port(std::string_view port_com);

}  // namespace orvex
