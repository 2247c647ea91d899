// Drawings of every class, for tests of what must hold for all.
#pragma once

#include <zel/zel.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>

namespace zel::test {

// A tree of random depth, classes and state.
class RandomDrawing {
  public:
    // Classic archives cannot hold charts.
    enum class Charts { WITHOUT, WITH };
    explicit RandomDrawing(unsigned seed, Charts charts = Charts::WITHOUT) : random_(seed), charts_(charts) {}
    std::unique_ptr<Zel2Main> Make() {
        auto root = std::make_unique<Zel2Main>();
        root->SetRules(Below(2) ? ZelRules::EXACT : ZelRules::CLASSIC);
        for (int i = 0; i < 3; ++i) {
            const std::string name(1, static_cast<char>('a' + i));
            root->RegisterPen(name.c_str(), Below(6), Below(9), static_cast<COLORREF>(Below(1 << 24)), 0,
                              nullptr);
            root->RegisterColor(name.c_str(), static_cast<COLORREF>(Below(1 << 24)), 0);
            root->RegisterFont(name.c_str(), "Arial", 60 + Below(90), Below(2), Below(2), 0, 0, 0, 0);
            root->RegisterSymbol(name.c_str(), CSize(Below(90), Below(90)),
                                 static_cast<zel::SymbolKind>(1 + Below(15)), Below(2) ? "x" : "", 1, 0, 0, 0,
                                 0, Below(2), "Arial", 70, 0, 0, nullptr, nullptr, 0);
        }
        for (DrawTool* tool :
             {static_cast<DrawTool*>(root->Pen(Below(3))), static_cast<DrawTool*>(root->Color(Below(3))),
              static_cast<DrawTool*>(root->Font(Below(3))), root->Symbols()->Get(Below(3))})
            tool->Opacity(Below(9) / 8.0);
        int pattern[20] = {1 + Below(60), 1 + Below(60), Below(9)};
        root->RegisterPen("pattern", DrawPen::USER_DEFINED, Below(9), 0, 0, pattern);
        int xs[] = {0, Below(50), Below(90)}, ys[] = {0, Below(90), 9};
        root->RegisterSymbol("outline", CSize(40, 40), zel::SYMBOL_CUSTOM, "", 1, 0, 0, 0, 0, 1, "Arial", 70,
                             0, 0, xs, ys, 3);
        if (Below(4) == 0) root->Map()->SetAbsoluteZoom(1 + Below(4), 1 + Below(4));
        Fill(*root, 3);
        if (charts_ == Charts::WITH) AddChart(*root);
        if (charts_ == Charts::WITH && Below(3) == 0) AddPie(*root);
        return root;
    }

