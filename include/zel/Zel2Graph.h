// The x/y graph.
#pragma once

#include <zel/Zel2Set.h>

#include <vector>

// A graph: a plot area with a linear world range on each axis, margins around it for labels, lists of world
// values at which it writes labels, draws ticks and grid lines, and an inner set of objects that are plotted
// in the graph's world coordinates (point sets, polygons).
//
// SetCoord makes a graph drawable: before it, nothing at all is drawn. The first draw completes the rest:
// automatic scales where no labels were given, the graph's six tools, a size of 5000 x 4000 and margins of
// 800. Objects added with Add, the set's own operation, stand in the graph's frame and are drawn last.
//
// Units: size, margins and tick settings in world units of the drawing (thousandths of an inch, y up); angles
// in tenths of a degree. Assignments and copies share the children, as those of sets do.
class Zel2Graph : public Zel2Set {
    DECLARE_SERIAL(Zel2Graph)
  public:
    Zel2Graph();
    Zel2Graph(const Zel2Graph& other);
    Zel2Graph& operator=(const Zel2Graph& other);

    // The world values at the left, bottom, right and top edge of the plot area; neither ordered nor checked.
    void SetCoord(double x0, double y0, double x1, double y1);
    void GetFloatRect(double& x0, double& y0, double& x1, double& y1) const;
    // 1 is linear, the only type with automatic scales. Without effect after SetCoord.
    void SetAxisType(int xType, int yType);
    // A negative top, right or bottom margin takes the value of `left`.
    void SetMargins(int left, int top, int right, int bottom);
    void SetGraphSize(const CSize& size);
    void SetLabelAngles(int xAngle, int yAngle);
    // The first switch: everything on the y side; the second: the x labels.
    void LabelY(bool on) { showY_ = on; }
    void LabelX(bool on) { showXLabels_ = on; }
    // Which sides of the two frames are drawn: 1 all but the bottom, 2 left and right, 3 all but the top,
    // others all.
    void SetFrameStyle(int style) { frameStyle_ = style; }
    // Hides the labels on both y sides but keeps ticks and grid lines.
    void HideYLabels(bool hide) { hideYLabels_ = hide; }
    // Tick lengths; negative ones point out of the plot area and move the labels away from it.
    void SetTickLengths(int x, int y);

    void SetXLabels(const std::vector<double>& values) { xLabels_ = values; }
    void SetYLabels(const std::vector<double>& values) { yLabels_ = values; }
    void SetXLines(const std::vector<double>& values) { xLines_ = values; }
    void SetYLines(const std::vector<double>& values) { yLines_ = values; }
    void SetXTicks(const std::vector<double>& values) { xTicks_ = values; }
    void SetYTicks(const std::vector<double>& values) { yTicks_ = values; }
    const std::vector<double>& XLabels() const { return xLabels_; }
    const std::vector<double>& YLabels() const { return yLabels_; }
    const std::vector<double>& XTicks() const { return xTicks_; }
    const std::vector<double>& YTicks() const { return yTicks_; }
    const std::vector<double>& YRLabels() const { return yRightLabels_; }
    const std::vector<double>& AuxX() const { return auxX_; }
    const std::vector<double>& AuxY() const { return auxY_; }

    // Percentages from `a` to `b`, printed at the y ticks on the right-hand side; none when a equals b or
    // when there are no y ticks.
    void SetYRLabels(double a, double b);
    // Automatic positions for a second coordinate system along the graph; the graph's own range stays. A
    // negative `ny` takes the value of `nx`.
    void SetAuxCS(double x0, double y0, double x1, double y1, int nx, int ny);
    // Sets the range and chooses labels, grid lines and ticks with at most `n` intervals; `fit` widens the
    // range to the first and last label.
    void AdjustXAxis(double a, double b, int n, int fit);
    void AdjustYAxis(double a, double b, int n, int fit);
    // Automatic scales where there are no labels, and the graph's six tools. Answers true.
    bool SetDefault(bool fitX, bool fitY);

