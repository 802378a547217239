#pragma once

#include <map>
#include <string>

namespace orvex {

// The controls of the windows as plain data. Texts are ISO 8859-1, one byte a character, but for
// those that a user types, which hold UTF-16 as the keyboard gives it.

struct Button {
  bool Enabled = true;
  bool Visible = true;
};

struct Label {
  std::string Caption;
  bool Visible = true;
};

struct MenuItem {
  bool Enabled = true;
  bool Checked = false;
};

/// A frame that is shown and hidden as one.
struct Panel {
  bool Visible = true;
};

/// What a text box holds besides its text.
struct Caret {
  int SelStart = 0;           ///< where the caret or the selection begins, in characters from 0
  int SelLength = 0;          ///< characters selected
  bool focus_wanted = false;  ///< set to hand the box the focus; cleared when it has it
};

struct ComboBox {
  std::string Text;
  int ListIndex = -1;  ///< position in the list from 0, -1 if the text is none of its items
};

struct TabControl {
  int Tab = 0;  ///< from 0
  bool Enabled = true;
};

struct StatusBar {
  std::map<int, std::string> Panels{{1, ""}, {2, ""}};  ///< by number, 1 and 2
};

struct ProgressBar {
  float Min = 0;
  float Max = 100;
  float Value = 0;
  bool Visible = true;
};

}  // namespace orvex
