#include "charts/FreeSpace.h"
#include "charts/TextRuler.h"
#include "core/ArchiveFields.h"

#include <zel/ChartLayers.h>
#include <zel/DrawFont.h>
#include <zel/Error.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_SERIAL(Zel2TextLayer, Zel2XYLayer, 0)

Zel2TextLayer::Zel2TextLayer(zel::Column x, zel::Column y, zel::Column texts, const zel::TextOptions& options)
    : Zel2XYLayer(options, std::move(x), std::move(y)),
      texts_(std::move(texts)),
      distance_(options.distance) {
    if (texts_.GetKind() != zel::Column::Kind::TEXTS && !texts_.IsEmpty())
        throw zel::Error("Cannot write numbers at points: give a column of texts");
    // The names stand at the points.
    SetName(options.name);
}

void Zel2TextLayer::BlockLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) {
    const int half = zel::Magnitude(Map()->ToLogical(CSize(zel::UnitsOfPoints(distance_), 0)).cx) / 2;
    for (const zel::SeriesStretch& stretch : Stretches(frame))
        for (std::size_t i = stretch.begin; i < std::min(stretch.end, texts_.Size()); ++i) {
            if (!frame.world.Contains(stretch.X(i), stretch.Y(i))) continue;
            const CPoint at = frame.world.ToLogical(stretch.X(i), stretch.Y(i));
            CRect mark(at, CSize());
            mark.InflateRect(half, half);
            space.Block(mark);
        }
}

// At the right of its point, or else around it where there is room.
void Zel2TextLayer::DrawLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) {
    DrawFont* const font = Font(Chart()->TextFont());
    if (!font) return;
    const zel::TextRuler ruler(*font);
    const auto logical = [this](double units) {
        return zel::Magnitude(Map()->ToLogical(CSize(zel::Truncate(std::ceil(units)), 0)).cx);
    };
    const int height = logical(ruler.LineHeight()), away = logical(zel::UnitsOfPoints(distance_));
    struct Side {
        int x, y;  // -1, 0 or 1; y downwards
    };
    static constexpr Side kSides[] = {{1, 0}, {-1, 0}, {0, -1}, {0, 1}, {1, -1}, {-1, -1}, {1, 1}, {-1, 1}};
    for (const zel::SeriesStretch& stretch : Stretches(frame)) {
        for (std::size_t i = stretch.begin; i < std::min(stretch.end, texts_.Size()); ++i) {
            const double code = texts_.At(i);
            if (!std::isfinite(code) || !frame.world.Contains(stretch.X(i), stretch.Y(i))) continue;
            const std::string& text = texts_.Names()[static_cast<std::size_t>(code)];
            const CPoint at = frame.world.ToLogical(stretch.X(i), stretch.Y(i));
            const int width = logical(ruler.WidthOf(text));
            for (const Side& side : kSides) {
                const CPoint centre = at + CSize(side.x * (away + width / 2), side.y * (away + height / 2));
                CRect box(centre, CSize());
                box.InflateRect(width / 2, height / 2);
                if (!space.Take(box)) continue;
                font->Print(text.c_str(), centre, 0, DT_CENTER | DT_VCENTER);
                break;
            }
        }
    }
}

void Zel2TextLayer::Serialize(CArchive& ar) {
    Zel2XYLayer::Serialize(ar);
    texts_.Serialize(ar);
    zel::Exchange(ar, distance_);
    if (ar.IsLoading() && texts_.GetKind() != zel::Column::Kind::TEXTS && !texts_.IsEmpty())
        ar.Fail(CArchiveException::genericException, "texts at points are none");
}
