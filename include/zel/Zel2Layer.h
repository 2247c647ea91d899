// What a chart draws of its data.
#pragma once

#include <zel/ChartOptions.h>
#include <zel/SeriesPoints.h>
#include <zel/Zel2.h>

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class Zel2Chart;

namespace zel {

class ColorKey;
class FreeSpace;

// The values that an axis has to show, as layers tell them.
class AxisRange {
  public:
    // What follows is measured on this scale.
    void SetScale(const Scale& scale) { scale_ = scale; }

    // Values without a place on the scale are counted and left out.
    void Add(double value);
    // One coordinate of points.
    enum class Coordinate { X, Y };
    void Add(const SeriesStretch& stretch, Coordinate coordinate);
    // The names of categories.
    void AddNames(const std::vector<std::string>& names);
    // Times that are counted from `origin`, in seconds since 1970.
    void AddTimes(double origin);
    // Plain numbers, which on a time axis are counted from 1970.
    void AddNumbers() { hasNumbers_ = true; }

    bool IsSet() const { return low_ <= high_; }
    double Low() const { return low_; }
    double High() const { return high_; }
    std::size_t WithoutPlace() const { return withoutPlace_; }
    const std::vector<std::string>& Names() const { return names_; }
    bool HasTimes() const { return origin_.has_value(); }
    // What the values of a time axis are to be counted from, in seconds since 1970.
    double Origin() const { return scale_.Origin(); }
    double FirstOrigin() const { return hasNumbers_ ? 0 : origin_.value_or(0); }
    const Scale& GetScale() const { return scale_; }

  private:
    Scale scale_;
    double low_ = std::numeric_limits<double>::infinity();
    double high_ = -std::numeric_limits<double>::infinity();
    std::size_t withoutPlace_ = 0;
    std::vector<std::string> names_;
    std::optional<double> origin_;
    bool hasNumbers_ = false;
};

// Where a layer draws: the plot area of its chart and its two scales.
struct LayerFrame {
    // Transformed values (Scale::Forward) to logical units. Its limits ascend; a reversed axis has its
    // corners exchanged.
    WorldFrame world;
    Scale x, y;
    std::shared_ptr<const SeriesTransform> xTransform, yTransform;

    // Whether both values have a place, and it is within the plot area, the limits included.
    bool Contains(double vx, double vy) const { return world.Contains(x.Forward(vx), y.Forward(vy)); }
    // In logical units; for values that have a place.
    CPoint ToLogical(double vx, double vy) const { return world.ToLogical(x.Forward(vx), y.Forward(vy)); }
    // The value in world coordinates of the frame, brought within its limits.
    double YWithin(double vy) const;
};

// One row of the data of a layer.
struct Datum {
    std::size_t row = 0;
    double x = 0, y = 0;  // times in seconds since 1970, categories by index
    double distance = 0;  // from where it was asked for, in device pixels
};

}  // namespace zel

// A layer of a chart: it draws itself in the plot area, within the scales of its pair of axes, and says what
// range it needs, how it is named and what its key in the legend looks like.
//
// To make a new kind of layer, derive from it and override DrawIn; add TakeRange so that the axes follow its
// data, DrawKey for its key in the legend, and Serialize with DECLARE_SERIAL when it is to be stored.
class Zel2Layer : public Zel2 {
    DECLARE_DYNAMIC(Zel2Layer)
  public:
    const std::string& Name() const { return name_; }
    void SetName(std::string name);
    // Layers that are not visible are not drawn and do not count for ranges; the legend shows them faintly.
    bool IsVisible() const { return visible_; }
    void SetVisible(bool on);
    // Indexes into the chart's axes.
    int XAxis() const { return xAxis_; }
    int YAxis() const { return yAxis_; }
    void SetAxes(int x, int y);
    // The chart that it stands in; null outside one.
    Zel2Chart* Chart() const;

