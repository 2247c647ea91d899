// Charts on pixels: what must hold to the last of them.
#include "Support.h"

#include <zel/qt/ImageDevice.h>
#include <zel/qt/Install.h>
#include <zel/zel.h>

#include <QImage>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace {

class ChartPixels : public testing::Test {
  protected:
    ChartPixels() {
        zel::qt::Install();
        root.SetRules(ZelRules::EXACT);
        chart->X().Show(false).ShowGrid(false);
        chart->Y().Show(false).ShowGrid(false);
    }
    QImage Png(double dotsPerInch) {
        zel::ExportOptions options;
        options.dotsPerInch = dotsPerInch;
        zel::Export(root, (folder / "a.png").c_str(), options);
        return QImage(QString::fromStdString(folder / "a.png")).convertToFormat(QImage::Format_RGB32);
    }
    QImage Pdf(int dotsPerInch) {
        zel::Export(root, (folder / "a.pdf").c_str());
        const std::string command = "pdftoppm -singlefile -png -r " + std::to_string(dotsPerInch) + " " +
                                    (folder / "a.pdf") + " " + (folder / "b");
        EXPECT_EQ(zel::test::RunProgram(command).code, 0);
        return QImage(QString::fromStdString(folder / "b.png")).convertToFormat(QImage::Format_RGB32);
    }
    // A place of the plot area, from 0 to 1 from its lower left corner, in pixels of a picture of the chart.
    QPoint At(const QImage& image, double u, double v) {
        const CRect plot = chart->PlotArea();
        const CSize size = root.Size();
        const double x = plot.left + u * (plot.right - plot.left),
                     y = plot.bottom + v * (plot.top - plot.bottom);
        return {static_cast<int>(x / size.cx * image.width()),
                static_cast<int>((1 - y / size.cy) * image.height())};
    }
    zel::test::TemporaryFolder folder;
    Zel2Main root;
    Zel2Chart* chart = root.Add(std::make_unique<Zel2Chart>(zel::ChartOptions{.size = {90, 50}}));
};

// One sees through the bars: a seam or an overlap would have another colour.
TEST_F(ChartPixels, bars_of_histograms_meet) {
    zel::HistogramOptions options{{.color = RGB(0, 0, 255), .opacity = 0.5}};
    double edge = 0;
    std::vector<double> values;
    for (int i = 0; i < 90; ++i) {
        options.edges.push_back(edge);
        values.push_back(edge + 0.01);
        edge += 0.1 + (i * 37 % 11) / 3.0;
    }
    options.edges.push_back(edge);
    chart->AddHistogram(values, options);
    chart->Y().SetRange(0, 1);
    for (const QImage& image : {Png(100), Png(137), Pdf(83), Pdf(150)}) {
        ASSERT_FALSE(image.isNull());
        std::set<QRgb> colors;
        const QPoint left = At(image, 0.01, 0.5), right = At(image, 0.99, 0.5);
        for (int x = left.x(); x <= right.x(); ++x) colors.insert(image.pixel(x, left.y()));
        EXPECT_EQ(colors.size(), 1U) << image.width() << " pixels wide";
        EXPECT_NE(*colors.begin(), 0xFFFFFFFFU);
    }
}

// Each pixel of the plot area has the colour of the value of the cell that it lies in; pixels on edges aside.
TEST_F(ChartPixels, cells_have_the_colours_of_their_values) {
    const std::vector<double> edgesX{1, 2, 5, 6, 20, 40, 100}, edgesY{-3, -1, 0, 4};
    std::vector<double> values;
    for (int i = 0; i < 18; ++i) values.push_back(i == 7 ? NAN : (i * 5 % 18) * 1.5);
    for (const int kind : {0, 1, 2}) {
        while (!chart->Layers().empty()) chart->Del(chart->Layers().front());
        zel::HeatMapOptions options;
        options.edges = true;
        options.colors.bar = kind == 1;
        auto* heat = chart->AddHeatMap(edgesX, edgesY, values, options);
        kind == 2 ? chart->X().SetLogarithm() : chart->X().SetLinear();
        chart->Y().SetReversed(kind == 1);
        if (kind == 0) chart->X().SetRange(1.5, 30);
        const QImage image = Png(137);
        const zel::Scale x = chart->ScaleOf(0), y = chart->ScaleOf(1);
        int checked = 0;
        for (int i = 1; i < 100; ++i) {
            for (int k = 1; k < 40; ++k) {
                const QPoint at = At(image, i / 100.0, k / 40.0);
                const double valueX = x.ValueAt(i / 100.0), valueY = y.ValueAt(k / 40.0);
                const auto cell = [](const std::vector<double>& edges, double value) {
                    return static_cast<std::size_t>(std::upper_bound(edges.begin(), edges.end(), value) -
                                                    edges.begin()) -
                           1;
                };
                const auto near = [](const std::vector<double>& edges, const zel::Scale& scale, double u) {
                    return std::any_of(edges.begin(), edges.end(), [&](double edge) {
                        return std::fabs(scale.PlaceOf(edge).value_or(9) - u) < 0.02;
                    });
                };
                if (near(edgesX, x, i / 100.0) || near(edgesY, y, k / 40.0)) continue;
                const double value = values[cell(edgesY, valueY) * 6 + cell(edgesX, valueX)];
                const QRgb expected = std::isnan(value) ? 0xFFFFFFFF : heat->Key().PixelOf(value);
                EXPECT_EQ(image.pixel(at), expected) << kind << ": " << valueX << ", " << valueY;
                ++checked;
            }
        }
        EXPECT_GT(checked, 2000);
    }
    const std::string images = zel::test::RunProgram("pdfimages -list " + (Pdf(50), folder / "a.pdf")).text;
    EXPECT_LE(std::count(images.begin(), images.end(), '\n'), 4) << "one image, and its mask:\n" << images;
}

// A pixel with one point of many has the colour of one, that with most the last colour.
TEST_F(ChartPixels, densities_count_points) {
    std::vector<double> x, y;
    for (int i = 0; i < 40'000; ++i) {  // long enough for an index
        x.push_back(i < 30'000 ? 2.5 : i < 39'999 ? 1.5 : 0.5);
        y.push_back(2);
    }
    chart->AddDensity(x, y);
    chart->X().SetRange(0, 3);
    chart->Y().SetRange(0, 4);
    const QImage image = Png(100);
    const double most = std::log2(30'001);
    const auto expected = [&](double n) { return zel::ColorMap().PixelAt(std::log2(1 + n) / most); };
    std::set<QRgb> colors;
    const QPoint left = At(image, 0.01, 0.5), right = At(image, 0.99, 0.5);
    for (int row = left.y() - 1; row <= left.y() + 1; ++row)
        for (int column = left.x(); column <= right.x(); ++column) colors.insert(image.pixel(column, row));
    EXPECT_EQ(colors, (std::set<QRgb>{expected(1), expected(9'999), expected(30'000), 0xFFFFFFFFU}));
}

}  // namespace
