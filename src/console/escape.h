#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace orvex {

/// The text for a terminal or a log: control characters (below 20 hex, 7F, 80 to 9F) as "\x1B", and
/// a backslash as two.
QString printable(const QString& text);

/// The document as JSON in UTF-8 with a line end behind it, with every control character escaped.
QByteArray json_of(const QJsonObject& document);

}  // namespace orvex
