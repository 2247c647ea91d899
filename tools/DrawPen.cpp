#include "core/ArchiveFields.h"
#include "series/CurveScope.h"
#include "series/FrameClip.h"
#include "tools/DashWalker.h"
#include "tools/SeriesLine.h"

#include <zel/DrawPen.h>
#include <zel/ToolEditors.h>
#include <zel/Zel2.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

IMPLEMENT_SERIAL(DrawPen, DrawTool, 0)
IMPLEMENT_SERIAL(DrawPenTable, DrawToolTable, 0)

thread_local CPen* DrawPen::selPen = nullptr;
thread_local CDC* DrawPen::selDC = nullptr;

const std::array<const char*, 7> DrawPen::kStyleNames = {"Solid",        "Dash", "Dot",         "Dash Dot",
                                                         "Dash Dot Dot", "Null", "User Defined"};

namespace {

// Tenths of a millimetre; a style's pattern ends at its first 0.
constexpr int kStylePatterns[6][7] = {
    {32000, 0}, {15, 5, 0}, {2, 2, 0}, {15, 5, 5, 5, 0}, {15, 5, 5, 5, 5, 5, 0}, {0},
};
constexpr int kDefaultDash = 30000;
// A pen counts as printing until its table is opened, which sets the flag from the context.
constexpr int kNotYetOpened = 2;
constexpr int kTenthsOfMillimetrePerInch = 254;

bool IsFinite(double x, double y) {
    return std::isfinite(x) && std::isfinite(y);
}

}  // namespace

// Selects a pen's platform pen for a scope. A pen without one draws with what the context has.
class DrawPen::Selected {
  public:
    Selected(const DrawPen& pen, CDC& dc)
        : dc_(dc), previous_(pen.pen_ ? dc.SelectObject(pen.pen_.get()) : nullptr) {}
    ~Selected() {
        if (previous_) dc_.SelectObject(previous_);
    }
    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;

  private:
    CDC& dc_;
    CPen* previous_;
};

DrawPen::DrawPen() {
    printer_ = kNotYetOpened;
    pattern_[0] = kDefaultDash;
}

DrawPen::DrawPen(const char* name, int style, int width, COLORREF scr, COLORREF prn, int* pattern)
    : DrawPen() {
    SetName(name);
    width_ = width;
    screen_ = scr;
    print_ = prn;
    Style(style);
    if (style == USER_DEFINED && pattern) Pattern(pattern);
}

DrawPen::DrawPen(const DrawPen& other) : DrawTool(other) {
    CopyFields(other);
}

DrawPen& DrawPen::operator=(const DrawPen& other) {
    if (this == &other) return *this;
    SetName(other.NameRef());
    printer_ = other.printer_;
    CopyOpacity(other);
    CopyFields(other);
    return *this;
}

DrawTool& DrawPen::operator=(const DrawTool& other) {
    const auto* pen = dynamic_cast<const DrawPen*>(&other);
    return pen ? *this = *pen : DrawTool::operator=(other);
}

void DrawPen::CopyFields(const DrawPen& other) {
    screen_ = other.screen_;
    print_ = other.print_;
    width_ = other.width_;
    style_ = other.style_;
    pattern_ = other.pattern_;
    dashPosition_ = 0;
    dashIndex_ = 0;
    current_ = CPoint();
    pen_.reset();
}

DrawTool* DrawPen::ACopy() {
    return new DrawPen(*this);
}

int DrawPen::LogicalInch() const {
    const int dpi = Dc()->GetDeviceCaps(LOGPIXELSX);
    CSize inch(dpi, dpi);
    Dc()->DPtoLP(&inch);
    return inch.cx;
}

void DrawPen::OpenOn(CDC* dc, int scale) {
    DrawTool::OpenOn(dc, scale);
    if (!dc) return;
    int width = MulDiv(MulDiv(width_, scale, kTenthsOfMillimetrePerInch), LogicalInch(), 1000);
    if (width < 1 && width_ > 0) width = 1;
    pen_ = std::make_unique<CPen>(PS_SOLID, width, Color(), InkOpacity());
    dashPosition_ = 0;
    dashIndex_ = 0;
}

void DrawPen::Close() {
    pen_.reset();
    DrawTool::Close();
}

void DrawPen::InstallPattern(int style) {
    pattern_.fill(0);
    if (style == USER_DEFINED) return;
    const auto& pattern = kStylePatterns[style];
    std::copy(std::begin(pattern), std::end(pattern), pattern_.begin());
}

void DrawPen::Style(int style) {
    style_ = style >= USER_DEFINED && style <= NONE ? style : SOLID;
    InstallPattern(style_);
    dashPosition_ = 0;
    dashIndex_ = 0;
    pen_.reset();
}

void DrawPen::Pattern(int* pattern) {
    std::copy_n(pattern, kPatternSize, pattern_.begin());
}

