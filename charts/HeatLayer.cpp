#include "charts/CellPyramid.h"
#include "charts/PixelGrid.h"
#include "charts/ScaleValues.h"
#include "core/ArchiveFields.h"

#include <zel/ChartMaps.h>
#include <zel/Error.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>
#include <map>

IMPLEMENT_SERIAL(Zel2HeatLayer, Zel2Layer, 0)

Zel2HeatLayer::Zel2HeatLayer()
    : onX_(std::make_unique<zel::ScaleValues>()), onY_(std::make_unique<zel::ScaleValues>()) {}
Zel2HeatLayer::~Zel2HeatLayer() = default;

Zel2HeatLayer::Zel2HeatLayer(zel::Column x, zel::Column y, zel::Column values,
                             const zel::HeatMapOptions& options)
    : Zel2Layer(options),
      x_(std::move(x)),
      y_(std::move(y)),
      values_(std::move(values)),
      edges_(options.edges),
      key_(options.colors),
      onX_(std::make_unique<zel::ScaleValues>()),
      onY_(std::make_unique<zel::ScaleValues>()) {
    if (options.colors.title.empty()) key_.Axis().SetTitle(values_.Name());
    if (options.colors.unit.empty()) key_.Axis().SetUnit(values_.Unit());
    if (const std::string fault = Fault(); !fault.empty())
        throw zel::Error("Cannot make a heat map: " + fault);
}

namespace {

// The different rows of a column in order: numbers ascending, texts as they appear. And the place of each row
// among them, -1 for an absent one.
struct Distinct {
    zel::Column column;
    std::vector<std::ptrdiff_t> placeOf;
};

Distinct DistinctOf(const zel::Column& column) {
    Distinct distinct;
    const bool texts = column.GetKind() == zel::Column::Kind::TEXTS;
    std::map<double, std::ptrdiff_t> places;
    for (std::size_t i = 0; i < column.Size(); ++i)
        if (std::isfinite(column.At(i))) places.emplace(column.At(i), 0);
    std::vector<double> numbers;
    numbers.reserve(places.size());
    for (auto& [number, place] : places) {
        place = static_cast<std::ptrdiff_t>(numbers.size());
        numbers.push_back(number + (texts ? 0 : column.Origin()));
    }
    distinct.placeOf.reserve(column.Size());
    for (std::size_t i = 0; i < column.Size(); ++i) {
        const double number = column.At(i);
        distinct.placeOf.push_back(std::isfinite(number) ? places.at(number) : -1);
    }
    if (texts) {
        distinct.column = column.Names();
    } else if (column.GetKind() == zel::Column::Kind::TIMES) {
        constexpr std::int64_t kPerSecond = 1'000'000;
        std::vector<std::int64_t> ticks;
        ticks.reserve(numbers.size());
        for (const double number : numbers) ticks.push_back(std::llround(number * kPerSecond));
        distinct.column = zel::Column::Times(std::move(ticks), kPerSecond);
    } else {
        distinct.column = std::move(numbers);
    }
    distinct.column.SetName(column.Name()).SetUnit(column.Unit());
    return distinct;
}

}  // namespace

std::unique_ptr<Zel2HeatLayer> Zel2HeatLayer::OfRows(const zel::Column& x, const zel::Column& y,
                                                     const zel::Column& values, zel::HeatMapOptions options) {
    Distinct alongX = DistinctOf(x), alongY = DistinctOf(y);
    const std::size_t columns = alongX.column.Size(), rows = alongY.column.Size();
    constexpr std::size_t kMost = std::size_t{1} << 28;
    if (columns > 0 && rows > kMost / columns) {
        throw zel::Error("Cannot make a heat map of rows: " + std::to_string(columns) + " different x and " +
                         std::to_string(rows) + " different y would be too many cells; round them first");
    }
    std::vector<double> sums(columns * rows, 0);
    std::vector<int> counts(columns * rows, 0);
    for (std::size_t i = 0; i < std::min({x.Size(), y.Size(), values.Size()}); ++i) {
        if (alongX.placeOf[i] < 0 || alongY.placeOf[i] < 0 || !std::isfinite(values.At(i))) continue;
        const auto cell = static_cast<std::size_t>(alongY.placeOf[i]) * columns +
                          static_cast<std::size_t>(alongX.placeOf[i]);
        sums[cell] += values.At(i);
        ++counts[cell];
    }
    for (std::size_t i = 0; i < sums.size(); ++i)
        sums[i] = counts[i] > 0 ? sums[i] / counts[i] : std::nan("");
    options.edges = false;
    zel::Column means = std::move(sums);
    means.SetName(values.Name()).SetUnit(values.Unit());
    return std::make_unique<Zel2HeatLayer>(std::move(alongX.column), std::move(alongY.column),
                                           std::move(means), options);
}

