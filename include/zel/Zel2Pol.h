// Polygons.
#pragma once

#include <zel/Zel2.h>

#include <vector>

// A polygon that is filled and then outlined, the outline left open. Where its points come from is for the
// derived class to say. Several rings may follow one another, each ending where it began; with classic rules
// only such rings are filled, with exact rules an open one is closed for the fill.
class Zel2Pol : public Zel2 {
    DECLARE_SERIAL(Zel2Pol)
  public:
    Zel2Pol() = default;
    // `parent` is noted, not told. Tool indexes, -1 for no outline or no fill.
    Zel2Pol(Zel2* parent, int pen, int color);

    void SetPen(int pen) { pen_ = pen; }
    void SetColor(int color) { color_ = color; }
    int GetPen() const { return pen_; }
    int GetColor() const { return color_; }

    void Serialize(CArchive& ar) override;
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    virtual unsigned int NPoints();
    // A point in logical coordinates.
    virtual CPoint LogPoint(int i);

  protected:
    // Whether point `i` has a place at all; one that has none is left out.
    virtual bool HasPlace(int i);

  private:
    void Fill(DrawColor& color, const std::vector<CPoint>& points);

    int pen_ = -1;
    int color_ = -1;
};

// A polygon in the world values of what it stands in (a graph's inner set, a coordinate system).
class Zel2PolGraph : public Zel2Pol {
    DECLARE_SERIAL(Zel2PolGraph)
  public:
    struct Dim2 {
        double x;
        double y;
    };

    Zel2PolGraph() = default;
    Zel2PolGraph(Zel2* parent, int pen, int color) : Zel2Pol(parent, pen, color) {}

    // Copies the points; they are kept in single precision. Without arrays, or with an `n` below 1, none.
    void DefinePoints(const float* xs, const float* ys, int n);
    void DefinePoints(const std::vector<Dim2>& points);

    void Serialize(CArchive& ar) override;
    unsigned int NPoints() override { return static_cast<unsigned int>(x_.size()); }
    // (0, 0) without a parent and for an index out of range.
    CPoint LogPoint(int i) override;

  protected:
    // Values that are no numbers have no place.
    bool HasPlace(int i) override;

  private:
    bool Has(int i) const { return i >= 0 && static_cast<std::size_t>(i) < x_.size(); }

    std::vector<float> x_;
    std::vector<float> y_;
};
