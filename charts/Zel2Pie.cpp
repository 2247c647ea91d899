#include "charts/FormatFields.h"
#include "charts/LayoutFonts.h"
#include "charts/Palette.h"
#include "charts/TextRuler.h"
#include "core/ArchiveFields.h"

#include <zel/DrawColor.h>
#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/Zel2Pie.h>
#include <zel/platform/Exception.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

IMPLEMENT_SERIAL(Zel2Pie, Zel2, 0)

namespace {

constexpr CSize kLeastSize(500, 400);
constexpr LONG kLargestSide = 10'000'000;
constexpr double kTurn = 2 * std::numbers::pi;

}  // namespace

// World units from the lower left corner of the object.
struct Zel2Pie::Circle {
    double x = 0, y = 0, radius = 0;
    double bottom = 0, top = 0;  // between which names may stand

    // A place at a share of the whole, clockwise from the top, and so many radii from the centre.
    double XAt(double share, double radii) const { return x + radius * radii * std::sin(share * kTurn); }
    double YAt(double share, double radii) const { return y + radius * radii * std::cos(share * kTurn); }
};

struct Zel2Pie::Label {
    std::string text;
    double middle = 0;  // of the part, as a share of the whole
    bool right = true;  // of the pie
    double size = 0;    // of the part: small ones give way
    double fromX = 0, fromY = 0, x = 0, y = 0;
};

Zel2Pie::Zel2Pie() : Zel2Pie({}, {}) {}

Zel2Pie::Zel2Pie(zel::Column names, zel::Column values, const zel::PieOptions& options)
    : names_(std::move(names)), values_(std::move(values)), options_(options) {
    Zel2Pie::SetSize(
        CSize(zel::UnitsOfMillimetres(options.size.width), zel::UnitsOfMillimetres(options.size.height)));
}

std::vector<Zel2Pie::Part> Zel2Pie::Parts() const {
    std::vector<Part> parts;
    std::map<std::string, std::size_t> partOf;
    double whole = 0;
    for (std::size_t i = 0; i < std::min(names_.Size(), values_.Size()); ++i) {
        const double code = names_.At(i), value = values_.At(i);
        if (!(value > 0) || !std::isfinite(value) || !std::isfinite(code)) continue;
        const bool texts = names_.GetKind() == zel::Column::Kind::TEXTS;
        const std::string name = texts ? names_.Names()[static_cast<std::size_t>(code)]
                                       : zel::Scale::Linear(0, 1).TextOf(code + names_.Origin(), 0);
        const auto [at, isNew] = partOf.try_emplace(name, parts.size());
        if (isNew) parts.push_back({name, 0, 0});
        parts[at->second].value += value;
        whole += value;
    }
    // Halves, where the sum of the values is beyond the range of doubles.
    if (!std::isfinite(whole)) {
        whole = 0;
        for (Part& part : parts)
            whole += (part.value /= std::max<double>(2, 2 * static_cast<double>(parts.size())));
    }
    for (Part& part : parts) part.share = part.value / whole;
    const auto isSmall = [this](const Part& part) { return part.share < options_.least; };
    if (std::count_if(parts.begin(), parts.end(), isSmall) < 2) return parts;
    Part other{options_.otherName, 0, 0};
    for (const Part& part : parts) {
        if (!isSmall(part)) continue;
        other.value += part.value;
        other.share += part.share;
    }
    std::erase_if(parts, isSmall);
    parts.push_back(other);
    return parts;
}

std::vector<std::string> Zel2Pie::Notes() const {
    std::vector<std::string> notes;
    std::size_t without = 0, total = 0;
    for (std::size_t i = 0; i < std::min(names_.Size(), values_.Size()); ++i) {
        if (!std::isfinite(values_.At(i)) || !std::isfinite(names_.At(i))) continue;
        ++total;
        if (values_.At(i) <= 0) ++without;
    }
    if (without > 0)
        notes.push_back("The pie leaves out " + std::to_string(without) + " values that are not above 0.");
    if (total == without) notes.push_back("The pie has no parts to draw.");
    if (hidden_ > 0) notes.push_back("The pie has no room for " + std::to_string(hidden_) + " of its names.");
    return notes;
}

