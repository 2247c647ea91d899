// Pictures as Qt has them.
#pragma once

#include <zel/platform/GraphicsDevice.h>

#include <QImage>

namespace zel::qt {

// A copy without an alpha channel where none is needed.
inline QImage ImageOf(const PictureView& picture) {
    const QImage view(reinterpret_cast<const uchar*>(picture.colors), picture.width, picture.height,
                      picture.width * 4, QImage::Format_ARGB32);
    bool opaque = true;
    for (std::ptrdiff_t i = 0; opaque && i < std::ptrdiff_t{picture.width} * picture.height; ++i)
        opaque = picture.colors[i] >> 24 == 255;
    return view.convertToFormat(opaque ? QImage::Format_RGB888 : QImage::Format_ARGB32);
}

}  // namespace zel::qt
