// What points out places in a chart: lines, spans and notes anchored in values.
#pragma once

#include <zel/Zel2Layer.h>

#include <optional>
#include <string>

// A line at a value, from edge to edge of the plot area, or along y = intercept + slope x on linear scales.
class Zel2RuleLayer : public Zel2Layer {
    DECLARE_SERIAL(Zel2RuleLayer)
  public:
    Zel2RuleLayer() = default;
    // At a value of x (an upright line) or of y; times are seconds since 1970.
    Zel2RuleLayer(Coordinate coordinate, double value, const zel::RuleOptions& options = {});
    // From the value at x = 0 on.
    Zel2RuleLayer(double intercept, double slope, const zel::RuleOptions& options = {});

    // Index of a pen of the drawing; -1 for one of its own.
    void SetPen(int index);
    int GetPen() const { return pen_; }

    void DrawIn(const zel::LayerFrame& frame) override;
    void TakeRange(zel::AxisRange& x, zel::AxisRange& y) override;
    bool EndsWithData(Coordinate) const override { return false; }
    bool TakesPaletteEntry() const override { return false; }
    bool HasLabels() const override { return !label_.empty(); }
    void DrawLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) override;
    void DrawKey(const CRect& box) override;
    void SetDefaults() override;
    void Serialize(CArchive& ar) override;

  private:
    enum class Kind : int { AT_X = 0, AT_Y = 1, SLOPED = 2 };
    struct Ends;
    std::optional<Ends> EndsIn(const zel::LayerFrame& frame) const;

    Kind kind_ = Kind::AT_Y;
    double value_ = 0;  // or the intercept
    double slope_ = 0;
    std::string label_;
    double width_ = 0.8;
    zel::Dash dash_ = zel::Dash::DASHED;
    bool inRange_ = true;
    int pen_ = -1;
};

// The ground between two values, from edge to edge of the plot area. Add it before what it is to lie under.
class Zel2SpanLayer : public Zel2Layer {
    DECLARE_SERIAL(Zel2SpanLayer)
  public:
    Zel2SpanLayer() = default;
    // Times are seconds since 1970. An end that is infinite reaches to the edge.
    Zel2SpanLayer(Coordinate coordinate, double from, double to, const zel::SpanOptions& options = {});

    // Index of a colour of the drawing; -1 for one of its own.
    void SetColor(int index);
    int GetColor() const { return colorIndex_; }

    void DrawIn(const zel::LayerFrame& frame) override;
    bool EndsWithData(Coordinate) const override { return false; }
    bool TakesPaletteEntry() const override { return false; }
    void DrawKey(const CRect& box) override;
    void SetDefaults() override;
    void Serialize(CArchive& ar) override;

  private:
    bool alongX_ = true;
    double from_ = 0, to_ = 0;
    int colorIndex_ = -1;
};

// A text at a place, moved by a distance on paper and joined to it by an arrow.
class Zel2NoteLayer : public Zel2Layer {
    DECLARE_SERIAL(Zel2NoteLayer)
  public:
    Zel2NoteLayer() = default;
    // Times are seconds since 1970, categories counted from 0. Lines of the text are separated by "\n".
    Zel2NoteLayer(double x, double y, std::string text, const zel::NoteOptions& options = {});

    const std::string& Text() const { return text_; }
    void SetText(std::string text);

    void DrawIn(const zel::LayerFrame&) override {}
    bool EndsWithData(Coordinate) const override { return false; }
    bool TakesPaletteEntry() const override { return false; }
    bool HasLabels() const override { return true; }
    void BlockLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) override;
    void DrawLabels(const zel::LayerFrame& frame, zel::FreeSpace& space) override;
    void SetDefaults() override;
    void Serialize(CArchive& ar) override;

  private:
    struct Places;
    std::optional<Places> PlacesIn(const zel::LayerFrame& frame);
    void DrawArrow(const Places& places);

    double x_ = 0, y_ = 0;
    std::string text_;
    double dx_ = 0, dy_ = 0;
    bool arrow_ = true;
    int pen_ = -1;
};
