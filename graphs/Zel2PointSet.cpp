#include "core/ArchiveFields.h"
#include "graphs/SeriesFill.h"
#include "series/CurveScope.h"
#include "series/SeriesHit.h"
#include "series/SeriesIndex.h"
#include "tools/SeriesMarks.h"

#include <zel/DrawColor.h>
#include <zel/DrawPen.h>
#include <zel/DrawSymbol.h>
#include <zel/Mapping.h>
#include <zel/Zel2CoordSys.h>
#include <zel/Zel2Graph.h>
#include <zel/Zel2PointSet.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <unordered_map>

IMPLEMENT_SERIAL(Zel2PointSet, Zel2, 0)
IMPLEMENT_SERIAL(Zel2PointArray, Zel2PointSet, 0)

namespace {

constexpr std::size_t kBlock = 1024;  // points handed on at once by a series that has no arrays

Zel2Graph* GraphAround(const Zel2& object) {
    return dynamic_cast<Zel2Graph*>(object.GetParentClass(Zel2::CLASS_GRAPH));
}

// The coordinate system that an object stands in, unless a graph is nearer.
Zel2CoordSys* CoordSysAround(const Zel2& object) {
    for (Zel2* outer = object.GetParent(); outer && !outer->IsClass(Zel2::CLASS_GRAPH);
         outer = outer->GetParent()) {
        if (auto* const system = dynamic_cast<Zel2CoordSys*>(outer)) return system;
    }
    return nullptr;
}

constexpr int kHitReach = 3;                     // pixels
constexpr int kTenthsOfMillimetrePerInch = 254;  // of a pen's width
constexpr int kUnitsPerInch = 1000;              // of the drawing
constexpr long kMarks = 8;                       // on a selected series
constexpr long kCandidates = 1024;               // points among which marks are chosen

// A graph's range widened by values; begins afresh where the range was not set yet.
class Widened {
  public:
    Widened(double lo, double hi) : lo_(lo), hi_(hi), set_(lo < hi) {}
    void Add(double value) {
        if (!std::isfinite(value)) return;
        if (!set_) lo_ = hi_ = value;
        set_ = true;
        lo_ = std::min(lo_, value);
        hi_ = std::max(hi_, value);
    }
    bool IsSet() const { return set_; }
    double Lo() const { return lo_; }
    double Hi() const { return hi_; }

  private:
    double lo_;
    double hi_;
    bool set_;
};

}  // namespace

Zel2PointSet::Zel2PointSet(const Zel2PointSet& other) : Zel2(other) {
    CopyFields(other);
}

Zel2PointSet& Zel2PointSet::operator=(const Zel2PointSet& other) {
    if (this == &other) return *this;
    Zel2::operator=(other);
    CopyFields(other);
    return *this;
}

void Zel2PointSet::CopyFields(const Zel2PointSet& other) {
    symbol_ = other.symbol_;
    pen_ = other.pen_;
    color_ = other.color_;
    start_ = other.start_;
    end_ = other.end_;
    symbolOnFirst_ = other.symbolOnFirst_;
    pointSymbols_.Copy(other.pointSymbols_);
}

unsigned int Zel2PointSet::NPoints() {
    return 0;
}
double Zel2PointSet::X(long) {
    return 0.0;
}
double Zel2PointSet::Y(long) {
    return 0.0;
}
std::vector<double>* Zel2PointSet::GetXVec() {
    return nullptr;
}
std::vector<double>* Zel2PointSet::GetYVec() {
    return nullptr;
}
std::vector<zel::SeriesStretch> Zel2PointSet::Stretches() {
    const std::vector<double>* xs = GetXVec();
    const std::vector<double>* ys = GetYVec();
    if (!xs || !ys) return {};
    return {
        {zel::SeriesValues(xs->data()), zel::SeriesValues(ys->data()), 0, std::min(xs->size(), ys->size())}};
}

