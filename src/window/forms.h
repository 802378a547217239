#pragma once

#include <array>
#include <map>
#include <string>

#include "window/controls.h"
#include "window/timer.h"

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

/// The main window, but for the fields of the setup, which stand in ScannerSetup.
struct Form1 {
  explicit Form1(const Clock& clock, std::function<void()> timer_tick)
      : Timer1(clock, std::move(timer_tick)) {}

  bool Visible = false;
  std::string Caption = application_title;
  Geometry geometry{.Width = 8980, .Height = 7815};

  Button cmdReceive, cmdSend, cmdFactory, cmdExit, cmdWeb, cmdCtrlPre, cmdCtrlSuf;
  TabControl SSTab1;
  StatusBar sbrStatus;
  std::string port_path;  ///< tool tip of panel 1: the device behind the port, empty where none
  Indicator FrameLED = Indicator::imgNotConnected;
  int FrameLED_offset = 0;  ///< twips from the top of sbrStatus to the top of FrameLED

  std::map<int, Label> labRevision{{1, {}}, {2, {}}, {3, {}}, {4, {}}};
  Label labWeb;
  Label Label4;  ///< the serial number

  Caret Text2, Text3, Text10;  ///< prefix, suffix and character delay; texts in ScannerSetup
  Panel Symbol1{false};
  Panel Symbol2{false};

  MenuItem mnuopen, mnusave, mnuexit, mnuauto, mnumanual, mnuabout;
  std::map<int, MenuItem> mnuload{{2, {}}, {5, {}}};

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
  bool Loaded = false;
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
