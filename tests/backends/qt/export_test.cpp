#include "Support.h"

#include <zel/platform/Platform.h>
#include <zel/platform/Warning.h>
#include <zel/qt/Install.h>
#include <zel/zel.h>

#include <QImage>
#include <QXmlStreamReader>

#include <clocale>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace {

using zel::test::Content;
using zel::test::MessageOf;
using zel::test::RunProgram;
using zel::test::TemporaryFolder;

class Files : public testing::Test {
  protected:
    Files() {
        zel::qt::Install();
        root_.SetRules(ZelRules::EXACT);
        root_.Add(graph_);
        graph_->SetGraphSize(CSize(4000, 3000));
        graph_->SetCoord(0, 0, 10, 1);
        auto* points = new Zel2PointArray;
        points->SetPoints({1, 5, 9}, {0.2, 0.9, 0.4});
        points->SetPen(root_.RegisterPen("line", DrawPen::SOLID, 4, RGB(200, 0, 0), RGB(0, 0, 0), nullptr));
        graph_->AddIn(points);
        const int font = root_.RegisterFont("text", "Arial", 120, 0, 0, 0, 0, 0, 0);
        root_.Add(new Zel2Text("Temperature in °C, 3 µm, café", CPoint(2000, 2800), font, DT_CENTER, 0, -1,
                               -1, {-1, 0.0F}));
        root_.Add(new Zel2Text("upward label", CPoint(100, 1500), font, DT_CENTER, 900, -1, -1, {-1, 0.0F}));
    }
    std::string Written(const char* name, const zel::ExportOptions& options = {}) {
        const std::string path = folder_ / name;
        zel::Export(root_, path.c_str(), options);
        return path;
    }
    TemporaryFolder folder_;
    Zel2Main root_;
    Zel2Graph* graph_ = new Zel2Graph;
};

TEST_F(Files, PdfTextIsFoundAndItsFontsAreEmbedded) {
    zel::ExportOptions options;
    options.title = "A title";
    ASSERT_TRUE(zel::SetPaper(options, "A4", true));
    const std::string path = Written("a.pdf", options);
    const std::string text = RunProgram("pdftotext -layout " + path + " -").text;
    EXPECT_THAT(text, testing::HasSubstr("Temperature in °C, 3 µm, café"));
    EXPECT_THAT(text, testing::HasSubstr("upward label"));
    EXPECT_THAT(text, testing::HasSubstr("0.6"));
    EXPECT_THAT(RunProgram("pdffonts " + path).text, testing::ContainsRegex("LiberationSans .* yes no  yes"));
    const std::string info = RunProgram("pdfinfo " + path).text;
    EXPECT_THAT(info, testing::HasSubstr("842 x 595 pts (A4)"));
    EXPECT_THAT(info, testing::HasSubstr("A title"));
    EXPECT_THAT(RunProgram("pdfimages -list " + path).text, testing::Not(testing::HasSubstr("image")))
        << "all vectors";
    EXPECT_FALSE(zel::SetPaper(options, "A17", false));
}

TEST_F(Files, SvgKeepsTextAndLines) {
    const std::string content = Content(Written("a.svg"));
    QXmlStreamReader xml(QByteArray::fromStdString(content));
    int polylines = 0;
    QStringList texts;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        if (xml.name() == QLatin1String("polyline")) ++polylines;
        if (xml.name() == QLatin1String("text")) texts << xml.readElementText();
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_GT(polylines, 5);
    EXPECT_TRUE(texts.contains(QString::fromUtf8("Temperature in °C, 3 µm, café")));
    EXPECT_THAT(content, testing::HasSubstr("width=\"4in\""));
}

