#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "base/timer.h"
#include "link/scanner_link.h"
#include "upgrade/image_header.h"

namespace orvex {

/// The loading of a firmware image into the scanner's ROM, with its window Form3, from the file
/// dialog to the verdict and what follows it.
class Upgrade {
 public:
  /// What a complete load runs once the user has restarted the scanner.
  struct Jobs {
    std::function<void()> mnuauto_Click;
    std::function<void()> cmdReceive_Click;
  };

  /// `link` must outlive the upgrade.
  Upgrade(ScannerLink& link, Jobs after_load);

  /// Item 2 starts a load, item 5 switches the mark of the fast load.
  void mnuload_Click(int Index);
  /// "Cancel" of Form3.
  void Command1_Click();
  /// Form_Unload of Form3: every close puts the serial control back.
  void close();
  /// Progress of the transfer in the unit of FileTotal.
  void FileProgress(std::int32_t done);

  /// True from the image's choice to the end of all that follows a load: the line is taken.
  bool active() const;

 private:
  void load_image(const std::filesystem::path& path);
  void show_form3(const ImageHeader& header);
  void Form_Load();
  void prepare_and_start(const std::filesystem::path& path);
  bool left_by_user();
  void Start_Upload(const std::filesystem::path& path);
  void cancel();
  void runtop();
  void Timer2_Timer();
  void Timer3_Timer();
  void welcome_new_firmware();

  ScannerLink& link_;
  Jobs after_load_;
  Timer Timer1_;
  Timer Timer2_;
  Timer Timer3_;
  int SavedRThreshold_ = 0;
  int SavedSThreshold_ = 0;
  bool preparing_ = false;      ///< the exchanges ahead of the transfer run
  bool cancel_wanted_ = false;  ///< the user cancelled inside one of them
  bool cancelling_ = false;
  bool after_verdict_ = false;
};

}  // namespace orvex
