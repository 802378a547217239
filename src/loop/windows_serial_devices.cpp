#include <windows.h>

#include <array>

#include "loop/serial_devices.h"

namespace orvex {

/// The system's own list has the names alone.
std::vector<SerialDevice> serial_devices() {
  std::vector<SerialDevice> devices;
  HKEY list = nullptr;
  if (::RegOpenKeyExA(HKEY_LOCAL_MACHINE, R"(HARDWARE\DEVICEMAP\SERIALCOMM)", 0, KEY_QUERY_VALUE,
                      &list) != ERROR_SUCCESS) {
    return devices;
  }
  for (DWORD row = 0;; ++row) {
    std::array<char, 256> name{};
    std::array<char, 256> port{};
    auto name_size = static_cast<DWORD>(name.size());
    auto port_size = static_cast<DWORD>(port.size() - 1);
    DWORD type = 0;
    const auto result = ::RegEnumValueA(list, row, name.data(), &name_size, nullptr, &type,
                                        reinterpret_cast<BYTE*>(port.data()), &port_size);
    if (result == ERROR_MORE_DATA) continue;
    if (result != ERROR_SUCCESS) break;
    if (type == REG_SZ) devices.push_back({port.data(), {}, {}, {}});
  }
  ::RegCloseKey(list);
  return devices;
}

}  // namespace orvex
