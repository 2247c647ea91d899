#include "apps/zel/Figure.h"

#include "apps/zel/Csv.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace zel::cli {
namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kGrid = RGB(221, 221, 221);
// Told apart by people with any colour vision (Okabe and Ito, "Color Universal Design", 2008).
constexpr COLORREF kPalette[] = {RGB(0, 114, 178), RGB(213, 94, 0),   RGB(0, 158, 115), RGB(204, 121, 167),
                                 RGB(230, 159, 0), RGB(86, 180, 233), RGB(80, 80, 80),  RGB(150, 130, 0)};
constexpr int kPaletteSize = static_cast<int>(std::size(kPalette));

// World units: thousandths of an inch.
constexpr int kEdge = 150;  // kept free around everything
constexpr int kTitleHeight = 330;
constexpr int kLegendHeight = 230;
constexpr int kAxisTitleHeight = 210;
constexpr int kLabelHeight = 260;  // of the row of x labels, ticks included
constexpr int kTick = 75;          // ticks and the gap to the labels
constexpr int kLetter = 78;        // a digit of the axis font
constexpr int kSwatch = 180;
constexpr int kSymbolSize = 55;

int FromMillimetres(double mm) {
    return static_cast<int>(std::lround(mm / 25.4 * 1000));
}
COLORREF ColorOfSeries(int i) {
    return kPalette[i % kPaletteSize];
}

// A tint of a colour for areas: a quarter of it on white.
COLORREF Tint(COLORREF color) {
    const auto mix = [](int channel) { return 255 - (255 - channel) / 4; };
    return RGB(mix(GetRValue(color)), mix(GetGValue(color)), mix(GetBValue(color)));
}

std::size_t LabelLength(double value) {
    char text[40];
    return static_cast<std::size_t>(
        std::to_chars(std::begin(text), std::end(text), value, std::chars_format::general, 7).ptr - text);
}

// A copy of a series' points, owned by the caller; one that came from a database can be read from there
// again.
Zel2PointArray* NewPoints(const Series& series) {
    if (series.source) return new Zel2DaoPointSet(*series.source);
    auto* points = new Zel2PointArray;
    points->SetPoints(series.x, series.y);
    return points;
}

class FigureMaker {
  public:
    FigureMaker(const std::vector<Series>& series, const FigureOptions& options)
        : series_(series), options_(options), root_(std::make_unique<Zel2Main>()) {
        root_->SetRules(ZelRules::EXACT);
        size_ = CSize(FromMillimetres(options.width), FromMillimetres(options.height));
    }

    std::unique_ptr<Zel2Main> Make() {
        RegisterTools();
        graph_ = new Zel2Graph;
        root_->Add(graph_);
        graph_->SetGraphSize(size_);
        graph_->SetCoord(0, 0, 0, 0);
        if (options_.fill) {
            for (int i = 0; i < Count(); ++i) AddArea(i);
        }
        for (int i = 0; i < Count(); ++i) AddSeries(i);
        SetRanges();
        SetMargins();
        AddTitles();
        if (Count() > 1) AddLegend();
        return std::move(root_);
    }

  private:
    int Count() const { return static_cast<int>(series_.size()); }

    // The graph's own tools get our colours by being registered first.
    void RegisterTools() {
        root_->RegisterColor("Frame Color", kWhite, kWhite);
        root_->RegisterColor("Background Color", kWhite, kWhite);
        root_->RegisterPen("Vertical/Horizontal Coordinate Lines", DrawPen::SOLID, 1, kGrid, kGrid, nullptr);
        titleFont_ = root_->RegisterFont("Title", "Arial", 140, 1, 0, 0, 0, 0, 0);
        textFont_ = root_->RegisterFont("Axis Title", "Arial", 100, 0, 0, 0, 0, 0, 0);
    }

    // Areas are series of their own: a line along the same points would run down to the bottom edge with
    // them.
    void AddArea(int i) {
        const Series& data = series_[static_cast<std::size_t>(i)];
        const COLORREF tint = Tint(ColorOfSeries(i));
        Zel2PointArray* area = NewPoints(data);
        area->SetColor(root_->RegisterColor((data.name + " area").c_str(), tint, tint));
        area->SetExtension(Zel2PointSet::BOTTOM, Zel2PointSet::BOTTOM);
        graph_->AddIn(area);
    }

    void AddSeries(int i) {
        const Series& data = series_[static_cast<std::size_t>(i)];
        const COLORREF color = ColorOfSeries(i);
        Zel2PointArray* points = NewPoints(data);
        graph_->AddIn(points);
        const std::string& name = data.name;
        if (options_.line) {
            points->SetPen(
                root_->RegisterPen((name + " line").c_str(), DrawPen::SOLID, 4, color, color, nullptr));
        }
        if (options_.symbols) {
            points->SetSymbol(
                root_->RegisterSymbol((name + " symbol").c_str(), CSize(kSymbolSize, kSymbolSize),
                                      static_cast<zel::SymbolKind>(1 + i % 4), "", 1, color, color, color,
                                      color, 1, "Arial", 80, 0, 0, nullptr, nullptr, 0),
                true);
        }
        added_.push_back(points);
    }

