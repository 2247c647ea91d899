// Images as Portable Network Graphics.
#pragma once

#include "backends/qt/Stroker.h"

#include <zel/platform/SafeFile.h>

namespace zel::qt {

// Whether a picture is small enough to be compressed as a whole: that takes four bytes more for each pixel.
bool CanWritePng(const PixelBuffer& picture);

// Writes a picture with the smallest number of bits to a pixel that tells its colours apart: 256 of them and
// fewer in a table. Throws CFileException*.
void WritePng(SafeFile& file, const PixelBuffer& picture, int dotsPerMetre);

}  // namespace zel::qt
