#pragma once

#include <QString>

namespace orvex {

/// Exit codes of the program.
namespace exit_code {
inline constexpr int done = 0;  ///< also when nothing had to be done
inline constexpr int difference = 1;
inline constexpr int wrong_use = 2;
inline constexpr int no_scanner = 3;       ///< nobody answered at all
inline constexpr int no_port = 4;          ///< the port is not available
inline constexpr int scanner_failed = 5;   ///< refused, went silent or away, or didn't take a value
inline constexpr int file_error = 6;       ///< also a file that is no setup or no image
inline constexpr int transfer_failed = 7;  ///< of a firmware image
inline constexpr int interrupted = 130;
}  // namespace exit_code

/// Ends a command without a result. Thrown only outside of the event loop's handlers.
struct Failure {
  int code;
  QString text;  ///< in words for the user, as yet with whatever a scanner or a file put into it
};

}  // namespace orvex
