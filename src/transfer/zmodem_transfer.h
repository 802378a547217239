#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "transfer/file_engine.h"
#include "transfer/file_source.h"
#include "transfer/zmodem_codec.h"
#include "transfer/zmodem_favours.h"
#include "transfer/zmodem_retry.h"
#include "transfer/zmodem_window.h"
#include "transfer/zmodem_wire.h"

namespace orvex {

/// The phases of a transfer, in their order. Each but the last is a class.
enum class ZmodemStep { greeting, offer, data, file_end, farewell, over };

/// What this receiver is known to answer within the file.
enum class ZmodemAnswers {
  guessed,      ///< its answer to ZFILE was damaged, and taken for a ZRPOS
  not_known,    ///< so it is at first
  to_waits,     ///< ZCRCW, as every receiver does
  to_requests,  ///< ZCRCQ as well
  to_nothing,   ///< it took data without a word
};

/// What the phases of one transfer share. A phase ends by naming the next one in `step`.
struct ZmodemTransfer {
  /// `source` must outlive the transfer.
  ZmodemTransfer(FileSource& source, std::uint32_t bits_per_second)
      : file(source), size(source.size()), window(bits_per_second), retry(bits_per_second) {}

  /// Takes what a ZRINIT announces; false if that can't be served, which ends the transfer.
  bool meet(const ZmodemHeader& zrinit);
  /// The receiver says that it has all bytes before `place`.
  void gain(std::uint64_t place);

  /// The receiver has confirmed the end of the file.
  void complete();
  /// Fails, and says goodbye to a receiver that has ended the transfer in good order.
  void part(std::string_view why);
  /// Fails with the cancel sequence.
  void fail(std::string_view why);
  /// Fails without a word more.
  void end_quietly(std::string_view why);

  FileSource& file;
  const std::uint64_t size;
  ZmodemWire wire;
  ZmodemReceiver receiver;
  ZmodemWindow window;
  ZmodemRetry retry;
  ZmodemFavours favours;
  ZmodemStep step = ZmodemStep::greeting;
  FileEngine::State state = FileEngine::State::running;
  std::string_view reason;
  std::uint64_t confirmed = 0;  ///< the most the receiver has said that it has
  std::uint64_t gained = 0;     ///< the most it may be taken to have; not less than confirmed
  std::optional<Time> end_by;   ///< when the end has to be confirmed, once ZEOF went out
  int offers = 0;               ///< ZFILEs sent
  ZmodemAnswers answers = ZmodemAnswers::not_known;
};

}  // namespace orvex
