// Scale axes that are rectangles.
#pragma once

#include <zel/Zel2Rect.h>
#include <zel/platform/String.h>

#include <array>
#include <vector>

namespace zel {
struct LabelPlace;
}

// A scale along one side of a rectangle: a range of values mapped onto its width or height, ticks, labels and
// a title along it, and grid lines across another object's rectangle. The base of the horizontal and the
// vertical axis, which differ in direction only. An axis draws nothing before SetCoord.
//
// The scale completes itself at every draw: without labels it chooses them, widens the range to the first and
// last of them, and takes them as ticks and grid lines, each as far as its switch is on. With classic rules
// labels once chosen stay, and with them the first range. With exact rules they follow a new range, and
// choosing them replaces nothing that was set: the range is widened only to labels of one's own and by
// Adjust, and ticks and lines that were set stay until they are set to none. Labels that would overlap are
// left out then.
//
// Units: tick length, title offset and size in world units of the drawing; angles in tenths of a degree.
// Classic archives hold an axis as a rectangle.
class Zel2ScaleAxis : public Zel2Rect {
  public:
    // The range at the start and at the end of the axis.
    void SetCoord(double min, double max);
    void GetCoord(double& min, double& max) const;
    bool HasCoord() const { return rangeSet_ != 0; }
    // 1 is linear, the only type with automatic labels.
    void SetType(int type);
    int GetType() const { return type_; }
    // `side` not 0: an axis below (to the left of) what it measures, its ticks and labels at the edge there
    // and its title at the far edge; 0: one above (to the right).
    void SetAxisType(int type, int side);
    int GetSide() const { return side_; }
    void SetLabelAngle(int angle) { labelAngle_ = angle; }
    // `offset`: from the far edge of the axis towards its labels.
    void SetTitle(const char* text, int offset);
    // Negative: drawn by OnDraw into the axis; positive: drawn by OnDrawInRectangle into what it measures.
    void SetTickLength(int length) { tickLength_ = length; }
    // The names under which the tools are looked up, and registered when they are not there.
    void SetLabelFontName(const char* name) { names_[LABEL_FONT] = name; }
    void SetTitleFontName(const char* name) { names_[TITLE_FONT] = name; }
    void SetTicksPenName(const char* name) { names_[TICKS_PEN] = name; }
    void SetLinesPenName(const char* name) { names_[LINES_PEN] = name; }

    // Copy `n` values; null or an `n` below 1 for none.
    void SetTicks(const double* values, int n);
    void SetLines(const double* values, int n);
    // Labels of one's own; an empty list lets the axis choose them.
    void SetLabels(const std::vector<double>& values);
    const std::vector<double>& Labels() const { return labels_; }
    const std::vector<double>& Ticks() const { return ticks_; }
    const std::vector<double>& Lines() const { return lines_; }
    // Whether the range is widened to the labels, and whether grid lines and ticks are taken from them.
    void SetFit(bool fit) { fit_ = fit; }
    void SetLinesFromLabels(bool on) { linesFromLabels_ = on; }
    void SetTicksFromLabels(bool on) { ticksFromLabels_ = on; }
    // Sets the range and chooses labels for it with at most `n` intervals; it is widened to the first and the
    // last of them.
    void Adjust(double a, double b, int n);
    // Exact rules: whether labels stay between the ends of the axis, because others stand beyond the start or
    // the end. Not stored.
    void KeepInside(bool atStart, bool atEnd);
    // Takes over range and type, and with `labels` the labels too.
    void CopyScale(const Zel2ScaleAxis& other, bool labels);

    // Stores the size and tells nobody.
    void SetSize(const CSize& size) override;
    // Completes the scale; 0 when there are no labels and none can be chosen.
    int SetContents();
    // Finds or registers the four tools. Every name, the fonts' too, is looked up among the pens first.
    int SetTools();
    // Completes scale and tools and notes where the ends of the axis lie; false while there is nothing to
    // draw.
    bool Prepare();
    // The logical coordinate of a value, by the ends of the last layout, truncated towards zero.
    int Position(double v) const;

    void Serialize(CArchive& ar) override;
    void OnDraw() override;
    // Ticks of positive length, and the grid lines across the rectangle of `area`.
    void OnDrawInRectangle(Zel2* area);
    // Either alone; the scale was prepared.
    void DrawInnerTicks();
    void DrawLines(Zel2& area);

  protected:
    Zel2ScaleAxis();

