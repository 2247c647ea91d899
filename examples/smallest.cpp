// The smallest program: columns of data become a chart, a PDF file and a document.
#include <zel/qt/Install.h>
#include <zel/zel.h>

int main() {
    zel::qt::Install();  // images, PDF and SVG through Qt
    const std::vector<double> year{2019, 2020, 2021, 2022, 2023}, high{25.7, 26.9, 29.5, 27.8, 30.1},
        low{-4.2, -1.1, -6.3, -3.0, -2.4};
    Zel2Main root;  // owns everything in the drawing
    auto* chart = root.Add(std::make_unique<Zel2Chart>(zel::ChartOptions{.title = "Extremes of five years"}));
    chart->Y().SetTitle("Temperature").SetUnit("°C");
    chart->AddLine(year, high, {{.name = "highest"}});
    chart->AddLine(year, low, {{.name = "lowest"}});
    zel::Export(root, "extremes.pdf");        // .png .jpg .pdf .svg .wmf by the ending
    zel::SaveDocument(root, "extremes.zel");  // open it next year, go on editing
}
