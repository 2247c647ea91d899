#include "apps/zel/Commands.h"
#include "apps/zel/Dump.h"

#include <zel/zel.h>

#include <cstdio>
#include <iostream>

namespace zel::cli {
namespace {

std::string Hex(COLORREF color) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", GetRValue(color), GetGValue(color), GetBValue(color));
    return text;
}

void PrintTools(Zel2Tools& tools, const std::string& indent) {
    const auto heading = [&](const char* what, int count) {
        std::cout << indent << what << " (" << count << ")\n";
    };
    const auto line = [&](int i, const DrawTool& tool) -> std::ostream& {
        return std::cout << indent << "  " << i << "  \"" << tool.GetName() << "\"";
    };
    heading("colours", tools.Colors()->Size());
    for (int i = 0; i < tools.Colors()->Size(); ++i) {
        const DrawColor& color = *tools.Color(i);
        line(i, color) << "  screen " << Hex(color.ScrColor()) << "  printer " << Hex(color.PrnColor())
                       << "\n";
    }
    heading("pens", tools.Pens()->Size());
    for (int i = 0; i < tools.Pens()->Size(); ++i) {
        const DrawPen& pen = *tools.Pen(i);
        const int style = pen.Style() < 0 ? 6 : pen.Style();
        line(i, pen) << "  " << DrawPen::kStyleNames[static_cast<std::size_t>(style)] << "  "
                     << pen.Width() / 10.0 << " mm  screen " << Hex(pen.ScrColor()) << "  printer "
                     << Hex(pen.PrnColor()) << "\n";
    }
    heading("fonts", tools.Fonts()->Size());
    for (int i = 0; i < tools.Fonts()->Size(); ++i) {
        const DrawFont& font = *tools.Font(i);
        line(i, font) << "  " << font.FontName() << " " << font.PtSize10() / 10.0 << " pt"
                      << (font.Bold() ? " bold" : "") << (font.Italic() ? " italic" : "") << "\n";
    }
    heading("symbols", tools.Symbols()->Size());
    for (int i = 0; i < tools.Symbols()->Size(); ++i) {
        DrawSymbol& symbol = *tools.Symbol(i);
        line(i, symbol) << "  type " << symbol.GetType() << "  size " << symbol.Size().cx << " x "
                        << symbol.Size().cy << "\n";
    }
}

void PrintObject(Zel2& object, const std::string& indent);

void PrintSource(const Zel2DaoPointSet& series) {
    const Zel2DaoPointSet::Source& from = series.GetSource();
    std::cout << "  from " << (from.database.IsEmpty() ? from.connect : from.database).GetString() << ": "
              << from.x.GetString() << ", " << from.y.GetString() << " of " << from.table.GetString();
    if (!from.where.IsEmpty()) std::cout << " where " << from.where.GetString();
}

void PrintChildren(Zel2Set& set, const std::string& indent) {
    for (int i = 0; i < set.GetCount(); ++i) {
        if (set[i])
            PrintObject(*set[i], indent);
        else
            std::cout << indent << "(empty)\n";
    }
}

void PrintObject(Zel2& object, const std::string& indent) {
    const CSize size = object.Size();
    std::cout << indent << object.GetRuntimeClass()->m_lpszClassName << "  at " << object.Origin().x << ","
              << object.Origin().y;
    if (size.cx || size.cy) std::cout << "  size " << size.cx << " x " << size.cy;
    if (auto* points = dynamic_cast<Zel2PointSet*>(&object))
        std::cout << "  " << points->NPoints() << " points";
    if (auto* series = dynamic_cast<Zel2DaoPointSet*>(&object)) PrintSource(*series);
    if (auto* layer = dynamic_cast<Zel2Layer*>(&object))
        std::cout << "  \"" << layer->Name() << "\"  " << layer->Rows() << " rows";
    auto* const xy = dynamic_cast<Zel2XYLayer*>(&object);
    if (auto* series = xy ? dynamic_cast<Zel2DaoPointSet*>(xy->Source()) : nullptr) PrintSource(*series);
    if (auto* chart = dynamic_cast<Zel2Chart*>(&object)) std::cout << "  \"" << chart->Title() << "\"";
    if (auto* text = dynamic_cast<Zel2Text*>(&object)) std::cout << "  \"" << text->GetText() << "\"";
    if (auto* graph = dynamic_cast<Zel2Graph*>(&object)) {
        double x0, y0, x1, y1;
        graph->GetFloatRect(x0, y0, x1, y1);
        std::cout << "  x " << x0 << " .. " << x1 << "  y " << y0 << " .. " << y1;
    }
    std::cout << "\n";
    if (auto* graph = dynamic_cast<Zel2Graph*>(&object)) PrintChildren(graph->Inner(), indent + "  ");
    if (auto* set = dynamic_cast<Zel2Set*>(&object)) PrintChildren(*set, indent + "  ");
}

void PrintSummary(const std::string& path) {
    const auto drawing = LoadDocument(path.c_str());
    const CSize size = drawing->Size();
    std::cout << path << ": " << size.cx << " x " << size.cy << " thousandths of an inch, "
              << (drawing->Rules() == ZelRules::EXACT ? "exact" : "classic") << " rules\n";
    PrintObject(*drawing, "");
    PrintTools(*drawing, "");
}

}  // namespace

void AddInfoCommand(CLI::App& app) {
    CLI::App* command = app.add_subcommand("info", "Print what is in a drawing: objects, tools, sizes");
    auto input = std::make_shared<std::string>();
    auto dump = std::make_shared<bool>(false);
    command->add_option("drawing", *input, "Document (.zel) to read; with --dump also a classic archive")
        ->required();
    command->add_flag("--dump", *dump,
                      "Print every value of the content with its offset, up to where the file is broken");
    command->footer("Examples:\n  zel info drawing.zel\n  zel info --dump broken.zel");
    command->callback([input, dump] {
        if (!*dump) {
            PrintSummary(*input);
            return;
        }
        PrintDump(input->c_str(), std::cout);
    });
}

}  // namespace zel::cli
