#pragma once

#include <QString>
#include <string>

namespace orvex {

/// Who holds the lock of a serial device, as "process 4711 (orvex)"; empty if nobody does, or it
/// can't be told.
QString holder_of(const std::string& device);

}  // namespace orvex
