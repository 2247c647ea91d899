// The pictures of the documentation: what containers do with their children, and what the two rule sets make
// of stacks and pages.
#include "examples/gallery.h"

namespace {

constexpr COLORREF kFrame = RGB(90, 90, 90);
constexpr int kGap = 150;

// A root with the tools of these pictures.
class Picture {
  public:
    explicit Picture(ZelRules rules) {
        root_->SetRules(rules);
        font_ = root_->RegisterFont("text", "Arial", 90, 0, 0, 0, 0, 0, 0);
        pen_ = root_->RegisterPen("frame", DrawPen::SOLID, 2, kFrame, kFrame, nullptr);
        const COLORREF fills[] = {RGB(214, 228, 244), RGB(222, 240, 214), RGB(250, 232, 206)};
        for (int i = 0; i < 3; ++i)
            fills_[i] = root_->RegisterColor(("fill " + std::to_string(i)).c_str(), fills[i], fills[i]);
    }
    Zel2Main& Root() { return *root_; }
    int Pen() const { return pen_; }
    int Fill(int i) const { return fills_[i]; }
    // Frames at the edges stay whole.
    void AddWithMargin(Zel2Row* row) {
        root_->Add(row);
        row->Origin(CPoint(20, 20));
    }
    // A labelled box.
    Zel2* Box(const std::string& text, int width, int height, int fill) const {
        return new Zel2Text(text.c_str(), CRect(0, 0, width - 1, height - 1), font_, DT_CENTER | DT_VCENTER,
                            0, pen_, fills_[fill], {-1, 0.0F});
    }
    static Zel2* Gap(int width, int height) {
        auto* gap = new Zel2Rect;
        gap->SetSize(CSize(width, height));
        return gap;
    }
    std::unique_ptr<Zel2Main> Take() { return std::move(root_); }

  private:
    std::unique_ptr<Zel2Main> root_ = std::make_unique<Zel2Main>();
    int font_, pen_;
    int fills_[3];
};

std::unique_ptr<Zel2Main> MakeContainers(const std::string&) {
    Picture picture(ZelRules::EXACT);
    auto* all = new Zel2Row(0);
    picture.AddWithMargin(all);
    auto* column = new Zel2Column(1);
    const char* heights[] = {"first: at the top", "second", "third: at (0, 0)"};
    for (int i = 0; i < 3; ++i) column->Add(picture.Box(heights[i], 1700, 300 + 150 * i, 0));
    all->Add(column);
    all->Add(Picture::Gap(kGap, 0));
    auto* row = new Zel2Row(Zel2Row::STRETCH | Zel2Row::SHRINK);
    row->Add(picture.Box("first", 800, 600, 1));
    row->Add(picture.Box("second", 1200, 600, 1));
    row->SetSize(CSize(2200, 900));
    all->Add(row);
    all->Add(Picture::Gap(kGap, 0));
    auto* table = new Zel2Table(3, 3);
    table->SetCell(0, 0, picture.Box("(0, 0), spans 2 x 1", 1500, 400, 2), 2, 1);
    table->SetCell(2, 0, picture.Box("(2, 0)", 800, 400, 2), 1, 1);
    table->SetCell(0, 1, picture.Box("(0, 1)", 800, 400, 2), 1, 1);
    table->SetCell(1, 1, picture.Box("(1, 1), spans 2 x 2", 1400, 700, 2), 2, 2);
    table->SetCell(0, 2, picture.Box("(0, 2)", 800, 300, 2), 1, 1);
    all->Add(table);
    all->Add(Picture::Gap(20, 1370));
    return picture.Take();
}

template <ZelRules rules>
std::unique_ptr<Zel2Main> MakeStack(const std::string&) {
    Picture picture(rules);
    auto* stack = new Zel2StackGraph(CRect(0, 0, 4499, 3199), -1, -1);
    picture.Root().Add(stack);
    stack->SetMarg(600, 150, 200, 600);
    auto* axis = new Zel2HAxis;
    axis->SetCoord(0, 10);
    axis->SetTitle("weights 1, 2 and 0.5, from below", 120);
    stack->AddHAxis(axis);
    int fill = 0;
    for (const float weight : {1.0F, 2.0F, 0.5F}) {
        auto* cs = new Zel2CoordSys;
        cs->SetPen(picture.Pen());
        cs->SetCoord(0, 0, 10, 1);
        cs->SetColor(picture.Fill(fill++));
        cs->VAxis()->SetLabels({0.5});
        cs->VAxis()->SetFit(false);
        stack->AddSubGraph(cs, weight);
    }
    return picture.Take();
}

template <ZelRules rules>
std::unique_ptr<Zel2Main> MakePages(const std::string&) {
    Picture picture(rules);
    auto* pages = new Zel2Row(0);
    picture.AddWithMargin(pages);
    auto* column = new Zel2Column(1);
    pages->Add(column);
    const int heights[] = {500, 600, 800, 400, 300};
    for (int i = 0; i < 5; ++i)
        column->Add(
            picture.Box(std::to_string(i + 1) + ": " + std::to_string(heights[i]), 1300, heights[i], i % 3));
    while (Zel2Column* rest = column->SplitVert(1200)) {
        pages->Add(Picture::Gap(kGap, 0));
        pages->Add(rest);
        column = rest;
    }
    pages->Add(Picture::Gap(20, rules == ZelRules::CLASSIC ? 2620 : 1220));
    return picture.Take();
}

}  // namespace

std::vector<Example> DocumentationPictures() {
    return {{"containers", MakeContainers},
            {"stack-classic", MakeStack<ZelRules::CLASSIC>},
            {"stack-exact", MakeStack<ZelRules::EXACT>},
            {"pages-classic", MakePages<ZelRules::CLASSIC>},
            {"pages-exact", MakePages<ZelRules::EXACT>}};
}