std::size_t Zel2HeatLayer::CellsOf(const zel::Column& column) const {
    return edges_ && column.Size() > 0 ? column.Size() - 1 : column.Size();
}
std::size_t Zel2HeatLayer::CellsAlongX() const {
    return CellsOf(x_);
}
std::size_t Zel2HeatLayer::CellsAlongY() const {
    return CellsOf(y_);
}

// What is wrong with the columns; nothing when they are good.
std::string Zel2HeatLayer::Fault() const {
    for (const zel::Column* column : {&x_, &y_}) {
        if (column->GetKind() == zel::Column::Kind::TEXTS) {
            if (edges_) return "texts are no edges of cells";
            continue;
        }
        const bool ascends = column->Size() < 2 || column->At(0) < column->At(1);
        for (std::size_t i = 0; i < column->Size(); ++i) {
            const double at = column->At(i), before = i > 0 ? column->At(i - 1) : at;
            if (!std::isfinite(at) || (i > 0 && !(ascends ? before < at : before > at)))
                return "the places of its cells must ascend or descend, all of them";
        }
    }
    return values_.GetKind() == zel::Column::Kind::TEXTS ? "texts have no colours" : "";
}

void Zel2HeatLayer::DataChanged() {
    onX_->Forget();
    onY_->Forget();
    pyramid_.reset();
    fitted_ = false;
    Changed();
}

void Zel2HeatLayer::FitKey() {
    key_.Attach(Chart());
    if (fitted_) return;
    fitted_ = true;
    withoutColor_ = 0;
    double low = std::numeric_limits<double>::infinity(), high = -low;
    std::vector<double> sample;
    constexpr std::size_t kSample = 100'000;
    const std::size_t n = std::min(values_.Size(), CellsAlongX() * CellsAlongY()), every = n / kSample + 1;
    for (std::size_t i = 0; i < n; ++i) {
        const double value = values_.At(i);
        if (!key_.Counts(value)) {
            if (std::isfinite(value)) ++withoutColor_;
            continue;
        }
        low = std::min(low, value);
        high = std::max(high, value);
        if (key_.WantsSample() && i % every == 0) sample.push_back(value);
    }
    key_.Fit(low, high, sample);
}

zel::ColorKey* Zel2HeatLayer::ColorBar() {
    FitKey();
    return key_.HasBar() ? &key_ : nullptr;
}

std::vector<Zel2HeatLayer::Cell> Zel2HeatLayer::CellsOn(const zel::Column& column, zel::ScaleValues& on,
                                                        const zel::Scale& scale) const {
    const zel::SeriesValues& at = on.On(column, scale);
    const std::size_t n = CellsOf(column), last = n > 0 ? n - 1 : 0;
    const bool texts = column.GetKind() == zel::Column::Kind::TEXTS;
    std::vector<Cell> cells;
    cells.reserve(n);
    // Half the way to the neighbour; to the other one at the ends.
    const auto between = [&](std::size_t i) { return at.At(i) + (at.At(i + 1) - at.At(i)) / 2; };
    for (std::size_t i = 0; i < n; ++i) {
        if (edges_) {
            cells.push_back({at.At(i), at.At(i + 1)});
        } else if (texts || n == 1) {
            cells.push_back({at.At(i) - 0.5, at.At(i) + 0.5});
        } else {
            const double from = i > 0 ? between(i - 1) : at.At(0) - (at.At(1) - at.At(0)) / 2;
            const double to = i < last ? between(i) : at.At(last) + (at.At(last) - at.At(last - 1)) / 2;
            cells.push_back({from, to});
        }
    }
    return cells;
}

void Zel2HeatLayer::DescribeAxes(zel::AxisRange& x, zel::AxisRange& y) {
    zel::Describe(x, x_);
    zel::Describe(y, y_);
}

