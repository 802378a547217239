#include "platform/ports.h"

#include <windows.h>

#include <array>
#include <string_view>

namespace orvex::platform {

std::filesystem::path state_folder() {
  constexpr UINT buffer_size = 145;
  std::array<wchar_t, buffer_size> folder{};
  const UINT length = ::GetSystemWindowsDirectoryW(folder.data(), buffer_size);
  return std::wstring(folder.data(), length < buffer_size ? length : 0);
}

std::string device_of_port(int number, const std::filesystem::path& /*folder*/) {
  const std::string name = "COM" + std::to_string(number);
  std::array<char, MAX_PATH> target{};
  // A target that is too long is one all the same.
  const bool exists = ::QueryDosDeviceA(name.c_str(), target.data(), MAX_PATH) != 0 ||
                      ::GetLastError() == ERROR_INSUFFICIENT_BUFFER;
  return number < 1 || !exists ? std::string{} : name;
}

std::string resolved_device(const std::string& name) {
  constexpr std::string_view prefix = R"(\\.\)";
  return name.starts_with(prefix) ? name.substr(prefix.size()) : name;
}

}  // namespace orvex::platform
