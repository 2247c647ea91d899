// The layers of charts that draw points of two columns: lines, areas, marks.
#pragma once

#include <zel/ColorKey.h>
#include <zel/Column.h>
#include <zel/Zel2Layer.h>
#include <zel/Zel2PointSet.h>

#include <cstdint>
#include <memory>
#include <span>

namespace zel {
class ScaleValues;
}

// A layer over x and y, from two columns or from a series (Zel2PointArray, Zel2PointView, Zel2PointRing,
// Zel2DaoPointSet). Long data keep an index (see Zel2PointArray), made when they are first drawn.
class Zel2XYLayer : public Zel2Layer {
    DECLARE_DYNAMIC(Zel2XYLayer)
  public:
    ~Zel2XYLayer() override;

    const zel::Column& X() const { return x_; }
    const zel::Column& Y() const { return y_; }
    // Columns of different lengths end with the shorter one.
    void SetData(zel::Column x, zel::Column y);
    // Draws the points of a series, of which the layer takes ownership; its own tools play no part.
    void SetSource(std::unique_ptr<Zel2PointSet> source);
    Zel2PointSet* Source() const { return source_.get(); }
    // Tells that borrowed memory or the series has other points now.
    void DataChanged();

    void DescribeAxes(zel::AxisRange& x, zel::AxisRange& y) override;
    void TakeRange(zel::AxisRange& x, zel::AxisRange& y) override;
    std::optional<zel::Datum> Nearest(const CPoint& device, double reach) override;
    std::vector<std::pair<double, double>> Sample(const zel::Scale& x, const zel::Scale& y,
                                                  std::size_t most) override;
    std::size_t Rows() const override;
    // Points of borrowed memory and of series are stored; what is loaded owns them.
    void Serialize(CArchive& ar) override;

  protected:
    Zel2XYLayer();
    Zel2XYLayer(const zel::LayerOptions& options, zel::Column x, zel::Column y);
    Zel2XYLayer(const Zel2XYLayer&) = delete;
    Zel2XYLayer& operator=(const Zel2XYLayer&) = delete;

    // The points as the frame's world coordinates have them. They look at the frame.
    std::vector<zel::SeriesStretch> Stretches(const zel::LayerFrame& frame);
    // The points on two scales, times counted from the scales' origins, untransformed.
    std::vector<zel::SeriesStretch> StretchesOn(const zel::Scale& x, const zel::Scale& y);
    // Makes stretches go through the transforms of a frame.
    static void Transform(std::vector<zel::SeriesStretch>& stretches, const zel::LayerFrame& frame);

  private:
    zel::Column x_, y_;
    std::unique_ptr<Zel2PointSet> source_;
    std::unique_ptr<zel::SeriesIndex> index_;
    std::unique_ptr<zel::ScaleValues> onX_, onY_;
};

// A line from point to point, or in steps.
class Zel2LineLayer : public Zel2XYLayer {
    DECLARE_SERIAL(Zel2LineLayer)
  public:
    Zel2LineLayer() = default;
    Zel2LineLayer(zel::Column x, zel::Column y, const zel::LineOptions& options = {});

    // Index of a pen of the drawing; -1 for one of its own.
    void SetPen(int index);
    int GetPen() const { return pen_; }
    zel::Step GetStep() const { return step_; }
    void SetStep(zel::Step step);

    void DrawIn(const zel::LayerFrame& frame) override;
    void DrawKey(const CRect& box) override;
    void SetDefaults() override;
    void Serialize(CArchive& ar) override;

  private:
    int pen_ = -1;
    double width_ = 1.2;
    zel::Dash dash_ = zel::Dash::SOLID;
    zel::Step step_ = zel::Step::NONE;
};

// The area between a series and a baseline, between two series, or on top of the areas before it.
class Zel2AreaLayer : public Zel2XYLayer {
    DECLARE_SERIAL(Zel2AreaLayer)
  public:
    Zel2AreaLayer();
    ~Zel2AreaLayer() override;
    Zel2AreaLayer(zel::Column x, zel::Column y, const zel::AreaOptions& options = {});
    // Between `low` and `high`, whichever is larger.
    Zel2AreaLayer(zel::Column x, zel::Column low, zel::Column high, const zel::AreaOptions& options = {});

