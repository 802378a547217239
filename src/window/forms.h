#pragma once

#include <array>
#include <map>
#include <string>

#include "base/timer.h"
#include "window/controls.h"

namespace orvex {

inline constexpr const char* application_title = " Orvex - 2.11";

/// Position and size of a window in twips, 1440 to the inch.
struct Geometry {
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
};

/// Which of the two pictures of FrameLED lies in front.
enum class Indicator { imgNotConnected, imgConnected };

/// Size of Form1 at the usual type, in twips.
inline constexpr int Form1_width = 8980;
inline constexpr int Form1_height = 7815;

/// The main window, but for the fields of the setup, which stand in ScannerSetup, and for what
/// nothing ever changes.
struct Form1 {
  explicit Form1(const Clock& clock, std::function<void()> timer_tick)
      : Timer1(clock, std::move(timer_tick)) {}

  bool Visible = false;
  std::string Caption = application_title;
  Geometry geometry{.Width = Form1_width, .Height = Form1_height};

  Button cmdReceive, cmdSend, cmdFactory, cmdWeb;
  TabControl SSTab1;
  StatusBar sbrStatus;
  /// Tool tip of panel 1, in the encoding of file names: the device of the open port, or port,
  /// device and why it isn't open.
  std::string port_tip;
  Indicator FrameLED = Indicator::imgNotConnected;
  int FrameLED_offset = 0;  ///< twips from the top of sbrStatus to the top of FrameLED

  std::map<int, Label> labRevision{{1, {}}, {2, {}}, {3, {}}, {4, {}}};
  Label labWeb;
  Label Label4;  ///< the serial number

  Caret Text2, Text3, Text10;  ///< prefix, suffix and character delay; texts in ScannerSetup
  Panel Symbol1{false};
  Panel Symbol2{false};

  MenuItem mnuauto, mnumanual, mnuabout;
  std::map<int, MenuItem> mnuload{{5, {}}};  ///< by index

  Timer Timer1;
};

/// Splash window and About box.
struct Form2 {
  bool Loaded = false;
  bool Visible = false;
  bool Modal = false;
  Label Label1, Label2, Label3;
  Button Command3{.Visible = false};
};

/// The window of a firmware upload. Its timers stand with the job that owns them.
struct Form3 {
  bool Visible = false;
  std::string Text1, Text2, Text3, Text4;
  ProgressBar ProgressBar1;
  int Picture1 = 0;  ///< cell of the strip PictureClip1 that is shown, 0 to 17
};

/// The manual port dialog.
struct Form4 {
  bool Loaded = false;
  bool Visible = false;
  ComboBox Combo1, Combo2, Combo3;
  /// Tool tips of the items of Combo1, in the encoding of file names: the devices of the ports.
  std::array<std::string, 6> Combo1_tips;
};

inline constexpr std::array Combo1_list{"Com 1", "Com 2", "Com 3", "Com 4", "Com 5", "Com 6"};
inline constexpr std::array Combo2_list{"2400",  "4800",  "9600",  "19200",
                                        "38400", "57600", "115200"};
inline constexpr std::array Combo3_list{"NONE", "ODD", "EVEN"};

struct Forms {
  Form1 form1;
  Form2 form2;
  Form3 form3;
  Form4 form4;
};

}  // namespace orvex
