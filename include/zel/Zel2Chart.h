// Charts: from columns of data to a picture with axes, titles and a legend.
#pragma once

#include <zel/ChartAxis.h>
#include <zel/ChartBars.h>
#include <zel/ChartLayers.h>
#include <zel/ChartMaps.h>
#include <zel/ChartNotes.h>
#include <zel/ChartOptions.h>
#include <zel/ChartSpreads.h>
#include <zel/Zel2Set.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zel {
struct ChartLayout;
struct ChartFonts;
struct PlotMargins;
}  // namespace zel

// A chart: titles, axes, a legend, and layers that draw data. Everything stands within its size: texts are
// measured and margins follow from them. Ranges follow the data until they are set.
//
//     auto* chart = root.Add(std::make_unique<Zel2Chart>(zel::ChartOptions{.title = "S&P 500"}));
//     chart->X().SetTime("America/New_York");
//     chart->AddLine(date, close, {.name = "close"});
//
// Layers are the children of the chart, drawn in their order; what else is added stands on top of them. Fonts
// and pens are found by name in the drawing ("Chart Title", "Chart Subtitle", "Chart Caption", "Chart Text",
// "Chart Axis Title"; "Chart Axis", "Chart Grid", "Chart Minor Grid"; the colour "Chart Ground"), and
// "Palette 1" and so on: register one before to have your own. The origin is the lower left corner; world
// units. A chart behaves the same with classic and exact rules. Classic archives cannot hold it.
class Zel2Chart : public Zel2Set {
    DECLARE_SERIAL(Zel2Chart)
  public:
    Zel2Chart();
    explicit Zel2Chart(const zel::ChartOptions& options);
    Zel2Chart(const Zel2Chart&) = delete;
    Zel2Chart& operator=(const Zel2Chart&) = delete;
    ~Zel2Chart() override;

    // The axes at the bottom and at the left, with index 0 and 1; they are always there.
    zel::ChartAxis& X() { return Axis(0); }
    zel::ChartAxis& Y() { return Axis(1); }
    // An axis by index. Throws zel::Error when there is none.
    zel::ChartAxis& Axis(int index);
    int AxisCount() const { return static_cast<int>(axes_.size()); }
    // One more axis; returns its index, for the options of layers. Axes of one side stand beside each other,
    // the first nearest to the data.
    int AddAxis(zel::Side side);
    // An axis at the right, made when it is first asked for, and its index.
    zel::ChartAxis& Y2();
    int Y2Index();

    // Each adds a layer, which the chart owns, and returns it. An axis that does not exist raises zel::Error.
    Zel2LineLayer* AddLine(zel::Column x, zel::Column y, const zel::LineOptions& options = {});
    Zel2AreaLayer* AddArea(zel::Column x, zel::Column y, const zel::AreaOptions& options = {});
    Zel2AreaLayer* AddArea(zel::Column x, zel::Column low, zel::Column high,
                           const zel::AreaOptions& options = {});
    Zel2PointLayer* AddPoints(zel::Column x, zel::Column y, const zel::PointOptions& options = {});
    // Positions are names, numbers or times. Shares of stacks write their axis in percent.
    Zel2BarLayer* AddBars(zel::Column positions, zel::Column values, const zel::BarOptions& options = {});
    Zel2BarLayer* AddFloatingBars(zel::Column positions, zel::Column low, zel::Column high,
                                  const zel::BarOptions& options = {});
    Zel2HistogramLayer* AddHistogram(zel::Column values, const zel::HistogramOptions& options = {});
    // Distances from `y`; with `horizontal` in the options from `x`.
    Zel2ErrorLayer* AddErrors(zel::Column x, zel::Column y, zel::Column error,
                              const zel::ErrorOptions& options = {});
    Zel2ErrorLayer* AddUnevenErrors(zel::Column x, zel::Column y, zel::Column below, zel::Column above,
                                    const zel::ErrorOptions& options = {});
    // The area between `y` - `below` and `y` + `above`.
    Zel2AreaLayer* AddBand(const zel::Column& x, const zel::Column& y, const zel::Column& below,
                           const zel::Column& above, const zel::AreaOptions& options = {});
    // A box plot of the values of each group.
    Zel2BoxLayer* AddBoxes(zel::Column groups, zel::Column values, const zel::BoxOptions& options = {});
    Zel2CandleLayer* AddCandles(zel::Column times, zel::Column open, zel::Column high, zel::Column low,
                                zel::Column close, const zel::CandleOptions& options = {});
    // A matrix, row by row from the first y on; and rows of x, y and value.
    Zel2HeatLayer* AddHeatMap(zel::Column x, zel::Column y, zel::Column values,
                              const zel::HeatMapOptions& options = {});
    Zel2HeatLayer* AddHeatMapOfRows(const zel::Column& x, const zel::Column& y, const zel::Column& values,
                                    const zel::HeatMapOptions& options = {});
    // Points with size and colour by columns.
    Zel2BubbleLayer* AddBubbles(zel::Column x, zel::Column y, const zel::BubbleOptions& options = {});
    // Counts of points in each pixel, as colours.
    Zel2DensityLayer* AddDensity(zel::Column x, zel::Column y, const zel::DensityOptions& options = {});
    // A text beside each point.
    Zel2TextLayer* AddTexts(zel::Column x, zel::Column y, zel::Column texts,
                            const zel::TextOptions& options = {});
    // A line at a value of x or of y; a line along y = intercept + slope x; the ground between two values; a
    // text at a place. Times are seconds since 1970.
    Zel2RuleLayer* AddRuleAtX(double value, const zel::RuleOptions& options = {});
    Zel2RuleLayer* AddRuleAtY(double value, const zel::RuleOptions& options = {});
    Zel2RuleLayer* AddSlope(double intercept, double slope, const zel::RuleOptions& options = {});
    Zel2SpanLayer* AddSpanAlongX(double from, double to, const zel::SpanOptions& options = {});
    Zel2SpanLayer* AddSpanAlongY(double from, double to, const zel::SpanOptions& options = {});
    Zel2NoteLayer* AddNote(double x, double y, std::string text, const zel::NoteOptions& options = {});
    // A line along a series, which the chart owns; the host may keep the pointer to append points.
    template <class Series>
    Series* AddLine(std::unique_ptr<Series> series, const zel::LineOptions& options = {}) {
        Series* const added = series.get();
        AddLine(zel::Column(), zel::Column(), options)->SetSource(std::move(series));
        return added;
    }
    using Zel2Set::Add;
    int Add(Zel2* child) override;
    std::vector<Zel2Layer*> Layers();

