#include "KnownDrawing.h"

namespace zel::test {
namespace {

// Adds objects to a drawing, and what is known of them.
class Maker {
  public:
    KnownDrawing Make() {
        known_.drawing = std::make_unique<Zel2Main>();
        Root().SetRules(ZelRules::EXACT);
        known_.facts = "header.version = 2\nheader.rules = 1\n";
        AddTools();
        AddShapes();
        AddGraph();
        AddStack();
        AddTables();
        AddReport();
        AddMapping();
        return std::move(known_);
    }

  private:
    Zel2Main& Root() { return *known_.drawing; }

    // Facts as "field value, field value".
    void Know(const std::string& place, const std::string& fields) {
        for (std::size_t at = 0; at < fields.size();) {
            const std::size_t end = std::min(fields.find(", ", at), fields.size());
            const std::size_t space = fields.find(' ', at);
            known_.facts += place + "." + fields.substr(at, space - at) + " = " +
                            fields.substr(space + 1, end - space - 1) + "\n";
            at = end + 2;
        }
    }
    std::string PlaceOf(Zel2Set& set, const std::string& place) {
        return place + "slots[" + std::to_string(set.GetCount() - 1) + "].object";
    }
    std::string Add(Zel2* object, const std::string& fields) {
        Root().Add(object);
        std::string place = PlaceOf(Root(), "");
        Know(place, fields);
        return place;
    }

    void AddTools() {
        Root().RegisterColor("blue", 0x112233, 0x445566);
        Know("colors", "count 1");
        Know("colors.tools[0]", "name \"blue\", screen 1122867, printer 4478310");
        Root().Color(0)->Opacity(0.25);
        Know("colors.tools[0]", "opacity 0.25");
        int pattern[20] = {9, 8, 7, 6, 5};
        Root().RegisterPen("dashes", DrawPen::USER_DEFINED, 12, 0x010203, 0x040506, pattern);
        Know("pens.tools[0]",
             "name \"dashes\", screen 66051, printer 263430, style -1, width 12, pattern[0] 9, "
             "pattern[4] 5, pattern[5] 0");
        Root().Pen(0)->Opacity(0.5);
        Know("pens.tools[0]", "opacity 0.5");
        Root().RegisterFont("label", "Courier", 123, 1, 0, 1, 0, 0x0A0B0C, 0x0D0E0F);
        Know("fonts.tools[0]",
             "name \"label\", weight 700, italic 0, underline 1, strikeOut 0, size 123, screen 658188, "
             "printer 855567");
        int xs[] = {1, 2, 3}, ys[] = {4, 5, 6};
        Root().RegisterSymbol("star", CSize(61, 62), zel::SYMBOL_CUSTOM, "s", 3, 11, 12, 13, 14, 1, "Times",
                              81, 15, 16, xs, ys, 3);
        Know(
            "symbols.tools[0]",
            "name \"star\", border 1, size.cx 61, size.cy 62, text \"s\", type 99, penWidth 3, penScreen 11, "
            "penPrinter 12, brushScreen 13, brushPrinter 14, face \"Times\", fontSize 81, fontScreen 15, "
            "fontPrinter 16, count 3, x[0] 1, x[2] 3, y[0] 4, y[2] 6");
    }

    void AddShapes() {
        Add(new Zel2Rect(CRect(10, 20, 109, 69), 1, 2, Zel2Rect::ELLIPSE, 3),
            "origin.x 10, origin.y 20, size.cx 100, size.cy 50, pen 1, color 2, type 0, symbol 3");
        Add(new Zel2Text("text", CRect(30, 40, 79, 59), 4, 5, 60, 7, 8, {9, 0.25F}),
            "origin.x 30, text \"text\", font 4, format 5, angle 60, frame 7, background 8, rulePen 9, "
            "rulePlace 0.25, "
            "size.cx 50, size.cy 20");
        auto* box = new Zel2TRect(CRect(1, 2, 300, 201), "box", 3, 4);
        box->SetFont(5);
        box->SetStyle(1, 6);
        box->SetBorder(CSize(7, 8));
        Add(box, "text \"box\", pen 3, color 4, font 5, wrap 1, format 6, border.cx 7, border.cy 8, type 1");
        auto* field = new Zel2DataField(CRect(0, 0, 499, 299), "value", "caption", 1, 2, 3);
        field->SetFont(4);
        field->SetLabelFont(5);
        Add(field,
            "pen 1, color 2, value.text \"value\", caption.text \"caption\", value.font 4, caption.font 5, "
            "value.color 3");
        auto* axis = new Zel2Axis(-1.5, 2.5, 2, 3);
        axis->SetSize(CSize(400, 50));
        Add(axis, "range.from -1.5, range.to 2.5, type 2, font 3, size.cx 400, size.cy 50");
        auto* nested = new Zel2Tools;
        nested->RegisterColor("own", 7, 8);
        Add(nested, "colors.tools[0].screen 7, colors.tools[0].printer 8, count 0");
        Add(nullptr, "");
        known_.facts += "slots[" + std::to_string(Root().GetCount() - 1) + "].present = 0\n";
        auto* kept = new Zel2Rect;
        kept->SetStatus(Zel2::KEEP_WITH_NEXT, 1);
        Add(kept, "status 256, pen -1");
    }

