#include "ui/qt/desktop.h"

#include <QApplication>
#include <memory>

#include "upgrade/image_source.h"
#include "upgrade/zmodem_sender.h"

namespace orvex {

Desktop::Desktop(const std::filesystem::path& state_folder)
    : line(windows, state_folder),
      program(
          windows, line,
          [](const std::filesystem::path& path, int rate, Time now) -> std::unique_ptr<FileEngine> {
            return std::make_unique<ZmodemSender>(open_image(path), now,
                                                  static_cast<std::uint32_t>(rate));
          },
          state_folder),
      main_window(windows, program),
      splash_window(windows, program, &main_window),
      upload_window(windows, program, &main_window),
      manual_dialog(windows, program, &main_window) {
  windows.window_of = [this](Owner owner) -> QWidget* {
    if (owner == Owner::upload_window) return &upload_window;
    QWidget* active = QApplication::activeWindow();
    return active != nullptr ? active : &main_window;
  };
}

int Desktop::run() {
  windows.handle([this] { program.Main(); });
  return windows.ended() ? 0 : QApplication::exec();
}

}  // namespace orvex