    // Index of a colour of the drawing; -1 for one of its own.
    void SetColor(int index);
    int GetColor() const { return colorIndex_; }
    double Baseline() const { return baseline_; }
    bool IsStacked() const { return stacked_; }

    void DrawIn(const zel::LayerFrame& frame) override;
    void TakeRange(zel::AxisRange& x, zel::AxisRange& y) override;
    std::optional<double> Included(Coordinate coordinate) const override;
    void SetDefaults() override;
    void DrawKey(const CRect& box) override;
    void Serialize(CArchive& ar) override;

  private:
    struct Edges;
    void MakeEdges();

    int colorIndex_ = -1;
    double baseline_ = 0;
    bool stacked_ = false;
    bool between_ = false;
    zel::Column low_;
    std::unique_ptr<Edges> edges_;
};

// A mark at each point.
class Zel2PointLayer : public Zel2XYLayer {
    DECLARE_SERIAL(Zel2PointLayer)
  public:
    Zel2PointLayer() = default;
    Zel2PointLayer(zel::Column x, zel::Column y, const zel::PointOptions& options = {});

    // Index of a symbol of the drawing; -1 for one of its own.
    void SetSymbol(int index);
    int GetSymbol() const { return symbol_; }

    void DrawIn(const zel::LayerFrame& frame) override;
    bool NeedsMargin() const override { return true; }
    void DrawKey(const CRect& box) override;
    void SetDefaults() override;
    void Serialize(CArchive& ar) override;

  private:
    int symbol_ = -1;
    double size_ = 5;
    std::optional<zel::SymbolKind> shape_;
};

// A disc at each point, with a size and a colour by two more columns. Large marks lie behind small ones, and
// those of low values behind those of high ones.
class Zel2BubbleLayer : public Zel2XYLayer {
    DECLARE_SERIAL(Zel2BubbleLayer)
  public:
    Zel2BubbleLayer();
    Zel2BubbleLayer(zel::Column x, zel::Column y, const zel::BubbleOptions& options = {});

    // How numbers become colours.
    zel::ColorKey& Key() { return key_; }

    void DrawIn(const zel::LayerFrame& frame) override;
    bool NeedsMargin() const override { return true; }
    std::vector<std::string> Notes(const zel::Scale& x, const zel::Scale& y) override;
    void BlockLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) override;
    zel::ColorKey* ColorBar() override;
    void DrawKey(const CRect& box) override;
    // Categories of colours and round sizes.
    std::vector<std::string> KeyParts() override;
    void DrawKeyPart(std::size_t part, const CRect& box) override;
    int KeyHeight() const override;
    void SetDefaults() override;
    std::size_t Rows() const override;
    void Serialize(CArchive& ar) override;

  private:
    void Fit();
    std::optional<std::size_t> ColorStep(std::size_t row) const;
    std::optional<std::size_t> SizeStep(std::size_t row) const;
    COLORREF ColorOfStep(std::size_t step);
    // In logical units, for a share of the largest one.
    int DiameterOf(double share);
    void PlotDiscs(std::span<const CPoint> places, int diameter, COLORREF ink);
    std::vector<double> SizesInLegend() const;

    zel::Column sizes_, colors_;
    int colorIndex_ = -1;
    double size_ = 5;
    zel::ColorKey key_;
    std::uint64_t fitted_ = 0;  // the revision of the chart and 1; 0 for never
    double largest_ = 0;
    std::size_t notPositive_ = 0;
};

// A text at each point, beside it where there is room: texts never overlap each other, marks or bars. One for
// which there is none is left out.
class Zel2TextLayer : public Zel2XYLayer {
    DECLARE_SERIAL(Zel2TextLayer)
  public:
    Zel2TextLayer() = default;
    Zel2TextLayer(zel::Column x, zel::Column y, zel::Column texts, const zel::TextOptions& options = {});

    void DrawIn(const zel::LayerFrame&) override {}
    bool NeedsMargin() const override { return true; }
    bool HasLabels() const override { return true; }
    void BlockLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) override;
    void DrawLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) override;
    void Serialize(CArchive& ar) override;

  private:
    zel::Column texts_;
    double distance_ = 4;
};
