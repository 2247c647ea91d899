#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <cmath>
#include <gtest/gtest.h>
#include <memory>

namespace {

DrawSymbol Symbol(zel::SymbolKind type, const char* text = "", int border = 1) {
    return {"s", CSize(60, 60), type, text, 1, 1, 2, 3, 4, border, "Arial", 80, 5, 6, nullptr, nullptr, 0};
}

TEST(DrawSymbol, RegistersItsToolsUnderItsOwnName) {
    Zel2Main root;
    DrawSymbol symbol = Symbol(zel::SYMBOL_SQUARE, "A");
    symbol.SetDefaults(&root);
    EXPECT_EQ(root.GetPenIndex("s - Border Line"), 0);
    EXPECT_EQ(root.GetColorIndex("s - Background"), 0);
    EXPECT_EQ(root.GetFontIndex("s - Symbol Text"), 0);
    DrawSymbol cross = Symbol(zel::SYMBOL_CROSS, "", 0);
    cross.SetName("x");
    cross.SetDefaults(&root);
    EXPECT_EQ(root.GetColorIndex("x - Background"), -1);
    EXPECT_EQ(root.GetPenIndex("x - Border Line"), 1) << "a cross is nothing but its pen";
}

TEST(DrawSymbol, ChoosesASizeByItsLabelsFont) {
    Zel2Main root;
    const auto sized = [&](const char* name, const char* text) {
        DrawSymbol symbol(name, CSize(), zel::SYMBOL_CIRCLE, text, 1, 0, 0, 0, 0, 1, "Arial", 120, 0, 0,
                          nullptr, nullptr, 0);
        symbol.SetDefaults(&root);
        return symbol.Size();
    };
    EXPECT_EQ(sized("a", ""), CSize(50, 50));
    EXPECT_EQ(sized("b", "x"), CSize(50, 50)) << "the first font of a drawing counts as none";
    EXPECT_EQ(sized("c", "x"), CSize(166, 166));
}

TEST(DrawSymbol, TakesOnlyKnownTypes) {
    DrawSymbol symbol = Symbol(zel::SYMBOL_DIAMOND);
    for (const int type : {0, 16, 99, -1}) symbol.SetType(static_cast<zel::SymbolKind>(type));
    EXPECT_EQ(symbol.GetType(), zel::SYMBOL_DIAMOND);
    symbol.SetType({0, 100, 50}, {0, 0, 100});
    EXPECT_EQ(symbol.GetType(), zel::SYMBOL_CUSTOM);
    DrawSymbol copy(symbol);
    EXPECT_EQ(copy.NCustom(), 3);
    copy.CopyFrom(&copy);
    EXPECT_EQ(copy.NCustom(), 3);
    symbol.SetPenData(99, 7, 8);
    int width = 0;
    COLORREF screen = 0, print = 0;
    symbol.GetPenData(width, screen, print);
    EXPECT_EQ(width, 1) << "the width stays";
    EXPECT_EQ(print, 8U);
}

TEST(DrawSymbol, DrawsItsShapeWithinTheGraph) {
    Zel2Main root;
    auto* graph = new Zel2Graph;
    root.Add(graph);
    graph->SetGraphSize(CSize(1000, 1000));
    graph->SetMargins(0, 0, 0, 0);
    graph->SetCoord(0, 0, 10, 10);
    auto* points = new Zel2PointArray;
    graph->AddIn(points);
    zel::RecordingDevice device(1000);
    CDC dc(device);
    root.PrepareMappingFor(&dc, nullptr, 0, 0);
    graph->PrepareMapping();
    DrawSymbol symbol = Symbol(zel::SYMBOL_TRIANGLE_UP);
    symbol.SetDefaults(&root);
    root.OpenOn(&dc, 1000);
    symbol.PlotOn(points, 10.0, 5.0);  // on the limit
    symbol.PlotOn(points, 10.1, 5.0);  // beyond it
    dc.Flush();
    EXPECT_EQ(device.Text(),
              "pen null 0 #000000\nbrush solid #030000\npolygon 970,530 1000,470 1030,530 970,530\n"
              "pen solid 4 #010000\npolyline 970,530 1000,470 1030,530 970,530\n");
    root.Close();
}

// Half ink of each tool, and of the tools that a symbol makes; copies keep it.
TEST(DrawTool, DrawsWithItsOpacity) {
    Zel2Main root;
    root.SetRules(ZelRules::EXACT);
    zel::RecordingDevice device;
    CDC dc(device);
    root.PrepareMappingFor(&dc, nullptr, 0, 0);
    const int pen = root.RegisterPen("p", DrawPen::SOLID, 0, RGB(1, 2, 3), 0, nullptr);
    const int color = root.RegisterColor("c", RGB(4, 5, 6), 0);
    const int font = root.RegisterFont("f", "Arial", 100, 0, 0, 0, 0, RGB(7, 8, 9), 0);
    root.Color(color)->Opacity(0.25);
    root.Font(font)->Opacity(0.75);
    root.OpenOn(&dc, 1000);
    root.Pen(pen)->Opacity(0.5);  // also when it is open
    root.Pen(pen)->MoveTo(0, 0);
    root.Pen(pen)->LineTo(9, 9);
    dc.Flush();
    EXPECT_NE(device.Text().find("pen solid 0 #010203 opacity 128\n"), std::string::npos) << device.Text();
    root.Color(color)->FillRect(CRect(0, 0, 2, 2));
    EXPECT_NE(device.Text().find("#040506 opacity 64\n"), std::string::npos);
    root.Font(font)->Print("x", CPoint(0, 0), 0, 0);
    EXPECT_NE(device.Text().find("textcolor #070809 opacity 191\n"), std::string::npos);
    dc.SetTextColor(RGB(7, 8, 9));
    device.Clear();
    dc.TextOut(0, 0, "y", 1);
    EXPECT_EQ(device.Text().find("opacity"), std::string::npos) << "a colour without more is opaque";

    DrawSymbol symbol = Symbol(zel::SYMBOL_SQUARE, "A");
    symbol.Opacity(0.5);
    const DrawSymbol copy = symbol;
    EXPECT_EQ(copy.Opacity(), 0.5);
    symbol.SetDefaults(&root);
    for (const DrawTool* tool : std::initializer_list<DrawTool*>{
             root.Pen(root.GetPenIndex("s - Border Line")), root.Color(root.GetColorIndex("s - Background")),
             root.Font(root.GetFontIndex("s - Symbol Text"))})
        EXPECT_EQ(tool->Opacity(), 0.5) << tool->NameRef().GetString();
    const std::unique_ptr<DrawTool> copies[] = {std::unique_ptr<DrawTool>(root.Pen(pen)->ACopy()),
                                                std::unique_ptr<DrawTool>(root.Color(color)->ACopy())};
    EXPECT_EQ(copies[0]->Opacity(), 0.5);
    EXPECT_EQ(copies[1]->Opacity(), 0.25);
    root.Pen(pen)->Opacity(-3);
    EXPECT_EQ(root.Pen(pen)->Opacity(), 0);
    root.Pen(pen)->Opacity(std::nan(""));
    EXPECT_EQ(root.Pen(pen)->Opacity(), 1);
    root.Close();
}

// Named options in the place of long lists of arguments.
TEST(ToolOptions, AreKeptByTheTools) {
    Zel2Main root;
    const int pen = zel::RegisterPen(root, "p",
                                     {.color = "#0a1b2c",
                                      .width = 2,
                                      .dash = zel::Dash::DOTTED,
                                      .opacity = 0.5,
                                      .printerColor = zel::Color("#fff")});
    EXPECT_EQ(root.Pen(pen)->ScrColor(), RGB(0x0A, 0x1B, 0x2C));
    EXPECT_EQ(root.Pen(pen)->PrnColor(), RGB(255, 255, 255));
    EXPECT_EQ(root.Pen(pen)->Width(), 7) << "2 points are 0.7 mm";
    EXPECT_EQ(root.Pen(pen)->Style(), DrawPen::DOT);
    EXPECT_EQ(root.Pen(pen)->Opacity(), 0.5);
    EXPECT_EQ(zel::RegisterPen(root, "p", {.opacity = 1}), pen);
    EXPECT_EQ(root.Pen(pen)->Opacity(), 0.5) << "the first of a name keeps its looks";
    const int font = zel::RegisterFont(root, "f", {.size = 10.5, .bold = true});
    EXPECT_EQ(root.Font(font)->PtSize10(), 105);
    EXPECT_EQ(root.Font(font)->Bold(), 1);
    const int symbol =
        zel::RegisterSymbol(root, "s", {.shape = zel::SYMBOL_DIAMOND, .size = 7.2, .color = "#f80"});
    EXPECT_EQ(root.Symbol(symbol)->Size().cx, 100) << "7.2 points are a tenth of an inch";
    COLORREF screen = 0, printer = 0;
    root.Symbol(symbol)->GetBrushData(screen, printer);
    EXPECT_EQ(screen, RGB(0xFF, 0x88, 0x00));
    EXPECT_EQ(root.Color(zel::RegisterColor(root, "c", {.color = zel::Color::Palette(1)}))->ScrColor(),
              RGB(213, 94, 0));
    EXPECT_THROW(zel::Color("blue"), zel::Error);
    Zel2 alone;
    EXPECT_THROW(zel::RegisterPen(alone, "p", {}), zel::Error);
}

}  // namespace
