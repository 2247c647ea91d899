// A program outside the library's tree: a parabola as a picture.
#include <zel/odbc/Install.h>
#include <zel/qt/Install.h>
#include <zel/sqlite/Install.h>
#include <zel/zel.h>

#include <cstdio>
#include <exception>

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    try {
        zel::qt::Install();
        zel::sqlite::Install();
        zel::odbc::Install();
        Zel2Main root;
        auto* graph = new Zel2Graph;
        root.Add(graph);
        graph->SetGraphSize(CSize(5000, 4000));
        graph->SetCoord(-1, 0, 1, 1);
        auto* points = new Zel2PointArray;
        for (int i = -50; i <= 50; ++i) points->Append(i / 50.0, i * i / 2500.0);
        points->SetPen(root.RegisterPen("parabola", DrawPen::SOLID, 4, RGB(200, 0, 0), 0, nullptr));
        graph->AddIn(points);
        zel::Export(root, argv[1]);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}
