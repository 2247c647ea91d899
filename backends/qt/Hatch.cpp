#include "backends/qt/Hatch.h"

#include "backends/qt/Fonts.h"

#include <QImage>

namespace zel::qt {
namespace {

constexpr int kCell = 8;  // pixels

bool IsInk(int hatch, int x, int y) {
    switch (hatch) {
        case HS_HORIZONTAL:
            return y == 3;
        case HS_VERTICAL:
            return x == 4;
        case HS_FDIAGONAL:
            return x == y;
        case HS_BDIAGONAL:
            return x == kCell - 1 - y;
        case HS_CROSS:
            return y == 3 || x == 4;
        default:
            return x == y || x == kCell - 1 - y;
    }
}

bool Has(int hatch, int simple, int both) {
    return hatch == simple || hatch == both;
}

}  // namespace

QBrush BrushOf(const GraphicsState& state, const LOGBRUSH& brush) {
    if (brush.lbStyle == BS_NULL) return Qt::NoBrush;
    // Ink is combined with what lies under it in other modes, and nothing shines through it.
    const BYTE transparency = state.rasterMode == R2_COPYPEN ? brush.lbTransparency : BYTE{0};
    const QColor ink = ColorOf(brush.lbColor, transparency);
    if (brush.lbStyle != BS_HATCHED) return ink;
    QImage cell(kCell, kCell, QImage::Format_ARGB32_Premultiplied);
    const QColor bare = state.backgroundMode == OPAQUE ? ColorOf(state.backgroundColor, transparency)
                                                       : QColor(Qt::transparent);
    for (int y = 0; y < kCell; ++y) {
        for (int x = 0; x < kCell; ++x) cell.setPixelColor(x, y, IsInk(brush.lbHatch, x, y) ? ink : bare);
    }
    return QBrush(cell);
}

std::vector<QLineF> HatchLines(int hatch, const QRectF& box, double spacing) {
    std::vector<QLineF> lines;
    if (Has(hatch, HS_HORIZONTAL, HS_CROSS)) {
        for (double y = box.top(); y <= box.bottom(); y += spacing)
            lines.emplace_back(box.left(), y, box.right(), y);
    }
    if (Has(hatch, HS_VERTICAL, HS_CROSS)) {
        for (double x = box.left(); x <= box.right(); x += spacing)
            lines.emplace_back(x, box.top(), x, box.bottom());
    }
    const double step = spacing * 1.4142135623730951;
    if (Has(hatch, HS_FDIAGONAL, HS_DIAGCROSS)) {
        for (double x = box.left() - box.height(); x <= box.right(); x += step) {
            lines.emplace_back(x, box.top(), x + box.height(), box.bottom());
        }
    }
    if (Has(hatch, HS_BDIAGONAL, HS_DIAGCROSS)) {
        for (double x = box.left() - box.height(); x <= box.right(); x += step) {
            lines.emplace_back(x, box.bottom(), x + box.height(), box.top());
        }
    }
    return lines;
}

}  // namespace zel::qt
