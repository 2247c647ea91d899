// The layers of charts that turn numbers into colours.
#pragma once

#include <zel/ChartLayers.h>
#include <zel/ColorKey.h>
#include <zel/Column.h>
#include <zel/Zel2Layer.h>

#include <memory>
#include <vector>

namespace zel {
class CellPyramid;
class ScaleValues;
}  // namespace zel

// A matrix of numbers as colours, cell by cell. Cells smaller than a pixel are drawn as their mean.
class Zel2HeatLayer : public Zel2Layer {
    DECLARE_SERIAL(Zel2HeatLayer)
  public:
    Zel2HeatLayer();
    ~Zel2HeatLayer() override;
    // Row by row, those of the first y first: the value at (x[i], y[k]) is number k times the number of cells
    // along x plus i. Values that are missing at the end are absent; absent cells have no colour. Numbers and
    // times in `x` and `y` ascend or descend; texts have a cell each. Throws zel::Error for others.
    Zel2HeatLayer(zel::Column x, zel::Column y, zel::Column values, const zel::HeatMapOptions& options = {});
    // The matrix of rows that each have a place and a value: cells at all the different x and y, numbers in
    // ascending order, with the mean of their rows.
    static std::unique_ptr<Zel2HeatLayer> OfRows(const zel::Column& x, const zel::Column& y,
                                                 const zel::Column& values, zel::HeatMapOptions options = {});

    const zel::Column& X() const { return x_; }
    const zel::Column& Y() const { return y_; }
    const zel::Column& Values() const { return values_; }
    std::size_t CellsAlongX() const;
    std::size_t CellsAlongY() const;
    // Tells that borrowed memory has other values now.
    void DataChanged();
    // How values become colours.
    zel::ColorKey& Key() { return key_; }

    void DrawIn(const zel::LayerFrame& frame) override;
    void DescribeAxes(zel::AxisRange& x, zel::AxisRange& y) override;
    void TakeRange(zel::AxisRange& x, zel::AxisRange& y) override;
    bool EndsWithData(Coordinate) const override { return true; }
    std::vector<std::string> Notes(const zel::Scale& x, const zel::Scale& y) override;
    zel::ColorKey* ColorBar() override;
    void DrawKey(const CRect& box) override;
    // The cell under the place, by its row of values.
    std::optional<zel::Datum> Nearest(const CPoint& device, double reach) override;
    std::vector<std::pair<double, double>> Sample(const zel::Scale& x, const zel::Scale& y,
                                                  std::size_t most) override;
    std::size_t Rows() const override { return values_.Size(); }
    void Serialize(CArchive& ar) override;

  private:
    // From edge to edge on the scale of an axis, in the order of the column.
    struct Cell {
        double from, to;
    };
    std::vector<Cell> CellsOn(const zel::Column& column, zel::ScaleValues& on, const zel::Scale& scale) const;
    std::size_t CellsOf(const zel::Column& column) const;
    std::string Fault() const;
    void FitKey();

    zel::Column x_, y_, values_;
    bool edges_ = false;
    zel::ColorKey key_;
    bool fitted_ = false;
    std::size_t withoutColor_ = 0;
    std::unique_ptr<zel::ScaleValues> onX_, onY_;
    std::unique_ptr<zel::CellPyramid> pyramid_;
};

// How many points lie in each pixel, as colours: from the fewest to the most by the logarithm of their
// number. Pixels without points stay as they are. For more points than marks can show.
class Zel2DensityLayer : public Zel2XYLayer {
    DECLARE_SERIAL(Zel2DensityLayer)
  public:
    Zel2DensityLayer() = default;
    Zel2DensityLayer(zel::Column x, zel::Column y, const zel::DensityOptions& options = {});

    void DrawIn(const zel::LayerFrame& frame) override;
    bool NeedsMargin() const override { return true; }
    void DrawKey(const CRect& box) override;
    void Serialize(CArchive& ar) override;

  private:
    zel::ColorScheme scheme_ = zel::ColorScheme::VIRIDIS;
    bool reversed_ = false;
    zel::ColorMap map_;
};