    // Draws the layer within `frame`; logical units. Called in passes only.
    virtual void DrawIn(const zel::LayerFrame& frame) = 0;
    // Adds what kind of data both axes have: names and times. The default adds none.
    virtual void DescribeAxes(zel::AxisRange& x, zel::AxisRange& y);
    // Adds the values that both axes should show, as numbers on their scales. The default adds none.
    virtual void TakeRange(zel::AxisRange& x, zel::AxisRange& y);
    using Coordinate = zel::AxisRange::Coordinate;
    // Whether a range ends where the data does, else at round values. The default: that of x does.
    virtual bool EndsWithData(Coordinate coordinate) const { return coordinate == Coordinate::X; }
    // Whether ranges need a margin for marks all the same.
    virtual bool NeedsMargin() const { return false; }
    // A value that a range should contain, such as the baseline of an area.
    virtual std::optional<double> Included(Coordinate) const { return std::nullopt; }
    // What cannot be drawn as asked on these scales, a sentence each. Asked after TakeRange.
    virtual std::vector<std::string> Notes(const zel::Scale&, const zel::Scale&) { return {}; }
    // Labels are drawn over all layers, and avoid each other and what layers block for them.
    virtual bool HasLabels() const { return false; }
    virtual void BlockLabels(const zel::LayerFrame&, zel::FreeSpace&) {}
    virtual void DrawLabels(const zel::LayerFrame&, zel::FreeSpace&) {}
    // The colours of numbers, fitted to the data, whose bar stands beside the chart; null for none.
    virtual zel::ColorKey* ColorBar() { return nullptr; }
    // Draws the key of the legend into a rectangle of logical units. The default fills it.
    virtual void DrawKey(const CRect& box);
    // Further lines of the legend below the name: what each says, and its key. The default has none.
    virtual std::vector<std::string> KeyParts() { return {}; }
    virtual void DrawKeyPart(std::size_t, const CRect&) {}
    // The least height of a line of the legend, world units.
    virtual int KeyHeight() const { return 0; }
    // Whether the layer stands for a series, and takes the next entry of the palette.
    virtual bool TakesPaletteEntry() const { return true; }
    // Registers the tools that it draws with, where it has not done so.
    virtual void SetDefaults() {}
    // The row nearest to a place in device pixels, within `reach`; the default finds none.
    virtual std::optional<zel::Datum> Nearest(const CPoint& device, double reach);
    // About `most` of the points that it draws, spread over all, on two scales: to see where there is room.
    virtual std::vector<std::pair<double, double>> Sample(const zel::Scale& x, const zel::Scale& y,
                                                          std::size_t most);
    // The number of rows, and those of them that are absent (zel::Column).
    virtual std::size_t Rows() const { return 0; }

    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    // 1 within 3 pixels of a datum of a visible layer.
    int IsIn(const CPoint& pt) override;
    void Serialize(CArchive& ar) override;

  protected:
    Zel2Layer() = default;
    explicit Zel2Layer(const zel::LayerOptions& options);
    Zel2Layer(const Zel2Layer&) = default;
    Zel2Layer& operator=(const Zel2Layer&) = default;

    // The entry of the palette that stands for the layer, from 0.
    int PaletteEntry() const;
    // The colour that was chosen, or that of the palette entry.
    COLORREF OwnColor() const;
    bool HasOwnColor() const { return color_.has_value(); }
    double Opacity() const { return opacity_; }
    // The indexes of tools for the layer: those of the palette, or ones of its own, registered under names
    // made from the layer's. Lengths in points.
    int RegisterOwnPen(double width, zel::Dash dash);
    int RegisterOwnColor();
    int RegisterOwnColor(COLORREF color);
    // The colour mixed with white: `share` of it, from 0 to 1.
    int RegisterOwnTint(double share);
    int RegisterOwnSymbol(double size, std::optional<zel::SymbolKind> shape);
    // Tells the chart that ranges and layout are to be made anew.
    void Changed();

  private:
    std::string name_;
    std::optional<COLORREF> color_;
    double opacity_ = 1;
    int xAxis_ = 0;
    int yAxis_ = 1;
    bool visible_ = true;
};
