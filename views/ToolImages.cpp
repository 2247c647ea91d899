#include "views/ToolImages.h"

#include <zel/ZelView.h>

#include <string_view>

namespace {

constexpr int kGrid = 20;  // pictures are drawn on a grid of so many squares
constexpr COLORREF kInk = RGB(60, 60, 64);
constexpr COLORREF kAccent = RGB(30, 110, 200);

// Lines as pairs of letters: 'a' is 0, 't' is 19; strokes end at blanks.
class Sketch {
  public:
    Sketch(CDC& dc, const CRect& area) : dc_(dc), area_(area) {}

    void Stroke(std::string_view strokes, COLORREF color = kInk, int tenths = 14) {
        CPen pen(PS_SOLID, MulDiv(area_.Width(), tenths, 10 * kGrid), color);
        CPen* previous = dc_.SelectObject(&pen);
        bool begun = false;
        for (std::size_t i = 0; i + 1 < strokes.size(); i += 2) {
            if (strokes[i] == ' ') {
                begun = false;
                --i;
                continue;
            }
            const CPoint at = At(strokes[i] - 'a', strokes[i + 1] - 'a');
            begun ? static_cast<void>(dc_.LineTo(at)) : static_cast<void>(dc_.MoveTo(at));
            begun = true;
        }
        dc_.SelectObject(previous);
    }
    void Fill(int left, int top, int right, int bottom, COLORREF color) {
        const CRect box(At(left, top), At(right, bottom));
        dc_.FillSolidRect(&box, color);
    }
    void Circle(int x, int y, int radius) {
        CPen pen(PS_SOLID, MulDiv(area_.Width(), 16, 10 * kGrid), kInk);
        CPen* previous = dc_.SelectObject(&pen);
        dc_.SelectStockObject(NULL_BRUSH);
        dc_.Ellipse(CRect(At(x - radius, y - radius), At(x + radius, y + radius)));
        dc_.SelectObject(previous);
    }

  private:
    CPoint At(int x, int y) const {
        return {area_.left + MulDiv(area_.Width(), 2 * x + 1, 2 * kGrid),
                area_.top + MulDiv(area_.Height(), 2 * y + 1, 2 * kGrid)};
    }
    CDC& dc_;
    CRect area_;
};

void Glass(Sketch& sketch, std::string_view sign) {
    sketch.Circle(8, 8, 6);
    sketch.Stroke("mmrr", kInk, 28);
    sketch.Stroke(sign, kAccent, 18);
}

void Draw(UINT id, Sketch& sketch) {
    switch (id) {
        case ID_ZEL_SELECT:
            sketch.Stroke("fcfohljqlpkknkfc");
            break;
        case ID_ZEL_ZOOM_RECTANGLE:
            sketch.Stroke("ccgc kcoc ccck cnco ococ ocog", kAccent);
            sketch.Circle(12, 12, 5);
            sketch.Stroke("qqtt", kInk, 28);
            break;
        case ID_ZEL_ZOOM_IN:
            Glass(sketch, "fili ifil");
            break;
        case ID_ZEL_ZOOM_OUT:
            Glass(sketch, "fili");
            break;
        case ID_ZEL_FIT_HEIGHT:
            sketch.Stroke("dcqc drqr");
            sketch.Stroke("kdkq hgkdng hnkqnn", kAccent);
            break;
        case ID_ZEL_FIT_WIDTH:
            sketch.Stroke("cdcq rdrq");
            sketch.Stroke("dkqk ghdkgn nhqknn", kAccent);
            break;
        case ID_ZEL_FIT_WINDOW:
            sketch.Stroke("ccrcrrcrcc");
            sketch.Stroke("ffoo iffffi looool lfofoi flfoio offo", kAccent);
            break;
        case ID_ZEL_FONTS:
            sketch.Stroke("drjdkdqr flnl");
            break;
        case ID_ZEL_COLORS:
            sketch.Fill(3, 3, 9, 9, RGB(205, 60, 50));
            sketch.Fill(10, 3, 16, 9, RGB(240, 180, 40));
            sketch.Fill(3, 10, 9, 16, RGB(50, 150, 80));
            sketch.Fill(10, 10, 16, 16, kAccent);
            break;
        case ID_ZEL_PENS:
            sketch.Stroke("cere");
            sketch.Stroke("ckgk ikmk okrk", kAccent, 20);
            sketch.Stroke("cqdq gqhq kqlq oqpq", kInk, 24);
            break;
        default:
            break;
    }
}

struct Named {
    UINT id;
    const char* text;
};
constexpr Named kTools[] = {{ID_ZEL_SELECT, "Select"},         {ID_ZEL_ZOOM_RECTANGLE, "Zoom to rectangle"},
                            {ID_ZEL_ZOOM_IN, "Zoom in"},       {ID_ZEL_ZOOM_OUT, "Zoom out"},
                            {ID_ZEL_FIT_HEIGHT, "Fit height"}, {ID_ZEL_FIT_WIDTH, "Fit width"},
                            {ID_ZEL_FIT_WINDOW, "Fit window"}, {ID_ZEL_FONTS, "Fonts"},
                            {ID_ZEL_COLORS, "Colours"},        {ID_ZEL_PENS, "Pens"}};

}  // namespace

bool ToolOf(UINT id, CToolBar::Image& image, const char*& text) {
    for (const Named& tool : kTools) {
        if (tool.id != id) continue;
        text = tool.text;
        image = [id](CDC& dc, const CRect& area) {
            Sketch sketch(dc, area);
            Draw(id, sketch);
        };
        return true;
    }
    return false;
}
