// The operators of PDF for marks.
#pragma once

#include "backends/qt/PageDevice.h"

#include <span>
#include <string>
#include <vector>

namespace zel::qt {

// A stream of a PDF file and what its dictionary says of it, but for compression and length.
struct PdfStream {
    std::string dictionary;
    std::string content;
};

// A form that draws a mark with its origin at (0, 0).
PdfStream FormOf(std::span<const MarkPiece> pieces);

// A form that draws another one, the object `mark`, at each of `places`. `unit` is the side of the square
// that a picture in its stead would fill, with its lower left corner at (0, unit), y downwards.
PdfStream FormOf(int mark, const QRectF& reach, std::span<const CPoint> places, double unit);

}  // namespace zel::qt