void Zel2HeatLayer::TakeRange(zel::AxisRange& x, zel::AxisRange& y) {
    const auto take = [](zel::AxisRange& range, const std::vector<Cell>& cells) {
        for (const Cell& cell : cells) {
            range.Add(cell.from);
            range.Add(cell.to);
        }
    };
    take(x, CellsOn(x_, *onX_, x.GetScale()));
    take(y, CellsOn(y_, *onY_, y.GetScale()));
}

std::vector<std::string> Zel2HeatLayer::Notes(const zel::Scale&, const zel::Scale&) {
    FitKey();
    std::vector<std::string> notes;
    const std::string whose = Name().empty() ? "A heat map" : "The heat map \"" + Name() + "\"";
    const std::size_t cells = CellsAlongX() * CellsAlongY();
    if (values_.Size() < cells)
        notes.push_back(whose + " lacks the values of " + std::to_string(cells - values_.Size()) +
                        " of its " + std::to_string(cells) + " cells.");
    if (values_.Size() > cells)
        notes.push_back(whose + " has " + std::to_string(values_.Size() - cells) +
                        " values more than cells.");
    if (withoutColor_ > 0)
        notes.push_back(whose + ": " + std::to_string(withoutColor_) +
                        " values are not above 0 and have no colour on a logarithm.");
    if (key_.IsFlat() && cells > 0) notes.push_back(whose + " has the same value everywhere.");
    return notes;
}

namespace {

// The cell of each pixel along an axis, -1 for none. Edges are rounded down to whole pixels, as those of bars
// are, so neighbours meet.
template <class PixelOf, class Cells>
std::vector<std::ptrdiff_t> CellOfPixels(int pixels, const Cells& cells, const PixelOf& pixelOf) {
    std::vector<std::ptrdiff_t> cellOf(static_cast<std::size_t>(pixels), -1);
    const auto rounded = [&](double place) {
        constexpr double kRounding = 1e-6;
        const double pixel = std::floor(place + kRounding);
        return static_cast<std::ptrdiff_t>(pixel > 0 ? std::min<double>(pixel, pixels) : 0);
    };
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const double a = pixelOf(cells[i].from), b = pixelOf(cells[i].to);
        if (std::isnan(a) || std::isnan(b)) continue;
        const auto [from, to] = std::minmax({rounded(a), rounded(b)});
        std::fill(cellOf.begin() + from, cellOf.begin() + to, static_cast<std::ptrdiff_t>(i));
    }
    return cellOf;
}

std::uint32_t WithOpacity(std::uint32_t color, double opacity) {
    const double alpha = (color >> 24) * std::clamp(opacity, 0.0, 1.0);
    return (color & 0xFFFFFF) | static_cast<std::uint32_t>(std::lround(alpha)) << 24;
}

}  // namespace

