// Writes small drawings of every class as seeds for the fuzz target.
#include <zel/platform/Archive.h>
#include <zel/platform/File.h>
#include <zel/zel.h>

#include <fstream>
#include <string>

namespace {

void Fill(Zel2Main& root) {
    const int pen = root.RegisterPen("p", DrawPen::DASH, 2, 1, 2, nullptr);
    const int color = root.RegisterColor("c", 3, 4);
    const int font = root.RegisterFont("f", "Arial", 90, 0, 0, 0, 0, 5, 6);
    int xs[] = {0, 100, 50}, ys[] = {0, 0, 100};
    const int symbol = root.RegisterSymbol("s", CSize(50, 50), zel::SYMBOL_CUSTOM, "A", 1, 0, 0, 0, 0, 1,
                                           "Arial", 80, 0, 0, xs, ys, 3);
    auto* graph = new Zel2Graph;
    graph->SetGraphSize(CSize(900, 700));
    graph->SetMargins(90, 90, 90, 90);
    graph->SetCoord(0, 0, 4, 4);
    root.Add(graph);
    auto* points = new Zel2PointArray;
    points->SetPoints({1, 2, 3}, {1, 3, 2});
    points->SetPen(pen);
    points->SetColor(color);
    points->SetSymbol(symbol, true);
    graph->AddIn(points);
    graph->AddIn(new Zel2DaoPointSet);
    root.Add(nullptr);
    root.Add(new Zel2Rect(CRect(10, 10, 90, 90), pen, color, Zel2Rect::ELLIPSE, -1));
    root.Add(new Zel2Text("text", CPoint(100, 100), font, 0, 300, -1, -1, {pen, 0.5F}));
}

void WriteSeed(Zel2Main& root, const std::string& folder, int first) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    ar.SetDialect(first & 1 ? CArchive::Dialect::COMPLETE : CArchive::Dialect::CLASSIC);
    root.Serialize(ar);
    ar.Close();
    std::ofstream seed(folder + "/seed" + std::to_string(first), std::ios::binary);
    seed.put(static_cast<char>(first));
    seed.write(reinterpret_cast<const char*>(file.GetData()), static_cast<std::streamsize>(file.GetLength()));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    Zel2Main root;
    Fill(root);
    for (int first = 0; first < 4; ++first) WriteSeed(root, argv[1], first);
    return 0;
}