TEST_F(Files, ImagesHaveTheirSizeAndResolution) {
    zel::ExportOptions options;
    options.dotsPerInch = 200;
    QImage image(QString::fromStdString(Written("a.png", options)));
    EXPECT_EQ(image.size(), QSize(800, 600));
    EXPECT_NEAR(image.dotsPerMeterX() * 0.0254, 200, 0.5);
    options.pixelWidth = 500;
    options.transparent = true;
    image.load(QString::fromStdString(Written("b.PNG", options)));
    EXPECT_EQ(image.size(), QSize(500, 375));
    options.quality = 50;
    EXPECT_EQ(Content(Written("c.jpg", options)).substr(0, 2), "\xFF\xD8");
    // On a paper half its size the drawing is shrunk to fit, and stays itself.
    options = {};
    options.paperWidth = options.paperHeight = 50;
    image.load(QString::fromStdString(Written("d.png", options)));
    EXPECT_EQ(image.size(), QSize(295, 295));
    EXPECT_EQ(image.pixel(2, 2), 0xFFFFFFFF);
    // Within a margin of a fifth of the paper on each side.
    options.margin = 10;
    options.dotsPerInch = 254;
    image.load(QString::fromStdString(Written("e.png", options)));
    ASSERT_EQ(image.size(), QSize(500, 500));
    QRect inked;
    for (int y = 0; y < 500; ++y) {
        for (int x = 0; x < 500; ++x) {
            if (image.pixel(x, y) != 0xFFFFFFFF) inked |= QRect(x, y, 1, 1);
        }
    }
    EXPECT_NEAR(inked.left(), 100, 2);
    EXPECT_NEAR(inked.right(), 400, 2);
    EXPECT_NEAR(inked.center().y(), 250, 2);
}

TEST_F(Files, PrinterToolsComeFromPrinting) {
    zel::ExportOptions options;
    const auto reds = [](const std::string& path) {
        const QImage image(QString::fromStdString(path));
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                count += qRed(image.pixel(x, y)) > 150 && qGreen(image.pixel(x, y)) < 60;
        }
        return count;
    };
    EXPECT_GT(reds(Written("screen.png", options)), 100);
    options.printerTools = true;
    EXPECT_EQ(reds(Written("printer.png", options)), 0);
}

TEST_F(Files, FailWholeAndWithAReason) {
    const std::string path = folder_ / "old.png";
    std::ofstream(path) << "old";
    EXPECT_THAT(MessageOf<zel::FileError>([&] { zel::Export(root_, "/no/such/folder/a.png"); }),
                testing::HasSubstr("/no/such/folder/a.png"));
    EXPECT_THAT(MessageOf<zel::FileError>([&] { zel::Export(root_, "/no/such/folder/a.pdf"); }),
                testing::HasSubstr("No such file"));
    EXPECT_THAT(MessageOf<zel::Error>([&] { zel::Export(root_, (folder_ / "a.xyz").c_str()); }),
                testing::HasSubstr(".pdf .png .jpg .svg .wmf"));
    EXPECT_EQ(Content(path), "old");
    EXPECT_EQ(folder_.FileCount(), 1U) << "no temporary file stays";
}

TEST_F(Files, ProgramsAddFormats) {
    zel::FileFormat thumbnail = zel::ExportFormatOf("a.PNG");
    const auto png = thumbnail.create;
    thumbnail.endings = {"thumb", "tmb"};
    thumbnail.create = [png](zel::FileDeviceOptions options) {
        options.format = "png";
        return png(options);
    };
    zel::AddExportFormat(thumbnail);
    EXPECT_EQ(Content(Written("a.tmb")), Content(Written("a.png")));
    EXPECT_THAT(zel::ExportFormats().back().endings, testing::ElementsAre("thumb", "tmb"));
    thumbnail.endings = {"tmb"};
    thumbnail.name = "later";
    zel::AddExportFormat(thumbnail);
    EXPECT_EQ(zel::ExportFormatOf("x.tmb").name, "later") << "the last one stands for its endings";
    EXPECT_THAT(MessageOf<zel::Error>([] { zel::AddExportFormat({.endings = {"x"}, .name = "none"}); }),
                testing::HasSubstr("none"));
}

TEST_F(Files, KeepTheOldOneWhenTheDiskIsFull) {
    // Noise, so that every format needs more than its first buffer.
    auto* points = new Zel2PointArray;
    for (int i = 0; i < 20000; ++i) points->Append(i / 2000.0, (i * 7919 % 10007) / 10007.0);
    points->SetPen(0);
    graph_->AddIn(points);
    for (const char* name : {"a.png", "a.jpg", "a.pdf", "a.svg", "a.wmf"}) {
        const std::string path = folder_ / name;
        const std::size_t whole = Content(Written(name)).size();
        for (const std::size_t room : {std::size_t{0}, std::size_t{1000}, whole - 1}) {
            std::ofstream(path) << "old";
            std::string message;
            {
                const zel::test::FullDisk full(room);
                message = MessageOf<zel::FileError>([&] { zel::Export(root_, path.c_str()); });
            }
            EXPECT_THAT(message, testing::AllOf(testing::HasSubstr(name), testing::HasSubstr("too large")))
                << name << " in " << room;
            EXPECT_EQ(Content(path), "old") << name << " in " << room;
        }
        std::filesystem::remove(path);
        EXPECT_EQ(folder_.FileCount(), 0U) << name;
    }
}

