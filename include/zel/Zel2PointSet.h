// Data series in graphs.
#pragma once

#include <zel/SeriesPoints.h>
#include <zel/Zel2.h>
#include <zel/platform/Collections.h>

#include <memory>
#include <vector>

class DrawColor;
class DrawPen;
class DrawSymbol;

// A data series: an area fill, a line and symbols through the points that a derived class supplies, mapped by
// the graph that the series stands in (Zel2Graph::AddIn). A series without points of its own; see
// Zel2PointArray.
//
// Coordinates that are not finite make a gap in the line, have no symbol, and are left out of fills and
// ranges.
class Zel2PointSet : public Zel2 {
    DECLARE_SERIAL(Zel2PointSet)
  public:
    // Where line and fill begin and end, beside the first and last point: straight to an edge, or to a
    // corner.
    enum Extension : unsigned int {
        NO_EXTENSION = 0,
        TOP = 1,
        LEFT = 2,
        BOTTOM = 3,
        RIGHT = 4,
        TOP_LEFT = 5,
        BOTTOM_LEFT = 6,
        TOP_RIGHT = 7,
        BOTTOM_RIGHT = 8,
    };

    Zel2PointSet() = default;
    Zel2PointSet(const Zel2PointSet& other);
    Zel2PointSet& operator=(const Zel2PointSet& other);

    // Indexes into the drawing's tables; -1 for none.
    void SetSymbol(int index, bool onFirst) {
        symbol_ = index;
        symbolOnFirst_ = onFirst;
    }
    int GetSymbol() const { return symbol_; }
    void SetPen(int index) { pen_ = index; }
    int GetPen() const { return pen_; }
    void SetColor(int index) { color_ = index; }
    int GetColor() const { return color_; }
    // Appends the symbol index of one more point. A series with any of these needs one for every point.
    void AddSymbol(int index) { pointSymbols_.Add(static_cast<UINT>(index)); }
    void SetExtension(unsigned int start, unsigned int end) {
        start_ = start;
        end_ = end;
    }
    void GetExtension(unsigned int& start, unsigned int& end) const {
        start = start_;
        end = end_;
    }

    // Widens the graph's range to take in all points, and chooses its scale with at most `n` intervals. A
    // series without points leaves the graph as it is.
    void AdjustXAxis(int n);
    void AdjustYAxis(int n);

    // One layer each: symbols, line, fill.
    void Plot(DrawSymbol* symbol);
    void Plot(DrawPen* pen, unsigned int start, unsigned int end);
    void Plot(DrawColor* color, unsigned int start, unsigned int end);

    void Serialize(CArchive& ar) override;
    unsigned int nCpt() override;
    // Exact rules: places along the line, where a selected series shows marks. They are no handles: nCpt says
    // 0.
    CPoint Cpt(int i) override;
    // Exact rules: the enclosing graph.
    CRect PaintedArea() override;
    // Fill, line, symbols, point symbols. Throws CInvalidArgException* at the first point that has no point
    // symbol when others have.
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    MouseAction OnMouse(const MouseStatus& ms) override;
    // With exact rules 1 within 3 pixels of the line or of a symbol, inside the graph.
    int IsIn(const CPoint& pt) override;

    virtual unsigned int NPoints();
    virtual double X(long i);
    virtual double Y(long i);
    // The arrays behind the points, for series that have them (the set keeps ownership); null otherwise, and
    // then there is no fill.
    virtual std::vector<double>* GetXVec();
    virtual std::vector<double>* GetYVec();

    // The points as they lie in memory, in their order, until the set changes; none for a set that knows its
    // points only one by one. The default returns what GetXVec and GetYVec do, without an index.
    virtual std::vector<zel::SeriesStretch> Stretches();

  private:
    void PlotPointSymbols();
    // Widens a range, if it is one, by the finite values of y or x; false when there is none then.
    bool WidenByPoints(bool vertical, double& from, double& to);
    void DrawMarks();
    // The numbers of points that are marked while the series is selected.
    std::vector<long> MarkedPoints();
    // How far the symbol with an index reaches from its point, in device units; -1 when there is none.
    int SymbolReach(int index);
    std::vector<zel::SeriesStretch> StretchesFrom(unsigned int first);
    template <class Function>
    void ForStretches(Function function, unsigned int first = 0);
    void CopyFields(const Zel2PointSet& other);
    // The enclosing graph's frame; null outside a graph.
    const WorldFrame* GraphFrame();

    int symbol_ = -1;
    int pen_ = -1;
    int color_ = -1;
    unsigned int start_ = 0;
    unsigned int end_ = 0;
    bool symbolOnFirst_ = true;
    CUIntArray pointSymbols_;
};

// A data series that holds its points.
//
// A long series keeps an index of what its stretches cover (2.3 % of the memory of its points), made when it
// is first drawn and extended after Append: drawing it again costs as much as a short one. Handing out the
// arrays for writing (GetXVec, GetYVec) drops the index and does without one, since nobody tells the series
// about later writes through the pointer; SetPoints, Assign, Clear, loading and PointsChanged allow it again,
// after which earlier pointers must not be written through without another PointsChanged. For reading there
// are XValues and YValues.
class Zel2PointArray : public Zel2PointSet {
    DECLARE_SERIAL(Zel2PointArray)
  public:
    Zel2PointArray();
    Zel2PointArray(const Zel2PointArray& other);
    Zel2PointArray& operator=(const Zel2PointArray& other);
    ~Zel2PointArray() override;

    void Append(double x, double y);
    void Clear();
    // Copies both arrays; they should be of one length: the shorter one counts.
    void SetPoints(const std::vector<double>& xs, const std::vector<double>& ys);
    // Takes both arrays over without a copy.
    void SetPoints(std::vector<double>&& xs, std::vector<double>&& ys);
    void Assign(std::vector<float>& xs, std::vector<float>& ys);

    void Serialize(CArchive& ar) override;
    unsigned int NPoints() override;
    double X(long i) override { return xs_[static_cast<std::size_t>(i)]; }
    double Y(long i) override { return ys_[static_cast<std::size_t>(i)]; }
    std::vector<double>* GetXVec() override;
    std::vector<double>* GetYVec() override;
    const std::vector<double>& XValues() const { return xs_; }
    const std::vector<double>& YValues() const { return ys_; }
    // Tells that the host has written through the pointers of GetXVec or GetYVec and is done with it.
    void PointsChanged();

    std::vector<zel::SeriesStretch> Stretches() override;

  private:
    std::unique_ptr<zel::SeriesIndex> index_;  // null until it is needed
    bool handedOut_ = false;
    std::vector<double> xs_;
    std::vector<double> ys_;
};