std::vector<zel::SeriesStretch> Zel2PointSet::StretchesFrom(unsigned int first) {
    std::size_t left = NPoints(), skipped = first;
    std::vector<zel::SeriesStretch> stretches = Stretches();
    for (zel::SeriesStretch& stretch : stretches) {
        stretch.end = stretch.begin + std::min(stretch.Size(), left);
        left -= stretch.Size();
        const std::size_t skip = std::min(stretch.Size(), skipped);
        stretch.begin += skip;
        skipped -= skip;
    }
    if (left > 0) stretches.clear();  // a derived class has more points than its arrays
    return stretches;
}

// Hands the points on from number `first` on, as they lie in memory or copied a block at a time, until the
// function answers false.
template <class Function>
void Zel2PointSet::ForStretches(Function function, unsigned int first) {
    const std::vector<zel::SeriesStretch> stretches = StretchesFrom(first);
    for (const zel::SeriesStretch& stretch : stretches)
        if (!function(stretch)) return;
    if (!stretches.empty()) return;
    const std::size_t n = NPoints();
    double x[kBlock];
    double y[kBlock];
    for (std::size_t begin = first; begin < n; begin += kBlock) {
        const std::size_t count = std::min(kBlock, n - begin);
        for (std::size_t i = 0; i < count; ++i) {
            x[i] = X(static_cast<long>(begin + i));
            y[i] = Y(static_cast<long>(begin + i));
        }
        if (!function({zel::SeriesValues(x), zel::SeriesValues(y), 0, count})) return;
    }
}

// A series is picked through its graph; it has no handles of its own.
unsigned int Zel2PointSet::nCpt() {
    return Zel2::nCpt();
}

MouseAction Zel2PointSet::OnMouse(const MouseStatus& ms) {
    return Zel2::OnMouse(ms);
}

// Evenly along the part of the series that can be seen, as far as a sample of its points tells.
std::vector<long> Zel2PointSet::MarkedPoints() {
    const WorldFrame* frame = GraphFrame();
    const long n = static_cast<long>(NPoints());
    if (!frame || n == 0) return {};
    std::vector<long> seen;
    const long samples = std::min(n, kCandidates);
    for (long k = 0; k < samples; ++k) {
        const long i = samples > 1 ? static_cast<long>(std::int64_t{k} * (n - 1) / (samples - 1)) : 0;
        if (frame->Contains(X(i), Y(i))) seen.push_back(i);
    }
    const long count = static_cast<long>(seen.size()), marks = std::min(count, kMarks);
    std::vector<long> marked;
    for (long k = 0; k < marks; ++k)
        marked.push_back(seen[static_cast<std::size_t>(marks > 1 ? k * (count - 1) / (marks - 1) : 0)]);
    return marked;
}

CPoint Zel2PointSet::Cpt(int i) {
    const WorldFrame* frame = GraphFrame();
    const std::vector<long> marked = IsExact() && Map() ? MarkedPoints() : std::vector<long>();
    if (!frame || i < 0 || i >= static_cast<int>(marked.size())) return Zel2::Cpt(i);
    const long point = marked[static_cast<std::size_t>(i)];
    return Map()->FromLogical(frame->ToLogical(X(point), Y(point)));
}

void Zel2PointSet::DrawMarks() {
    const int count = static_cast<int>(MarkedPoints().size());
    for (int i = 0; i < count; ++i) DrawCPT(i);
}

CRect Zel2PointSet::PaintedArea() {
    Zel2* outer = IsExact() ? GetParent() : nullptr;
    while (outer && !outer->Frame()) outer = outer->GetParent();
    return outer ? outer->PaintedArea() : Zel2::PaintedArea();
}

int Zel2PointSet::SymbolReach(int index) {
    DrawSymbol* const symbol = index >= 0 ? Symbol(index) : nullptr;
    if (!symbol) return -1;
    const CSize size = Map()->ToDevice(symbol->Size());
    return std::max(zel::Magnitude(size.cx), zel::Magnitude(size.cy)) / 2;
}

