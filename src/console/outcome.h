#pragma once

#include <QJsonObject>
#include <QStringList>

#include "console/failure.h"

namespace orvex {

/// What a command gives: the same result for programs and for people.
struct Outcome {
  QJsonObject document;
  QStringList lines;
  int code = exit_code::done;
};

}  // namespace orvex
