#include "charts/FreeSpace.h"
#include "charts/TextRuler.h"
#include "core/ArchiveFields.h"

#include <zel/ChartNotes.h>
#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_SERIAL(Zel2NoteLayer, Zel2Layer, 0)

// In logical units.
struct Zel2NoteLayer::Places {
    CPoint target;
    CPoint centre;  // of the text
    CRect box;      // around it
};

namespace {

zel::NoteOptions WithColor(zel::NoteOptions options) {
    if (!options.color) options.color = zel::Color(RGB(70, 70, 70));
    return options;
}

}  // namespace

Zel2NoteLayer::Zel2NoteLayer(double x, double y, std::string text, const zel::NoteOptions& options)
    : Zel2Layer(WithColor(options)),
      x_(x),
      y_(y),
      text_(std::move(text)),
      dx_(options.dx),
      dy_(options.dy),
      arrow_(options.arrow) {}

void Zel2NoteLayer::SetText(std::string text) {
    text_ = std::move(text);
    Changed();
}

void Zel2NoteLayer::SetDefaults() {
    constexpr double kThin = 0.7;  // points
    if (pen_ < 0) pen_ = RegisterOwnPen(kThin, zel::Dash::SOLID);
}

std::optional<Zel2NoteLayer::Places> Zel2NoteLayer::PlacesIn(const zel::LayerFrame& frame) {
    DrawFont* const font = Font(Chart()->TextFont());
    const double x = frame.x.Forward(x_ - frame.x.Origin()), y = frame.y.Forward(y_ - frame.y.Origin());
    if (!font || !frame.world.Contains(x, y)) return std::nullopt;
    const zel::TextRuler ruler(*font);
    const auto logical = [this](double units) {
        const int size =
            zel::Magnitude(Map()->ToLogical(CSize(zel::Truncate(std::ceil(std::fabs(units))), 0)).cx);
        return units < 0 ? -size : size;
    };
    double widest = 0;
    int lines = 0;
    for (std::size_t begin = 0; begin <= text_.size(); ++lines) {
        const std::size_t end = std::min(text_.find('\n', begin), text_.size());
        widest = std::max(widest, ruler.WidthOf(text_.substr(begin, end - begin)));
        begin = end + 1;
    }
    Places places;
    places.target = frame.world.ToLogical(x, y);
    const int width = logical(widest), height = lines * logical(ruler.LineHeight()),
              gap = logical(zel::UnitsOfPoints(3));
    const int dx = logical(zel::UnitsOfMillimetres(dx_)), dy = logical(zel::UnitsOfMillimetres(dy_));
    // The text is moved on by half of itself in the direction of the note, so that it does not cover the
    // place.
    const int besideX = dx > 0 ? width / 2 + gap : dx < 0 ? -width / 2 - gap : 0;
    const int besideY = dx == 0 && dy == 0  ? height / 2 + gap
                        : dy > 0 && dx == 0 ? height / 2
                        : dx == 0           ? -height / 2
                                            : 0;
    places.centre =
        places.target + CSize(dx, zel::Subtract(0, dy)) + CSize(besideX, zel::Subtract(0, besideY));
    places.box = CRect(places.centre, CSize());
    places.box.InflateRect(width / 2, height / 2);
    return places;
}

void Zel2NoteLayer::BlockLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) {
    if (const auto places = PlacesIn(frame)) space.Block(places->box);
}

void Zel2NoteLayer::DrawLabels(const zel::LayerFrame& frame, zel::FreeSpace&) {
    const std::optional<Places> places = PlacesIn(frame);
    if (!places) return;
    if (arrow_ && (dx_ != 0 || dy_ != 0)) DrawArrow(*places);
    Font(Chart()->TextFont())->Print(text_.c_str(), places->centre, 0, DT_CENTER | DT_VCENTER);
}

// From the edge of the text to shortly before the place.
void Zel2NoteLayer::DrawArrow(const Places& places) {
    DrawPen* const pen = Pen(pen_);
    if (!pen) return;
    const auto units = [this](double points) {
        return static_cast<double>(zel::Magnitude(Map()->ToLogical(CSize(zel::UnitsOfPoints(points), 0)).cx));
    };
    constexpr double kGap = 3, kHead = 5, kSpread = 0.45;
    const double nearX = std::clamp(places.target.x, places.box.left, places.box.right),
                 nearY = std::clamp(places.target.y, places.box.top, places.box.bottom);
    const double dx = places.target.x - nearX, dy = places.target.y - nearY, length = std::hypot(dx, dy);
    if (length < units(kGap + kHead)) return;
    const double ux = dx / length, uy = dy / length, gap = units(kGap), head = units(kHead);
    const CPoint from(zel::Truncate(nearX + ux * gap / 2), zel::Truncate(nearY + uy * gap / 2)),
        tip(zel::Truncate(places.target.x - ux * gap), zel::Truncate(places.target.y - uy * gap));
    pen->MoveTo(from.x, from.y);
    pen->LineTo(tip.x, tip.y);
    for (const double side : {kSpread, -kSpread}) {
        const double c = std::cos(side), s = std::sin(side);
        pen->MoveTo(tip.x, tip.y);
        pen->LineTo(zel::Truncate(tip.x - head * (ux * c - uy * s)),
                    zel::Truncate(tip.y - head * (ux * s + uy * c)));
    }
}

void Zel2NoteLayer::Serialize(CArchive& ar) {
    Zel2Layer::Serialize(ar);
    zel::Exchange(ar, x_, y_);
    zel::ExchangeText(ar, text_);
    zel::Exchange(ar, dx_, dy_);
    zel::ExchangeFlag(ar, arrow_);
    zel::Exchange(ar, pen_);
}