int Zel2PointSet::IsIn(const CPoint& pt) {
    const WorldFrame* frame = GraphFrame();
    if (!IsExact() || !Map() || !frame) return Zel2::IsIn(pt);
    CPoint origin;
    CSize extent;
    Map()->GetDevice(origin, extent);
    const CSize at = pt - origin;
    CRect plot(frame->lower, frame->upper);
    plot.NormalizeRect();
    plot.InflateRect(kHitReach, kHitReach);
    if (NPoints() == 0 || !plot.PtInRect(CPoint(at.cx, at.cy))) return 0;

    // The reach of each symbol is looked up once.
    std::unordered_map<int, int> reaches;
    const auto reachOf = [&](int index) {
        const auto known = reaches.find(index);
        return known != reaches.end() ? known->second : reaches[index] = SymbolReach(index);
    };
    const int common = reachOf(symbol_);
    int largest = common;
    for (INT_PTR i = 0; i < pointSymbols_.GetSize(); ++i)
        largest = std::max(largest, reachOf(static_cast<int>(pointSymbols_.GetAt(i))));
    const auto symbolAt = [&](std::size_t i) {
        const int everywhere = i > 0 || symbolOnFirst_ ? common : -1;
        const bool own = i < static_cast<std::size_t>(pointSymbols_.GetSize());
        return own ? std::max(everywhere, reachOf(static_cast<int>(pointSymbols_.GetAt(static_cast<int>(i)))))
                   : everywhere;
    };
    DrawPen* const chosen = pen_ >= 0 ? Pen(pen_) : nullptr;
    DrawPen* const pen = chosen && chosen->Style() != DrawPen::NONE ? chosen : nullptr;
    const int width = pen ? MulDiv(pen->Width(), kUnitsPerInch, kTenthsOfMillimetrePerInch) : 0;
    const int half = pen ? std::abs(Map()->ToDevice(CSize(width, width)).cx) / 2 : -1;

    zel::SeriesHit hit(*frame, CSize(at.cx, at.cy), kHitReach);
    hit.SetLine(half);
    hit.SetSymbols(largest, symbolAt);
    const zel::WorldPoint first{X(0), Y(0)};
    const long n = static_cast<long>(NPoints());
    const zel::WorldPoint last{X(n - 1), Y(n - 1)};
    if (frame->ContainsStrictly(first.x, first.y) &&
        hit.TestLine(zel::ExtensionPoint(start_, *frame, first), first))
        return 1;
    bool found = false;
    ForStretches([&](const zel::SeriesStretch& stretch) { return !(found = hit.Test(stretch)); });
    if (!found && frame->ContainsStrictly(last.x, last.y))
        found = hit.TestLine(last, zel::ExtensionPoint(end_, *frame, last));
    return found ? 1 : 0;
}

void Zel2PointSet::OnPrint(CDC*, CPrintInfo*) {
    OnDraw();
}

const WorldFrame* Zel2PointSet::GraphFrame() {
    return EnclosingFrame();
}

// Takes in the range of a coordinate of all points: `low` and `high` are its members of a span, `values` that
// of a stretch.
template <double zel::SeriesSpan::*low, double zel::SeriesSpan::*high>
void TakeIn(Widened& range, const zel::SeriesStretch& stretch) {
    zel::WalkSeries(
        stretch,
        [&](const zel::SeriesSpan& span, std::size_t, std::size_t) {
            if (!std::isfinite(span.*low) || !std::isfinite(span.*high)) return false;
            range.Add(span.*low);
            range.Add(span.*high);
            return true;
        },
        [&](const zel::SeriesSpan&, std::size_t, const double* x, const double* y, std::size_t n) {
            const double* const values = low == &zel::SeriesSpan::xmin ? x : y;
            for (std::size_t i = 0; i < n; ++i) range.Add(values[i]);
        });
}

