#include "views/ZoomCursor.h"

#include <zel/ZelViewer.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kSize = 24;
constexpr double kCentre = 9.5, kRadius = 6.5;  // of the glass
constexpr double kGripEnd = 20.5, kGripHalf = 1.6;
constexpr double kRim = 2.4;  // white around the black, for dark grounds

// How far a pixel lies from the lines of the picture, less half their thickness.
double DistanceTo(double x, double y) {
    const double ring = std::fabs(std::hypot(x - kCentre, y - kCentre) - kRadius) - 1;
    const double gripBegin = kCentre + kRadius * 0.8;
    const double along = std::clamp((x + y) / 2, gripBegin, kGripEnd);
    const double grip = std::hypot(x - along, y - along) - kGripHalf;
    return std::min(ring, grip);
}

}  // namespace

void RegisterZoomCursor() {
    zel::Cursor cursor{
        .id = ZelViewer::kZoomCursor, .size = CSize(kSize, kSize), .hotSpot = CPoint(9, 9), .pixels = {}};
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {
            const double away = DistanceTo(x, y);
            const double ink = std::clamp(0.5 - away, 0.0, 1.0);
            const double shown = std::clamp(0.5 - (away - kRim + 1), 0.0, 1.0);
            const auto grey = static_cast<std::uint32_t>(255 * shown * (1 - ink));
            const auto alpha = static_cast<std::uint32_t>(255 * shown);
            cursor.pixels.push_back(alpha << 24 | grey << 16 | grey << 8 | grey);
        }
    }
    zel::RegisterCursor(cursor);
}
