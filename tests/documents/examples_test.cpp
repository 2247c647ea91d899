// Every example comes back from its document, and from its classic archive as far as that promises it.
#include "Examples.h"

#include "Archives.h"
#include "RandomDrawing.h"

#include <zel/qt/ImageDevice.h>
#include <zel/qt/Install.h>

#include <QImage>

namespace {

using zel::test::ClassicBytes;
using zel::test::Content;
using zel::test::Drawn;
using zel::test::FromClassicBytes;

class Examples : public testing::TestWithParam<Example> {
  protected:
    const zel::test::TemporaryFolder folder;
    const std::string first = folder / "first.zel", second = folder / "second.zel";
    const std::unique_ptr<Zel2Main> drawing = zel::test::MakeExample(GetParam(), ZEL_DATA);
};

TEST_P(Examples, DrawTheSameFromTheirDocuments) {
    zel::SaveDocument(*drawing, first.c_str());
    const auto loaded = zel::LoadDocument(first.c_str());
    zel::SaveDocument(*loaded, second.c_str());
    EXPECT_EQ(Content(first), Content(second)) << "never drawn";
    EXPECT_EQ(Drawn(*loaded), Drawn(*drawing));
    // Drawing completes what was left to defaults; that comes back too.
    zel::SaveDocument(*drawing, first.c_str());
    zel::SaveDocument(*zel::LoadDocument(first.c_str()), second.c_str());
    EXPECT_EQ(Content(first), Content(second)) << "drawn before";
    EXPECT_EQ(Drawn(*zel::LoadDocument(second.c_str())), Drawn(*drawing));
}

// An archive keeps what it can keep in the first round and then loses nothing more.
TEST_P(Examples, SettleInClassicArchives) {
    if (IsChart(*drawing)) {
        const std::string name = (*drawing)[0]->GetRuntimeClass()->m_lpszClassName;
        EXPECT_NE(zel::test::MessageOf<CArchiveException>([&] { ClassicBytes(*drawing); }).find(name),
                  std::string::npos)
            << "charts are refused by name";
        return;
    }
    const std::string once = ClassicBytes(*FromClassicBytes(ClassicBytes(*drawing)));
    const auto loaded = FromClassicBytes(once);
    EXPECT_EQ(ClassicBytes(*loaded), once);
    EXPECT_EQ(Drawn(*loaded), Drawn(*FromClassicBytes(once)));
}

INSTANTIATE_TEST_SUITE_P(All, Examples, testing::ValuesIn(AllExamples()), [](const auto& example) {
    std::string name = example.param.name;
    std::erase(name, '-');
    return name;
});

// What Export writes as a picture is what one draws on an image, to the last pixel.
void ExpectExportIsTheDrawing(Zel2Main& original, const std::string& path) {
    zel::qt::Install();
    zel::ExportOptions options;
    options.pixelWidth = 320;
    // Drawing completes what was left to defaults: both begin with the same.
    const std::vector<std::uint8_t> document = zel::DocumentBytes(original);
    const auto copy = [&] { return zel::LoadDocument(document.data(), document.size(), "copy"); };
    zel::Export(*copy(), path.c_str(), options);
    const auto drawing = copy();
    drawing->Map()->SetAbsoluteZoom(1, 1);  // files have the natural size
    const QImage file =
        QImage(QString::fromStdString(path)).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    ASSERT_FALSE(file.isNull());
    zel::qt::ImageDevice image(file.width(), file.height(), 320 / (drawing->Size().cx / 1000.0));
    image.Clear(RGB(255, 255, 255));
    CDC dc(image);
    drawing->PrepareMappingFor(&dc, nullptr, 0, 0);
    drawing->Draw(&dc);
    dc.Flush();
    std::size_t differing = 0;
    for (int y = 0; y < file.height(); ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(file.constScanLine(y));
        for (int x = 0; x < file.width(); ++x)
            differing += row[x] != image.Pixels()[y * file.width() + x] ? 1U : 0U;
    }
    EXPECT_EQ(differing, 0U);
}

TEST_P(Examples, AreExportedAsImagesDrawThem) {
    ExpectExportIsTheDrawing(*drawing, folder / "a.png");
}

TEST(Export, IsTheDrawingForAnyTree) {
    const zel::test::TemporaryFolder folder;
    int drawn = 0;
    for (unsigned seed = 0; drawn < 100; ++seed) {
        SCOPED_TRACE(seed);
        const auto drawing = zel::test::RandomDrawing(seed, zel::test::RandomDrawing::Charts::WITH).Make();
        const CSize size = drawing->Size();
        if (size.cx < 100 || size.cy < 100 || size.cy > 4 * size.cx) continue;
        ExpectExportIsTheDrawing(*drawing, folder / "a.png");
        ++drawn;
    }
}

}  // namespace
