#pragma once

#include <cstddef>
#include <vector>

#include "bench/upload_pair.h"

namespace orvex::bench {

/// What a row is judged by.
enum class Judge {
  times_of_sz,  ///< the seconds, over those of sz
  seconds,      ///< the seconds to the last byte
  whole,        ///< all variants whole, whatever the time
  end,          ///< the seconds to the failed end, at least three quarters of the limit
  processor,    ///< the sender's processor time, over that of sz
};

/// A row of the table: an upload by ours and one by sz, in one or more variants.
struct UploadRow {
  const char* name;
  Judge judge;
  double limit;
  std::size_t kibibytes;
  UploadJob job;
  std::vector<LineKind> variants = {};  ///< of the line to the receiver, in place of the job's
};

const std::vector<UploadRow>& upload_rows();

}  // namespace orvex::bench
