#include "charts/FreeSpace.h"
#include "charts/Palette.h"
#include "charts/TextRuler.h"
#include "core/ArchiveFields.h"
#include "series/CurveScope.h"
#include "series/SeriesIndex.h"

#include <zel/ChartLayers.h>
#include <zel/DrawColor.h>
#include <zel/Error.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>

IMPLEMENT_SERIAL(Zel2BubbleLayer, Zel2XYLayer, 0)

namespace {

constexpr std::size_t kColors = 256;  // steps of colours that are told apart
constexpr std::size_t kSizes = 64;    // and of sizes
constexpr int kSizesInLegend = 3;

bool IsText(const zel::Column& column) {
    return column.GetKind() == zel::Column::Kind::TEXTS;
}

}  // namespace

Zel2BubbleLayer::Zel2BubbleLayer() = default;

Zel2BubbleLayer::Zel2BubbleLayer(zel::Column x, zel::Column y, const zel::BubbleOptions& options)
    : Zel2XYLayer(options, std::move(x), std::move(y)),
      sizes_(options.sizes),
      colors_(options.colors),
      size_(options.size),
      key_(options.colorMap) {
    // The keys of sizes and colours say what there is to say.
    if (!sizes_.IsEmpty() || !colors_.IsEmpty()) SetName(options.name);
    if (IsText(sizes_)) throw zel::Error("Cannot size points by a column of texts");
    if (options.colorMap.title.empty()) key_.Axis().SetTitle(colors_.Name());
    if (options.colorMap.unit.empty()) key_.Axis().SetUnit(colors_.Unit());
}

std::size_t Zel2BubbleLayer::Rows() const {
    std::size_t rows = Zel2XYLayer::Rows();
    if (!sizes_.IsEmpty()) rows = std::min(rows, sizes_.Size());
    if (!colors_.IsEmpty()) rows = std::min(rows, colors_.Size());
    return rows;
}

void Zel2BubbleLayer::SetDefaults() {
    if (colorIndex_ < 0) colorIndex_ = RegisterOwnColor();
}

// Once for each state of the chart: borrowed memory may have changed with it.
void Zel2BubbleLayer::Fit() {
    key_.Attach(Chart());
    const std::uint64_t revision = Chart() ? Chart()->Revision() : 0;
    if (fitted_ == revision + 1) return;
    fitted_ = revision + 1;
    largest_ = 0;
    notPositive_ = 0;
    for (std::size_t i = 0; !sizes_.IsEmpty() && i < Rows(); ++i) {
        const double size = sizes_.At(i);
        if (std::isfinite(size)) largest_ = std::max(largest_, size);
        if (size <= 0) ++notPositive_;
    }
    if (colors_.IsEmpty() || IsText(colors_)) return;
    double low = std::numeric_limits<double>::infinity(), high = -low;
    std::vector<double> sample;
    for (std::size_t i = 0; i < Rows(); ++i) {
        const double value = colors_.At(i);
        if (!key_.Counts(value)) continue;
        low = std::min(low, value);
        high = std::max(high, value);
        if (key_.WantsSample()) sample.push_back(value);
    }
    key_.Fit(low, high, sample);
}

zel::ColorKey* Zel2BubbleLayer::ColorBar() {
    Fit();
    return key_.HasBar() && !colors_.IsEmpty() && !IsText(colors_) ? &key_ : nullptr;
}

std::vector<std::string> Zel2BubbleLayer::Notes(const zel::Scale&, const zel::Scale&) {
    Fit();
    if (notPositive_ == 0) return {};
    return {std::to_string(notPositive_) + " points have sizes that are not above 0 and are left out."};
}

// The colour of a row as a step from 0; none for one that is absent.
std::optional<std::size_t> Zel2BubbleLayer::ColorStep(std::size_t row) const {
    if (colors_.IsEmpty()) return 0;
    const double value = colors_.At(row);
    if (!std::isfinite(value)) return std::nullopt;
    if (IsText(colors_)) return static_cast<std::size_t>(value) % zel::kPaletteSize;
    const auto place = key_.GetScale().PlaceOf(value);
    if (!place) return std::nullopt;
    return static_cast<std::size_t>(std::clamp(*place * kColors, 0.0, kColors - 1.0));
}

COLORREF Zel2BubbleLayer::ColorOfStep(std::size_t step) {
    if (IsText(colors_)) return zel::PaletteColor(static_cast<int>(step));
    if (!colors_.IsEmpty()) return key_.Map().At((static_cast<double>(step) + 0.5) / kColors);
    const DrawColor* const color = Color(colorIndex_);
    return color ? color->GetColor() : OwnColor();
}

// The area of a mark is in proportion to its value.
std::optional<std::size_t> Zel2BubbleLayer::SizeStep(std::size_t row) const {
    if (sizes_.IsEmpty()) return kSizes - 1;
    const double value = sizes_.At(row);
    if (!(value > 0) || !std::isfinite(value)) return std::nullopt;
    return static_cast<std::size_t>(std::lround(std::sqrt(std::min(value / largest_, 1.0)) * (kSizes - 1)));
}

int Zel2BubbleLayer::DiameterOf(double share) {
    return std::max(1, zel::Magnitude(Map()->ToLogical(CSize(zel::UnitsOfPoints(size_ * share), 0)).cx));
}