TEST_F(Files, PdfHasAsManyPagesAsAreBegun) {
    zel::FileDeviceOptions options;
    options.path = folder_ / "pages.pdf";
    options.format = "pdf";
    options.width = 4;
    options.height = 3;
    { const auto abandoned = zel::Platform::Get().CreateFileDevice(options); }
    EXPECT_EQ(folder_.FileCount(), 0U) << "nothing stays of a file that was not finished";
    const auto device = zel::Platform::Get().CreateFileDevice(options);
    for (int page = 0; page < 3; ++page) {
        if (page > 0) device->NewPage();
        CDC dc(*device);
        CPen dashed(PS_DASH, 0, RGB(0, 0, 255));
        CBrush hatched(HS_DIAGCROSS, RGB(255, 0, 0));
        CPen* pen = dc.SelectObject(&dashed);
        CBrush* brush = dc.SelectObject(&hatched);
        dc.Rectangle(600, 600, 2400, 1800);
        dc.SelectObject(pen);
        dc.SelectObject(brush);
        const CString number(std::to_string(page + 1));
        dc.TextOut(1200, 2400, "page " + number);
    }
    device->Finish();
    const std::string text = RunProgram("pdftotext " + options.path + " -").text;
    EXPECT_THAT(text, testing::AllOf(testing::HasSubstr("page 1"), testing::HasSubstr("page 3")));
    EXPECT_THAT(RunProgram("pdfinfo " + options.path).text, testing::HasSubstr("Pages:           3"));
    EXPECT_THAT(RunProgram("pdfimages -list " + options.path).text, testing::Not(testing::HasSubstr("image")))
        << "hatches are lines";
}

TEST_F(Files, SvgDrawsHatchesAndClips) {
    zel::FileDeviceOptions options;
    options.path = folder_ / "a.svg";
    options.format = "svg";
    options.width = options.height = 2;
    options.title = "A & B";
    const auto device = zel::Platform::Get().CreateFileDevice(options);
    {
        CDC dc(*device);
        CBrush hatched(HS_CROSS, RGB(255, 0, 0));
        CBrush* brush = dc.SelectObject(&hatched);
        dc.SaveDC();
        dc.IntersectClipRect(0, 0, 1000, 1000);
        dc.Ellipse(100, 100, 2000, 2000);
        dc.RestoreDC(-1);
        dc.SelectObject(brush);
        dc.MoveTo(0, 0);
        dc.LineTo(5, 5);
    }
    EXPECT_NE(MessageOf<CNotSupportedException>([&] { device->NewPage(); }), "");
    device->Finish();
    const std::string svg = Content(options.path);
    EXPECT_THAT(svg, testing::AllOf(testing::HasSubstr("<title>A &amp; B</title>"),
                                    testing::HasSubstr("fill=\"url(#hatch"),
                                    testing::HasSubstr("clip-path=\"url(#clip")));
    QXmlStreamReader xml(QByteArray::fromStdString(svg));
    while (!xml.atEnd()) xml.readNext();
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
}

// Four shapes, each in a raster mode, and lines of two pens; 96 units are an inch.
void DrawPensAndModes(CDC& dc) {
    dc.SetMapMode(MM_ANISOTROPIC);
    dc.SetWindowExt(192, 192);
    dc.SetViewportExt(dc.GetDeviceCaps(HORZRES), dc.GetDeviceCaps(VERTRES));
    CPen dashed(PS_DASH, 0, RGB(0, 0, 255)), none(PS_NULL, 0, 0), wide(PS_DASH, 4, RGB(0, 0, 255));
    CBrush red(RGB(255, 0, 0));
    CPen* pen = dc.SelectObject(&dashed);
    CBrush* brush = dc.SelectObject(&red);
    dc.MoveTo(0, 100), dc.LineTo(192, 100);
    dc.SelectObject(&wide);
    dc.MoveTo(0, 150), dc.LineTo(192, 150);
    dc.SelectObject(&none);
    const int modes[] = {R2_COPYPEN, R2_NOP, R2_BLACK};
    for (int i = 0; i < 3; ++i) {
        dc.SetROP2(modes[i]);
        dc.Rectangle(10 + 60 * i, 10, 50 + 60 * i, 30);
        dc.Ellipse(10 + 60 * i, 50, 50 + 60 * i, 70);
    }
    dc.SelectObject(pen);
    dc.SelectObject(brush);
}

