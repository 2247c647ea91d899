// The axes of charts.
#pragma once

#include <zel/ChartOptions.h>
#include <zel/Scale.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

class CArchive;
class Zel2Chart;

namespace zel {

// An axis of a chart: a side, a scale, a title with a unit, and what is drawn of it. Its range follows the
// data of the layers that use it until SetRange; then it stays as set to the last digit. Until a kind of
// scale is set, columns of times make it a time axis, and columns of texts one of categories.
//
// The chart owns its axes. Each setter returns the axis, so that calls can be chained.
class ChartAxis {
  public:
    ChartAxis(Zel2Chart& chart, Side side) : chart_(&chart) { fields_.side = side; }
    // An axis that stands in no chart yet.
    explicit ChartAxis(Side side) { fields_.side = side; }
    // Tells it which chart is to hear of its settings; null for none.
    void Attach(Zel2Chart* chart) { chart_ = chart; }

    ChartAxis& SetLinear() { return SetKind(Scale::Kind::LINEAR); }
    // Values of one sign; what is not is left out and noted (Zel2Chart::Notes). `base` is above 1.
    ChartAxis& SetLogarithm(double base = 10);
    // Linear within ±threshold, which is above 0, logarithmic beyond.
    ChartAxis& SetSymmetricLogarithm(double threshold = 1);
    ChartAxis& SetSquareRoot() { return SetKind(Scale::Kind::SQUARE_ROOT); }
    // See Scale::WithFunction.
    ChartAxis& SetFunction(Scale::Function forward, Scale::Function inverse, std::string name = {});
    // Values are seconds since 1970-01-01 00:00 UTC, or columns of times; ticks and labels are those of the
    // clocks of `zone`, a name such as "Europe/Berlin". Throws zel::Error for an unknown zone.
    ChartAxis& SetTime(const std::string& zone = "UTC");
    // Values are seconds.
    ChartAxis& SetDuration() { return SetKind(Scale::Kind::DURATION); }
    // These names in this order; names in the data that are not among them have no place. Without names:
    // those of the data in order of appearance.
    ChartAxis& SetCategories(std::vector<std::string> names = {});

    // The ends stay as given, to the last digit; `from` above `to` turns the axis round. Times are seconds
    // since 1970.
    ChartAxis& SetRange(double from, double to);
    // The range follows the data again.
    ChartAxis& SetAutomaticRange();
    bool HasRange() const { return fields_.rangeIsSet; }
    // Turns the axis round while its range follows the data.
    ChartAxis& SetReversed(bool reversed);
    // The range that follows the data always contains this value, such as 0.
    ChartAxis& SetIncluded(std::optional<double> value);

    ChartAxis& SetTitle(std::string title);
    // Written behind the title in brackets.
    ChartAxis& SetUnit(std::string unit);
    ChartAxis& SetFormat(NumberFormat format);
    // These ticks instead of automatic ones, by value; those outside the range are left out. None: automatic.
    ChartAxis& SetTicks(std::vector<Tick> ticks);
    ChartAxis& ShowGrid(bool on = true);
    ChartAxis& ShowMinorGrid(bool on = true);
    // Line, ticks, labels and title; the grid is a matter of its own.
    ChartAxis& Show(bool on = true);

    Side GetSide() const { return fields_.side; }
    bool IsHorizontal() const { return fields_.side == Side::BOTTOM || fields_.side == Side::TOP; }
    bool IsVisible() const { return fields_.visible; }
    bool HasGrid() const { return fields_.grid; }
    bool HasMinorGrid() const { return fields_.minorGrid; }
    const std::string& Title() const { return fields_.title; }
    const std::string& Unit() const { return fields_.unit; }
    const NumberFormat& Format() const { return fields_.format; }
    const std::vector<Tick>& GivenTicks() const { return fields_.ticks; }
    // What has been set; see Zel2Chart::ScaleOf for the scale as it is drawn.
    std::optional<Scale::Kind> Kind() const { return fields_.kind; }
    bool IsReversed() const { return fields_.reversed; }
    std::optional<double> Included() const { return fields_.included; }
    // A scale of the kind that was set, or of `kind` when none was, between the ends `from` and `to`.
    // Functions that nobody has registered here make it linear.
    Scale MakeScale(Scale::Kind kind, double from, double to, const std::vector<std::string>& names) const;
    double From() const { return fields_.from; }
    double To() const { return fields_.to; }
    const std::vector<std::string>& GivenNames() const { return fields_.names; }

    void Serialize(CArchive& ar);
    // The same settings in another chart.
    void CopyFrom(const ChartAxis& other) { fields_ = other.fields_; }

  private:
    struct Fields {
        Side side = Side::BOTTOM;
        std::optional<Scale::Kind> kind;
        double base = 10, threshold = 1;
        std::string zone = "UTC", functionName;
        Scale::Function forward, inverse;
        std::vector<std::string> names;
        bool rangeIsSet = false;
        double from = 0, to = 1;
        bool reversed = false;
        std::optional<double> included;
        std::string title, unit;
        NumberFormat format;
        std::vector<Tick> ticks;
        bool grid = true, minorGrid = false, visible = true;
    };
    ChartAxis& SetKind(Scale::Kind kind);
    template <class Value>
    ChartAxis& Set(Value Fields::*field, Value value);

    Zel2Chart* chart_ = nullptr;
    Fields fields_;
};

}  // namespace zel
