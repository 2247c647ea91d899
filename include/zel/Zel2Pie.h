// Parts of a whole as a pie or a ring.
#pragma once

#include <zel/ChartOptions.h>
#include <zel/Column.h>
#include <zel/Zel2.h>

#include <string>
#include <vector>

namespace zel {

struct PieOptions {
    std::string title{};
    SizeMm size{110, 70};
    // The radius of the hole as a share of that of the pie, from 0 to 0.95: above 0 it is a ring.
    double hole = 0;
    // Parts below this share of the whole are gathered in one, when there are several.
    double least = 0.02;
    std::string otherName = "other";
    // How values are written behind the names: as shares of the whole, or as they are.
    bool shares = true;
    NumberFormat format{};
    double fontSize = 9;  // points
    std::string fontFace = "Arial";
};

}  // namespace zel

// A pie or ring of parts, clockwise from the top in their order, with names outside that are joined to their
// parts by lines and never overlap. Colours are those of the palette ("Palette 1" and so on), fonts and lines
// those of charts. Values that are not above 0 have no part and are noted; rows of the same name are one
// part. The origin is the lower left corner; world units. Classic archives cannot hold it.
class Zel2Pie : public Zel2 {
    DECLARE_SERIAL(Zel2Pie)
  public:
    Zel2Pie();
    // Columns of different lengths end with the shorter one.
    Zel2Pie(zel::Column names, zel::Column values, const zel::PieOptions& options = {});

    struct Part {
        std::string name;
        double value = 0;
        double share = 0;  // of the whole
    };
    // As they are drawn, the gathered one last.
    std::vector<Part> Parts() const;
    // What could not be drawn as asked, a sentence each; of names since the last drawing.
    std::vector<std::string> Notes() const;

    CSize Size() override;
    CSize MinSize() override;
    void SetSize(const CSize& size) override;
    int IsIn(const CPoint& pt) override;
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    void Serialize(CArchive& ar) override;

  private:
    struct Label;
    struct Circle;
    void DrawParts(const std::vector<Part>& parts, const Circle& circle);
    std::vector<Label> PlaceLabels(const std::vector<Part>& parts, const Circle& circle, int font) const;
    void DrawLabels(const std::vector<Label>& labels, int font);
    std::string TextOf(const Part& part) const;
    CPoint ToLogical(double x, double y);

    zel::Column names_, values_;
    zel::PieOptions options_;
    CSize size_;
    std::size_t hidden_ = 0;  // names without room
};
