#include "link/port_store.h"

#include <array>
#include <optional>
#include <string>

#include "base/number.h"
#include "platform/files.h"

namespace orvex {
namespace {

constexpr std::string_view default_line = "PORTCOM=1;PORTSET=9600,n,8,1;SUPPSET=000000;\r\n";
constexpr std::size_t key_size = 8;
/// A longer file is none that this tool wrote.
constexpr std::size_t most_characters = 32767;

std::optional<std::string> read_whole(const std::filesystem::path& path) {
  platform::InputFile file;
  if (file.open(path, platform::Links::replace)) return std::nullopt;
  std::string text(most_characters + 1, '\0');
  std::error_code error;
  text.resize(file.read(0, text, error));
  if (error || text.size() > most_characters) return std::nullopt;
  return text;
}

/// False if the text holds a port number that is none.
bool take_items(std::string_view text, PortState& state) {
  while (true) {
    const auto end = text.find(';');
    if (end == std::string_view::npos || end < key_size) return true;
    const auto key = text.substr(0, key_size);
    const auto value = text.substr(key_size, end - key_size);
    if (key == "PORTCOM=") {
      state.PortCom = value;
      if (stored_port(value) == 0) return false;
    } else if (key == "PORTSET=") {
      state.PortSet = value;
    }
    text.remove_prefix(end + 1);
  }
}

void repair(PortState& state) {
  // Without a file the tool goes on with the same values.
  (void)platform::replace_file(state.IniPath, default_line, platform::Links::replace);
  state.PortCom = "1";
  state.PortSet = "9600,n,8,1";
}

}  // namespace

void Load_Ini(PortState& state, const std::filesystem::path& folder) {
  state.WinDir = folder;
  state.IniPath = folder / ini_name;
  const auto text = read_whole(state.IniPath);
  if (!text || !take_items(*text, state)) repair(state);
}

bool save_ini(const PortState& state, int comm_port, std::string_view settings) {
  std::string line = "PORTCOM=" + std::to_string(comm_port) + ";PORTSET=";
  line += settings;
  line += ";SUPPSET=;\r\n";
  return !platform::replace_file(state.IniPath, line, platform::Links::replace);
}

int stored_port(std::string_view port_com) {
  const auto number = read_number(port_com);
  if (!number) return 0;
  for (int port = 1; port <= 6; ++port) {
    if (*number == port) return port;
  }
  return 0;
}

}  // namespace orvex
