#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/clock.h"
#include "base/timer.h"

namespace orvex {

/// Leaves every routine once the process is to end: pump() and the boxes throw it, and the window
/// system catches it where a handler began. Nothing else may catch it.
struct Ended {};

enum class Wait {
  no,         ///< deliver what is pending and return
  for_event,  ///< if nothing is pending, sleep until the next event: a byte, a tick, a click
};

enum class Buttons { ok, retry_cancel, yes_no };
enum class Icon { none, information, exclamation, critical };
enum class Answer { ok, retry, cancel, yes, no };

/// A window that can own a message box; such a box goes down with its window.
enum class Owner { active_window, upload_window };

struct MessageBox {
  std::string text;  ///< in the system's encoding (UTF-8, as a rule), plain; CR parts its lines
  Buttons buttons = Buttons::ok;
  Icon icon = Icon::none;
  std::string title = "Orvex1";
  Owner owner = Owner::active_window;
  bool refuses_by_default = false;  ///< Enter presses No or Cancel, else the other button
};

struct FileDialog {
  std::string_view title;
  std::string_view first_filter;   ///< shown as "name (patterns)" or a bare name
  std::string_view second_filter;  ///< the preselected one
};

/// The window system as the tool sees it. Windows are records of controls (window/forms.h) that
/// the window system draws before each pump and after each handler; what is here are the
/// operations. All calls come from the one thread.
class WindowSystem : public Clock {
 public:
  /// Delivers pending events, among them due timers and what the line received.
  /// Throws Ended if the process is to end.
  virtual void pump(Wait wait) = 0;

  /// Shows a modal box and returns the button pressed. A box taken down unanswered gives the
  /// refusing button: cancel, no, or ok if there is no other. Throws Ended as pump() does.
  virtual Answer MsgBox(const MessageBox& box) = 0;
  /// Takes down the boxes owned by `owner` that still stand.
  virtual void dismiss_boxes(Owner owner) = 0;

  /// Both give the name as the user chose it, none on a cancel. An existing file is no question.
  virtual std::optional<std::filesystem::path> show_open(const FileDialog& dialog) = 0;
  virtual std::optional<std::filesystem::path> show_save(const FileDialog& dialog) = 0;

  /// Size of the screen in twips, 1440 to the inch.
  virtual int screen_width() const = 0;
  virtual int screen_height() const = 0;

  /// `scheduled` runs inside the pumps from now on; it must outlive the window system's last pump.
  virtual void schedule(Scheduled& scheduled) = 0;

  /// Hands a web address to the desktop's default handler and returns at once. What isn't an
  /// http or https address is passed over.
  virtual void open_address(std::string_view text) = 0;

  /// Ends the process: windows go, and each handler that is still running is left by Ended.
  virtual void end() = 0;
};

}  // namespace orvex