TEST_F(Files, KeepDashesAndRasterModesInVectors) {
    for (const char* format : {"pdf", "svg", "png"}) {
        zel::FileDeviceOptions options;
        options.path = folder_ / (std::string("a.") + format);
        options.format = format;
        options.width = options.height = 2;
        options.dotsPerInch = 96;
        const auto device = zel::Platform::Get().CreateFileDevice(options);
        {
            CDC dc(*device);
            DrawPensAndModes(dc);
        }
        device->Finish();
        std::string picture = options.path;
        if (std::string(format) != "png") {
            const char* const command = std::string(format) == "pdf"
                                            ? "pdftoppm -r 96 -png -singlefile %s %s"
                                            : "rsvg-convert -d 96 -p 96 %s -o %s.png";
            char line[1000];
            picture = folder_ / (std::string("seen-") + format);
            std::snprintf(line, sizeof line, command, options.path.c_str(), picture.c_str());
            const auto reader = RunProgram(line);
            ASSERT_EQ(reader.code, 0) << reader.text;
            picture += ".png";
        }
        const QImage image(QString::fromStdString(picture));
        ASSERT_EQ(image.size(), QSize(192, 192)) << format;
        for (const int y : {20, 60}) {
            EXPECT_EQ(image.pixel(30, y), 0xFFFF0000) << format;
            EXPECT_EQ(image.pixel(90, y), 0xFFFFFFFF) << format << ": no ink at all";
            EXPECT_EQ(image.pixel(150, y), 0xFF000000) << format;
        }
        const auto isInked = [&](int x, int y) {
            return qRed(image.pixel(x, y - 1)) < 250 || qRed(image.pixel(x, y)) < 250;
        };
        for (int x = 0; x < 192; ++x) {
            const int phase = x % 24;
            if (phase > 1 && phase < 16) {
                EXPECT_TRUE(isInked(x, 100)) << format << " at " << x;
            }
            if (phase > 19 && phase < 22) {
                EXPECT_FALSE(isInked(x, 100)) << format << " at " << x;
            }
            if (x > 3 && x < 188) {
                EXPECT_TRUE(isInked(x, 150)) << format << ": wide pens are solid";
            }
        }
    }
}