  private:
    int Below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    CRect Box() { return {Below(3000), Below(3000), Below(3000), Below(3000)}; }
    void Fill(Zel2Set& set, int depth) {
        for (int left = 1 + Below(5); left > 0; --left) AddTo(set, depth);
    }
    void AddTo(Zel2Set& set, int depth) {
        switch (Below(depth > 0 ? 19 : 10)) {
            case 0:
                set.Add(nullptr);
                break;
            case 1:
                set.Add(new Zel2Rect(Box(), Below(4) - 1, Below(4) - 1,
                                     static_cast<Zel2Rect::Zel2RectType>(Below(3)), Below(4) - 1));
                break;
            case 2:
                set.Add(new Zel2Text("t\nu", Box(), Below(4) - 1, Below(16), Below(3600), -1, Below(4) - 1,
                                     {Below(4) - 1, 0.25F}));
                break;
            case 3:
                set.Add(new Zel2Text("°", CPoint(Below(3000), 5), Below(4) - 1, Below(16), Below(3600), -1,
                                     -1, {-1, 0.0F}));
                break;
            case 4: {
                auto* box = new Zel2TRect(Box(), "text in a box", Below(4) - 1, Below(4) - 1);
                box->SetFont(Below(4) - 1);
                box->SetStyle(Below(2), Below(8));
                box->SetBorder(CSize(Below(20), Below(20)));
                set.Add(box);
                break;
            }
            case 5:
                set.Add(new Zel2DataField(Box(), "5 %", "caption", Below(4) - 1, Below(4) - 1, Below(4) - 1));
                break;
            case 6: {
                auto* axis = new Zel2Axis(-Below(9), 1 + Below(9), 1, Below(4) - 1);
                axis->SetSize(CSize(Below(2000), Below(2000)));
                set.Add(axis);
                break;
            }
            case 7:
                set.Add(Below(3) ? MakeTexts() : MakeLines());
                break;
            case 8:
                AddAxis(set);
                break;
            case 9:
                set.Add(MakeUnusual(Below(4)));
                break;
            case 10: {
                auto* row = new Zel2Row(Below(4));
                set.Add(row);
                Fill(*row, depth - 1);
                while (Below(3)) row->SetSize(CSize(1000 + Below(2000), Below(2000)));
                break;
            }
            case 11: {
                auto* column = new Zel2Column(Below(4));
                set.Add(column);
                Fill(*column, depth - 1);
                column->Justify(Below(5));
                break;
            }
            case 12: {
                auto* table =
                    new Zel2Table(1 + static_cast<unsigned>(Below(3)), 1 + static_cast<unsigned>(Below(3)));
                set.Add(table);
                for (unsigned i = 0; i < 4; ++i) {
                    auto* cell = new Zel2Rect(Box(), Below(4) - 1, Below(4) - 1, Zel2Rect::RECTANGLE, -1);
                    const unsigned x = i % 2, y = i / 2;
                    table->SetCell(x, y, cell, Below(3), Below(3));
                    if ((*table)(x, y) != cell) delete cell;
                }
                break;
            }
            case 13: {
                auto* table = new Zel2GraphTable(1 + Below(2), 1 + Below(2), CSize(900, 900));
                table->SetMargins(Below(300), -1, -1, Below(300));
                table->SetXCoord(0, -Below(9), 1 + Below(9));
                set.Add(table);
                break;
            }
            case 14:
                AddStack(set, depth);
                break;
            case 15:
                AddReport(set, depth);
                break;
            case 16: {
                auto* inner = new Zel2Set;
                inner->Origin(CPoint(Below(500), Below(500)));
                set.Add(inner);
                Fill(*inner, depth - 1);
                break;
            }
            default:
                AddGraph(set, depth);
                break;
        }
    }
    std::vector<double> Numbers() {
        std::vector<double> numbers;
        for (int i = Below(9); i >= 0; --i)
            numbers.push_back(Below(9) ? Below(2000) / 10.0 - 50 : std::nan(""));
        return numbers;
    }
    zel::Column Data() {
        zel::Column column;
        switch (Below(3)) {
            case 0:
                column = Numbers();
                break;
            case 1:
                column = zel::Column::Times({1'600'000'000'000 + Below(1 << 30), 1'600'000'000'000}, 1000);
                break;
            default:
                column = std::vector<std::string>{"one", "", "two", "one"};
        }
        return column.SetName(Below(2) ? "column" : "").SetUnit("m");
    }
    zel::BarOptions AnyBars(const zel::LayerOptions& layer) {
        zel::BarOptions options{layer};
        options.horizontal = Below(2) != 0;
        options.stacking = static_cast<zel::Stacking>(Below(3));
        options.group = Below(2) ? "group" : "";
        options.baseline = Below(3) - 1.0;
        options.width = Below(9) / 8.0;
        options.labels = Below(2) != 0;
        options.labelFormat.decimals = Below(3) - 1;
        return options;
    }
    void AddHistogram(Zel2Chart& chart, const zel::LayerOptions& layer) {
        zel::HistogramOptions options{layer};
        options.horizontal = Below(3) == 0;
        if (Below(4) == 0) options.edges = {-20, 0, 30.5, 90};
        if (Below(3) == 0) options.binWidth = 0.5 * Below(50);
        if (Below(3) == 0) options.bins = Below(20);
        options.rule = static_cast<zel::BinRule>(Below(3));
        options.measure = static_cast<zel::BinMeasure>(Below(3));
        if (Below(2)) options.weights = Numbers();
        chart.AddHistogram(Numbers(), options);
    }
    zel::ColorOptions AnyColors() {
        zel::ColorOptions colors;
        colors.scheme = static_cast<zel::ColorScheme>(Below(4));
        colors.spread = static_cast<zel::ColorSpread>(Below(4));
        colors.reversed = Below(2) != 0;
        if (Below(3) == 0) colors.from = -5;
        if (Below(3) == 0) colors.to = 50;
        colors.bar = Below(3) != 0;
        colors.title = Below(2) ? "colours" : "";
        return colors;
    }
    void AddHeatMap(Zel2Chart& chart, const zel::LayerOptions& layer) {
        if (Below(2)) {
            chart.AddHeatMapOfRows(Data(), Data(), Numbers(), {layer, AnyColors()});
            return;
        }
        const zel::Column x = Below(2) ? zel::Column(std::vector<double>{1, 3, 10, 40})
                                       : zel::Column(std::vector<std::string>{"two", "three", "one"});
        chart.AddHeatMap(x, std::vector<double>{9, 5, 1}, Numbers(),
                         {layer, AnyColors(), x.GetKind() == zel::Column::Kind::NUMBERS && Below(2) != 0});
    }
    void SetAxis(zel::ChartAxis& axis) {
        if (Below(3) == 0) axis.SetRange(Below(100) + 1, Below(100) + 200);
        if (Below(4) == 0) axis.SetLogarithm(Below(2) ? 2 : 10);
        if (Below(6) == 0) axis.SetTime("Europe/Berlin");
        if (Below(6) == 0) axis.SetCategories({"two", "one"});
        if (Below(4) == 0) axis.SetTicks({{5, "five", "a context"}});
        if (Below(4) == 0) axis.SetIncluded(0);
        axis.SetTitle(Below(2) ? "title" : "").SetUnit(Below(2) ? "kg" : "").SetReversed(Below(4) == 0);
        axis.Show(Below(5) != 0).ShowGrid(Below(3) != 0).ShowMinorGrid(Below(3) == 0);
        zel::NumberFormat format;
        format.decimals = Below(4) - 1;
        format.percent = Below(5) == 0;
        axis.SetFormat(format);
    }
    void AddPie(Zel2Set& set) {
        zel::PieOptions options{.title = Below(2) ? "Pie" : ""};
        options.size = {20.0 + Below(100), 20.0 + Below(80)};
        options.hole = Below(3) / 2.0;
        options.least = Below(4) / 10.0;
        options.shares = Below(2) != 0;
        set.Add(std::make_unique<Zel2Pie>(Data(), Numbers(), options));
    }
    void AddChart(Zel2Set& set) {
        zel::ChartOptions options{
            .title = Below(2) ? "Title" : "", .subtitle = "below it", .caption = Below(2) ? "source" : ""};
        options.size = {20.0 + Below(150), 20.0 + Below(100)};
        options.legend = static_cast<zel::LegendPlace>(Below(6));
        auto* chart = set.Add(std::make_unique<Zel2Chart>(options));
        chart->Origin(CPoint(Below(900), Below(900)));
        if (Below(3) == 0) chart->Y2().SetTitle("second");
        SetAxis(chart->X());
        SetAxis(chart->Y());
        for (int i = Below(5); i >= 0; --i) {
            zel::LayerOptions layer{.name = Below(2) ? "layer " + std::to_string(i) : "",
                                    .opacity = Below(5) / 4.0};
            if (Below(2)) layer.color = zel::Color(static_cast<COLORREF>(Below(1 << 24)));
            switch (Below(19)) {
                case 4:
                    Below(3) ? chart->AddBars(Data(), Data(), AnyBars(layer))
                             : chart->AddFloatingBars(Data(), Data(), Data(), AnyBars(layer));
                    break;
                case 5:
                    AddHistogram(*chart, layer);
                    break;
                case 6:
                    Below(2) ? chart->AddErrors(Data(), Data(), Numbers(),
                                                {layer, Below(2) != 0, 1, 4.0 * Below(2)})
                             : chart->AddUnevenErrors(Data(), Data(), Numbers(), Numbers(), {layer});
                    break;
                case 10:
                    chart->AddBubbles(Data(), Data(),
                                      {layer, Below(2) ? zel::Column(Numbers()) : zel::Column(),
                                       Below(2) ? Data() : zel::Column(), 1.0 + Below(20), AnyColors()});
                    break;
                case 11:
                    chart->AddTexts(Data(), Data(), std::vector<std::string>{"a", "longer text", ""},
                                    {layer});
                    break;
                case 16:
                    chart->AddDensity(Data(), Data(),
                                      {layer, static_cast<zel::ColorScheme>(Below(4)), Below(2) != 0});
                    break;
                case 12:
                    Below(2)
                        ? chart->AddRuleAtX(Below(90), {layer, Below(2) ? "label" : ""})
                        : chart->AddRuleAtY(Below(90) - 20.0,
                                            {layer, "", 1, static_cast<zel::Dash>(Below(5)), Below(2) != 0});
                    break;
                case 13:
                    chart->AddSlope(Below(9), Below(9) - 4.5, {layer});
                    break;
                case 14:
                    Below(2) ? chart->AddSpanAlongX(Below(50), 50, {layer, Below(3) / 2.0})
                             : chart->AddSpanAlongY(-HUGE_VAL, Below(50), {layer});
                    break;
                case 15:
                    chart->AddNote(Below(90), Below(90), Below(2) ? "note" : "two\nlines",
                                   {layer, Below(40) - 20.0, Below(40) - 20.0, Below(2) != 0});
                    break;
                case 9:
                    AddHeatMap(*chart, layer);
                    break;
                case 7:
                    chart->AddBoxes(
                        Data(), Data(),
                        {layer, Below(2) != 0, Below(9) / 8.0, Below(4) / 2.0, Below(2) != 0, Below(2) != 0});
                    break;
                case 8:
                    chart->AddCandles(Data(), Data(), Data(), Data(), Data(), {layer, {}, Below(9) / 8.0});
                    break;
                case 0:
                    chart->AddLine(Data(), Data(),
                                   {layer, Below(30) / 10.0, static_cast<zel::Dash>(Below(5)),
                                    static_cast<zel::Step>(Below(4))});
                    break;
                case 1:
                    chart->AddArea(Data(), Data(), {layer, Below(3) - 1.0, Below(2) != 0});
                    break;
                case 2:
                    chart->AddArea(Data(), Data(), Data(), {layer});
                    break;
                case 3:
                    chart->AddPoints(Data(), Data(), {layer, Below(9) + 1.0});
                    break;
                default: {
                    auto series = std::make_unique<Zel2PointArray>();
                    series->SetPoints(Numbers(), Numbers());
                    chart->AddLine(std::move(series), {layer});
                }
            }
            if (Below(6) == 0) chart->Layers().back()->SetVisible(false);
        }
    }
    // What drawings seldom hold by itself.
    Zel2* MakeUnusual(int kind) {
        if (kind == 0) return new Zel2Pol(nullptr, Below(4) - 1, Below(4) - 1);
        if (kind == 1) return new Zel2PointSet;
        if (kind == 2) return new Zel2(nullptr, CPoint(Below(99), Below(99)), Zel2::BREAK_BEFORE, CSize());
        auto* registry = Below(2) ? new Zel2Tools : new Zel2Main;
        registry->RegisterColor("own", static_cast<COLORREF>(Below(1 << 24)), 0);
        registry->Add(new Zel2Rect(Box(), -1, 0, Zel2Rect::RECTANGLE, -1));
        return registry;
    }
    void AddAxis(Zel2Set& set) {
        Zel2ScaleAxis* axis = nullptr;
        if (Below(2)) {
            axis = new Zel2HAxis;
        } else {
            auto* upright = new Zel2VAxis;
            upright->SetMargins(Below(90), Below(90), Below(90));
            axis = upright;
        }
        set.Add(axis);
        axis->Origin(CPoint(Below(900), Below(900)));
        axis->SetSize(CSize(Below(2000), Below(2000)));
        if (Below(4)) axis->SetCoord(-Below(9), 1 + Below(9));
        axis->SetAxisType(1 + Below(2), Below(2));
        axis->SetLabelAngle(Below(8) * 450);
        axis->SetFit(Below(2) != 0);
        axis->SetTicksFromLabels(Below(2) != 0);
        axis->SetTicksPenName(Below(2) ? "a" : "b");
    }
    Zel2* MakeLines() {
        auto* column =
            new Zel2TextColumn(CSize(800, 150), Below(4) - 1, Below(16), Below(4) - 1, Below(4) - 1);
        column->AddTitle("title", -1, -1, DT_CENTER, -2, -2);
        for (int i = 0; i < Below(4); ++i) column->Add("line");
        return column;
    }
    Zel2* MakeTexts() {
        const int columns = Below(4), rows = Below(5);
        auto* table = new Zel2TextTable(columns, rows);
        table->SetNHeaderRows(Below(3));
        table->SetStyle(0, columns, 0, Below(5),
                        Zel2Text("cell", CRect(0, 0, 200 + Below(300), 100 + Below(99)), Below(4) - 1,
                                 Below(16), 0, Below(4) - 1, Below(4) - 1, {Below(4) - 1, 0.5F}));
        table->SetPlainText(0, 0, "other");
        return table;
    }
    Zel2PolGraph* MakePolygon() {
        auto* polygon = new Zel2PolGraph(nullptr, Below(4) - 1, Below(4) - 1);
        std::vector<Zel2PolGraph::Dim2> points;
        for (int i = 0; i < Below(9); ++i) points.push_back({Below(20) - 10.0, Below(20) - 10.0});
        polygon->DefinePoints(points);
        return polygon;
    }
    void AddStack(Zel2Set& set, int depth) {
        auto* stack = new Zel2StackGraph(Box(), Below(4) - 1, Below(4) - 1);
        set.Add(stack);
        if (Below(4)) {
            auto* axis = new Zel2HAxis;
            axis->SetCoord(-Below(9), 1 + Below(20));
            axis->SetTitle("axis", Below(100));
            axis->SetTickLength(Below(200) - 100);
            stack->AddHAxis(axis);
        }
        if (Below(2)) stack->SetMarg(Below(300), Below(300), -1, Below(300));
        for (int i = 0; i < Below(4); ++i) {
            auto* cs = new Zel2CoordSys(-Below(9), 0, Below(20), 1 + Below(9), Box(), 1, 1, Below(4) - 1,
                                        Below(4) - 1);
            stack->AddSubGraph(cs, static_cast<float>(Below(9)) / 2);
            cs->ShowAxes(Below(2) != 0);
            cs->VAxis()->SetMargins(Below(90), Below(90), -1);
            cs->VAxis()->SetAxisType(1, Below(2));
            if (Below(2)) cs->HAxis()->SetLabels({0, 1.5, 3});
            cs->ContentSet(1 + Below(3))->Add(MakePolygon());
            Fill(*cs->ContentSet(1 + Below(3)), depth - 1);
        }
    }
    void AddReport(Zel2Set& set, int depth) {
        auto* report = new Zel2Report;
        set.Add(report);
        report->RegisterColor("own", static_cast<COLORREF>(Below(1 << 24)), 0);
        report->RegisterFont("own", "Arial", 90, 0, 0, 0, 0, 0, 0);
        if (Below(2)) {
            zel::ReportPaper paper;
            paper.size = CSize(2000 + Below(2000), 2000 + Below(2000));
            paper.footer.middle = "{page} of {pages}";
            report->SetPaper(paper);
        }
        for (int i = 0; i < Below(4); ++i) {
            if (Below(4) == 0) report->BreakPage();
            report->AppendKept(MakeTexts());
        }
        auto* column = new Zel2Column(1);
        report->Append(column);
        Fill(*column, depth - 1);
        if (Below(2)) report->MakePages(300 + Below(600));
        report->SelectPage(Below(3));
    }
    void AddGraph(Zel2Set& set, int depth) {
        auto* graph = new Zel2Graph;
        set.Add(graph);
        if (Below(2)) graph->SetGraphSize(CSize(1000 + Below(3000), 1000 + Below(3000)));
        if (Below(2)) graph->SetMargins(Below(300), Below(300), Below(300), Below(300));
        if (Below(8)) graph->SetCoord(-Below(9), -Below(9), 1 + Below(9), 1 + Below(9));
        graph->SetLabelAngles(Below(8) * 450, Below(8) * 450);
        graph->SetFrameStyle(Below(5));
        graph->LabelY(Below(4) != 0);
        graph->HideYLabels(Below(4) == 0);
        if (Below(2)) graph->SetTickLengths(Below(90) - 60, Below(90) - 60);
        if (Below(3) == 0) graph->SetAuxCS(0, 0, 10, 10, 1 + Below(5), 1 + Below(5));
        if (Below(3) == 0) graph->SetYRLabels(0, 1 + Below(9));
        if (Below(4) == 0) graph->SetXLines({1, 2.5});
        auto* points = new Zel2PointArray;
        for (int i = 0; i < Below(30); ++i)
            points->Append(Below(20) - 10, Below(9) ? Below(20) - 10.0 : std::nan(""));
        points->SetPen(Below(4) - 1);
        points->SetColor(Below(4) - 1);
        points->SetSymbol(Below(4) - 1, Below(2) != 0);
        points->SetExtension(static_cast<unsigned>(Below(10)), static_cast<unsigned>(Below(10)));
        if (Below(4) == 0) {
            for (unsigned i = 0; i < points->NPoints(); ++i) points->AddSymbol(Below(3));
        }
        graph->AddIn(points);
        if (Below(2)) graph->AddIn(MakePolygon());
        if (Below(3) == 0) graph->AddIn(new Zel2DaoPointSet);
        Fill(*graph, depth - 1);
    }
    std::mt19937 random_;
    Charts charts_;
};

}  // namespace zel::test
