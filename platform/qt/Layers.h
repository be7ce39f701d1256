#pragma once

#include <QImage>

namespace platform::qt {

/// Returns a transparent, premultiplied ARGB image.
inline QImage transparentLayer(QSize size) {
    QImage layer(size, QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::transparent);
    return layer;
}

/// Returns an image that shares the pixels of @p image but has a device pixel ratio of 1, because
/// QPainter scales by the ratio.
inline QImage unscaledView(QImage& image) {
    return QImage(image.bits(), image.width(), image.height(), image.bytesPerLine(),
                  image.format());
}

} // namespace platform::qt