std::string Zel2Pie::TextOf(const Part& part) const {
    zel::NumberFormat format = options_.format;
    format.percent = options_.shares;
    const double value = options_.shares ? part.share : part.value;
    // Small shares are told to a tenth of a percent.
    const double resolution = !options_.shares ? value * 1e-3 : part.share < 0.1 ? 0.001 : 0.01;
    return part.name + "  " + zel::Scale::Linear(0, 1).TextOf(value, resolution, format);
}

CPoint Zel2Pie::ToLogical(double x, double y) {
    const CPoint origin = AbsOrigin();
    return Map()->ToLogical(
        CPoint(zel::Add(origin.x, zel::Truncate(x)), zel::Add(origin.y, zel::Truncate(y))));
}

void Zel2Pie::DrawParts(const std::vector<Part>& parts, const Circle& circle) {
    const double hole = std::clamp(options_.hole, 0.0, 0.95);
    double begin = 0;
    int entry = 0;
    for (const Part& part : parts) {
        const int steps = std::max(2, static_cast<int>(std::ceil(part.share * 360)));
        std::vector<CPoint> corners;
        const auto arc = [&](double radii, bool back) {
            for (int i = 0; i <= steps; ++i) {
                const double share = begin + part.share * (back ? steps - i : i) / steps;
                corners.push_back(ToLogical(circle.XAt(share, radii), circle.YAt(share, radii)));
            }
        };
        arc(1, false);
        if (hole > 0) {
            arc(hole, true);
        } else if (part.share < 1) {
            corners.push_back(ToLogical(circle.x, circle.y));
        }
        corners.push_back(corners.front());
        const int index = zel::RegisterPaletteColor(*this, entry++);
        if (DrawColor* color = Color(index)) color->Polygon(corners.data(), static_cast<int>(corners.size()));
        begin += part.share;
    }
    DrawPen* const gap = Pen(GetPenIndex("Pie Gap"));
    if (!gap || parts.size() < 2) return;
    begin = 0;
    for (const Part& part : parts) {
        const CPoint from = ToLogical(circle.XAt(begin, hole), circle.YAt(begin, hole)),
                     to = ToLogical(circle.XAt(begin, 1.01), circle.YAt(begin, 1.01));
        gap->MoveTo(from.x, from.y);
        gap->LineTo(to.x, to.y);
        begin += part.share;
    }
}

// The names of each side from the top down, pushed apart where they would overlap. Of more than there is room
// for, those of the smallest parts are left out.
std::vector<Zel2Pie::Label> Zel2Pie::PlaceLabels(const std::vector<Part>& parts, const Circle& circle,
                                                 int font) const {
    const zel::TextRuler ruler(*const_cast<Zel2Pie*>(this)->Font(font));
    const double line = std::max(1.0, ruler.LineHeight() * 1.1);
    const auto room = static_cast<std::size_t>(std::max(0.0, (circle.top - circle.bottom) / line));
    std::vector<Label> all;
    double begin = 0;
    for (const Part& part : parts) {
        Label label;
        label.middle = begin + part.share / 2;
        label.right = label.middle <= 0.5;
        label.size = part.share;
        label.fromX = circle.XAt(label.middle, 1.02);
        label.fromY = circle.YAt(label.middle, 1.02);
        label.y = circle.YAt(label.middle, 1.15);
        label.x = circle.x + (label.right ? 1.2 : -1.2) * circle.radius;
        const double space = label.right ? size_.cx - label.x - line : label.x - line;
        label.text = ruler.Shortened(TextOf(part), space);
        all.push_back(label);
        begin += part.share;
    }
    std::vector<Label> placed;
    for (const bool right : {true, false}) {
        std::vector<Label> side;
        for (const Label& label : all)
            if (label.right == right && !label.text.empty()) side.push_back(label);
        while (side.size() > room)
            side.erase(std::min_element(side.begin(), side.end(),
                                        [](const Label& a, const Label& b) { return a.size < b.size; }));
        std::sort(side.begin(), side.end(), [](const Label& a, const Label& b) { return a.y > b.y; });
        double highest = circle.top - line / 2;
        for (Label& label : side) {
            label.y = std::min(label.y, highest);
            highest = label.y - line;
        }
        double lowest = circle.bottom + line / 2;
        for (auto label = side.rbegin(); label != side.rend(); ++label) {
            label->y = std::max(label->y, lowest);
            lowest = label->y + line;
        }
        placed.insert(placed.end(), side.begin(), side.end());
    }
    return placed;
}

