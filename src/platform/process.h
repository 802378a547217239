#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orvex::platform {

enum class Stream { input = 0, output = 1, error = 2 };
/// True if a person sits at this standard stream.
bool is_terminal(Stream stream);

/// Has standard streams take UTF-8, and a write to one that nobody reads fail without a signal. To
/// be called before anything is opened, which could take the place of a stream that is closed.
void prepare_streams();

/// A line from standard input, without its end. None if there is no more, or if the system asked
/// the process to end first.
std::optional<std::string> read_line();

/// The words after the program's name, in UTF-8.
std::vector<std::string> arguments(int count, char** words);

}  // namespace orvex::platform
