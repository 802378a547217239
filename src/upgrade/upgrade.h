#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "base/timer.h"
#include "link/scanner_link.h"
#include "upgrade/image_header.h"

namespace orvex {

/// Where a load stands.
enum class LoadPhase : std::uint8_t {
  idle,          ///< there is none
  head_shown,    ///< Form3 shows the image's head, and a box asks whether to load it
  asking,        ///< the scanner is asked for its revision, the user about an older image
  preparing,     ///< the rate may change, and the scanner is told that a file comes
  left,          ///< the user has cancelled in an exchange, which comes to its end first
  transferring,  ///< Timer3 watches the transfer
  settling,      ///< it has ended, and Timer2 waits with the verdict
  cancelling,    ///< the scanner may be told its old rate
  restarting,    ///< Form3 is gone, the user restarts the scanner, and it is looked for
};

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
  /// The close control of Form3.
  void close();
  /// Progress of the transfer in the unit of FileTotal.
  void FileProgress(std::int32_t done);

  /// True from the image's choice to the end of all that follows a load: the line is taken.
  bool active() const { return phase_ != LoadPhase::idle; }

 private:
  using Move = void (Upgrade::*)();
  struct Moves;
  const Moves& moves() const;
  void make(Move move);

  void load_image(const std::filesystem::path& path);
  void show_form3(const ImageHeader& header);
  void Form_Load();
  void Form_Unload();
  void prepare_and_start(const std::filesystem::path& path);
  bool prepare();
  bool is_preparing() const;
  void Start_Upload(const std::filesystem::path& path);
  void leave();
  void cancel();
  void hide();
  void settle();
  void judge();
  void runtop();
  void welcome_new_firmware();

  ScannerLink& link_;
  Jobs after_load_;
  Timer Timer1_;
  Timer Timer2_;
  Timer Timer3_;
  int SavedRThreshold_ = 0;
  int SavedSThreshold_ = 0;
  LoadPhase phase_ = LoadPhase::idle;
};

}  // namespace orvex
