#include "Program.h"
#include "backends/widgets/Printer.h"

#include <QDir>
#include <QGraphicsItem>
#include <QGraphicsView>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QProcess>

#include <algorithm>

namespace {

using zel::test::Program;
using zel::test::TemporaryFolder;

constexpr int kDotsPerInch = 80;
constexpr int kBlock = 4;  // pixels; within them the two rasterisers may differ

// What people see in the preview, and what the printer gets.
class Printing : public Program {
  protected:
    // A report of several pages: a graph and a table, which clip, boxes and texts.
    void OpenReport() {
        Zel2Main drawing;
        drawing.SetRules(ZelRules::EXACT);
        auto* const report = new Zel2Report;
        drawing.Add(report);
        zel::ReportPaper paper;
        paper.footer.middle = "Page {page} of {pages}";
        report->SetPaper(paper);
        const int grey = report->RegisterColor("Box", RGB(120, 160, 220), RGB(200, 200, 200));
        const int pen = report->RegisterPen("Frame", DrawPen::SOLID, 5, RGB(0, 0, 90), 0, nullptr);
        report->RegisterFont("Text", "Arial", 240, 1, 0, 0, 0, RGB(200, 0, 0), RGB(60, 60, 60));
        auto* const graph = new Zel2Graph;
        graph->SetGraphSize(CSize(5000, 3000));
        graph->SetCoord(0, 0, 10, 100);
        auto* const series = new Zel2PointArray;
        for (int x = 0; x <= 10; ++x) series->Append(x, x * x);
        report->Append(graph);
        series->SetPen(pen);
        graph->AddIn(series);
        for (int i = 0; i < 4; ++i) {
            auto* const box = new Zel2TRect(CRect(0, 0, 4000, 3000 + 500 * i),
                                            ("Text number " + std::to_string(i)).c_str(), pen, grey);
            box->SetFont(0);
            report->Append(box);
        }
        auto* const table = new Zel2TextTable(3, 120);
        table->SetStyle(0, 0, 2, 119, Zel2Text("", CRect(0, 0, 1499, 199), 0, 0, 0, -1, grey, {-1, 0.0F}));
        for (int row = 0; row < 120; ++row) table->SetText(row % 3, row, "cell %d", row);
        report->Append(table);
        report->MakePages();
        const std::string path = folder_ / "report.zel";
        zel::SaveDocument(drawing, path.c_str());
        ASSERT_TRUE(window_.Open(QString::fromStdString(path)));
    }
    // The pages that the preview shows, without the desk around them.
    std::vector<QImage> Previewed() {
        std::vector<QImage> pages;
        Soon([&] {
            auto* const dialog = qobject_cast<QPrintPreviewDialog*>(QApplication::activeModalWidget());
            if (!dialog) return false;
            dialog->findChild<QPrintPreviewWidget*>()->setViewMode(QPrintPreviewWidget::AllPagesView);
            auto* const shown = dialog->findChild<QGraphicsView*>();
            Settle();
            std::vector<QGraphicsItem*> items;
            for (QGraphicsItem* item : shown->scene()->items()) items.push_back(item);
            std::stable_sort(items.begin(), items.end(), [](const auto* a, const auto* b) {
                return std::pair(a->pos().y(), a->pos().x()) < std::pair(b->pos().y(), b->pos().x());
            });
            for (QGraphicsItem* item : items) pages.push_back(Picture(*shown->scene(), *item));
            dialog->close();
            return true;
        });
        Do("preview");
        return pages;
    }
    // The page that the item shows, which has a border of a 25th of its paper's height for the shadow.
    static QImage Picture(QGraphicsScene& scene, const QGraphicsItem& item) {
        const double border = item.boundingRect().height() / 27;
        const QRectF paper = item.boundingRect().adjusted(border, border, -border, -border);
        const double inches = paper.height() > 1.35 * paper.width() ? 297 / 25.4 : 11;
        const double scale = inches * kDotsPerInch / paper.height();
        QImage image((paper.size() * scale).toSize(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        scene.render(&painter, image.rect(), item.mapRectToScene(paper));
        return image;
    }
    std::vector<QImage> Printed() {
        const QString path = QString::fromStdString(folder_ / "printed.pdf");
        auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setOutputFileName(path);
        const auto paper = zel::widgets::PagesOn(std::move(printer));
        window_.View().PrintTo(*paper);
        return PagesOf(path);
    }
    static std::vector<QImage> PagesOf(const QString& path) {
        QProcess reader;
        const TemporaryFolder pictures;
        const QString folder = QString::fromStdString(pictures / "");
        reader.start("pdftoppm", {"-r", QString::number(kDotsPerInch), "-png", path, folder + "page"});
        EXPECT_TRUE(reader.waitForFinished()) << "the reader of PDF is missing";
        std::vector<QImage> pages;
        for (const QString& name : QDir(folder).entryList({"page*.png"}, QDir::Files, QDir::Name))
            pages.push_back(QImage(folder + name).convertToFormat(QImage::Format_RGB32));
        return pages;
    }
    // The left-most and the upper-most ink.
    static QPoint FirstInk(const QImage& page) {
        QPoint first(page.width(), page.height());
        for (int y = 0; y < page.height(); ++y) {
            for (int x = 0; x < page.width(); ++x) {
                if (qGray(page.pixel(x, y)) > 200) continue;
                first = {std::min(first.x(), x), std::min(first.y(), y)};
            }
        }
        return first;
    }
    // The mean brightness of the blocks, by which pictures of different rasterisers are compared.
    static QImage Blocks(const QImage& page) {
        return page.scaled(page.size() / kBlock, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32);
    }
    static int Apart(const QColor& p, const QColor& q) {
        return std::max(
            {std::abs(p.red() - q.red()), std::abs(p.green() - q.green()), std::abs(p.blue() - q.blue())});
    }
    // Blocks of `a` of which nothing alike is there in `b`: thin lines may fall into a neighbour.
    static int Missing(const QImage& a, const QImage& b) {
        constexpr int kAlike = 64;
        int missing = 0;
        for (int y = 1; y + 1 < a.height(); ++y) {
            for (int x = 1; x + 1 < a.width(); ++x) {
                bool found = false;
                for (int i = 0; i < 9 && !found; ++i)
                    found = Apart(a.pixelColor(x, y), b.pixelColor(x + i % 3 - 1, y + i / 3 - 1)) <= kAlike;
                missing += found ? 0 : 1;
            }
        }
        return missing;
    }
    static void ExpectAlike(const QImage& a, const QImage& b) {
        ASSERT_NEAR(a.width(), b.width(), 2);
        ASSERT_NEAR(a.height(), b.height(), 2);
        const QImage one = Blocks(a), other = Blocks(b.scaled(a.size()));
        QImage blank = one;
        blank.fill(Qt::white);
        EXPECT_GT(Missing(one, blank), 50) << "there is something on the page";
        EXPECT_LE(Missing(one, other), 5);
        EXPECT_LE(Missing(other, one), 5);
        double sum = 0;
        for (int y = 0; y < one.height(); ++y)
            for (int x = 0; x < one.width(); ++x) sum += Apart(one.pixelColor(x, y), other.pixelColor(x, y));
        EXPECT_LE(sum / (one.width() * one.height()), 3) << "of 255, on the mean";
    }
};

TEST_F(Printing, PaperEqualsThePreviewPageByPage) {
    const std::vector<QImage> single = Previewed();
    const std::vector<QImage> onPaper = Printed();
    ASSERT_EQ(single.size(), 1U);
    ASSERT_EQ(onPaper.size(), 1U);
    ExpectAlike(single[0], onPaper[0]);
    OpenReport();
    Do("page_last");
    Click(QPoint(5, 5));
    const std::vector<QImage> previewed = Previewed();
    const std::vector<QImage> printed = Printed();
    ASSERT_EQ(previewed.size(), static_cast<std::size_t>(window_.View().Report()->PageCount()));
    ASSERT_EQ(printed.size(), previewed.size());
    for (std::size_t page = 0; page < printed.size(); ++page) {
        SCOPED_TRACE(page);
        ExpectAlike(previewed[page], printed[page]);
    }
    EXPECT_NE(previewed[0], previewed[1]);
    // The printer's margins move nothing: the ink begins where it does in the exported file.
    const auto drawing = zel::LoadDocument((folder_ / "report.zel").c_str());
    const std::string path = folder_ / "exported.pdf";
    zel::ExportOptions asPrinted;
    asPrinted.printerTools = true;
    zel::ExportReport(*drawing, dynamic_cast<Zel2Report&>(*(*drawing)[0]), path.c_str(), asPrinted);
    const std::vector<QImage> exported = PagesOf(QString::fromStdString(path));
    ASSERT_EQ(exported.size(), printed.size());
    const QPoint one = FirstInk(exported[0]), other = FirstInk(printed[0]);
    EXPECT_NEAR(one.x(), other.x(), 1);
    EXPECT_NEAR(one.y(), other.y(), 1);
}

}  // namespace
