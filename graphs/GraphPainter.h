// The drawing of one graph.
#pragma once

#include "scales/Labels.h"

#include <zel/DrawFont.h>
#include <zel/Zel2Graph.h>

#include <string>
#include <vector>

class CDC;

// Draws what belongs to the graph itself, from background to labels, for one pass. The graph's mapping must
// be prepared; its own children are drawn by the graph afterwards.
class GraphPainter {
  public:
    explicit GraphPainter(Zel2Graph& graph);
    void Draw();

  private:
    enum class Side { LEFT, RIGHT };
    // How a label stands to its tick.
    struct Anchor {
        unsigned horizontal;
        unsigned vertical;
    };

    void FillBackground();
    void DrawInner();
    void FillMargins();
    void DrawVerticalLines();
    void DrawHorizontalLines();
    void DrawYTicks();
    void DrawXTicks();
    void DrawFrames();
    void DrawFrame(DrawPen* pen, const CPoint (&corners)[4]) const;
    void DrawXLabels();
    void DrawYLabels(Side side);
    bool ShowsYLabels() const;
    unsigned XLabelFlags() const;
    Anchor YLabelAnchor() const;
    Anchor RightLabelAnchor() const;
    unsigned EndFlags(std::size_t label, const Anchor& anchor) const;
    // The labels of a row that are written: with exact rules those that have room.
    std::vector<std::size_t> Shown(const std::vector<double>& values,
                                   const std::vector<zel::LabelPlace>& places) const;
    zel::LabelPlace PlaceOf(const std::string& text, int middle, int angle, int turn) const;

    bool Skips(const DrawColor* color) const;
    void Line(const CPoint& from, const CPoint& to) const;
    static void Run(DrawPen* pen, std::initializer_list<CPoint> points);

    Zel2Graph& g_;
    const CPoint& a_;  // plot area corners in logical units: (xmin, ymin)
    const CPoint& b_;  // (xmin, ymax)
    const CPoint& c_;  // (xmax, ymin)
    const CPoint& d_;  // (xmax, ymax)
    CPoint outer_[4];  // the graph's corners in logical units, clockwise from the lower left
    int xTick_;        // length of the ticks on the x axis, along y
    int yTick_;        // length of the ticks on the y axis, along x
    DrawPen* linePen_;
    DrawPen* framePen_;
    DrawPen* borderPen_;
    DrawColor* frameColor_;
    DrawColor* backgroundColor_;
    DrawFont* font_;
    // Anchor of the labels drawn last, which y labels at odd angles inherit.
    unsigned xFlags_ = 0;
};
