#include "charts/ColumnBoxes.h"
#include "charts/ScaleValues.h"
#include "core/ArchiveFields.h"

#include <zel/ChartBars.h>
#include <zel/DrawColor.h>
#include <zel/Error.h>
#include <zel/Zel2Chart.h>

#include <algorithm>
#include <cmath>
#include <numeric>

IMPLEMENT_SERIAL(Zel2HistogramLayer, Zel2RowLayer, 0)

namespace {

std::vector<zel::Column> WithoutTexts(std::vector<zel::Column> columns) {
    for (const zel::Column& column : columns)
        if (column.GetKind() == zel::Column::Kind::TEXTS)
            throw zel::Error("Cannot make a histogram of texts: count them, and draw the counts as bars");
    return columns;
}

std::vector<zel::Column> ColumnsOf(zel::Column values, const zel::Column& weights) {
    std::vector<zel::Column> columns{std::move(values)};
    if (!weights.IsEmpty()) columns.push_back(weights);
    return WithoutTexts(std::move(columns));
}

// Where the numbers lie when they are packed doubles, else a copy of them.
std::span<const double> NumbersOf(const zel::Column& column, std::size_t n, std::vector<double>& room) {
    if (column.Values().Read(0, 0, nullptr) == nullptr) room.resize(n);
    return {column.Values().Read(0, n, room.data()), n};
}

}  // namespace

Zel2HistogramLayer::Zel2HistogramLayer() : Zel2RowLayer(1) {}

Zel2HistogramLayer::Zel2HistogramLayer(zel::Column values, const zel::HistogramOptions& options)
    : Zel2RowLayer(options, ColumnsOf(std::move(values), options.weights), options.horizontal),
      rule_(options.rule),
      bins_(options.bins),
      binWidth_(options.binWidth),
      givenEdges_(options.edges),
      measure_(options.measure) {
    if (options.name.empty()) SetName(Columns().front().Name());
    const bool ascend = std::is_sorted(givenEdges_.begin(), givenEdges_.end(), std::less_equal<double>());
    const bool finite =
        std::all_of(givenEdges_.begin(), givenEdges_.end(), [](double v) { return std::isfinite(v); });
    if (givenEdges_.size() == 1 || !ascend || !finite)
        throw zel::Error(
            "Cannot use the edges of a histogram: they must be at least two finite numbers, ascending");
    if (bins_ < 0 || !(binWidth_ >= 0))
        throw zel::Error("Cannot use bins of a histogram: their number and width must be above 0");
}

void Zel2HistogramLayer::SetColor(int index) {
    colorIndex_ = index;
    Changed();
}

void Zel2HistogramLayer::SetDefaults() {
    if (colorIndex_ < 0) colorIndex_ = RegisterOwnColor();
}

void Zel2HistogramLayer::Forget() {
    made_ = false;
}

void Zel2HistogramLayer::MakeBins() {
    if (made_) return;
    made_ = true;
    const std::size_t n = Rows();
    std::vector<double> valueRoom, weightRoom;
    const std::span<const double> values = NumbersOf(Columns().front(), n, valueRoom);
    std::span<const double> weights;
    if (Columns().size() > 1) weights = NumbersOf(Columns()[1], n, weightRoom);
    const double origin = Columns().front().Origin();
    if (!givenEdges_.empty()) {
        edges_ = givenEdges_;
        for (double& edge : edges_) edge -= origin;
    } else if (binWidth_ > 0) {
        edges_ = zel::BinEdgesOfWidth(values, binWidth_);
    } else if (bins_ > 0) {
        edges_ = zel::BinEdges(values, static_cast<std::size_t>(bins_));
    } else {
        edges_ = zel::BinEdges(values, rule_);
    }
    heights_ = zel::BinSums(values, weights, edges_);
    const double all = std::accumulate(heights_.begin(), heights_.end(), 0.0);
    outside_ = 0;
    if (!givenEdges_.empty())
        outside_ = static_cast<double>(std::count_if(values.begin(), values.end(), [this](double value) {
            return std::isfinite(value) && (value < edges_.front() || value > edges_.back());
        }));
    for (std::size_t i = 0; i < heights_.size(); ++i) {
        if (measure_ != zel::BinMeasure::COUNT && all != 0) heights_[i] /= all;
        if (measure_ == zel::BinMeasure::DENSITY) heights_[i] /= edges_[i + 1] - edges_[i];
    }
}

const std::vector<double>& Zel2HistogramLayer::Edges() {
    MakeBins();
    return edges_;
}

const std::vector<double>& Zel2HistogramLayer::Heights() {
    MakeBins();
    return heights_;
}

double Zel2HistogramLayer::EdgeOn(const zel::Scale& positions, std::size_t i) {
    return Edges()[i] + (Columns().front().Origin() - positions.Origin());
}

// Weights are no values of the axis.
void Zel2HistogramLayer::DescribeAxes(zel::AxisRange& x, zel::AxisRange& y) {
    zel::Describe(PositionsOf(x, y), Columns().front());
    ValuesOf(x, y).AddNumbers();
}

void Zel2HistogramLayer::TakeRange(zel::AxisRange& x, zel::AxisRange& y) {
    zel::AxisRange& positions = PositionsOf(x, y);
    zel::AxisRange& values = ValuesOf(x, y);
    for (std::size_t i = 0; i < Edges().size(); ++i) positions.Add(EdgeOn(positions.GetScale(), i));
    const bool logarithm = values.GetScale().GetKind() == zel::Scale::Kind::LOGARITHM;
    for (const double height : Heights())
        if (!logarithm || height > 0) values.Add(logarithm ? height / 2 : height);
    if (logarithm && !heights_.empty()) values.Add(*std::max_element(heights_.begin(), heights_.end()));
}

