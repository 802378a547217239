#include "console/escape.h"

#include <QJsonDocument>

namespace orvex {
namespace {

bool is_control(QChar c) {
  return c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() < 0xA0);
}

}  // namespace

QString printable(const QString& text) {
  QString shown;
  shown.reserve(text.size());
  for (const QChar c : text) {
    if (is_control(c)) {
      shown += "\\x" + QString::number(c.unicode(), 16).toUpper().rightJustified(2, '0');
    } else if (c == '\\') {
      shown += "\\\\";
    } else {
      shown += c;
    }
  }
  return shown;
}

QByteArray json_of(const QJsonObject& document) {
  // Qt escapes what is below 20 hex. Outside of its strings a document has no other of these.
  const QString text =
      QString::fromUtf8(QJsonDocument(document).toJson(QJsonDocument::Compact)) + '\n';
  QString escaped;
  escaped.reserve(text.size());
  for (const QChar c : text) {
    if (c != '\n' && is_control(c)) {
      escaped += QString("\\u%1").arg(c.unicode(), 4, 16, QChar('0'));
    } else {
      escaped += c;
    }
  }
  return escaped.toUtf8();
}

}  // namespace orvex
