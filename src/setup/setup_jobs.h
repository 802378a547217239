#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "link/scanner_link.h"
#include "setup/scanner_setup.h"

namespace orvex {

/// Writes the whole setup into the scanner in one frame and moves the port to its line settings
/// after the ACK. A failure stands in panel 2.
void send_setup(ScannerLink& link, const ScannerSetup& setup);

/// The same with these tags and these settings of the port. True if the scanner has taken them.
bool send_setup(ScannerLink& link, const std::vector<std::string>& tags,
                const std::string& settings);

/// Reads setup, revisions, web address and serial number. The first failure ends it and stands in
/// panel 2; what was received before stays.
void receive_setup(ScannerLink& link);

/// Has the scanner go back to its factory setup, moves the port to "9600,N,8,1" and receives.
void factory_default(ScannerLink& link);

/// The same without a receive. True where the scanner has gone back.
bool send_factory_default(ScannerLink& link);

/// What a good reply to a query leads to: labels, App1RevNumber and the setup. Throws RunTimeError
/// where a reply can't be used.
void work_on_reply(ScannerLink& link, ScannerSetup& setup, std::string_view tag,
                   const std::string& reply);

/// Settings text of a port that talks to a scanner with this setup, such as "19200,e,7,2".
std::string port_settings(const ScannerSetup& setup);

}  // namespace orvex
