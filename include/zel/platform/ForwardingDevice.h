// Devices that stand for other devices.
#pragma once

#include <zel/platform/GraphicsDevice.h>

#include <algorithm>

namespace zel {

// Hands every call on to a target, `Interface` being GraphicsDevice or DocumentDevice. What a derived class
// overrides is what it does differently: nothing else of the target is lost.
template <class Interface>
class ForwardingDevice : public Interface {
  public:
    int Caps(int index) const override { return Target().Caps(index); }
    int CurveColumn(const GraphicsState& state) const override { return Target().CurveColumn(state); }
    void BeginCurve() override { Target().BeginCurve(); }
    void EndCurve() override { Target().EndCurve(); }

    void Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) override {
        Target().Polyline(state, points, count);
        Drawn(state, {points, count});
    }
    void Polygons(const GraphicsState& state, std::span<const CPoint> points,
                  std::span<const int> counts) override {
        Target().Polygons(state, points, counts);
        Drawn(state, points);
    }
    void FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                  DWORD operation) override {
        Target().FillRect(state, rect, brush, operation);
        DrawnIn(state, rect);
    }
    void FillRects(const GraphicsState& state, std::span<const CRect> rects, const LOGBRUSH& brush) override {
        Target().FillRects(state, rects, brush);
        for (const CRect& rect : rects) DrawnIn(state, rect);
    }
    void DrawPicture(const GraphicsState& state, const CRect& rect, const PictureView& picture) override {
        Target().DrawPicture(state, rect, picture);
        DrawnIn(state, rect);
    }
    void Rectangle(const GraphicsState& state, const CRect& rect) override {
        Target().Rectangle(state, rect);
        DrawnIn(state, rect);
    }
    void RoundRect(const GraphicsState& state, const CRect& rect, const CSize& corner) override {
        Target().RoundRect(state, rect, corner);
        DrawnIn(state, rect);
    }
    void Ellipse(const GraphicsState& state, const CRect& rect) override {
        Target().Ellipse(state, rect);
        DrawnIn(state, rect);
    }
    void Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) override {
        Target().Ellipses(state, places, box);
        DrawnAround(state, places, box);
    }
    void Marks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
               const MarkPainter& paint) override {
        Target().Marks(state, places, box, paint);
        DrawnAround(state, places, box);
    }
    void Arc(const GraphicsState& state, const CRect& rect, const CPoint& start, const CPoint& end,
             ArcKind kind) override {
        Target().Arc(state, rect, start, end, kind);
        DrawnIn(state, rect);
    }
    void StrokeArc(const GraphicsState& state, const EllipticArc& arc) override {
        Target().StrokeArc(state, arc);
        DrawnIn(state, {Truncate(arc.cx - arc.rx - 1), Truncate(arc.cy - arc.ry - 1),
                        Truncate(arc.cx + arc.rx + 1), Truncate(arc.cy + arc.ry + 1)});
    }
    void SetPixel(const GraphicsState& state, const CPoint& point, COLORREF color) override {
        Target().SetPixel(state, point, color);
        Drawn(state, {&point, 1});
    }
    void FillRegion(const GraphicsState& state, const Region& region, const LOGBRUSH& brush) override {
        Target().FillRegion(state, region, brush);
        DrawnIn(state, region.Box());
    }
    // Where text lies, turned text above all, is the font's business.
    void DrawText(const GraphicsState& state, std::span<const TextSpan> spans) override {
        Target().DrawText(state, spans);
        Drawn(state, {});
    }

    CSize TextExtent(const GraphicsState& state, std::string_view text) override {
        return Target().TextExtent(state, text);
    }
    std::vector<int> PrefixExtents(const GraphicsState& state, std::string_view text,
                                   std::span<const std::size_t> ends) override {
        return Target().PrefixExtents(state, text, ends);
    }
    TEXTMETRIC TextMetrics(const GraphicsState& state) override { return Target().TextMetrics(state); }
    COLORREF GetPixel(const CPoint& devicePoint) override { return Target().GetPixel(devicePoint); }
    void Flush() override { Target().Flush(); }

  protected:
    // Borrowed; the same until the derived class says otherwise.
    virtual GraphicsDevice& Target() const = 0;
    // Called after each primitive: pixels may have changed within half a pen's width of the box around these
    // points (logical units), or anywhere when there are none.
    virtual void Drawn(const GraphicsState&, std::span<const CPoint>) {}

  private:
    void DrawnAround(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) {
        if (places.empty()) return;
        CPoint low = places[0], high = places[0];
        for (const CPoint& place : places) {
            low = {std::min(low.x, place.x), std::min(low.y, place.y)};
            high = {std::max(high.x, place.x), std::max(high.y, place.y)};
        }
        CRect ordered = box;
        ordered.NormalizeRect();
        DrawnIn(state, {low + CSize(ordered.left, ordered.top), high + CSize(ordered.right, ordered.bottom)});
    }
    void DrawnIn(const GraphicsState& state, const CRect& rect) {
        const CPoint corners[] = {rect.TopLeft(), rect.BottomRight()};
        Drawn(state, corners);
    }
};

}  // namespace zel