// Texts and lines are held back while a page is described: what is drawn over them still covers them, and
// what they are drawn over stays below.
TEST_F(Files, PdfKeepsTheOrderOfWhatOverlaps) {
    zel::FileDeviceOptions options;
    options.path = folder_ / "a.pdf";
    options.format = "pdf";
    options.width = options.height = 2;
    const auto device = zel::Platform::Get().CreateFileDevice(options);
    {
        CDC dc(*device);
        CPen thick(PS_SOLID, 200, RGB(0, 0, 255)), other(PS_SOLID, 200, RGB(0, 128, 0));
        CFont font;
        font.CreateFont(-600, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
        CFont* previousFont = dc.SelectObject(&font);
        CPen* previousPen = dc.SelectObject(&thick);
        dc.SetBkMode(TRANSPARENT);
        const auto line = [&](int y) { dc.MoveTo(100, y), dc.LineTo(2300, y); };
        dc.TextOut(200, 100, "HHHH", 4);  // below the line
        line(500);
        line(1500);  // below the text
        dc.TextOut(200, 1100, "HHHH", 4);
        dc.SelectObject(&other);
        line(1500 + 700);
        dc.SelectObject(previousPen);
        dc.SelectObject(previousFont);
    }
    device->Finish();
    const std::string seen = folder_ / "seen";
    ASSERT_EQ(RunProgram("pdftoppm -r 96 -png -singlefile " + options.path + " " + seen).code, 0);
    const QImage image(QString::fromStdString(seen + ".png"));
    const auto count = [&](int y, QRgb color) {
        int n = 0;
        for (int x = 20; x < 170; ++x) n += image.pixel(x, y) == color ? 1 : 0;
        return n;
    };
    EXPECT_EQ(count(40, 0xFF000000), 0) << "the line covers the text";
    EXPECT_GT(count(120, 0xFF000000), 20) << "the text covers the line";
    EXPECT_GT(count(120, 0xFF0000FF), 20);
    EXPECT_EQ(count(176, 0xFF008000), 150);
}

// A dense curve is written as what can be told apart, and looks the same.
TEST_F(Files, VectorsLeaveOutWhatCannotBeSeen) {
    auto* points = new Zel2PointArray;
    std::mt19937 random(2);
    std::normal_distribution<double> step(0, 0.002);
    double y = 0.5;
    for (int i = 0; i < 200'000; ++i)
        points->Append(i / 20'000.0, y = std::clamp(y + step(random), 0.0, 1.0));
    points->SetPen(0);
    graph_->AddIn(points);
    zel::ExportOptions all;
    all.keepAllPoints = true;
    for (const char* format : {"pdf", "svg"}) {
        const std::string thin = Written((std::string("thin.") + format).c_str());
        const std::string whole = Written((std::string("whole.") + format).c_str(), all);
        EXPECT_LT(3 * Content(thin).size(), Content(whole).size()) << format;
        points->Append(10, y);
        for (int i = 0; i < 100'000; ++i) points->Append(10, 0.5);
        EXPECT_LT(Content(Written((std::string("more.") + format).c_str())).size(),
                  Content(thin).size() + 1000)
            << "more points in the last column";
        QImage images[2];
        for (const std::string& file : {thin, whole}) {
            const std::string picture = file + ".png";
            const auto reader = RunProgram(std::string(format) == "pdf"
                                               ? "pdftoppm -r 200 -png -singlefile " + file + " " + file
                                               : "rsvg-convert -d 200 -p 200 " + file + " -o " + picture);
            ASSERT_EQ(reader.code, 0) << reader.text;
            images[file == thin].load(QString::fromStdString(picture));
        }
        ASSERT_FALSE(images[0].isNull());
        int differing = 0;
        for (int row = 0; row < images[0].height(); ++row) {
            for (int x = 0; x < images[0].width(); ++x)
                differing +=
                    std::abs(qGray(images[0].pixel(x, row)) - qGray(images[1].pixel(x, row))) > 24 ? 1 : 0;
        }
        EXPECT_LT(differing, images[0].width() * images[0].height() / 2000) << format;
    }
}

TEST(HostApplication, MayEndBeforeTheLibrary) {
    const TemporaryFolder folder;
    const auto program = RunProgram(std::string(ZEL_HOST_APPLICATION) + " " + (folder / "a.pdf"));
    EXPECT_EQ(program.code, 0) << program.text;
    EXPECT_GT(Content(folder / "a.pdf").size(), 1000U);
}

TEST_F(Files, WriteReportsPageByPage) {
    auto* report = new Zel2Report;
    Zel2Main drawing;
    drawing.SetRules(ZelRules::EXACT);
    drawing.Add(report);
    zel::ReportPaper paper;
    paper.footer.right = "page {page} of {pages}";
    report->SetPaper(paper);
    const int font = report->RegisterFont("f", "Arial", 100, 0, 0, 0, 0, 0, 0);
    auto* table = new Zel2TextTable(2, 300);
    table->SetNHeaderRows(1);
    table->SetStyle(0, 1, 0, 299, Zel2Text("", CRect(0, 0, 1999, 199), font, DT_LEFT, 0, -1, -1, {-1, 0.0F}));
    table->SetText(0, 0, "header\tvalue");
    for (int r = 1; r < 300; ++r) table->SetText(0, r, "row%03d\t%d", r, r * r);
    report->Append(table);
    const std::string path = folder_ / "r.pdf";
    int told = 0;
    EXPECT_FALSE(zel::ExportReport(drawing, *report, path.c_str(), {}, [&](int done, int pages) {
        EXPECT_EQ(pages, 7);
        return (told = done) < 3;
    }));
    EXPECT_EQ(told, 3);
    EXPECT_EQ(folder_.FileCount(), 0U) << "nothing stays of a report that was stopped";
    report->SelectPage(4);
    EXPECT_TRUE(zel::ExportReport(drawing, *report, path.c_str()));
    EXPECT_EQ(report->SelectedPage(), 4);
    const std::string text = RunProgram("pdftotext -layout " + path + " -").text;
    const auto count = [&](const std::string& part) {
        int n = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
        return n;
    };
    EXPECT_EQ(count("header"), 7);
    for (int r = 1; r < 300; ++r) {
        char name[20];
        std::snprintf(name, sizeof name, "row%03d", r);
        EXPECT_EQ(count(name), 1) << name;
    }
    EXPECT_EQ(count("page 7 of 7"), 1);
    zel::ExportOptions small;
    small.dotsPerInch = 20;
    EXPECT_TRUE(zel::ExportReport(drawing, *report, (folder_ / "p.png").c_str(), small));
    EXPECT_EQ(QImage(QString::fromStdString(folder_ / "p-7.png")).size(), QSize(165, 234));
    EXPECT_THAT(MessageOf<zel::Error>([&] {
                    zel::ExportPages(
                        drawing, 0, [](int) {}, "x.pdf");
                }),
                testing::HasSubstr("no pages"));
}

TEST_F(Files, LeaveTheLocaleAlone) {
    Written("a.png");
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
}

// A picture of few pixels, in which small differences of lines and letters vanish.
QImage Coarse(const std::string& path) {
    return QImage(QString::fromStdString(path))
        .scaled(80, 60, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_Grayscale8);
}

TEST_F(Files, DrawTheSameAsTheMetafileReadElsewhere) {
    const std::string metafile = Written("a.wmf"), read = folder_ / "read.png";
    const auto reader =
        RunProgram("wmf2gd -t png --maxwidth=800 --maxheight=600 -o " + read + " " + metafile);
    ASSERT_EQ(reader.code, 0) << reader.text;
    const QImage theirs = Coarse(read), ours = Coarse(Written("a.png"));
    ASSERT_FALSE(theirs.isNull());
    double difference = 0;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 80; ++x)
            difference += std::abs(qGray(theirs.pixel(x, y)) - qGray(ours.pixel(x, y)));
    }
    EXPECT_LT(difference / (80 * 60), 6) << "of 255 on average";
    const QImage other = Coarse(Written("b.png")).mirrored();
    double unlike = 0;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 80; ++x) unlike += std::abs(qGray(other.pixel(x, y)) - qGray(ours.pixel(x, y)));
    }
    EXPECT_GT(unlike, 1.3 * difference) << "a picture upside down must stand out";
}