void Zel2BubbleLayer::PlotDiscs(std::span<const CPoint> places, int diameter, COLORREF ink) {
    DrawColor color("", ink, ink);
    color.Opacity(Opacity());
    color.OpenOn(DC(), Scale());
    const CRect box(-diameter / 2, -diameter / 2, diameter - diameter / 2, diameter - diameter / 2);
    {
        const zel::CurveScope figure(DC());
        color.Ellipses(places, box);
    }
    color.Close();
}

// Large marks lie behind small ones, those of low values behind those of high ones.
void Zel2BubbleLayer::DrawIn(const zel::LayerFrame& frame) {
    if (!DC() || Rows() == 0) return;
    Fit();
    std::vector<std::vector<CPoint>> places(kSizes * kColors);
    const WorldFrame& world = frame.world;
    const std::size_t rows = Rows();
    for (const zel::SeriesStretch& stretch : Stretches(frame)) {
        zel::WalkSeries(
            stretch,
            [&](const zel::SeriesSpan& span, std::size_t, std::size_t) {
                return span.xmax < world.xmin || span.xmin > world.xmax || span.ymax < world.ymin ||
                       span.ymin > world.ymax;
            },
            [&](const zel::SeriesSpan&, std::size_t begin, const double* x, const double* y, std::size_t n) {
                for (std::size_t i = 0; i < n && begin + i < rows; ++i) {
                    if (!world.Contains(x[i], y[i])) continue;
                    const auto size = SizeStep(begin + i);
                    const auto color = ColorStep(begin + i);
                    if (size && color)
                        places[*size * kColors + *color].push_back(world.ToLogical(x[i], y[i]));
                }
            });
    }
    for (std::size_t size = kSizes; size-- > 0;) {
        const int diameter = DiameterOf(static_cast<double>(size) / (kSizes - 1));
        for (std::size_t color = 0; color < kColors; ++color)
            if (const auto& some = places[size * kColors + color]; !some.empty())
                PlotDiscs(some, diameter, ColorOfStep(color));
    }
}

void Zel2BubbleLayer::BlockLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) {
    constexpr std::size_t kMost = 5000;  // among more no label has room
    if (Rows() > kMost) return;
    Fit();
    for (const zel::SeriesStretch& stretch : Stretches(frame)) {
        for (std::size_t i = stretch.begin; i < std::min(stretch.end, Rows()); ++i) {
            const auto size = SizeStep(i);
            if (!size || !frame.world.Contains(stretch.X(i), stretch.Y(i))) continue;
            const CPoint at = frame.world.ToLogical(stretch.X(i), stretch.Y(i));
            const int half = DiameterOf(static_cast<double>(*size) / (kSizes - 1)) / 2;
            CRect mark(at, CSize());
            mark.InflateRect(half, half);
            space.Block(mark);
        }
    }
}

void Zel2BubbleLayer::DrawKey(const CRect& box) {
    const CPoint at((box.left + box.right) / 2, (box.top + box.bottom) / 2);
    const int diameter = std::min({DiameterOf(1), box.Width(), box.Height()});
    PlotDiscs(std::span(&at, 1), diameter, ColorOfStep(0));
}

// Categories of colours, then round sizes.
std::vector<double> Zel2BubbleLayer::SizesInLegend() const {
    std::vector<double> sizes;
    if (!(largest_ > 0)) return sizes;
    double unit = std::pow(10.0, std::floor(std::log10(largest_)));
    for (const double digit : {5.0, 2.0})
        if (digit * unit <= largest_) {
            unit *= digit;
            break;
        }
    for (int i = 0; i < kSizesInLegend; ++i, unit /= 5) sizes.push_back(unit);
    return sizes;
}

std::vector<std::string> Zel2BubbleLayer::KeyParts() {
    Fit();
    std::vector<std::string> parts;
    if (IsText(colors_)) parts = colors_.Names();
    const zel::Scale plain = zel::Scale::Linear(0, 1);
    for (const double size : SizesInLegend()) {
        const std::string text = plain.TextOf(size, size / 100);
        parts.push_back(sizes_.Unit().empty() ? text : text + " " + sizes_.Unit());
    }
    return parts;
}

void Zel2BubbleLayer::DrawKeyPart(std::size_t part, const CRect& box) {
    const CPoint at((box.left + box.right) / 2, (box.top + box.bottom) / 2);
    const std::size_t categories = IsText(colors_) ? colors_.Names().size() : 0;
    if (part < categories) {
        PlotDiscs(std::span(&at, 1), std::min({DiameterOf(1), box.Width(), box.Height() / 2}),
                  zel::PaletteColor(static_cast<int>(part)));
        return;
    }
    const std::vector<double> sizes = SizesInLegend();
    if (part - categories < sizes.size())
        PlotDiscs(std::span(&at, 1), DiameterOf(std::sqrt(sizes[part - categories] / largest_)),
                  RGB(150, 150, 150));
}

int Zel2BubbleLayer::KeyHeight() const {
    return sizes_.IsEmpty() ? 0 : zel::UnitsOfPoints(size_);
}

void Zel2BubbleLayer::Serialize(CArchive& ar) {
    Zel2XYLayer::Serialize(ar);
    sizes_.Serialize(ar);
    colors_.Serialize(ar);
    zel::Exchange(ar, colorIndex_, size_);
    key_.Serialize(ar);
    if (ar.IsStoring()) return;
    if (IsText(sizes_)) ar.Fail(CArchiveException::genericException, "sizes of points cannot be texts");
    fitted_ = 0;
}
