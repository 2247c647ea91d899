#include "core/ArchiveFields.h"
#include "series/LonePoints.h"
#include "series/ThinnedPath.h"

#include <zel/ChartLayers.h>
#include <zel/DrawPen.h>
#include <zel/Mapping.h>
#include <zel/Zel2Chart.h>

#include <algorithm>
#include <cmath>
#include <numeric>

IMPLEMENT_SERIAL(Zel2LineLayer, Zel2XYLayer, 0)

namespace {

constexpr std::size_t kBlock = 1024;

// The corners of a stepped line, a block of points at a time.
class Steps {
  public:
    Steps(DrawPen& pen, const WorldFrame& frame, zel::Step step) : pen_(pen), frame_(frame), step_(step) {}
    void Add(double x, double y) {
        if (!xs_.empty() && std::isfinite(xs_.back()) && std::isfinite(x)) {
            const double before = ys_.back();
            if (step_ == zel::Step::AFTER) Put(x, before);
            if (step_ == zel::Step::BEFORE) Put(xs_.back(), y);
            if (step_ == zel::Step::MIDDLE) {
                const double middle = (xs_.back() + x) / 2;
                Put(middle, before);
                Put(middle, y);
            }
        }
        Put(x, y);
        if (xs_.size() >= kBlock) Draw();
    }
    // The next block goes on from the last corner.
    void Draw() {
        if (xs_.empty()) return;
        pen_.LineTo(frame_, xs_.data(), ys_.data(), xs_.size());
        xs_.erase(xs_.begin(), xs_.end() - 1);
        ys_.erase(ys_.begin(), ys_.end() - 1);
    }

  private:
    void Put(double x, double y) {
        xs_.push_back(x);
        ys_.push_back(y);
    }
    DrawPen& pen_;
    const WorldFrame& frame_;
    const zel::Step step_;
    std::vector<double> xs_, ys_;
};

}  // namespace

Zel2LineLayer::Zel2LineLayer(zel::Column x, zel::Column y, const zel::LineOptions& options)
    : Zel2XYLayer(options, std::move(x), std::move(y)),
      width_(options.width),
      dash_(options.dash),
      step_(options.step) {}

void Zel2LineLayer::SetPen(int index) {
    pen_ = index;
    Changed();
}

void Zel2LineLayer::SetStep(zel::Step step) {
    step_ = step;
    Changed();
}

void Zel2LineLayer::SetDefaults() {
    if (pen_ >= 0) return;
    const zel::LineOptions usual;
    const bool plain = !HasOwnColor() && Opacity() == 1 && dash_ == usual.dash && width_ == usual.width;
    if (plain && Chart()) {
        pen_ = Chart()->PalettePen(PaletteEntry());
        return;
    }
    pen_ = RegisterOwnPen(width_, dash_);
}

void Zel2LineLayer::DrawIn(const zel::LayerFrame& frame) {
    DrawPen* const pen = Pen(pen_);
    if (!pen) return;
    const std::vector<zel::SeriesStretch> stretches = Stretches(frame);
    // The first point follows a gap.
    pen->SetWorldPoint(nullptr, std::nan(""), 0);
    // A line needs two points; one without a neighbour is a small cross.
    constexpr int kArm = 16;  // world units
    const CSize arm = Map()->ToDevice(CSize(kArm, kArm));
    zel::ForLonePoints(stretches, [&](double x, double y) {
        if (!frame.world.Contains(x, y)) return;
        const CPoint at = frame.world.ToLogical(x, y);
        pen->MoveTo(zel::Subtract(at.x, arm.cx), at.y);
        pen->LineTo(zel::Add(at.x, arm.cx), at.y);
        pen->MoveTo(at.x, zel::Subtract(at.y, arm.cy));
        pen->LineTo(at.x, zel::Add(at.y, arm.cy));
    });
    if (step_ == zel::Step::NONE) {
        pen->LineTo(frame.world, stretches);
        return;
    }
    Steps steps(*pen, frame.world, step_);
    // Of the points in one column of the device those that can be seen make the same steps.
    const int width = DC() && pen->Style() == DrawPen::SOLID ? DC()->CurveColumn() : 0;
    if (width > 0) {
        zel::DeviceColumns columns(*DC(), frame.world, width);
        zel::ThinnedPath path(&columns, zel::ThinnedPath::Gaps::BREAK);
        for (const zel::SeriesStretch& stretch : stretches) path.Add(stretch);
        path.Finish();
        auto run = path.runs.begin();
        for (std::size_t i = 0; i < path.x.size(); ++i) {
            if (run != path.runs.end() && *run == i) {
                steps.Add(std::nan(""), 0);
                ++run;
            }
            steps.Add(path.x[i], path.y[i]);
        }
    } else {
        for (const zel::SeriesStretch& stretch : stretches)
            for (std::size_t i = stretch.begin; i < stretch.end; ++i) steps.Add(stretch.X(i), stretch.Y(i));
    }
    steps.Draw();
}

void Zel2LineLayer::DrawKey(const CRect& box) {
    DrawPen* const pen = Pen(pen_);
    if (!pen) return;
    const int y = std::midpoint(box.top, box.bottom);
    pen->MoveTo(box.left, y);
    pen->LineTo(box.right, y);
}

void Zel2LineLayer::Serialize(CArchive& ar) {
    Zel2XYLayer::Serialize(ar);
    int dash = static_cast<int>(dash_), step = static_cast<int>(step_);
    zel::Exchange(ar, pen_, width_, dash, step);
    if (ar.IsStoring()) return;
    dash_ = static_cast<zel::Dash>(std::clamp(dash, 0, 4));
    step_ = static_cast<zel::Step>(std::clamp(step, 0, 3));
}
