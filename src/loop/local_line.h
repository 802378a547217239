#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "link/line.h"
#include "loop/event_loop.h"

namespace orvex {

/// The machine's own serial lines. Each system has a file that makes them. `loop` must outlive the
/// line; `links` is the folder of the links com1, com2 and so on, where a system has such links.
/// Unless it is empty, `device` stands for every port; it is a name as a user gives it, and what is
/// behind its links is looked up at each opening.
std::unique_ptr<Line> make_local_line(EventLoop& loop, const std::filesystem::path& links,
                                      const std::string& device = {});

}  // namespace orvex
