// A sampler of rotated and multi-line text.
#include "examples/gallery.h"

std::unique_ptr<Zel2Main> MakeTexts(const std::string&) {
    auto root = std::make_unique<Zel2Main>();
    root->SetRules(ZelRules::EXACT);
    const int title = root->RegisterFont("Title", "Arial", 140, 1, 0, 0, 0, 0, 0);
    const int text = root->RegisterFont("Text", "Arial", 110, 0, 0, 0, 0, 0, 0);
    const int italic = root->RegisterFont("Italic", "Times New Roman", 130, 0, 1, 0, 0, RGB(120, 20, 20), 0);
    const int underlined =
        root->RegisterFont("Underlined", "Courier New", 110, 0, 0, 1, 0, RGB(20, 80, 20), 0);
    const int frame =
        root->RegisterPen("Frame", DrawPen::SOLID, 2, RGB(150, 150, 150), RGB(150, 150, 150), nullptr);
    const int paper = root->RegisterColor("Paper", RGB(252, 248, 227), RGB(255, 255, 255));
    const Zel2Text::Rule noRule{-1, 0.0F};

    root->Add(new Zel2Text("Text at any angle", CPoint(3500, 4750), title, DT_CENTER | DT_VCENTER, 0, -1, -1,
                           noRule));
    // Twelve directions about one point; the text begins a little way out.
    for (int angle = 0; angle < 3600; angle += 300) {
        root->Add(new Zel2Text("      25 °C, 3 µm, café", CPoint(1900, 2600), text, DT_VCENTER, angle, -1, -1,
                               noRule));
    }
    // Lines in a box: left, centred, right, over a background with a frame.
    const unsigned formats[] = {DT_BOTTOM, DT_CENTER | DT_VCENTER, DT_RIGHT | DT_BOTTOM};
    const char* lines[] = {"lines of a text\nbegin at the left\nédition № 3",
                           "centred lines\nof a text\nin a box", "lines that end\nat the right\nΔ = 12 µm²"};
    for (int i = 0; i < 3; ++i) {
        const int y = 3300 - i * 1150;
        root->Add(new Zel2Rect(CRect(4200, y, 6700, y + 900), frame, paper, Zel2Rect::RECTANGLE, -1));
        root->Add(new Zel2Text(lines[i], CRect(4300, y + 100, 6600, y + 800),
                               i == 1   ? italic
                               : i == 2 ? underlined
                                        : text,
                               static_cast<int>(formats[i]), 0, -1, -1, noRule));
    }
    // Three lines turned together about their common point.
    root->Add(new Zel2Text("three lines\nturned by 45°\ntogether", CPoint(700, 700), text,
                           DT_CENTER | DT_VCENTER, 450, -1, -1, noRule));
    root->Add(new Zel2Text("upwards\ntwo lines", CPoint(7150, 2600), text, DT_CENTER | DT_BOTTOM, 900, -1, -1,
                           noRule));
    root->Add(
        new Zel2Rect(CRect(0, 0, 7199, 4999), -1, -1, Zel2Rect::RECTANGLE, -1));  // keeps the edges free
    return root;
}
