#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "transfer/file_engine.h"
#include "transfer/zmodem_parser.h"
#include "transfer/zmodem_phase.h"
#include "transfer/zmodem_transfer.h"

namespace orvex {

/// Sends one file by ZMODEM: greeting, offer, data, file end and farewell, a phase each.
///
/// Memory: some 100 KiB at most, whatever the size of the file. No call reads or encodes more than
/// 64 KiB.
class ZmodemSender final : public FileEngine {
 public:
  /// `bits_per_second` is the rate of the line (0: not known). A file of 4 GiB and more fails at
  /// once: positions have 32 bits.
  explicit ZmodemSender(std::unique_ptr<FileSource> file, Time now,
                        std::uint32_t bits_per_second = 115200);

  void receive(std::string_view bytes, Time now) override;
  void tick(Time now) override;
  std::string transmit(std::size_t room, Time now) override;
  bool take_discard() override { return transfer_.wire.take_discard(); }
  std::size_t most_unsent() const override;
  std::optional<Time> wake() const override;
  void cancel(Time now) override;
  State state() const override { return transfer_.state; }
  bool finished() const override { return over() && transfer_.wire.empty(); }
  std::uint64_t progress() const override;
  std::uint64_t total() const override { return transfer_.size; }
  std::string_view reason() const override { return transfer_.reason; }

 private:
  bool over() const { return transfer_.step == ZmodemStep::over; }
  bool produce(Time now);
  void enter_step(Time now);

  const std::unique_ptr<FileSource> file_;
  ZmodemTransfer transfer_;
  ZmodemParser parser_;
  ZmodemStep entered_ = ZmodemStep::greeting;
  std::unique_ptr<ZmodemPhase> phase_;  // of the step entered_; none if that is over
};

}  // namespace orvex