    void AddGraph() {
        auto* graph = new Zel2Graph;
        graph->SetGraphSize(CSize(4001, 3001));
        graph->SetMargins(501, 302, 403, 504);
        graph->SetAxisType(1, 2);
        graph->SetCoord(1, 2, 30, 40);
        graph->SetLabelAngles(450, 900);
        graph->SetXLabels({1, 2});
        graph->SetYLabels({3, 4, 5});
        graph->SetXLines({6});
        graph->SetYLines({7, 8, 9, 10});
        graph->SetXTicks({11, 12});
        graph->SetYTicks({13});
        graph->SetTickLengths(-41, -52);
        graph->SetFrameStyle(3);
        graph->LabelX(false);
        graph->HideYLabels(true);
        const std::string place = Add(
            graph,
            "size.cx 4001, size.cy 3001, marginLeft 501, marginTop 302, marginRight 403, marginBottom 504, "
            "xRange.from 1.0, xRange.to 30.0, yRange.from 2.0, yRange.to 40.0, xRangeSet.from 1.0, "
            "yRangeSet.to 40.0, "
            "xLabelAngle 450, yLabelAngle 900, xLabels.count 2, xLabels.values[1] 2.0, yLabels.count 3, "
            "xLines.values[0] 6.0, yLines.count 4, xTicks.values[0] 11.0, yTicks.values[0] 13.0, xTick -41, "
            "yTick -52, xType 1, yType 2, hasRange 1, hasSize 1, hasMargins 1, hasDefaults 0, showY 1, "
            "showXLabels 0, "
            "hideYLabels 1, frameStyle 3, inner.count 4, count 0");
        auto* points = new Zel2PointArray;
        points->SetPoints({1.5, 2.5}, {3.5, 4.5});
        points->SetSymbol(1, false);
        points->SetPen(2);
        points->SetColor(3);
        points->SetExtension(4, 5);
        points->AddSymbol(6);
        points->AddSymbol(7);
        graph->AddIn(points);
        Know(PlaceOf(graph->Inner(), place + ".inner."),
             "symbol 1, pen 2, color 3, startExtension 4, endExtension 5, symbolOnFirst 0, symbolCount 2, "
             "symbols[0] 6, symbols[1] 7, x.values[1] 2.5, y.values[0] 3.5");
        auto* polygon = new Zel2PolGraph(nullptr, 1, 2);
        polygon->DefinePoints({{0.5, 1.5}, {2.5, 3.5}});
        graph->AddIn(polygon);
        Know(PlaceOf(graph->Inner(), place + ".inner."), "pen 1, color 2, count 2, x[1] 2.5, y[0] 1.5");
        auto* series = new Zel2DaoPointSet;
        series->SetNulls(Zel2DaoPointSet::Nulls::GAP);
        graph->AddIn(series);
        Know(PlaceOf(graph->Inner(), place + ".inner."),
             "nullsAreGaps 1, dates 0, x.count 0, condition \"\"");
        graph->AddIn(new Zel2Pol(nullptr, 5, 6));
        Know(PlaceOf(graph->Inner(), place + ".inner."), "pen 5, color 6");
    }

