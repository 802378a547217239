#pragma once

namespace orvex::platform {

/// A descriptor that becomes readable when the system asks the process to end, as by Ctrl-C or at a
/// logout; -1 if there can be none. A signal that was ignored so far stays so. Asked for once.
int end_request();

}  // namespace orvex::platform
