#include "console/port_holder.h"

namespace orvex {

QString holder_of(const std::string& /*device*/) {
  return {};  // the system doesn't tell
}

}  // namespace orvex