int DrawPen::Clip(double& x1, double& y1, double& x2, double& y2, double xmin, double ymin, double xmax,
                  double ymax) {
    if (!IsFinite(x2 - x1, y2 - y1) && IsFinite(x1, y1) && IsFinite(x2, y2)) {
        // The difference of two values near the end of the double range is not finite; a quarter of it is.
        double qx1 = x1 / 4, qy1 = y1 / 4, qx2 = x2 / 4, qy2 = y2 / 4;
        const int left = Clip(qx1, qy1, qx2, qy2, xmin / 4, ymin / 4, xmax / 4, ymax / 4);
        if (left) x1 = qx1 * 4, y1 = qy1 * 4, x2 = qx2 * 4, y2 = qy2 * 4;
        return left;
    }
    double t = 0;
    const double dy = y2 - y1;
    if (y1 >= ymax) {
        if (y2 >= ymax) return 0;
        t = (ymax - y1) / dy;
    }
    if (ymin >= y1) {
        if (ymin >= y2) return 0;
        t = (ymin - y1) / dy;
    }
    if (x1 >= xmax) {
        if (x2 >= xmax) return 0;
        t = std::max(t, (xmax - x1) / (x2 - x1));
    }
    if (xmin >= x1) {
        if (xmin >= x2) return 0;
        t = std::max(t, (xmin - x1) / (x2 - x1));
    }
    x1 = (1 - t) * x1 + t * x2;
    y1 = t * y2 + (1 - t) * y1;

    double s = 0;
    if (y2 >= ymax) {
        if (y1 >= ymax) return 0;
        s = -(ymax - y2) / (y2 - y1);
    }
    if (ymin >= y2) {
        if (ymin >= y1) return 0;
        s = -(ymin - y2) / (y2 - y1);
    }
    if (x2 >= xmax) {
        if (x1 >= xmax) return 0;
        s = std::max(s, -(xmax - x2) / (x2 - x1));
    }
    if (xmin >= x2) {
        if (xmin >= x1) return 0;
        s = std::max(s, -(xmin - x2) / (x2 - x1));
    }
    x2 = (1 - s) * x2 + s * x1;
    y2 = (1 - s) * y2 + s * y1;
    return 1;
}

bool DrawPen::ClipToFrame(const WorldFrame& frame, double& x1, double& y1, double& x2, double& y2) {
    if (frame.exact) return zel::ClipClosed(frame, x1, y1, x2, y2);
    return Clip(x1, y1, x2, y2, frame.xmin, frame.ymin, frame.xmax, frame.ymax) != 0;
}

void DrawPen::MoveTo(int x, int y) {
    if (!Dc()) return;
    Dc()->MoveTo(x, y);
    current_ = CPoint(x, y);
}

void DrawPen::LineTo(int x, int y) {
    if (!Dc()) return;
    const Selected selected(*this, *Dc());
    DashWalker(*this, *Dc()).LineTo(CPoint(x, y));
}

void DrawPen::SetWorldPoint(Zel2* obj, double x, double y) {
    world_ = {x, y};
    if (!IsFinite(x, y)) return;
    const CPoint at = obj->F2L(x, y);
    MoveTo(at.x, at.y);
}

void DrawPen::MoveTo(Zel2* obj, double x, double y) {
    SetWorldPoint(obj, x, y);
}

void DrawPen::LineTo(Zel2* obj, double x, double y) {
    const WorldFrame* limits = obj->EnclosingFrame();
    if (!limits) return;
    if (Dc()) {
        const Selected selected(*this, *Dc());
        DashWalker walker(*this, *Dc());
        DrawClipped(walker, *limits, obj, x, y);
    }
    world_ = {x, y};
}

// Draws from the last world point to (x, y), both mapped by `obj`, or by the frame itself when there is no
// object.
void DrawPen::DrawClipped(DashWalker& walker, const WorldFrame& limits, Zel2* obj, double x, double y) {
    if (!IsFinite(x, y) || !IsFinite(world_.x, world_.y)) return;
    double x1 = world_.x, y1 = world_.y, x2 = x, y2 = y;
    if (!ClipToFrame(limits, x1, y1, x2, y2)) return;
    walker.MoveTo(obj ? obj->F2L(x1, y1) : limits.ToLogical(x1, y1));
    walker.LineTo(obj ? obj->F2L(x2, y2) : limits.ToLogical(x2, y2));
}

namespace {

// One axis of a block of points on its way from world to logical coordinates.
template <std::size_t N>
struct AxisBlock {
    std::array<double, N> fraction;  // of the way from one end of the world range to the other
    std::array<int, N> logical;

