#include <winsock2.h>
// After winsock2.h.
#include <mstcpip.h>

#include "platform/sockets.h"

namespace orvex::platform {

void watch_connection(std::intptr_t socket_handle) {
  // Ten probes, a second apart, before the system gives up.
  tcp_keepalive probes{.onoff = 1, .keepalivetime = 10'000, .keepaliveinterval = 1'000};
  DWORD ignored = 0;
  // Where it isn't taken, the system's own limits hold.
  (void)::WSAIoctl(static_cast<SOCKET>(socket_handle), SIO_KEEPALIVE_VALS, &probes, sizeof probes,
                   nullptr, 0, &ignored, nullptr, nullptr);
}

std::size_t unsent_in_socket(std::intptr_t /*socket_handle*/) {
  return 0;  // the system doesn't tell
}

}  // namespace orvex::platform