bool Zel2PointSet::WidenByPoints(bool vertical, double& from, double& to) {
    Widened range(from, to);
    ForStretches([&](const zel::SeriesStretch& stretch) {
        vertical ? TakeIn<&zel::SeriesSpan::ymin, &zel::SeriesSpan::ymax>(range, stretch)
                 : TakeIn<&zel::SeriesSpan::xmin, &zel::SeriesSpan::xmax>(range, stretch);
        return true;
    });
    if (!range.IsSet()) return false;
    from = range.Lo();
    to = range.Hi();
    return true;
}

// With exact rules a series in a coordinate system adjusts the axes of that.
void Zel2PointSet::AdjustXAxis(int n) {
    Zel2CoordSys* const system = IsExact() ? CoordSysAround(*this) : nullptr;
    Zel2Graph* const graph = system ? nullptr : GraphAround(*this);
    if (!system && !graph) return;
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    system ? system->HAxis()->GetCoord(x0, x1) : graph->GetFloatRect(x0, y0, x1, y1);
    if (!WidenByPoints(false, x0, x1)) return;
    system ? system->HAxis()->Adjust(x0, x1, n) : graph->AdjustXAxis(x0, x1, n, 1);
}

void Zel2PointSet::AdjustYAxis(int n) {
    Zel2CoordSys* const system = IsExact() ? CoordSysAround(*this) : nullptr;
    Zel2Graph* const graph = system ? nullptr : GraphAround(*this);
    if (!system && !graph) return;
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    system ? system->VAxis()->GetCoord(y0, y1) : graph->GetFloatRect(x0, y0, x1, y1);
    if (!WidenByPoints(true, y0, y1)) return;
    system ? system->VAxis()->Adjust(y0, y1, n) : graph->AdjustYAxis(y0, y1, n, 1);
}

void Zel2PointSet::OnDraw() {
    if (color_ >= 0) Plot(Color(color_), start_, end_);
    if (pen_ >= 0) Plot(Pen(pen_), start_, end_);
    if (symbol_ >= 0) Plot(Symbol(symbol_));
    if (pointSymbols_.GetSize() > 0) PlotPointSymbols();
    if (IsExact() && Selected() && Map()) DrawMarks();
}

void Zel2PointSet::PlotPointSymbols() {
    for (unsigned int i = 0; i < NPoints(); ++i) {
        DrawSymbol* symbol = Symbol(static_cast<int>(pointSymbols_.GetAt(static_cast<int>(i))));
        if (symbol) symbol->PlotOn(this, X(i), Y(i));
    }
}

void Zel2PointSet::Plot(DrawSymbol* symbol) {
    const WorldFrame* frame = GraphFrame();
    if (!symbol || !frame) return;
    const zel::CurveScope figure(DC(), symbol->IsPlainDisc(this));
    const auto plot = [&](const zel::SeriesStretch& stretch) {
        zel::PlotMarks(*this, *symbol, *frame, {&stretch, 1});
        return true;
    };
    ForStretches(plot, symbolOnFirst_ ? 0 : 1);
}

void Zel2PointSet::Plot(DrawPen* pen, unsigned int start, unsigned int end) {
    const WorldFrame* frame = GraphFrame();
    const unsigned int n = NPoints();
    if (n == 0 || !pen || !frame) return;
    const zel::WorldPoint first{X(0), Y(0)};
    const bool extends = frame->ContainsStrictly(first.x, first.y);
    const zel::WorldPoint begin = extends ? zel::ExtensionPoint(start, *frame, first) : first;
    pen->SetWorldPoint(this, begin.x, begin.y);
    if (const std::vector<zel::SeriesStretch> all = StretchesFrom(0); !all.empty()) {
        pen->LineTo(*frame, all);  // in one piece
    } else {
        ForStretches([&](const zel::SeriesStretch& block) {
            pen->LineTo(*frame, {&block, 1});
            return true;
        });
    }
    const zel::WorldPoint last{X(static_cast<long>(n) - 1), Y(static_cast<long>(n) - 1)};
    const bool endExtends = zel::IsExtension(end) && frame->ContainsStrictly(last.x, last.y);
    const zel::WorldPoint finish = endExtends ? zel::ExtensionPoint(end, *frame, last) : last;
    pen->LineTo(this, finish.x, finish.y);
}

