// Coordinate systems.
#pragma once

#include <zel/Zel2HAxis.h>
#include <zel/Zel2Set.h>

#include <memory>

// A rectangle with a horizontal and a vertical axis of its own, which map world values to places in it, and
// three sets of objects: the first two are drawn behind frame and axes (the second first), the third before
// them. Lighter than a graph: no margins, nothing chosen automatically but the axes' labels. Several of them
// make a stack (Zel2StackGraph).
//
// With classic rules the content is drawn by the axis ends of the draw before, and only objects that ask
// their parent where a value lies find their places. With exact rules the axes are laid out first, the
// content is clipped to the rectangle, point sets can stand in it as in a graph, the axes follow the size of
// the rectangle, and ShowAxes has effect. World units; classic archives hold it as a rectangle.
class Zel2CoordSys : public Zel2Rect {
    DECLARE_DOCUMENT_CLASS(Zel2CoordSys)
  public:
    // Ranges of 0 to 100.
    Zel2CoordSys();
    // The ranges and types of both axes; `pen` frames and `color` fills the rectangle, -1 for none. The axes
    // are as long as the distance of the corners, one unit less than the rectangle, which includes both.
    Zel2CoordSys(double x0, double y0, double x1, double y1, const CRect& r, int xType, int yType, int pen,
                 int color);
    // A copy has axes and contents of its own; contents are copied as zel::DeepCopy does. Throws
    // zel::FormatError for a content of a class that cannot be stored.
    Zel2CoordSys(const Zel2CoordSys& other);
    Zel2CoordSys& operator=(const Zel2CoordSys& other);
    ~Zel2CoordSys() override;

    Zel2HAxis* HAxis() { return &hAxis_; }
    Zel2VAxis* VAxis() { return &vAxis_; }
    void SetCoord(double x0, double y0, double x1, double y1);
    void SetAxisType(int xType, int yType);
    // The content sets 1 to 3 (owned here); null for another number.
    Zel2Set* ContentSet(int number);
    // Exact rules: whether the axes draw ticks, labels and titles of their own. In a stack the stack does.
    void ShowAxes(bool show) { showAxes_ = show; }
    // Set by a stack that draws the axes. Not stored.
    void ShareAxes(bool shared) { axesShared_ = shared; }

    CPoint F2L(double x, double y) override;
    // From the rectangle's own origin, in world units.
    CPoint F2R(double x, double y) override;
    // Sets the position and tells nobody.
    void MoveTo(const CPoint& p) override;
    using Zel2::MoveTo;
    void Serialize(CArchive& ar) override;
    void OnDraw() override;
    void OnResize() override;
    void OpenOn(CDC* dc, int scale) override;
    void Close() override;
    const WorldFrame* Frame() override;

  private:
    void Adopt();
    void DrawContent();
    void CopyContents(const Zel2CoordSys& other);
    // Calls `draw`, clipped to the rectangle with exact rules.
    template <class Draw>
    void Clipped(const CRect& box, Draw draw);

    Zel2VAxis vAxis_;
    Zel2HAxis hAxis_;
    std::unique_ptr<Zel2Set> contents_[3];
    bool showAxes_ = false;
    bool axesShared_ = false;
    WorldFrame frame_;
};
