#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include "platform/sockets.h"

namespace orvex::platform {
namespace {

void set(std::intptr_t socket, int level, int option, int value) {
  // Where it isn't taken, the system's own limits hold.
  (void)::setsockopt(static_cast<int>(socket), level, option, &value, sizeof value);
}

}  // namespace

void watch_connection(std::intptr_t socket_handle) {
  set(socket_handle, SOL_SOCKET, SO_KEEPALIVE, 1);
  set(socket_handle, IPPROTO_TCP, TCP_KEEPIDLE, 10);  // seconds
  set(socket_handle, IPPROTO_TCP, TCP_KEEPINTVL, 5);
  set(socket_handle, IPPROTO_TCP, TCP_KEEPCNT, 2);
  set(socket_handle, IPPROTO_TCP, TCP_USER_TIMEOUT, 20'000);  // ms, for what is not acknowledged
}

std::size_t unsent_in_socket(std::intptr_t socket_handle) {
  int count = 0;
  if (::ioctl(static_cast<int>(socket_handle), SIOCOUTQNSD, &count) != 0 || count < 0) return 0;
  return static_cast<std::size_t>(count);
}

}  // namespace orvex::platform
