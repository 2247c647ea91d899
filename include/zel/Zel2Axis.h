// The simple scale object.
#pragma once

#include <zel/Zel2.h>

#include <string>
#include <vector>

// A line with ticks and labels that stands by itself: a range of values mapped onto its width, or onto its
// height when that is the larger. World units; the origin is where the range begins. Without a size it
// measures nothing and draws nothing.
class Zel2Axis : public Zel2 {
    DECLARE_SERIAL(Zel2Axis)
  public:
    Zel2Axis() = default;
    // `type` 1 is linear; `font` the tool index of the labels' font, -1 for no labels.
    Zel2Axis(double min, double max, int type, int font) : min_(min), max_(max), type_(type), font_(font) {}

    void SetCoord(double min, double max);
    void GetCoord(double& min, double& max) const;
    void SetType(int type) { type_ = type; }
    int GetType() const { return type_; }
    void SetFont(int font) { font_ = font; }
    int GetFont() const { return font_; }

    // The place of a value, counted from the root along the axis, truncated towards zero; and back.
    int ToAbs(double v);
    double FromAbs(int position);

    void Serialize(CArchive& ar) override;
    CSize Size() override { return size_; }
    void SetSize(const CSize& size) override { size_ = size; }
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;

  private:
    // Which labels have room beside each other.
    std::vector<bool> LabelsShown(const std::vector<double>& values, const std::vector<std::string>& texts,
                                  DrawFont& font);
    bool IsUpright() const { return size_.cy > size_.cx; }
    LONG Length() const { return IsUpright() ? size_.cy : size_.cx; }
    LONG Start() { return IsUpright() ? AbsOrigin().y : AbsOrigin().x; }
    CPoint PlaceOf(double v);

    double min_ = 0;
    double max_ = 0;
    int type_ = 1;
    int font_ = -1;
    CSize size_;
};
