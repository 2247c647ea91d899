#include "core/ArchiveFields.h"
#include "scales/Labels.h"

#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/WorldFrame.h>
#include <zel/Zel2Axis.h>
#include <zel/Zel2Graph.h>

#include <algorithm>

IMPLEMENT_SERIAL(Zel2Axis, Zel2, 0)

namespace {

constexpr int kTick = 60;  // world units
constexpr int kGap = 30;   // from a tick to its label
constexpr int kIntervals = 8;
constexpr int kClassicDigits = 4;
constexpr int kDigits = 7;

}  // namespace

void Zel2Axis::SetCoord(double min, double max) {
    min_ = min;
    max_ = max;
}

void Zel2Axis::GetCoord(double& min, double& max) const {
    min = min_;
    max = max_;
}

int Zel2Axis::ToAbs(double v) {
    return zel::Truncate(zel::PlaceAlong(v, min_, max_, Start(), Length()));
}

double Zel2Axis::FromAbs(int position) {
    return (static_cast<double>(position) - Start()) / Length() * (max_ - min_) + min_;
}

CPoint Zel2Axis::PlaceOf(double v) {
    const CPoint origin = AbsOrigin();
    return IsUpright() ? CPoint(origin.x, ToAbs(v)) : CPoint(ToAbs(v), origin.y);
}

// Ticks and labels below a lying axis, to the left of an upright one.
void Zel2Axis::OnDraw() {
    if (!Ready() || Length() <= 0) return;
    std::vector<double> values;
    if (!Zel2Graph::AutoCoord(type_, min_, max_, kIntervals, values, Rules())) return;
    DrawPen* pen = Pen(RegisterPen("Graph Ticks Pen", DrawPen::SOLID, 1, 0, 0, nullptr));
    if (!pen) return;
    const Mapping& map = *Map();
    const CPoint away = IsUpright() ? CPoint(-1, 0) : CPoint(0, -1);
    const auto line = [&](const CPoint& from, const CPoint& to) {
        const CPoint a = map.ToLogical(from), b = map.ToLogical(to);
        pen->MoveTo(a.x, a.y);
        pen->LineTo(b.x, b.y);
    };
    const auto beside = [&](const CPoint& p, int distance) {
        return CPoint(zel::Add(p.x, away.x * distance), zel::Add(p.y, away.y * distance));
    };
    line(PlaceOf(min_), PlaceOf(max_));
    DrawFont* font = Font(font_);
    const unsigned flags = IsUpright() ? DT_RIGHT | DT_VCENTER : DT_CENTER;
    // The positions may reach past a range that they do not divide.
    std::erase_if(values, [this](double v) { return v < std::min(min_, max_) || v > std::max(min_, max_); });
    const bool exact = IsExact();
    const std::vector<std::string> texts = zel::LabelTexts(values, exact ? kDigits : kClassicDigits, Rules());
    const std::vector<bool> shown =
        exact && font ? LabelsShown(values, texts, *font) : std::vector<bool>(values.size(), font != nullptr);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const CPoint place = PlaceOf(values[i]);
        line(place, beside(place, kTick));
        if (shown[i]) font->Print(texts[i].c_str(), map.ToLogical(beside(place, kTick + kGap)), 0, flags);
    }
}

std::vector<bool> Zel2Axis::LabelsShown(const std::vector<double>& values,
                                        const std::vector<std::string>& texts, DrawFont& font) {
    std::vector<zel::LabelPlace> places;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const CPoint at = Map()->ToLogical(PlaceOf(values[i]));
        places.push_back({static_cast<double>(IsUpright() ? at.y : at.x),
                          zel::RoomAlong(font.Extent(texts[i].c_str(), 0), IsUpright() ? 900 : 0)});
    }
    std::vector<bool> shown(values.size());
    for (const std::size_t i : zel::LabelsWithRoom(values, places)) shown[i] = true;
    return shown;
}

void Zel2Axis::OnPrint(CDC*, CPrintInfo*) {
    OnDraw();
}

void Zel2Axis::Serialize(CArchive& ar) {
    Zel2::Serialize(ar);
    zel::Exchange(ar, min_, max_, type_, font_);
    if (zel::IsComplete(ar)) zel::Exchange(ar, size_.cx, size_.cy);
}