    // The logical rectangle from the object's lower left corner to its upper right one.
    virtual CRect LogicalBox() = 0;
    struct Ends {
        LONG start = 0;
        LONG end = 0;
    };
    virtual Ends EndsOf(const CRect& box) const = 0;
    virtual int IntervalCount() = 0;
    virtual int Extent() = 0;
    // The drawing operations: `at` runs along the axis; `edge` is where ticks and labels start, and `into`
    // the direction (1 or -1 in logical coordinates) from there into the axis.
    struct Edge {
        LONG edge = 0;
        int into = 0;
        LONG farEdge = 0;
    };
    virtual Edge EdgeOf(const CRect& box) const = 0;
    virtual CPoint At(LONG along, LONG across) const = 0;
    virtual unsigned LabelFlags(int gap) = 0;
    // How much of the axis a label takes whose lines have this extent.
    virtual double LabelRoom(const CSize& extent) const = 0;
    virtual int TitleAngle() const = 0;
    virtual void LineAcross(DrawPen& pen, LONG along, const CRect& area) const = 0;
    virtual LONG MiddleOf(const CRect& box) const = 0;

    int F2ROffset(double v);
    int LabelAngle() const { return labelAngle_; }

  private:
    enum ToolKind { LINES_PEN, TICKS_PEN, LABEL_FONT, TITLE_FONT, TOOL_COUNT };

    // Whether labels take the place of what was there, which exact rules keep if the host has set it.
    bool Replaces(bool switchedOn, bool wasSet);
    bool ChooseLabels();
    void FitToLabels();
    // Moves a label away from ends that it must not cross.
    void PutInside(zel::LabelPlace& place) const;
    int AddPen(const char* name, unsigned long color);
    void DrawTicks(const Edge& edge, int length);
    void DrawLabels(const Edge& edge, int tick);
    void DrawTitle(const Edge& edge, const CRect& box);
    int Gap(int worldUnits);
    int TickInLogicalUnits();

    double min_ = 0;
    double max_ = 0;
    int type_ = 1;
    int labelAngle_ = 0;
    int tickLength_ = -60;
    int titleOffset_ = 0;
    Ends ends_;
    std::array<int, TOOL_COUNT> tools_ = {-1, -1, -1, -1};
    std::vector<double> labels_;
    std::vector<double> ticks_;
    std::vector<double> lines_;
    int side_ = 1;
    int rangeSet_ = 0;
    bool fit_ = true;
    bool linesFromLabels_ = true;
    bool ticksFromLabels_ = true;
    bool ownLines_ = false;  // set by the host, not taken from labels
    bool ownTicks_ = false;
    bool insideAtStart_ = false;
    bool insideAtEnd_ = false;
    bool labelsChosen_ = false;  // by the axis, for the range it had then
    CString title_;
    std::array<CString, TOOL_COUNT> names_ = {"Graph Horizontal Lines", "Graph Ticks Pen", "Graph Axis Label",
                                              "Graph Axis Title"};
};

class Zel2HAxis : public Zel2ScaleAxis {
    DECLARE_DOCUMENT_CLASS(Zel2HAxis)
  public:
    // The logical x of a value.
    int X(double v) const { return Position(v); }
    // The distance of a value from the axis's own origin, in world units, truncated towards zero.
    int F2R(double v) { return F2ROffset(v); }
    using Zel2::F2R;

  protected:
    CRect LogicalBox() override;
    Ends EndsOf(const CRect& box) const override { return {box.left, box.right}; }
    int IntervalCount() override;
    int Extent() override { return Size().cx; }
    Edge EdgeOf(const CRect& box) const override;
    CPoint At(LONG along, LONG across) const override { return {along, across}; }
    unsigned LabelFlags(int gap) override;
    double LabelRoom(const CSize& extent) const override;
    int TitleAngle() const override { return 0; }
    void LineAcross(DrawPen& pen, LONG along, const CRect& area) const override;
    LONG MiddleOf(const CRect& box) const override;
};

class Zel2VAxis : public Zel2ScaleAxis {
    DECLARE_DOCUMENT_CLASS(Zel2VAxis)
  public:
    // The logical y of a value.
    int Y(double v) const { return Position(v); }
    int F2R(double v) { return F2ROffset(v); }
    using Zel2::F2R;
    // Widens the rectangle in which the axis lies: to the left, above and below; a negative margin above or
    // below takes the value of `left`.
    void SetMargins(int left, int above, int below);
    void Serialize(CArchive& ar) override;
    // Back to the margins that an axis without any takes when it is drawn: 800 on the left.
    void ClearMargins() { marginsSet_ = 0; }

  protected:
    CRect LogicalBox() override;
    // The larger one first: values grow upwards.
    Ends EndsOf(const CRect& box) const override;
    int IntervalCount() override;
    int Extent() override { return Size().cy; }
    Edge EdgeOf(const CRect& box) const override;
    CPoint At(LONG along, LONG across) const override { return {across, along}; }
    unsigned LabelFlags(int gap) override;
    double LabelRoom(const CSize& extent) const override;
    int TitleAngle() const override { return 900; }
    void LineAcross(DrawPen& pen, LONG along, const CRect& area) const override;
    LONG MiddleOf(const CRect& box) const override;

  private:
    struct Margins {
        int left = 0;
        int above = 0;
        int below = 0;
    };
    Margins margins_;
    int marginsSet_ = 1;
};
