#pragma once

#include <QString>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvex {

/// What the words on the command line ask for.
struct Options {
  std::string command;
  std::optional<int> port;   ///< 1 to 6
  std::string device;        ///< path, in place of a port's number
  std::string settings;      ///< as "9600,N,8,1"; empty if the scanner is to be searched
  std::string parity = "N";  ///< "N", "O" or "E", of a search
  bool json = false;
  bool quiet = false;
  std::filesystem::path trace;  ///< empty for none

  std::vector<std::string> words;  ///< names of `show`, assignments of `set`, in UTF-8
  std::filesystem::path file;
  bool yes = false;
  bool dry_run = false;
  bool fast = false;
  bool allow_older = false;
  int restart_wait = 120;  ///< seconds
};

/// Reads the command line. Throws Failure if it makes no sense, and Help if help is wanted.
Options parse_options(const std::vector<std::string>& arguments);

/// What `--help` and `--version` print.
struct Help {
  QString text;
};

}  // namespace orvex
