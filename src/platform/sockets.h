#pragma once

#include <cstddef>
#include <cstdint>

/// What the systems tell of a TCP connection, and do for it, each in its own way. A handle is the
/// system's own.
namespace orvex::platform {

/// A peer that is no longer there is noticed within 30 s, also while neither end says anything.
void watch_connection(std::intptr_t socket_handle);

/// Bytes that were written and have not left the machine; 0 where it can't be told. What the peer
/// has not acknowledged yet is no part of it.
std::size_t unsent_in_socket(std::intptr_t socket_handle);

}  // namespace orvex::platform
