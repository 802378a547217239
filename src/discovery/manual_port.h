#pragma once

#include "link/scanner_link.h"

namespace orvex {

/// Shows the manual port dialog, which is loaded afresh if it was closed.
void mnumanual_Click(ScannerLink& link);

/// "Open Port": opens the port as the boxes say, pings the scanner once and stores what it answered
/// to. On a port that can't be opened the dialog stays.
void open_port_by_hand(ScannerLink& link);

/// Pings the scanner once on the open port: true if it answers within 1000 ms and
/// the port still stands.
bool scanner_answers(ScannerLink& link);

/// "Cancel".
void leave_manual_dialog(ScannerLink& link);

/// The dialog's own close control.
void close_manual_dialog(ScannerLink& link);

}  // namespace orvex
