#include "setupfiles/setup_files.h"

#include <algorithm>
#include <string>

#include "base/run_time_error.h"
#include "link/frame.h"
#include "platform/files.h"
#include "setup/apply.h"

namespace orvex {
namespace {

constexpr FileDialog dialog{"Select a TXT file", "All files", "Text Files (*.txt)"};
/// A setup has about 500 bytes; what is far beyond that is no setup file, and memory has an end.
constexpr std::uint64_t most_bytes = 256 << 20;
constexpr std::size_t read_step = 1 << 20;

void tell(WindowSystem& windows, const RunTimeError& error) {
  windows.MsgBox({.text = "Error # " + std::to_string(error.number) + " " + error.text,
                  .icon = Icon::critical,
                  .title = "Error"});
}

}  // namespace

std::string read_setup_file(WindowSystem& windows, const std::filesystem::path& path) {
  platform::InputFile file;
  if (const auto error = file.open(path)) throw error_of(error);
  if (file.size() > most_bytes) throw error_of(std::make_error_code(std::errc::not_enough_memory));
  std::string text;
  text.reserve(file.size());
  while (text.size() < file.size()) {
    const std::size_t done = text.size();
    text.resize(done + std::min<std::size_t>(read_step, file.size() - done));
    std::error_code error;
    const auto got = file.read(done, std::span(text).subspan(done), error);
    if (error) throw error_of(error);
    const bool ends_early = done + got < text.size();
    text.resize(done + got);
    if (ends_early) break;
    windows.pump(Wait::no);
  }
  return text;
}

void mnusave_Click(WindowSystem& windows, const ScannerSetup& setup) {
  const std::string text = setup_file_text(setup);
  const auto path = windows.show_save(dialog);
  if (!path || path->empty()) return;
  if (const auto error = platform::replace_file(*path, text)) tell(windows, error_of(error));
}

void mnuopen_Click(WindowSystem& windows, ScannerSetup& setup) {
  const auto path = windows.show_open(dialog);
  if (!path || path->empty()) return;
  try {
    const std::string text = read_setup_file(windows, *path);
    Apply_Stream(setup, text, [&] { windows.pump(Wait::no); });
  } catch (const RunTimeError& error) {
    tell(windows, error);
  }
}

std::string setup_file_text(const ScannerSetup& setup) {
  std::string text;
  const auto tags = Setup_Tag_List(setup);
  for (std::size_t row = 0; row < tags.size(); ++row) {
    if (parameters()[row].field != Field::RSCTSE) text += frame_of(tags[row]);
  }
  return text;
}

}  // namespace orvex