void Zel2PointSet::Plot(DrawColor* color, unsigned int start, unsigned int end) {
    const WorldFrame* frame = GraphFrame();
    const std::vector<zel::SeriesStretch> stretches = Stretches();
    if (NPoints() == 0 || !color || !frame || stretches.empty()) return;
    const int width = DC() ? DC()->CurveColumn() : 0;
    std::optional<zel::DeviceColumns> columns;
    if (width > 0) columns.emplace(*DC(), *frame, width);
    zel::FillOutline outline(*frame, start, end, columns ? &*columns : nullptr);
    for (const zel::SeriesStretch& stretch : stretches) outline.Add(stretch);
    outline.Close();
    color->Polygon(this, outline.x.data(), outline.y.data(), static_cast<int>(outline.x.size()));
}

void Zel2PointSet::Serialize(CArchive& ar) {
    Zel2::Serialize(ar);
    zel::Exchange(ar, symbol_, pen_, color_, start_, end_);
    if (zel::IsComplete(ar)) {
        zel::ExchangeFlag(ar, symbolOnFirst_);
        pointSymbols_.Serialize(ar);
    }
}

Zel2PointArray::Zel2PointArray() = default;
Zel2PointArray::~Zel2PointArray() = default;

Zel2PointArray::Zel2PointArray(const Zel2PointArray& other)
    : Zel2PointSet(other), xs_(other.xs_), ys_(other.ys_) {}

Zel2PointArray& Zel2PointArray::operator=(const Zel2PointArray& other) {
    if (this == &other) return *this;
    Zel2PointSet::operator=(other);
    xs_ = other.xs_;
    ys_ = other.ys_;
    index_.reset();  // whoever holds pointers to the arrays may still write through them
    return *this;
}

std::vector<double>* Zel2PointArray::GetXVec() {
    index_.reset();
    handedOut_ = true;
    return &xs_;
}

std::vector<double>* Zel2PointArray::GetYVec() {
    index_.reset();
    handedOut_ = true;
    return &ys_;
}

void Zel2PointArray::PointsChanged() {
    index_.reset();
    handedOut_ = false;
}

std::vector<zel::SeriesStretch> Zel2PointArray::Stretches() {
    const zel::SeriesValues x(xs_.data()), y(ys_.data());
    const std::size_t n = std::min(xs_.size(), ys_.size());
    if (handedOut_ || n < zel::SeriesIndex::kLeastPoints) return {{x, y, 0, n}};
    if (!index_) index_ = std::make_unique<zel::SeriesIndex>();
    index_->Extend(x, y, n);
    return {{x, y, 0, n, index_.get()}};
}

void Zel2PointArray::Append(double x, double y) {
    xs_.push_back(x);
    ys_.push_back(y);
}

void Zel2PointArray::Clear() {
    PointsChanged();
    xs_.clear();
    ys_.clear();
}

void Zel2PointArray::SetPoints(const std::vector<double>& xs, const std::vector<double>& ys) {
    PointsChanged();
    xs_ = xs;
    ys_ = ys;
}

void Zel2PointArray::SetPoints(std::vector<double>&& xs, std::vector<double>&& ys) {
    PointsChanged();
    xs_ = std::move(xs);
    ys_ = std::move(ys);
}

void Zel2PointArray::Assign(std::vector<float>& xs, std::vector<float>& ys) {
    PointsChanged();
    xs_.assign(xs.begin(), xs.end());
    ys_.assign(ys.begin(), ys.end());
}

// The number of x values; never more than there are y values.
unsigned int Zel2PointArray::NPoints() {
    return static_cast<unsigned int>(std::min(xs_.size(), ys_.size()));
}

void Zel2PointArray::Serialize(CArchive& ar) {
    Zel2PointSet::Serialize(ar);
    if (ar.IsLoading()) PointsChanged();
    zel::ExchangeList(ar, xs_);
    zel::ExchangeList(ar, ys_);
}
