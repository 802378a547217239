#include "qt/desktop.h"

#include <QApplication>
#include <memory>

#include "transfer/image_source.h"
#include "transfer/zmodem_sender.h"

namespace orvex {

Desktop::Desktop(const std::filesystem::path& state_folder)
    : line(windows.loop, state_folder),
      program(
          windows, line,
          [](const std::filesystem::path& path, int rate, Time now) -> std::unique_ptr<FileEngine> {
            return std::make_unique<ZmodemSender>(open_image(path), now,
                                                  static_cast<std::uint32_t>(rate));
          },
          state_folder),
      splash_window(windows, program) {
  windows.window_of = [this](Owner owner) -> QWidget* {
    make_windows();
    if (owner == Owner::upload_window && upload_window->isVisible()) return upload_window.get();
    // The active window may be one that has just been hidden.
    QWidget* active = QApplication::activeWindow();
    return active != nullptr && active->isVisible() ? active : main_window.get();
  };
  splash_window.window_below = [this] { return main_window.get(); };
  splash_window.first_shown = [this] { make_windows(); };
  windows.view.always([this] {
    if (program.forms.form1.Visible) make_windows();
  });
}

void Desktop::make_windows() {
  if (main_window) return;
  main_window = std::make_unique<MainWindow>(windows, program);
  upload_window = std::make_unique<UploadWindow>(windows, program, main_window.get());
  manual_dialog = std::make_unique<ManualDialog>(windows, program, main_window.get());
}

int Desktop::run() {
  windows.handle([this] { program.Main(); });
  return windows.ended() ? 0 : QApplication::exec();
}

}  // namespace orvex
