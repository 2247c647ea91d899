#include "backends/qt/PolygonClip.h"

namespace zel::qt {
namespace {

// Keeps what lies where `inside` is true; `cross` answers where an edge meets the border.
template <class Inside, class Cross>
QPolygonF CutBy(const QPolygonF& ring, Inside inside, Cross cross) {
    QPolygonF kept;
    for (qsizetype i = 0; i < ring.size(); ++i) {
        const QPointF& a = ring[i];
        const QPointF& b = ring[(i + 1) % ring.size()];
        if (inside(a)) kept.append(a);
        if (inside(a) != inside(b)) kept.append(cross(a, b));
    }
    return kept;
}

QPolygonF CutAtX(const QPolygonF& ring, double x, bool keepRight) {
    return CutBy(
        ring, [=](const QPointF& p) { return keepRight ? p.x() >= x : p.x() <= x; },
        [=](const QPointF& a, const QPointF& b) {
            return QPointF(x, a.y() + (b.y() - a.y()) * ((x - a.x()) / (b.x() - a.x())));
        });
}

QPolygonF CutAtY(const QPolygonF& ring, double y, bool keepBelow) {
    return CutBy(
        ring, [=](const QPointF& p) { return keepBelow ? p.y() >= y : p.y() <= y; },
        [=](const QPointF& a, const QPointF& b) {
            return QPointF(a.x() + (b.x() - a.x()) * ((y - a.y()) / (b.y() - a.y())), y);
        });
}

}  // namespace

QPolygonF ClippedTo(const QPolygonF& ring, const QRectF& box) {
    if (box.contains(ring.boundingRect())) return ring;
    return CutAtY(CutAtY(CutAtX(CutAtX(ring, box.left(), true), box.right(), false), box.top(), true),
                  box.bottom(), false);
}

}  // namespace zel::qt
