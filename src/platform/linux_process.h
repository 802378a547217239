#pragma once

namespace orvex::platform {

/// A descriptor that becomes readable when the system asks the process to end, as by Ctrl-C or at a
/// logout; -1 if there can be none. A signal that was ignored so far stays so. Asked for once.
int end_request();

/// From now on such a request ends the process at once, with this exit code.
void end_at_once(int code);

}  // namespace orvex::platform