    void SetRanges() {
        for (Zel2PointArray* points : added_) {
            points->AdjustXAxis(8);
            points->AdjustYAxis(8);
        }
        double x0, y0, x1, y1;
        graph_->GetFloatRect(x0, y0, x1, y1);
        // A single value has no range of its own.
        if (x0 == x1) graph_->AdjustXAxis(x0 - 1, x1 + 1, 8, 1);
        if (y0 == y1) graph_->AdjustYAxis(y0 - 1, y1 + 1, 8, 1);
        if (options_.xRange) graph_->AdjustXAxis(options_.xRange->first, options_.xRange->second, 8, 0);
        if (options_.yRange) graph_->AdjustYAxis(options_.yRange->first, options_.yRange->second, 8, 0);
        KeepWithin();
        graph_->GetFloatRect(x0, y0, x1, y1);
        graph_->SetCoord(x0, y0, x1, y1);
    }

    // A range that was asked for is shown as it is: positions outside it are left out.
    void KeepWithin() {
        double x0, y0, x1, y1;
        graph_->GetFloatRect(x0, y0, x1, y1);
        const auto within = [](std::vector<double> values, double a, double b) {
            const double slack = std::fabs(b - a) * 1e-9;
            std::erase_if(values,
                          [=](double v) { return v < std::min(a, b) - slack || v > std::max(a, b) + slack; });
            return values;
        };
        const std::vector<double> xs = within(graph_->XLabels(), x0, x1),
                                  ys = within(graph_->YLabels(), y0, y1);
        graph_->SetXLabels(xs);
        graph_->SetXTicks(xs);
        graph_->SetXLines(xs);
        graph_->SetYLabels(ys);
        graph_->SetYTicks(ys);
        graph_->SetYLines(ys);
    }

    void SetMargins() {
        std::size_t longest = 1, last = 1;
        for (const double value : graph_->YLabels()) longest = std::max(longest, LabelLength(value));
        if (!graph_->XLabels().empty()) last = LabelLength(graph_->XLabels().back());
        left_ = kEdge + kTick + static_cast<int>(longest) * kLetter +
                (options_.yTitle.empty() ? 0 : kAxisTitleHeight);
        top_ = kEdge + (options_.title.empty() ? 0 : kTitleHeight) + (Count() > 1 ? kLegendHeight : 0);
        const int right = kEdge + static_cast<int>(last) * kLetter / 2;
        const int bottom = kEdge + kLabelHeight + (options_.xTitle.empty() ? 0 : kAxisTitleHeight);
        right_ = right;
        bottom_ = bottom;
        graph_->SetMargins(left_, top_, right, bottom);
    }

    void AddText(const std::string& text, const CPoint& at, int font, unsigned format, int angle) {
        root_->Add(new Zel2Text(text.c_str(), at, font, static_cast<int>(format), angle, -1, -1, {-1, 0.0F}));
    }

    void AddTitles() {
        const int middle = (left_ + size_.cx - right_) / 2;
        if (!options_.title.empty()) {
            AddText(options_.title, {middle, size_.cy - kEdge - kTitleHeight / 3}, titleFont_,
                    DT_CENTER | DT_VCENTER, 0);
        }
        if (!options_.xTitle.empty()) {
            AddText(options_.xTitle, {middle, kEdge + kAxisTitleHeight / 3}, textFont_,
                    DT_CENTER | DT_VCENTER, 0);
        }
        if (!options_.yTitle.empty()) {
            AddText(options_.yTitle, {kEdge + kAxisTitleHeight / 3, (bottom_ + size_.cy - top_) / 2},
                    textFont_, DT_CENTER | DT_VCENTER, 900);
        }
    }

    // A swatch and a name for each series, in one row above the plot area.
    void AddLegend() {
        const int y = size_.cy - top_ + kLegendHeight / 2;
        int x = left_;
        for (int i = 0; i < Count(); ++i) {
            const Series& data = series_[static_cast<std::size_t>(i)];
            const COLORREF color = ColorOfSeries(i);
            const int swatch = root_->RegisterColor((data.name + " swatch").c_str(), color, color);
            root_->Add(
                new Zel2Rect(CRect(x, y - 20, x + kSwatch, y + 20), -1, swatch, Zel2Rect::RECTANGLE, -1));
            AddText(data.name, {x + kSwatch + 60, y}, textFont_, DT_VCENTER, 0);
            x += kSwatch + 60 + static_cast<int>(data.name.size()) * kLetter + 150;
        }
    }

    const std::vector<Series>& series_;
    const FigureOptions& options_;
    std::unique_ptr<Zel2Main> root_;
    Zel2Graph* graph_ = nullptr;          // owned by the root
    std::vector<Zel2PointArray*> added_;  // owned by the graph
    CSize size_;
    int left_ = 0, top_ = 0, right_ = 0, bottom_ = 0;
    int titleFont_ = -1, textFont_ = -1;
};

bool HasPoint(const Series& series) {
    for (std::size_t i = 0; i < std::min(series.X().size(), series.Y().size()); ++i) {
        if (std::isfinite(series.X()[i]) && std::isfinite(series.Y()[i])) return true;
    }
    return false;
}

}  // namespace

std::unique_ptr<Zel2Main> MakeFigure(const std::vector<Series>& series, const FigureOptions& options) {
    if (std::none_of(series.begin(), series.end(), HasPoint)) {
        throw Error("Cannot plot: no row has a number in both the x and a y column");
    }
    if (!(options.width >= 30 && options.height >= 30 && options.width <= 2000 && options.height <= 2000)) {
        throw Error("Cannot plot at this size: width and height must lie between 30 and 2000 millimetres");
    }
    return FigureMaker(series, options).Make();
}

}  // namespace zel::cli