    // Chooses a step of 1, 2 or 5 times a power of ten so that at most `n` intervals cover a..b (either
    // order). Answers 0 for an empty range or one that cannot be divided (an end or the width is not finite,
    // the step underflows); `lo`, `hi` are the range widened to multiples of `step`, `count` the intervals
    // between them.
    static int AutoInt(double a, double b, int n, double& lo, double& hi, double& step, int& count);
    // Appends the positions of the scale to `out`. False, with nothing appended, for axis types other than 1
    // and for empty ranges. A scale whose last position is within 1e-10 of 0 becomes 0, 0.25 .. 1 (a classic
    // rule).
    static bool AutoCoord(int type, double a, double b, int n, std::vector<double>& out);
    // With exact rules that list is never put in, and each position is a multiple of the step, free of the
    // rounding that adding up leaves.
    static bool AutoCoord(int type, double a, double b, int n, std::vector<double>& out, ZelRules rules);
    // Maps x linearly from a..b to p0..p1, truncated towards zero.
    static int Coord(double x, double a, double b, int p0, int p1, int type);

    // Adds an object to the inner set, which owns it; answers its index.
    int AddIn(Zel2* obj);
    // Removes and deletes an object of the inner set.
    void DelIn(Zel2* obj);
    // The inner set, for walking over the plotted objects.
    Zel2Set& Inner() { return inner_; }

    // World to logical coordinates, by the corners of the last PrepareMapping.
    int X(double x) const { return frame_.ToLogical(x, frame_.ymin).x; }
    int Y(double y) const { return frame_.ToLogical(frame_.xmin, y).y; }
    CPoint F2L(double x, double y) override;
    // World coordinates to drawing units from the root, by size and margins.
    CPoint F2R(double x, double y) override;
    // The inverse, in the graph's own frame, in place.
    void R2F(double& x, double& y) const;
    void R2F(float* x, float* y) const;
    // Computes the corners of the plot area; answers 1.
    int PrepareMapping();

    void Serialize(CArchive& ar) override;
    void OpenOn(CDC* dc, int scale) override;
    void Close() override;
    int IsClass(int code) override;
    const WorldFrame* Frame() override { return &frame_; }
    CSize Size() override { return size_; }
    void SetSize(const CSize& size) override { SetGraphSize(size); }
    int PrintedHeight() override;
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    // With exact rules the handles are the graph's corners, and dragging one sizes the graph.
    unsigned int nCpt() override;
    CPoint Cpt(int i) override;
    void Drag(int corner, CPoint pt) override;
    // With exact rules what is neither a series nor another child is the graph itself.
    MouseAction OnMouse(const MouseStatus& ms) override;

  protected:
    Zel2* GetSelectableAt(const CPoint& pt) override;

  private:
    friend class GraphPainter;

    struct Margins {
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
    };
    struct Range {
        double min = 0;
        double max = 0;
    };
    // In the order (xmin, ymin), (xmin, ymax), (xmax, ymin), (xmax, ymax).
    using Corners = CPoint[4];
    enum ToolKind { BORDER_PEN, FRAME_PEN, GRID_PEN, FRAME_COLOR, BACKGROUND_COLOR, AXIS_FONT, TOOL_COUNT };

    void CopyFields(const Zel2Graph& other);
    void AdjustAxis(Range& range, BYTE type, double a, double b, int n, int fit, std::vector<double>& labels,
                    std::vector<double>& lines, std::vector<double>& ticks);
    void SetRanges(const Range& x, const Range& y);
    CPoint InnerOrigin() const { return {margins_.left, margins_.bottom}; }
    void ExchangeCorners(CArchive& ar, Corners& corners);

    Zel2Set inner_;
    CSize size_;
    Margins margins_;
    Range x_;
    Range y_;
    Range setX_;  // as SetCoord was given them
    Range setY_;
    std::vector<double> xLabels_;
    int xLabelAngle_ = 0;
    std::vector<double> yLabels_;
    int yLabelAngle_ = 0;
    bool showY_ = true;
    bool showXLabels_ = true;
    int frameStyle_ = 0;
    int printStyle_ = 0;
    std::vector<double> spareLabels_;
    int spareLabelAngle_ = 0;
    std::vector<double> yRightLabels_;
    int yRightLabelAngle_ = 0;
    std::vector<double> xLines_;
    std::vector<double> yLines_;
    bool hideYLabels_ = false;
    std::vector<double> xTicks_;
    std::vector<double> auxX_;
    int xTick_ = -60;
    std::vector<double> yTicks_;
    std::vector<double> auxY_;
    int yTick_ = -60;
    BYTE xType_ = 1;
    BYTE yType_ = 1;
    int tools_[TOOL_COUNT] = {};
    Corners relative_;
    Corners logical_;
    int coordSet_ = 0;
    int sizeSet_ = 0;
    int spareFlag_ = 0;
    int marginsSet_ = 0;
    int defaultsApplied_ = 0;
    WorldFrame frame_;  // ranges and logical corners together, for conversions
};
