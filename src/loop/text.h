#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace orvex {

/// Texts of the tool are ISO 8859-1, one byte a character.
inline QString to_qt(std::string_view text) {
  return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string from_qt(const QString& text) {
  const QByteArray bytes = text.toLatin1();
  return {bytes.data(), static_cast<std::size_t>(bytes.size())};
}

}  // namespace orvex