std::optional<double> Zel2HistogramLayer::Included(Coordinate coordinate) const {
    const bool ofValues = coordinate == (IsHorizontal() ? Coordinate::X : Coordinate::Y);
    return ofValues ? std::optional(0.0) : std::nullopt;
}

std::vector<std::string> Zel2HistogramLayer::Notes(const zel::Scale& x, const zel::Scale& y) {
    std::vector<std::string> notes;
    const std::string whose = Name().empty() ? "A histogram" : "The histogram of \"" + Name() + "\"";
    MakeBins();
    if (outside_ > 0)
        notes.push_back(whose + " leaves out " + std::to_string(static_cast<long long>(outside_)) +
                        " values beyond its bins.");
    if (heights_.size() >= zel::kMostBins && givenEdges_.empty())
        notes.push_back(whose + " has no more than " + std::to_string(zel::kMostBins) + " bins.");
    if (ValuesOf(x, y).GetKind() == zel::Scale::Kind::LOGARITHM)
        notes.push_back(whose + " stands on a logarithm: its areas cannot be compared.");
    return notes;
}

std::optional<CRect> Zel2HistogramLayer::BoxOf(std::size_t item, const zel::OrientedFrame& frame) {
    const zel::Scale& positions = frame.Positions();
    const double begin = positions.Forward(EdgeOn(positions, item)),
                 end = positions.Forward(EdgeOn(positions, item + 1));
    if (!std::isfinite(begin) || !std::isfinite(end) || !frame.Values().HasPlace(heights_[item]))
        return std::nullopt;
    CRect box(frame.ToLogical(begin, frame.ValueWithin(0)),
              frame.ToLogical(end, frame.ValueWithin(heights_[item])));
    box.NormalizeRect();
    return box;
}

// The middle of a bin.
zel::Datum Zel2HistogramLayer::DatumOf(std::size_t item, const zel::OrientedFrame& frame) {
    zel::Datum datum;
    datum.row = item;
    const zel::Scale& positions = frame.Positions();
    const double middle = (EdgeOn(positions, item) + EdgeOn(positions, item + 1)) / 2 + positions.Origin();
    datum.x = IsHorizontal() ? heights_[item] : middle;
    datum.y = IsHorizontal() ? middle : heights_[item];
    return datum;
}

void Zel2HistogramLayer::DrawIn(const zel::LayerFrame& frame) {
    DrawColor* const color = Color(colorIndex_);
    if (!color || !DC()) return;
    const zel::OrientedFrame oriented(frame, IsHorizontal());
    const zel::Scale& positions = oriented.Positions();
    const double base = oriented.ValueWithin(0);
    zel::ColumnBoxes boxes(*DC(), oriented);
    for (std::size_t i = 0; i < Heights().size(); ++i) {
        double begin = positions.Forward(EdgeOn(positions, i));
        const double end = positions.Forward(EdgeOn(positions, i + 1)),
                     height = oriented.Values().Forward(heights_[i]);
        if (std::isnan(begin)) begin = oriented.FirstPosition();
        if (std::isnan(end) || std::isnan(height) || heights_[i] == 0) continue;
        boxes.Add(begin, end, base, height);
    }
    color->FillRects(boxes.Finish());
}

std::vector<std::pair<double, double>> Zel2HistogramLayer::Sample(const zel::Scale& x, const zel::Scale& y,
                                                                  std::size_t most) {
    std::vector<std::pair<double, double>> points;
    constexpr std::size_t kAlong = 8;
    const std::size_t step = Heights().size() * kAlong / std::max<std::size_t>(1, most) + 1;
    for (std::size_t i = 0; i < heights_.size(); i += step) {
        const double middle = (EdgeOn(PositionsOf(x, y), i) + EdgeOn(PositionsOf(x, y), i + 1)) / 2;
        for (std::size_t k = 0; k <= kAlong; ++k) {
            const double value = heights_[i] * static_cast<double>(k) / kAlong;
            IsHorizontal() ? points.emplace_back(value, middle) : points.emplace_back(middle, value);
        }
    }
    return points;
}

void Zel2HistogramLayer::DrawKey(const CRect& box) {
    if (DrawColor* color = Color(colorIndex_)) color->FillRect(box);
}

void Zel2HistogramLayer::Serialize(CArchive& ar) {
    Zel2RowLayer::Serialize(ar);
    int rule = static_cast<int>(rule_), measure = static_cast<int>(measure_);
    zel::Exchange(ar, colorIndex_, rule, bins_, binWidth_, measure);
    zel::ExchangeList(ar, givenEdges_);
    if (ar.IsStoring()) return;
    rule_ = static_cast<zel::BinRule>(std::clamp(rule, 0, 2));
    measure_ = static_cast<zel::BinMeasure>(std::clamp(measure, 0, 2));
    try {
        (void)WithoutTexts(Columns());
    } catch (const zel::Error& e) {
        ar.Fail(CArchiveException::genericException, e.what());
    }
    const bool ascend = std::is_sorted(givenEdges_.begin(), givenEdges_.end(), std::less_equal<double>());
    if (Columns().size() > 2 || givenEdges_.size() == 1 || !ascend)
        ar.Fail(CArchiveException::genericException, "a histogram has edges or columns that cannot be");
}
