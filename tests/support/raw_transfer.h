#pragma once

#include <memory>
#include <optional>
#include <string>

#include "link/file_engine.h"
#include "simulator/loader.h"

namespace orvex::test {

/// How a transfer goes, for both of its ends.
struct RawTransfer {
  std::optional<std::size_t> stalls_at;  ///< the loader takes no more from this byte on
  std::optional<std::size_t> fails_at;   ///< the loader gives up at this byte
  int started = 0;
  int cancelled = 0;  ///< cancels that reached the loader
  Time ended{};       ///< when the loader answered
};

/// The simplest protocol that moves a file: eight digits of length, the bytes, one letter back. It
/// stands in for a real one where only the flow around a transfer is looked at.
std::unique_ptr<FileEngine> raw_sender(std::unique_ptr<FileSource> source, RawTransfer& transfer);
std::unique_ptr<simulator::Loader> raw_loader(RawTransfer& transfer);

}  // namespace orvex::test
