#include "loop/port_line.h"

#include "base/network_address.h"
#include "loop/local_line.h"

namespace orvex {

PortLine::PortLine(EventLoop& loop, const std::filesystem::path& links, const std::string& device)
    : device_(device),
      local_(make_local_line(loop, links, device)),
      network_(loop, [this](int) { return address_; }),
      line_(local_.get()) {}

void PortLine::listen(Listener& listener) {
  local_->listen(listener);
  network_.listen(listener);
}

std::string PortLine::device_path(int com_port) const {
  return is_network_name(device_) ? device_ : local_->device_path(com_port);
}

void PortLine::open(int com_port, const LineSettings& settings) {
  close();
  address_ = device_path(com_port);
  line_ = is_network_name(address_) ? static_cast<Line*>(&network_) : local_.get();
  line_->open(com_port, settings);
}

}  // namespace orvex
