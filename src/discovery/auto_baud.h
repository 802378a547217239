#pragma once

#include "link/scanner_link.h"

namespace orvex {

/// Finds the rate at which the scanner answers on the stored COM port: pings it at eight rates,
/// 500 ms each, as often as the user wants. Leaves the port open at the rate found, or closed.
void mnuauto_Click(ScannerLink& link);

/// Form2 as a scan shows it: not modal, with port and rate in place of "OK".
void lay_out_for_scan(Form2& form2);

/// Loads the splash window, if it isn't yet.
void load_form2(ScannerLink& link);

}  // namespace orvex
