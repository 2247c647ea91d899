// The layers of charts that show how values spread: error bars, box plots, candles.
#pragma once

#include <zel/ChartBars.h>

#include <memory>
#include <vector>

// A line with caps from below a value to above it, at each position.
class Zel2ErrorLayer : public Zel2RowLayer {
    DECLARE_SERIAL(Zel2ErrorLayer)
  public:
    Zel2ErrorLayer() : Zel2RowLayer(3) {}
    // `error` to both sides, or `below` and `above`: distances, whose signs do not count. A distance that is
    // absent leaves out its side.
    Zel2ErrorLayer(zel::Column x, zel::Column y, zel::Column error, const zel::ErrorOptions& options = {});
    Zel2ErrorLayer(zel::Column x, zel::Column y, zel::Column below, zel::Column above,
                   const zel::ErrorOptions& options = {});

    // Index of a pen of the drawing; -1 for one of its own.
    void SetPen(int index);
    int GetPen() const { return pen_; }

    void DrawIn(const zel::LayerFrame& frame) override;
    void DescribeAxes(zel::AxisRange& x, zel::AxisRange& y) override;
    void TakeRange(zel::AxisRange& x, zel::AxisRange& y) override;
    bool NeedsMargin() const override { return bars_.empty(); }
    std::vector<std::string> Notes(const zel::Scale& x, const zel::Scale& y) override;
    void DrawKey(const CRect& box) override;
    void SetDefaults() override;
    void Serialize(CArchive& ar) override;

  protected:
    std::optional<CRect> BoxOf(std::size_t item, const zel::OrientedFrame& frame) override;

  private:
    struct Ends {
        double low, high;  // NaN where there is none
    };
    Ends EndsOf(std::size_t row, double value) const;
    // Where a position is drawn, in world coordinates.
    double PlaceOf(double position, const std::optional<Room>& room) const;
    int CapLength();

    int pen_ = -1;
    double lineWidth_ = 0.8;
    double cap_ = 5;
    std::string bars_;
};

// A box plot of each group of values: a box between the quartiles, a line at the median, whiskers to the last
// values within reach, and what lies beyond as points.
class Zel2BoxLayer : public Zel2RowLayer {
    DECLARE_SERIAL(Zel2BoxLayer)
  public:
    Zel2BoxLayer();
    ~Zel2BoxLayer() override;
    // Values with the same text, number or time in `groups` are one group.
    Zel2BoxLayer(zel::Column groups, zel::Column values, const zel::BoxOptions& options = {});

    // The summaries of the groups in order of appearance; made when they are first asked for.
    std::vector<zel::BoxSummary> Summaries();

    void DrawIn(const zel::LayerFrame& frame) override;
    void TakeRange(zel::AxisRange& x, zel::AxisRange& y) override;
    void DrawKey(const CRect& box) override;
    void SetDefaults() override;
    void Serialize(CArchive& ar) override;

  protected:
    std::size_t Items() override;
    std::size_t RowOf(std::size_t item) override;
    std::optional<CRect> BoxOf(std::size_t item, const zel::OrientedFrame& frame) override;
    zel::Datum DatumOf(std::size_t item, const zel::OrientedFrame& frame) override;
    std::optional<std::string> Slot() const override;
    double SlotWidth() const override { return width_; }
    void Forget() override;

  private:
    struct Group;
    struct Shape;
    const std::vector<Group>& Groups();
    // A group on the scales of a frame.
    std::optional<Shape> ShapeOf(const Group& group, const zel::OrientedFrame& frame);
    void DrawLines(const std::vector<Shape>& shapes, const zel::OrientedFrame& frame);
    void DrawOutliers(const zel::OrientedFrame& frame);

    int fill_ = -1, pen_ = -1, median_ = -1, symbol_ = -1;
    double width_ = 0.6;
    double reach_ = 1.5;
    bool notches_ = false;
    bool outliers_ = true;
    double markSize_ = 3;
    std::unique_ptr<std::vector<Group>> groups_;
};

// Candles: a body from the first to the last price of a time, and a wick from the lowest to the highest.
class Zel2CandleLayer : public Zel2RowLayer {
    DECLARE_SERIAL(Zel2CandleLayer)
  public:
    Zel2CandleLayer() : Zel2RowLayer(5) {}
    Zel2CandleLayer(zel::Column times, zel::Column open, zel::Column high, zel::Column low, zel::Column close,
                    const zel::CandleOptions& options = {});

    // Indexes of colours of the drawing; -1 for its own.
    void SetColors(int rising, int falling);

    void DrawIn(const zel::LayerFrame& frame) override;
    void TakeRange(zel::AxisRange& x, zel::AxisRange& y) override;
    void DrawKey(const CRect& box) override;
    void SetDefaults() override;
    void Serialize(CArchive& ar) override;

  protected:
    std::optional<CRect> BoxOf(std::size_t item, const zel::OrientedFrame& frame) override;
    // The closing price.
    zel::Datum DatumOf(std::size_t item, const zel::OrientedFrame& frame) override;
    std::optional<std::string> Slot() const override;
    double SlotWidth() const override { return width_; }

  private:
    int rising_ = -1, falling_ = -1;
    COLORREF fallingColor_ = 0;
    double width_ = 0.7;
};
