#pragma once

#include <cstddef>
#include <cstdint>

#include "transfer/zmodem_transfer.h"

namespace orvex {

/// Cuts the file into frames (a ZDATA each) and these into pieces, as the receiver and the line
/// want them.
///
/// A receiver that answers requests (ZCRCQ) gets one frame with a request at each piece; one that
/// answers nothing, one without. Any other gets runs of the window's size that end in a wait for an
/// answer (ZCRCW). A receiver that can't answer while it takes data, or has a buffer, gets such
/// runs, too, of 4 KiB at most and no longer than the buffer; one that can't take data while it
/// writes, of one piece. The last piece ends the frame (ZCRCE) and asks for nothing.
class ZmodemFrames {
 public:
  /// `transfer` must outlive the frames.
  explicit ZmodemFrames(ZmodemTransfer& transfer) : transfer_(transfer) {}

  /// Adds the next piece to the wire, and a header first if no frame is open. False if the
  /// file can't be read.
  bool append();
  /// Bytes of the file in the next piece.
  std::size_t next_piece() const;

  /// The receiver expects a further piece, and no header.
  bool open() const { return open_; }
  void close() { open_ = false; }
  /// The open frame may last to the end of the file.
  void extend() { run_end_ = transfer_.size; }

 private:
  void begin();
  std::size_t run_limit() const;
  ZmodemEnd end_of(std::size_t piece) const;

  ZmodemTransfer& transfer_;
  bool open_ = false;
  std::uint64_t run_end_ = 0;  // of the open frame
};

}  // namespace orvex
