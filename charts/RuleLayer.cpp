#include "charts/FreeSpace.h"
#include "charts/TextRuler.h"
#include "core/ArchiveFields.h"
#include "series/FrameClip.h"

#include <zel/ChartNotes.h>
#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_SERIAL(Zel2RuleLayer, Zel2Layer, 0)

// In logical units; the label stands at the second one.
struct Zel2RuleLayer::Ends {
    CPoint from, to;
};

namespace {

constexpr COLORREF kRuleColor = RGB(70, 70, 70);

// Reference lines belong to no series.
template <class Options>
Options WithColor(Options options) {
    if (!options.color) options.color = zel::Color(kRuleColor);
    return options;
}

}  // namespace

Zel2RuleLayer::Zel2RuleLayer(Coordinate coordinate, double value, const zel::RuleOptions& options)
    : Zel2Layer(WithColor(options)),
      kind_(coordinate == Coordinate::X ? Kind::AT_X : Kind::AT_Y),
      value_(value),
      label_(options.label),
      width_(options.width),
      dash_(options.dash),
      inRange_(options.inRange) {}

Zel2RuleLayer::Zel2RuleLayer(double intercept, double slope, const zel::RuleOptions& options)
    : Zel2RuleLayer(Coordinate::Y, intercept, options) {
    kind_ = Kind::SLOPED;
    slope_ = slope;
}

void Zel2RuleLayer::SetPen(int index) {
    pen_ = index;
    Changed();
}

void Zel2RuleLayer::SetDefaults() {
    if (pen_ < 0) pen_ = RegisterOwnPen(width_, dash_);
}

void Zel2RuleLayer::TakeRange(zel::AxisRange& x, zel::AxisRange& y) {
    if (!inRange_ || kind_ == Kind::SLOPED) return;
    zel::AxisRange& range = kind_ == Kind::AT_X ? x : y;
    range.Add(value_ - range.Origin());
}

std::optional<Zel2RuleLayer::Ends> Zel2RuleLayer::EndsIn(const zel::LayerFrame& frame) const {
    const WorldFrame& world = frame.world;
    double x1 = world.xmin, y1 = world.ymin, x2 = world.xmax, y2 = world.ymax;
    if (kind_ == Kind::AT_X) {
        x1 = x2 = frame.x.Forward(value_ - frame.x.Origin());
    } else if (kind_ == Kind::AT_Y) {
        y1 = y2 = frame.y.Forward(value_ - frame.y.Origin());
    } else {
        // Straight between its ends, whatever the scales.
        const auto at = [&](double x) {
            return frame.y.Forward(value_ + slope_ * (frame.x.Inverse(x) + frame.x.Origin()) -
                                   frame.y.Origin());
        };
        y1 = at(x1);
        y2 = at(x2);
    }
    if (!std::isfinite(x1 + y1 + x2 + y2) || !zel::ClipClosed(world, x1, y1, x2, y2)) return std::nullopt;
    return Ends{world.ToLogical(x1, y1), world.ToLogical(x2, y2)};
}

void Zel2RuleLayer::DrawIn(const zel::LayerFrame& frame) {
    DrawPen* const pen = Pen(pen_);
    const std::optional<Ends> ends = EndsIn(frame);
    if (!pen || !ends) return;
    pen->MoveTo(ends->from.x, ends->from.y);
    pen->LineTo(ends->to.x, ends->to.y);
}

// Above the right end of a line, or beside the top of an upright one; on the other side where there is no
// room.
void Zel2RuleLayer::DrawLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) {
    DrawFont* const font = label_.empty() ? nullptr : Font(Chart()->TextFont());
    const std::optional<Ends> ends = EndsIn(frame);
    if (!font || !ends) return;
    const zel::TextRuler ruler(*font);
    const auto logical = [this](double units) {
        return zel::Magnitude(Map()->ToLogical(CSize(zel::Truncate(std::ceil(units)), 0)).cx);
    };
    const int width = logical(ruler.WidthOf(label_)), height = logical(ruler.LineHeight()),
              gap = logical(zel::UnitsOfPoints(2));
    const bool upright = kind_ == Kind::AT_X;
    const CPoint end = upright ? (ends->to.y < ends->from.y ? ends->to : ends->from)
                               : (ends->to.x > ends->from.x ? ends->to : ends->from);
    for (const int side : {1, -1}) {
        const CPoint centre = end + (upright ? CSize(side * (gap + width / 2), height / 2)
                                             : CSize(-gap - width / 2, -side * (gap + height) / 2));
        CRect box(centre, CSize());
        box.InflateRect(width / 2, height / 2);
        if (!space.Take(box)) continue;
        font->Print(label_.c_str(), centre, 0, DT_CENTER | DT_VCENTER);
        return;
    }
}

void Zel2RuleLayer::DrawKey(const CRect& box) {
    DrawPen* const pen = Pen(pen_);
    if (!pen) return;
    const int y = (box.top + box.bottom) / 2;
    pen->MoveTo(box.left, y);
    pen->LineTo(box.right, y);
}

void Zel2RuleLayer::Serialize(CArchive& ar) {
    Zel2Layer::Serialize(ar);
    int kind = static_cast<int>(kind_), dash = static_cast<int>(dash_);
    zel::Exchange(ar, kind, value_, slope_);
    zel::ExchangeText(ar, label_);
    zel::Exchange(ar, width_, dash);
    zel::ExchangeFlag(ar, inRange_);
    zel::Exchange(ar, pen_);
    if (ar.IsStoring()) return;
    kind_ = static_cast<Kind>(std::clamp(kind, 0, 2));
    dash_ = static_cast<zel::Dash>(std::clamp(dash, 0, 4));
}