    void SetFractions(const double* values, std::size_t n, double low, double high) {
        const double range = high - low;
        for (std::size_t i = 0; i < n; ++i) fraction[i] = (values[i] - low) / range;
    }
    // Whether all values lie strictly within the range; those that are no numbers do not. Told by the upper
    // halves of the fractions' bits, which are in order: above that of 0 and below that of 1.
    bool AllInside(std::size_t n) const {
        constexpr std::int64_t kBelowOne = 0x3FEFFFFF;
        std::array<std::uint64_t, N> bits;
        std::memcpy(bits.data(), fraction.data(), n * sizeof(double));
        std::int64_t outside = 0;
        for (std::size_t i = 0; i < n; ++i) {
            const auto upper = static_cast<std::int64_t>(bits[i] >> 32);
            outside |= (upper - 1) | (kBelowOne - upper);
        }
        return outside >= 0;
    }
    // Only for fractions inside: the results lie between the two ends.
    void SetLogical(std::size_t n, double from, double to) {
        const double extent = to - from;
        for (std::size_t i = 0; i < n; ++i) logical[i] = static_cast<int>(from + fraction[i] * extent);
    }
};

}  // namespace

void DrawPen::LineTo(const WorldFrame& frame, const double* x, const double* y, std::size_t n) {
    const zel::SeriesStretch stretch{zel::SeriesValues(x), zel::SeriesValues(y), 0, n};
    LineTo(frame, {&stretch, 1});
}

void DrawPen::LineTo(const WorldFrame& frame, std::span<const zel::SeriesStretch> stretches) {
    if (Dc()) {
        const Selected selected(*this, *Dc());
        SeriesLine(*this, *Dc(), frame).Draw(stretches);
    }
    for (const zel::SeriesStretch& stretch : stretches)
        if (stretch.Size() > 0) world_ = {stretch.X(stretch.end - 1), stretch.Y(stretch.end - 1)};
}

// Where a line begins and ends strictly inside the frame there is nothing to clip, and it begins where the
// pen stands. False, with nothing drawn, when that is not so for all of the lines.
bool DrawPen::DrawBlock(DashWalker& walker, const WorldFrame& frame, const double* x, const double* y,
                        std::size_t n) {
    if (!frame.ContainsStrictly(world_.x, world_.y) ||
        !(frame.ToLogical(world_.x, world_.y) == walker.Current()))
        return false;
    AxisBlock<kBlockPoints> xs, ys;
    xs.SetFractions(x, n, frame.xmin, frame.xmax);
    ys.SetFractions(y, n, frame.ymin, frame.ymax);
    if (!xs.AllInside(n) || !ys.AllInside(n)) return false;
    xs.SetLogical(n, frame.lower.x, frame.upper.x);
    ys.SetLogical(n, frame.lower.y, frame.upper.y);
    walker.LinesTo(xs.logical.data(), ys.logical.data(), n);
    world_ = {x[n - 1], y[n - 1]};
    return true;
}

void DrawPen::Rect(const CRect& rect) {
    if (!Dc()) return;
    MoveTo(rect.left, rect.top);
    const Selected selected(*this, *Dc());
    DashWalker walker(*this, *Dc());
    walker.LineTo({rect.left, rect.bottom});
    walker.LineTo({rect.right, rect.bottom});
    walker.LineTo({rect.right, rect.top});
    walker.LineTo({rect.left, rect.top});
}

void DrawPen::Ellipse(const CRect& rect) {
    if (!Dc()) return;
    const Selected selected(*this, *Dc());
    const int middle = static_cast<int>((static_cast<std::int64_t>(rect.top) + rect.bottom) / 2);
    const CPoint right(rect.right, middle);
    const CPoint left(rect.left, middle);
    const zel::CurveScope figure(Dc());  // the halves are not darker where they meet
    Dc()->Arc(&rect, right, left);
    Dc()->Arc(&rect, left, right);
}

void DrawPen::Serialize(CArchive& ar) {
    ExchangeName(ar);
    zel::Exchange(ar, screen_, print_, style_, width_);
    zel::ExchangeRaw(ar, pattern_.data(), sizeof pattern_);
    if (zel::IsComplete(ar)) zel::Exchange(ar, printer_);
    ExchangeOpacity(ar);
    if (ar.IsLoading()) {
        // An older pen that was open keeps neither its platform pen nor its place in the pattern.
        pen_.reset();
        dashIndex_ = 0;
        dashPosition_ = 0;
    }
}

DrawPenTable& DrawPenTable::operator=(const DrawPenTable& other) {
    CopyFrom(&other);
    return *this;
}

int DrawPenTable::RegisterPen(const char* name, int style, int width, COLORREF scr, COLORREF prn,
                              int* pattern) {
    return Register(new DrawPen(name, style, width, scr, prn, pattern));
}

int DrawPenTable::Edit() {
    const auto& edit = zel::TheToolEditors().pens;
    if (!edit) return DrawToolTable::Edit();
    CDC* const dc = Dc();
    const int scale = OutputScale();
    const int accepted = edit(*this);
    if (dc) {
        Close();
        OpenOn(dc, scale);
    }
    return accepted;
}
