// A sampler of all pen styles and all symbols.
#include "examples/gallery.h"

std::unique_ptr<Zel2Main> MakeStyles(const std::string&) {
    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    root->RegisterColor("Frame Color", RGB(255, 255, 255), RGB(255, 255, 255));
    root->RegisterColor("Background Color", RGB(255, 255, 255), RGB(255, 255, 255));
    const int title = root->RegisterFont("Title", "Arial", 140, 1, 0, 0, 0, 0, 0);
    const int text = root->RegisterFont("Text", "Arial", 90, 0, 0, 0, 0, 0, 0);
    const Zel2Text::Rule noRule{-1, 0.0F};
    root->Add(new Zel2Text("Pens and symbols", CPoint(3600, 6650), title, DT_CENTER | DT_VCENTER, 0, -1, -1,
                           noRule));

    // The pens are shown in a graph without labels and margins: a wave for each style and width.
    auto* graph = new Zel2Graph;
    root->Add(graph);
    graph->Origin(CPoint(1500, 3300));
    graph->SetGraphSize(CSize(5400, 3100));
    graph->SetMargins(0, 0, 0, 0);
    graph->SetCoord(0, 0, 10, 7);
    graph->SetXLabels({0}), graph->SetYLabels({0});
    int pattern[DrawPen::kPatternSize] = {30, 10, 5, 5, 5, 10, 0};
    constexpr int kStyles[] = {DrawPen::SOLID,        DrawPen::DASH, DrawPen::DOT,         DrawPen::DASH_DOT,
                               DrawPen::DASH_DOT_DOT, DrawPen::NONE, DrawPen::USER_DEFINED};
    constexpr int kWidths[] = {0, 3, 8};
    for (int i = 0; i < 7; ++i) {
        const std::string name = DrawPen::kStyleNames[static_cast<std::size_t>(i)];
        const double y = 6.5 - i;
        root->Add(new Zel2Text(name.c_str(), CPoint(1350, 3300 + static_cast<int>(y * 3100 / 7)), text,
                               DT_RIGHT | DT_VCENTER, 0, -1, -1, noRule));
        for (int k = 0; k < 3; ++k) {
            auto* wave = new Zel2PointArray;
            for (int p = 0; p <= 3; ++p) wave->Append(0.2 + 3.3 * k + p, y + (p % 2 ? 0.25 : -0.25));
            const std::string pen = name + std::to_string(kWidths[k]);
            wave->SetPen(
                root->RegisterPen(pen.c_str(), kStyles[i], kWidths[k], RGB(20, 60, 120), 0, pattern));
            graph->AddIn(wave);
        }
    }

    // Each symbol is the sign of a rectangle that shows nothing else.
    int xs[] = {50, 60, 100, 65, 80, 50, 20, 35, 0, 40}, ys[] = {100, 62, 62, 38, 0, 24, 0, 38, 62, 62};
    for (int i = 0; i < 16; ++i) {
        const int code = i < 15 ? i + 1 : zel::SYMBOL_CUSTOM;
        const std::string name = "Symbol " + std::to_string(code);
        const int symbol = root->RegisterSymbol(
            name.c_str(), CSize(300, 300), static_cast<zel::SymbolKind>(code), "A", 3, RGB(120, 60, 0), 0,
            RGB(255, 214, 140), RGB(230, 230, 230), 1, "Arial", 80, RGB(60, 30, 0), 0, xs, ys, 10);
        const int x = 600 + i % 8 * 850, y = 2350 - i / 8 * 1300;
        root->Add(
            new Zel2Rect(CRect(x - 150, y - 150, x + 150, y + 150), -1, -1, Zel2Rect::RECTANGLE, symbol));
        root->Add(new Zel2Text(std::to_string(code).c_str(), CPoint(x, y - 560), text, DT_CENTER | DT_VCENTER,
                               0, -1, -1, noRule));
    }
    root->Add(
        new Zel2Rect(CRect(0, 0, 7199, 6999), -1, -1, Zel2Rect::RECTANGLE, -1));  // keeps the edges free
    return root;
}