    const std::string& Title() const { return title_; }
    const std::string& Subtitle() const { return subtitle_; }
    const std::string& Caption() const { return caption_; }
    void SetTitle(std::string title);
    void SetSubtitle(std::string subtitle);
    void SetCaption(std::string caption);
    void SetLegend(zel::LegendPlace place);
    zel::LegendPlace Legend() const { return legend_; }

    // What could not be drawn as asked, a sentence each: values without a place, names that were shortened,
    // parts for which there was no room. Of the layout as it is now.
    std::vector<std::string> Notes();

    // The scale of an axis as it is drawn: the range that was set or that the data has.
    zel::Scale ScaleOf(int axis);
    // The plot area, in world units from the chart's origin.
    CRect PlotArea();
    // The layout as it would be drawn now.
    const zel::ChartLayout& Layout();
    // The frame in which a layer draws, in logical units; needs a mapping.
    zel::LayerFrame FrameOf(const Zel2Layer& layer);
    // The value of an axis at a place in device pixels; needs a mapping. Times are seconds since 1970.
    double ValueAt(int axis, const CPoint& device);
    // The same as a text, with the digits that a pixel tells apart.
    std::string TextAt(int axis, const CPoint& device);
    // The nearest row of all visible layers within `reach` pixels; `layer` is null when there is none.
    struct NearestRow {
        Zel2Layer* layer = nullptr;
        zel::Datum datum;
    };
    NearestRow Nearest(const CPoint& device, double reach = 20);
    // The layer whose entry in the legend is at a place in device pixels; null where there is none.
    Zel2Layer* LegendEntryAt(const CPoint& device);

    // Tells that data or settings have changed; setters do so by themselves.
    void Changed();
    // Counts the changes.
    std::uint64_t Revision() const { return revision_; }

    CSize Size() override;
    CSize MinSize() override;
    void SetSize(const CSize& size) override;
    unsigned int nCpt() override;
    CPoint Cpt(int i) override;
    void Drag(int cpt, CPoint pt) override;
    int IsIn(const CPoint& pt) override;
    // A click on an entry of the legend shows or hides its layer; 1 when there is one.
    int OnClick(const CPoint& pt) override;
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    void OnLeave(Zel2* object) override;
    void Serialize(CArchive& ar) override;

    void SelectAt(const CRect& r, Zel2Selection* sel) override;
    MouseAction OnMouse(const MouseStatus& ms) override;

    // The entry of the palette for a layer: that of its place among the layers.
    int PaletteEntryOf(const Zel2Layer& layer);
    // The tools of a palette entry, registered under "Palette 1" and so on.
    int PalettePen(int entry);
    int PaletteColor(int entry);

    // Indexes of the fonts in which layers write: on the ground of the chart, and on dark colours.
    int TextFont();
    int LightTextFont();

  protected:
    // A layer at the place, else the chart itself.
    Zel2* GetSelectableAt(const CPoint& pt) override;

  private:
    void CheckAxes(const Zel2Layer& layer);
    int FontFor(const char* name, double factor, bool bold, COLORREF color);
    zel::ChartFonts RegisterFonts();
    void RegisterTools();
    std::vector<zel::Scale> Scales(std::vector<std::string>& notes);
    zel::ChartLayout MakeLayout(const zel::PlotMargins& least);
    const zel::PlotMargins& OwnMargins();
    zel::PlotMargins AlignedMargins();
    void DrawLabels();
    template <class Layer>
    Layer* AddLayer(std::unique_ptr<Layer> layer);

    std::string title_, subtitle_, caption_;
    CSize size_;
    zel::LegendPlace legend_ = zel::LegendPlace::AUTOMATIC;
    double fontSize_ = 9;
    std::string fontFace_ = "Arial";
    std::vector<std::unique_ptr<zel::ChartAxis>> axes_;
    int y2_ = -1;
    std::unique_ptr<zel::ChartLayout> layout_;      // null until it is needed
    std::unique_ptr<zel::PlotMargins> ownMargins_;  // without regard to charts beside it; null until needed
    std::uint64_t revision_ = 0;
};
