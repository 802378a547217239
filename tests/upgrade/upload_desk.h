#pragma once

#include <gtest/gtest.h>

#include "testing/virtual/desk.h"

namespace orvex::testing {

inline constexpr int load_item = 2;
inline constexpr int fast_item = 5;
inline const std::string question = "[Do You Want to Update the ROM?]";
inline const std::string cancel_question = "[Do you want to CANCEL the file transfer?]";
inline const std::string restart_box =
    "[RESTART the scanner by DISCONNET and RECONNECT the power cable/then press OK to continue]";

struct UpgradeTest : ::testing::Test, Desk {
  UpgradeTest() {
    start();
    line.frames.clear();
  }
  void load(std::size_t size, bool fast = false) { Desk::load(random_image(size, 1), fast); }
  Form3& form3() { return program.forms.form3; }
};

}  // namespace orvex::testing
