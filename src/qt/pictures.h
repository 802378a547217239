#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

namespace orvex {

/// A picture of the program by its name; Qt picks the sharper one on a dense screen.
inline QIcon icon(const QString& name) {
  return QIcon(":/pictures/" + name + ".png");
}

/// The picture for a widget of this density.
inline QPixmap picture(const QString& name, const QSize& size, qreal density) {
  return icon(name).pixmap(size, density);
}

/// The splash picture or the strip of the upload animation at the density of a window.
inline QPixmap whole_picture(const QString& name, qreal density) {
  QPixmap whole(":/pictures/" + name + (density > 1 ? "@2x.png" : ".png"));
  return whole;
}

}  // namespace orvex
