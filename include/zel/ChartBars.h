// The layers of charts that stand on positions and reach to values: bars and histograms.
#pragma once

#include <zel/Column.h>
#include <zel/Zel2Layer.h>

#include <memory>
#include <unordered_map>
#include <vector>

namespace zel {
class OrientedFrame;
class ScaleValues;
}  // namespace zel

// A layer over rows of several columns: the first has positions along one axis, the others have values along
// the other. Upright layers have their positions on x, horizontal ones on y. Columns of different lengths end
// with the shortest one.
class Zel2RowLayer : public Zel2Layer {
    DECLARE_DYNAMIC(Zel2RowLayer)
  public:
    ~Zel2RowLayer() override;

    const std::vector<zel::Column>& Columns() const { return columns_; }
    // As many columns as there are. Throws zel::Error for another number.
    void SetColumns(std::vector<zel::Column> columns);
    // Tells that borrowed memory has other values now.
    void DataChanged();
    bool IsHorizontal() const { return horizontal_; }

    void DescribeAxes(zel::AxisRange& x, zel::AxisRange& y) override;
    bool EndsWithData(Coordinate coordinate) const override;
    std::optional<zel::Datum> Nearest(const CPoint& device, double reach) override;
    std::vector<std::pair<double, double>> Sample(const zel::Scale& x, const zel::Scale& y,
                                                  std::size_t most) override;
    std::size_t Rows() const override;
    // Rows of borrowed memory are stored; what is loaded owns them.
    void Serialize(CArchive& ar) override;

  protected:
    // For archives: so many columns without rows.
    explicit Zel2RowLayer(std::size_t columns);
    Zel2RowLayer(const zel::LayerOptions& options, std::vector<zel::Column> columns, bool horizontal);
    Zel2RowLayer(const Zel2RowLayer&) = delete;
    Zel2RowLayer& operator=(const Zel2RowLayer&) = delete;

    // The values of a column on the scale of its axis: the first on that of positions, others on that of
    // values. Valid until the next call for the column.
    const zel::SeriesValues& On(std::size_t column, const zel::Scale& scale);
    const zel::Scale& PositionsOf(const zel::Scale& x, const zel::Scale& y) const {
        return horizontal_ ? y : x;
    }
    const zel::Scale& ValuesOf(const zel::Scale& x, const zel::Scale& y) const { return horizontal_ ? x : y; }
    zel::AxisRange& PositionsOf(zel::AxisRange& x, zel::AxisRange& y) const { return horizontal_ ? y : x; }
    zel::AxisRange& ValuesOf(zel::AxisRange& x, zel::AxisRange& y) const { return horizontal_ ? x : y; }

    // What the layer draws, one after another: rows, or what they are summed up to.
    virtual std::size_t Items() { return Rows(); }
    // A row that has the position of an item.
    virtual std::size_t RowOf(std::size_t item) { return item; }
    // The box of an item in logical units, ordered, not cut by the plot area; none for one that is not drawn.
    virtual std::optional<CRect> BoxOf(std::size_t item, const zel::OrientedFrame& frame) = 0;
    // Row, position and value of an item, on the scales of the frame. The default: of the first two columns.
    virtual zel::Datum DatumOf(std::size_t item, const zel::OrientedFrame& frame);
    // What was made of the columns is to be made anew.
    virtual void Forget() {}
    // The chart's count of changes, which dates what was made of the columns.
    std::uint64_t Revision() const;

    // Layers that take room at positions stand beside each other: those with the same slot in the same place.
    // None takes no room, or all of it.
    virtual std::optional<std::string> Slot() const { return std::nullopt; }
    // How much of a step its slots take together.
    virtual double SlotWidth() const { return 1; }
    // Where a layer stands around a position, in world coordinates of the scale of positions.
    struct Room {
        double step = 1;  // the least distance between positions
        std::size_t slot = 0, slots = 1;
        double width = 1;  // of a step, that all slots take together

        double Begin(double position) const { return Edge(position, static_cast<double>(slot)); }
        double End(double position) const { return Edge(position, static_cast<double>(slot) + 1); }

      private:
        double Edge(double position, double slots) const;
    };
    Room RoomOf(const zel::Scale& positions);
    // That of the bars of a name on the same axes; none where there are none.
    std::optional<Room> RoomOfBars(const std::string& name, const zel::Scale& positions);
    // The least distance between different positions; 0 where there are not two.
    double LeastStep(const zel::Scale& positions);
    // Adds the room of all positions to the range of their axis.
    void TakePositions(zel::AxisRange& range, const Room& room);

  private:
    Room MakeRoom(const zel::Scale& positions) const;
    // The visible layers with the same axes and direction.
    std::vector<Zel2RowLayer*> Companions() const;