    void AddStack() {
        auto* stack = new Zel2StackGraph(CRect(0, 0, 999, 899), 1, 2);
        auto* axis = new Zel2HAxis;
        axis->SetCoord(-3, 4);
        axis->SetType(2);
        axis->SetTitle("title", 55);
        axis->SetTickLength(-66);
        axis->SetLabelAngle(77);
        axis->SetLabels({1, 2});
        axis->SetLinesPenName("l");
        axis->SetTicksPenName("t");
        axis->SetLabelFontName("lf");
        axis->SetTitleFontName("tf");
        stack->AddHAxis(axis);
        stack->SetMarg(11, 12, 13, 14);
        auto* cs = new Zel2CoordSys(-1, -2, 3, 4, CRect(0, 0, 9, 9), 1, 2, 5, 6);
        cs->ShowAxes(true);
        cs->VAxis()->SetMargins(21, 22, 23);
        cs->VAxis()->SetFit(false);
        cs->ContentSet(2)->Add(new Zel2Rect);
        stack->AddSubGraph(cs, 2.5F);
        stack->AddSubGraph(new Zel2CoordSys, 3.5F);
        const std::string place = Add(stack,
                                      "weights[0] 2.5, weights[1] 3.5, weights[2] 0.0, lastGraph 1, "
                                      "marginLeft 11, marginTop 12, marginRight 13, "
                                      "marginBottom 14, sharedAxis 0");
        Know(place + ".slots[0].object", "pen 1, color 2");
        Know(place + ".slots[1].object.slots[0].object",
             "pen 5, color 6, horizontal.range.from -1.0, horizontal.range.to 3.0, vertical.range.from -2.0, "
             "vertical.range.to 4.0, horizontal.type 1, vertical.type 2, vertical.marginLeft 21, "
             "vertical.marginAbove 22, vertical.marginBelow 23, vertical.fit 0, horizontal.fit 1, "
             "contents[0].count 0, contents[1].count 1, contents[2].count 0, showAxes 1");
        Know(place + ".slots[2].object.slots[0].object",
             "range.from -3.0, range.to 4.0, type 2, title \"title\", titleOffset 55, tickLength -66, "
             "labelAngle 77, "
             "labels.values[1] 2.0, linesPenName \"l\", ticksPenName \"t\", labelFontName \"lf\", "
             "titleFontName \"tf\"");
    }

    void AddTables() {
        auto* table = new Zel2Table(2, 3);
        table->SetCellDim(1, 2, 1, 1);
        table->SetCell(0, 1, new Zel2Rect, 2, 1);
        Add(table,
            "columns 2, rows 3, count 6, spans[0].columnSpans[1] 2, spans[0].rowSpans[1] 1, slots[2].present "
            "1, "
            "slots[3].present 0");
        auto* graphs = new Zel2GraphTable(1, 2, CSize(900, 800));
        graphs->SetMargins(31, 32, 33, 34);
        Add(graphs,
            "marginLeft 31, marginTop 32, marginRight 33, marginBottom 34, graphColumns 1, graphRows 2");
        Add(new Zel2Row(Zel2Row::SHRINK), "flags 2, count 0");
        Add(new Zel2Column(1), "flags 1, size.cx 0");
        auto* lines = new Zel2TextColumn(CSize(800, 150), 1, 2, 3, 4);
        lines->Add("line");
        Add(lines,
            "lineSize.cx 800, lineSize.cy 150, font 1, format 2, frame 3, background 4, "
            "slots[0].object.text \"line\"");
        auto* texts = new Zel2TextTable(2, 3);
        texts->SetNHeaderRows(1);
        texts->SetStyle(1, 1, 2, 2, Zel2Text("cell", CRect(0, 0, 99, 49), 5, 0, 0, -1, -1, {-1, 0.0F}));
        Add(texts,
            "columns 2, rows 3, headerRows 1, cells[5].present 1, cells[5].text.font 5, cells[0].present 0");
    }

    void AddReport() {
        auto* report = new Zel2Report;
        zel::ReportPaper paper;
        paper.size = CSize(5000, 6000);
        paper.left = 41, paper.top = 42, paper.right = 43, paper.bottom = 44;
        paper.header.left = "hl";
        paper.header.right = "hr";
        paper.header.height = 301;
        paper.header.font = 2;
        paper.header.rule = 3;
        paper.footer.middle = "fm";
        report->SetPaper(paper);
        report->Append(new Zel2Row);
        report->BreakPage();
        report->SelectPage(7);
        Add(report,
            "hasContent 1, pageCount 0, content.count 1, selectedPage 7, breakNext 1, hasPaper 1, "
            "paper.size.cx 5000, paper.size.cy 6000, paper.marginLeft 41, paper.marginTop 42, "
            "paper.marginRight 43, paper.marginBottom 44, paper.header.left \"hl\", paper.header.right "
            "\"hr\", "
            "paper.header.height 301, paper.header.font 2, paper.header.rule 3, paper.footer.middle \"fm\", "
            "paper.footer.height 300");
    }

    void AddMapping() {
        Root().Map()->SetWorld(CPoint(1, 2), CPoint(3, 4));
        Root().Map()->SetDevice(CPoint(5, 6), CPoint(7, 8));
        Root().Map()->SetLogical(CPoint(9, 10), CPoint(11, 12));
        Root().Map()->SetAbsoluteZoom(3, 2);
        Know("mapping",
             "world.x1 1, world.y2 4, device.x1 5, device.x2 7, logical.y1 10, zoomNumerator 3, "
             "zoomDenominator 2");
    }

    KnownDrawing known_;
};

}  // namespace

KnownDrawing MakeKnownDrawing() {
    return Maker().Make();
}

}  // namespace zel::test
