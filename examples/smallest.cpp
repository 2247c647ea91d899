// The smallest complete program: a curve as a PDF file and as a document.
#include <zel/qt/Install.h>
#include <zel/zel.h>

int main() {
    zel::qt::Install();              // images, PDF and SVG through Qt
    Zel2Main root;                   // owns everything in the drawing
    root.SetRules(ZelRules::EXACT);  // for new drawings
    auto* graph = new Zel2Graph;
    root.Add(graph);
    graph->SetCoord(0, 0, 10, 100);  // the world at the edges of the plot area
    auto* points = new Zel2PointArray;
    for (int x = 0; x <= 10; ++x) points->Append(x, x * x);
    points->SetPen(root.RegisterPen("Curve", DrawPen::SOLID, 4, RGB(200, 30, 30), RGB(0, 0, 0), nullptr));
    graph->AddIn(points);
    zel::Export(root, "curve.pdf");        // .png .jpg .pdf .svg .wmf by the ending
    zel::SaveDocument(root, "curve.zel");  // open it next year, go on editing
}