    std::vector<zel::Column> columns_;
    std::vector<zel::ScaleValues> on_;
    bool horizontal_ = false;
    std::optional<double> leastStep_;
    std::optional<Room> room_;
    std::uint64_t stepRevision_ = 0, roomRevision_ = 0;
};

// A bar at each position, from a baseline to a value, from a value to another, or on top of other bars.
//
// Positions are texts, numbers or times. Bars of one layer at the same position stand in front of each other,
// or on each other when they stack. In stacks what is above 0 goes up from the baseline 0 and what is below
// goes down. Shares are those of the sum of all sizes, whatever their signs.
class Zel2BarLayer : public Zel2RowLayer {
    DECLARE_SERIAL(Zel2BarLayer)
  public:
    Zel2BarLayer();
    ~Zel2BarLayer() override;
    Zel2BarLayer(zel::Column positions, zel::Column values, const zel::BarOptions& options = {});
    // Floating from `low` to `high`; nothing stacks.
    Zel2BarLayer(zel::Column positions, zel::Column low, zel::Column high,
                 const zel::BarOptions& options = {});

    // Index of a colour of the drawing; -1 for one of its own.
    void SetColor(int index);
    int GetColor() const { return colorIndex_; }
    zel::Stacking Stacked() const { return stacking_; }
    void ShowLabels(bool on);

    void DrawIn(const zel::LayerFrame& frame) override;
    void TakeRange(zel::AxisRange& x, zel::AxisRange& y) override;
    std::optional<double> Included(Coordinate coordinate) const override;
    std::vector<std::string> Notes(const zel::Scale& x, const zel::Scale& y) override;
    bool HasLabels() const override { return labels_; }
    void BlockLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) override;
    void DrawLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) override;
    void DrawKey(const CRect& box) override;
    void SetDefaults() override;
    std::vector<std::pair<double, double>> Sample(const zel::Scale& x, const zel::Scale& y,
                                                  std::size_t most) override;
    void Serialize(CArchive& ar) override;

  protected:
    std::optional<CRect> BoxOf(std::size_t item, const zel::OrientedFrame& frame) override;
    zel::Datum DatumOf(std::size_t item, const zel::OrientedFrame& frame) override;
    std::optional<std::string> Slot() const override;
    double SlotWidth() const override { return width_; }
    void Forget() override;

  private:
    struct Bars;
    const Bars& MakeBars(const zel::Scale& positions, const zel::Scale& values);
    std::vector<Zel2BarLayer*> Stack() const;

    int colorIndex_ = -1;
    bool floating_ = false;
    zel::Stacking stacking_ = zel::Stacking::NONE;
    std::string group_;
    double baseline_ = 0;
    double width_ = 0.8;
    bool labels_ = false;
    zel::NumberFormat labelFormat_;
    std::unique_ptr<Bars> bars_;
};

// How often values lie in bins. Neighbouring bins touch.
class Zel2HistogramLayer : public Zel2RowLayer {
    DECLARE_SERIAL(Zel2HistogramLayer)
  public:
    Zel2HistogramLayer();
    explicit Zel2HistogramLayer(zel::Column values, const zel::HistogramOptions& options = {});

    // Index of a colour of the drawing; -1 for one of its own.
    void SetColor(int index);
    int GetColor() const { return colorIndex_; }
    // The edges of the bins, ascending, those of times counted from the column's origin; and what each bin
    // holds, in the measure that was asked for. Made when they are first asked for.
    const std::vector<double>& Edges();
    const std::vector<double>& Heights();

    void DrawIn(const zel::LayerFrame& frame) override;
    void DescribeAxes(zel::AxisRange& x, zel::AxisRange& y) override;
    void TakeRange(zel::AxisRange& x, zel::AxisRange& y) override;
    std::optional<double> Included(Coordinate coordinate) const override;
    std::vector<std::string> Notes(const zel::Scale& x, const zel::Scale& y) override;
    void DrawKey(const CRect& box) override;
    void SetDefaults() override;
    std::vector<std::pair<double, double>> Sample(const zel::Scale& x, const zel::Scale& y,
                                                  std::size_t most) override;
    void Serialize(CArchive& ar) override;

  protected:
    std::size_t Items() override { return Heights().size(); }
    std::optional<CRect> BoxOf(std::size_t item, const zel::OrientedFrame& frame) override;
    zel::Datum DatumOf(std::size_t item, const zel::OrientedFrame& frame) override;
    void Forget() override;

  private:
    void MakeBins();
    double EdgeOn(const zel::Scale& positions, std::size_t i);

    int colorIndex_ = -1;
    zel::BinRule rule_ = zel::BinRule::FREEDMAN_DIACONIS;
    int bins_ = 0;
    double binWidth_ = 0;
    std::vector<double> givenEdges_;
    zel::BinMeasure measure_ = zel::BinMeasure::COUNT;
    bool made_ = false;
    std::vector<double> edges_, heights_;
    double outside_ = 0;  // how many values lie beyond given edges
};