void Zel2HeatLayer::DrawIn(const zel::LayerFrame& frame) {
    if (!DC()) return;
    FitKey();
    std::vector<Cell> alongX = CellsOn(x_, *onX_, frame.x), alongY = CellsOn(y_, *onY_, frame.y);
    const auto extent = [](std::vector<Cell>& cells, const zel::Scale& scale) {
        Cell all{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
        for (Cell& cell : cells) {
            cell = {scale.Forward(cell.from), scale.Forward(cell.to)};
            for (const double end : {cell.from, cell.to}) {
                if (std::isnan(end)) continue;
                all.from = std::min(all.from, end);
                all.to = std::max(all.to, end);
            }
        }
        return all;
    };
    const Cell x = extent(alongX, frame.x), y = extent(alongY, frame.y);
    if (!(x.from < x.to) || !(y.from < y.to)) return;
    const zel::PixelGrid grid(*DC(), frame.world, x.from, y.from, x.to, y.to);
    if (grid.IsEmpty()) return;
    const auto columnOf = CellOfPixels(grid.Width(), alongX, [&](double v) { return grid.ColumnOf(v); });
    const auto rowOf = CellOfPixels(grid.Height(), alongY, [&](double v) { return grid.RowOf(v); });
    if (!pyramid_)
        pyramid_ = std::make_unique<zel::CellPyramid>(values_.Values(), values_.Size(), alongX.size());
    // As many as lie within the picture.
    const auto perPixel = [](const std::vector<Cell>& cells, const auto& pixelOf, int pixels) {
        const auto seen = std::count_if(cells.begin(), cells.end(), [&](const Cell& cell) {
            const double place = (pixelOf(cell.from) + pixelOf(cell.to)) / 2;
            return place >= 0 && place < pixels;
        });
        return static_cast<double>(seen) / pixels;
    };
    const std::size_t level =
        pyramid_->LevelFor(perPixel(
                               alongX, [&](double v) { return grid.ColumnOf(v); }, grid.Width()),
                           perPixel(
                               alongY, [&](double v) { return grid.RowOf(v); }, grid.Height()));
    const auto factorX = static_cast<std::ptrdiff_t>(pyramid_->FactorX(level)),
               factorY = static_cast<std::ptrdiff_t>(pyramid_->FactorY(level));
    const double opacity = Opacity();
    std::vector<std::uint32_t> colors;
    colors.reserve(columnOf.size() * rowOf.size());
    for (const std::ptrdiff_t row : rowOf) {
        for (const std::ptrdiff_t column : columnOf) {
            std::uint32_t color = 0;
            if (row >= 0 && column >= 0)
                color = key_.PixelOf(pyramid_->At(level, static_cast<std::size_t>(column / factorX),
                                                  static_cast<std::size_t>(row / factorY)));
            colors.push_back(opacity < 1 ? WithOpacity(color, opacity) : color);
        }
    }
    grid.Draw(colors);
}

std::optional<zel::Datum> Zel2HeatLayer::Nearest(const CPoint& device, double) {
    Zel2Chart* const chart = Chart();
    if (!chart || !Map()) return std::nullopt;
    const CRect plot = chart->PlotArea();
    const CSize at = Map()->FromDevice(device) - chart->AbsOrigin();
    if (at.cx < plot.left || at.cx > plot.right || at.cy > plot.top || at.cy < plot.bottom)
        return std::nullopt;
    const zel::Scale x = chart->ScaleOf(XAxis()), y = chart->ScaleOf(YAxis());
    const auto find = [](const std::vector<Cell>& cells, double value) -> std::optional<std::size_t> {
        for (std::size_t i = 0; i < cells.size(); ++i)
            if (value >= std::min(cells[i].from, cells[i].to) &&
                value <= std::max(cells[i].from, cells[i].to))
                return i;
        return std::nullopt;
    };
    const std::vector<Cell> alongX = CellsOn(x_, *onX_, x), alongY = CellsOn(y_, *onY_, y);
    const auto column = find(alongX, chart->ValueAt(XAxis(), device) - x.Origin());
    const auto row = find(alongY, chart->ValueAt(YAxis(), device) - y.Origin());
    if (!column || !row) return std::nullopt;
    zel::Datum datum;
    datum.row = *row * alongX.size() + *column;
    if (datum.row >= values_.Size()) return std::nullopt;
    datum.x = (alongX[*column].from + alongX[*column].to) / 2 + x.Origin();
    datum.y = (alongY[*row].from + alongY[*row].to) / 2 + y.Origin();
    return datum;
}

std::vector<std::pair<double, double>> Zel2HeatLayer::Sample(const zel::Scale& x, const zel::Scale& y,
                                                             std::size_t) {
    std::vector<std::pair<double, double>> points;
    constexpr std::size_t kSteps = 16;
    const std::vector<Cell> alongX = CellsOn(x_, *onX_, x), alongY = CellsOn(y_, *onY_, y);
    for (std::size_t i = 0; i < alongX.size(); i += alongX.size() / kSteps + 1)
        for (std::size_t k = 0; k < alongY.size(); k += alongY.size() / kSteps + 1)
            points.emplace_back(alongX[i].from, alongY[k].from);
    return points;
}

void Zel2HeatLayer::DrawKey(const CRect& box) {
    constexpr int kSteps = 64;
    std::vector<std::uint32_t> colors;
    colors.reserve(kSteps);
    for (int i = 0; i < kSteps; ++i) colors.push_back(key_.Map().PixelAt((i + 0.5) / kSteps));
    if (CDC* dc = DC()) dc->DrawPicture(box, {colors.data(), kSteps, 1});
}

void Zel2HeatLayer::Serialize(CArchive& ar) {
    Zel2Layer::Serialize(ar);
    x_.Serialize(ar);
    y_.Serialize(ar);
    values_.Serialize(ar);
    zel::ExchangeFlag(ar, edges_);
    key_.Serialize(ar);
    if (ar.IsStoring()) return;
    if (const std::string fault = Fault(); !fault.empty())
        ar.Fail(CArchiveException::genericException, "a heat map cannot be: " + fault);
    DataChanged();
}
