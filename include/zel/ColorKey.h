// How a layer turns numbers into colours, and the axis that tells it.
#pragma once

#include <zel/ChartAxis.h>
#include <zel/ColorMap.h>
#include <zel/Scale.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

class CArchive;
class Zel2Chart;

namespace zel {

// Owned by its layer.
class ColorKey {
  public:
    explicit ColorKey(const ColorOptions& options = {});

    bool HasBar() const { return options_.bar; }
    // The axis of the bar: its title, unit and format; its range is that of the colours.
    ChartAxis& Axis() { return axis_; }
    const ChartAxis& Axis() const { return axis_; }
    // Fits the ends that were not given to the data: the smallest and the largest value that have a colour,
    // and a sample of all for quantiles. Without values, `low` is above `high`.
    void Fit(double low, double high, std::span<const double> sample);
    // Whether a value is one of those that Fit is told about.
    bool Counts(double value) const;
    bool WantsSample() const { return options_.spread == ColorSpread::QUANTILES; }
    // Whether all values are alike.
    bool IsFlat() const { return flat_; }

    // From the value of the first colour to that of the last.
    const Scale& GetScale() const { return scale_; }
    const ColorMap& Map() const { return map_; }
    // 0xFFRRGGBB; 0 for a value without a colour.
    std::uint32_t PixelOf(double value) const {
        const double place = linear_ ? value * factor_ + shift_ : PlaceOf(value);
        return place == place ? map_.PixelAt(place) : 0;
    }

    void Attach(Zel2Chart* chart) { axis_.Attach(chart); }
    void Serialize(CArchive& ar);

  private:
    double PlaceOf(double value) const;
    void SetScale(const Scale& scale);

    ColorOptions options_;
    ColorMap map_;
    ChartAxis axis_;
    Scale scale_;
    bool linear_ = true, flat_ = false;
    double factor_ = 1, shift_ = 0;  // of a linear scale
};

}  // namespace zel