void Zel2Pie::DrawLabels(const std::vector<Label>& labels, int font) {
    DrawPen* const pen = Pen(GetPenIndex("Chart Axis"));
    const double gap = zel::UnitsOfPoints(3);
    for (const Label& label : labels) {
        const double toText = label.right ? -gap : gap;
        if (pen) {
            const CPoint from = ToLogical(label.fromX, label.fromY),
                         bend = ToLogical(label.x + 2 * toText, label.y),
                         to = ToLogical(label.x + toText / 2, label.y);
            pen->MoveTo(from.x, from.y);
            pen->LineTo(bend.x, bend.y);
            pen->LineTo(to.x, to.y);
        }
        const unsigned side = label.right ? 0U : static_cast<unsigned>(DT_RIGHT);
        Font(font)->Print(label.text.c_str(), ToLogical(label.x, label.y), 0, side | DT_VCENTER);
    }
}

void Zel2Pie::OnDraw() {
    if (!Ready()) return;
    const int text =
        zel::RegisterLayoutFont(*this, "Chart Text", options_.fontFace, options_.fontSize, 1, false);
    const int title =
        zel::RegisterLayoutFont(*this, "Chart Title", options_.fontFace, options_.fontSize, 1.4, true);
    if (GetPenIndex("Chart Axis") < 0)
        zel::RegisterPen(*this, "Chart Axis", {.color = RGB(120, 120, 120), .width = 0.6});
    zel::RegisterPen(*this, "Pie Gap", {.color = RGB(255, 255, 255), .width = 1});
    const double edge = zel::UnitsOfPoints(6);
    double top = size_.cy - edge;
    if (!options_.title.empty()) {
        const zel::TextRuler ruler(*Font(title));
        const std::string shown = ruler.Shortened(options_.title, size_.cx - 2 * edge);
        Font(title)->Print(shown.c_str(), ToLogical(edge, top), 0, 0);
        top -= ruler.LineHeight() + edge;
    }
    const std::vector<Part> parts = Parts();
    Circle circle;
    circle.bottom = edge;
    circle.top = top;
    circle.x = size_.cx / 2.0;
    circle.y = (edge + top) / 2;
    // A quarter of the width on both sides is left to names.
    circle.radius = std::max(1.0, std::min((top - edge) / 2 * 0.88, size_.cx * 0.25));
    DrawParts(parts, circle);
    const std::vector<Label> labels = PlaceLabels(parts, circle, text);
    hidden_ = parts.size() - labels.size();
    DrawLabels(labels, text);
}

void Zel2Pie::OnPrint(CDC*, CPrintInfo*) {
    OnDraw();
}

CSize Zel2Pie::Size() {
    return size_;
}
CSize Zel2Pie::MinSize() {
    return kLeastSize;
}
void Zel2Pie::SetSize(const CSize& size) {
    size_ = CSize(std::clamp<LONG>(size.cx, kLeastSize.cx, kLargestSide),
                  std::clamp<LONG>(size.cy, kLeastSize.cy, kLargestSide));
}

int Zel2Pie::IsIn(const CPoint& pt) {
    return Map() && DeviceRect().PtInRect(pt) ? 1 : 0;
}

void Zel2Pie::Serialize(CArchive& ar) {
    if (!zel::IsComplete(ar))
        ar.Fail(CArchiveException::badClass, "a Zel2Pie can only be stored in documents");
    Zel2::Serialize(ar);
    names_.Serialize(ar);
    values_.Serialize(ar);
    zel::ExchangeText(ar, options_.title);
    zel::Exchange(ar, size_.cx, size_.cy, options_.hole, options_.least);
    zel::ExchangeText(ar, options_.otherName);
    zel::ExchangeFlag(ar, options_.shares);
    zel::ExchangeFormat(ar, options_.format);
    zel::Exchange(ar, options_.fontSize);
    zel::ExchangeText(ar, options_.fontFace);
    if (ar.IsStoring()) return;
    SetSize(size_);
    if (!(options_.fontSize > 0 && options_.fontSize < 1000))
        ar.Fail(CArchiveException::genericException, "a pie has letters of a size that does not exist");
}