// Two halves of ink, where they lie one over the other and where they are one figure; read by other programs.
TEST_F(Files, MixTransparentInkInVectors) {
    for (const char* format : {"pdf", "svg"}) {
        zel::FileDeviceOptions options;
        options.path = folder_ / "o." + format;
        options.format = format;
        options.width = options.height = 2;
        const auto device = zel::Platform::Get().CreateFileDevice(options);
        const int pixel = static_cast<int>(zel::Platform::Get().UnitsPerInch(options)) / 96;
        {
            CDC dc(*device);
            const auto at = [=](int x, int y) { return CPoint(x * pixel, y * pixel); };
            CPen pen(PS_SOLID, 9 * pixel, RGB(0, 0, 0), 128);
            CPen* const previous = dc.SelectObject(&pen);
            const auto line = [&](CPoint from, CPoint to) {
                dc.MoveTo(from), dc.LineTo(to), dc.MoveTo(0, 0);
            };
            line(at(10, 20), at(90, 20));
            line(at(50, 5), at(50, 40));
            dc.BeginCurve();
            line(at(110, 20), at(180, 20));
            line(at(150, 5), at(150, 40));
            dc.EndCurve();
            CBrush quarter;
            quarter.CreateSolidBrush(RGB(255, 0, 0), 64);
            CBrush* const before = dc.SelectObject(&quarter);
            dc.SelectStockObject(NULL_PEN);
            const CRect box(at(20, 60), at(60, 100));
            dc.Rectangle(&box);
            const CPoint places[] = {at(120, 80), at(130, 80)};
            dc.BeginCurve();
            dc.Ellipses(places, CRect(at(-15, -15), at(15, 15)));
            dc.EndCurve();
            dc.SelectObject(before);
            dc.SelectObject(previous);
            CFont font;
            font.CreateFont(-90 * pixel, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
            CFont* const oldFont = dc.SelectObject(&font);
            dc.SetBkMode(TRANSPARENT);
            dc.SetTextColor(RGB(0, 0, 255), 128);
            dc.TextOut(20 * pixel, 90 * pixel, "I", 1);
            dc.SelectObject(oldFont);
        }
        device->Finish();
        const std::string seen = folder_ / "seen.png";
        const auto reader =
            RunProgram(std::string(format) == "pdf"
                           ? "pdftoppm -r 96 -png -singlefile " + options.path + " " + (folder_ / "seen")
                           : "rsvg-convert -b white -d 96 -p 96 " + options.path + " -o " + seen);
        ASSERT_EQ(reader.code, 0) << reader.text;
        const QImage image(QString::fromStdString(seen));
        const auto expect = [&](int x, int y, QRgb color, const char* what) {
            const QRgb found = image.pixel(x, y);
            EXPECT_LE(std::abs(qRed(found) - qRed(color)) + std::abs(qGreen(found) - qGreen(color)) +
                          std::abs(qBlue(found) - qBlue(color)),
                      6)
                << format << ": " << what << " is " << std::hex << found;
        };
        expect(30, 20, qRgb(127, 127, 127), "a line");
        expect(50, 20, qRgb(63, 63, 63), "where two lines cross");
        expect(130, 20, qRgb(127, 127, 127), "a line of a figure");
        expect(150, 20, qRgb(127, 127, 127), "where lines of a figure cross");
        expect(40, 80, qRgb(255, 191, 191), "a fill");
        expect(125, 80, qRgb(255, 191, 191), "where marks of a figure lie one over the other");
        expect(33, 140, qRgb(127, 127, 255), "text");
    }
}

// Hebrew is found in PDF in the order in which it is read, and SVG tells the direction.
TEST_F(Files, KeepTextOfEveryDirectionSearchable) {
    const int font = root_.GetFontIndex("text");
    root_.Add(new Zel2Text("\u05E9\u05DC\u05D5\u05DD abc", CPoint(2000, 1000), font, DT_CENTER, 0, -1, -1,
                           {-1, 0.0F}));
    root_.Add(new Zel2Text("cafe\u0301 \u0416", CPoint(2000, 500), font, DT_CENTER, 900, -1, -1, {-1, 0.0F}));
    const std::string text = RunProgram("pdftotext " + Written("a.pdf") + " -").text;
    EXPECT_THAT(text, testing::HasSubstr("\u05E9\u05DC\u05D5\u05DD"));
    EXPECT_THAT(text, testing::HasSubstr("caf\u00E9 \u0416"));
    const std::string svg = Content(Written("a.svg"));
    EXPECT_THAT(svg, testing::ContainsRegex("direction=\"rtl\".*>\u05E9\u05DC\u05D5\u05DD abc<"));
}

// What a foreign document can ask for: a dashed line around a giant, and a line of text without end.
TEST_F(Files, DoNotGrowWithoutLimit) {
    Zel2Main drawing;
    drawing.SetRules(ZelRules::EXACT);
    const int pen = drawing.RegisterPen("dots", DrawPen::DOT, 0, 0, 0, nullptr);
    drawing.Add(new Zel2Rect(CRect(0, 0, 30'000'000, 200'000), pen, -1, Zel2Rect::RECTANGLE, -1));
    const int font = drawing.RegisterFont("f", "Arial", 100, 0, 0, 0, 0, 0, 0);
    drawing.Add(new Zel2Text(std::string(80'000, 'x').c_str(), CPoint(0, 0), font, 0, 0, -1, -1, {-1, 0.0F}));
    std::vector<std::string> warnings;
    const auto before = zel::SetWarningHandler([&](const std::string& text) { warnings.push_back(text); });
    for (const char* name : {"giant.svg", "giant.pdf"}) {
        const std::string path = folder_ / name;
        zel::Export(drawing, path.c_str());
        EXPECT_LT(Content(path).size(), 40'000'000U) << name;
    }
    zel::SetWarningHandler(before);
    EXPECT_THAT(warnings, testing::Contains(testing::HasSubstr("dashes is drawn solid")));
}

// The symbols of a series are one definition that is used, and look as they do on images.
TEST_F(Files, SvgUsesOneDefinitionForAllMarks) {
    auto* points = new Zel2PointArray;
    for (int i = 0; i < 60; ++i) points->Append(1 + i * 0.14, 0.5 + 0.4 * std::sin(i * 0.2));
    for (int i = 0; i < 500; ++i) points->Append(5, 0.05);  // all in one place
    points->SetSymbol(root_.RegisterSymbol("s", CSize(90, 90), zel::SYMBOL_DIAMOND, "", 3, RGB(0, 0, 90), 0,
                                           RGB(250, 180, 0), 0, 1, "Arial", 80, 0, 0, nullptr, nullptr, 0),
                      true);
    graph_->AddIn(points);
    const std::string path = Written("marks.svg"), content = Content(path), seen = folder_ / "marks.png";
    int uses = 0;
    for (std::size_t at = content.find("<use"); at != std::string::npos; at = content.find("<use", at + 1))
        ++uses;
    EXPECT_EQ(uses, 61);
    EXPECT_EQ(content.find("id=\"mark"), content.rfind("id=\"mark"));
    ASSERT_EQ(RunProgram("rsvg-convert -b white " + path + " -o " + seen).code, 0);
    const QImage theirs = Coarse(seen), ours = Coarse(Written("marks-here.png"));
    double difference = 0;
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 80; ++x)
            difference += std::abs(qGray(theirs.pixel(x, y)) - qGray(ours.pixel(x, y)));
    EXPECT_LT(difference / (80 * 60), 2) << "of 255 on average";
}

// Whether a PDF's table of objects says where each of them begins.
bool HasTrueTable(const std::string& pdf) {
    const std::size_t table = std::stoul(pdf.substr(pdf.rfind("startxref") + 10));
    const std::size_t count = std::stoul(pdf.substr(table + 7));
    std::size_t line = pdf.find('\n', table + 7) + 1;
    for (std::size_t object = 1; object < count; ++object) {
        line += 20;
        const std::string begin = std::to_string(object) + " 0 obj";
        if (pdf.compare(std::stoul(pdf.substr(line, 10)), begin.size(), begin) != 0) return false;
    }
    return count > 5;
}

// Many marks are described once and drawn at every place, but for those that nobody sees, and all formats
// look like the image: discs, an outline, ink that one sees through.
TEST_F(Files, DrawManyMarksAlike) {
    auto* points = new Zel2PointArray;
    std::mt19937 random(6);
    std::normal_distribution<double> any(0, 1);
    for (int i = 0; i < 30'000; ++i) points->Append(5 + 1.4 * any(random), 0.5 + 0.14 * any(random));
    graph_->AddIn(points);
    for (const int kind : {0, 1, 2}) {
        const int symbol = kind == 0
                               ? zel::RegisterSymbol(root_, "disc", {.size = 2, .color = RGB(250, 180, 0)})
                               : root_.RegisterSymbol(kind == 1 ? "ring" : "cross", CSize(90, 90),
                                                      kind == 1 ? zel::SYMBOL_CIRCLE : zel::SYMBOL_CROSS, "",
                                                      3, RGB(0, 0, 90), 0, RGB(250, 180, 0), 0, 1, "Arial",
                                                      80, 0, 0, nullptr, nullptr, 0);
        if (kind == 2) {  // what one sees through shows all that lies below
            root_.Symbol(symbol)->Opacity(0.3);
            points->SetPoints(std::vector(points->XValues().begin(), points->XValues().begin() + 3000),
                              std::vector(points->YValues().begin(), points->YValues().begin() + 3000));
        }
        points->SetSymbol(symbol, true);
        const QImage ours = Coarse(Written("marks.png"));
        zel::ExportOptions all;
        all.keepAllPoints = true;
        for (const std::string format : {"svg", "pdf", "wmf"}) {
            const std::string path = Written(("marks." + format).c_str()), seen = path + ".png";
            const std::size_t size = Content(path).size();
            EXPECT_LT(size, format == "wmf" ? 1'200'000U : 160'000U) << format << kind;
            EXPECT_LE(size, Content(Written(("all." + format).c_str(), all)).size()) << format << kind;
            if (format == "pdf") {
                EXPECT_TRUE(HasTrueTable(Content(path))) << kind;
                EXPECT_NE(Content(path).find("/Subtype /Form"), std::string::npos);
            }
            if (kind == 2 && format == "wmf") continue;  // knows opaque ink only
            const auto reader = RunProgram(
                format == "svg"   ? "rsvg-convert -b white " + path + " -o " + seen
                : format == "pdf" ? "pdftoppm -r 150 -png -singlefile " + path + " " + path
                                  : "wmf2gd -t png --maxwidth=600 --maxheight=450 -o " + seen + " " + path);
            ASSERT_EQ(reader.code, 0) << reader.text;
            const QImage theirs = Coarse(seen);
            double difference = 0;
            for (int y = 0; y < 60; ++y)
                for (int x = 0; x < 80; ++x)
                    difference += std::abs(qGray(theirs.pixel(x, y)) - qGray(ours.pixel(x, y)));
            // The reader of metafiles draws whole pixels.
            EXPECT_LT(difference / (80 * 60), format == "wmf" ? 20 : 4)
                << format << kind << ", of 255 on average";
        }
    }
}

}  // namespace
