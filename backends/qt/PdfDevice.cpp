#include "backends/qt/Application.h"
#include "backends/qt/FileDevices.h"
#include "backends/qt/PageDevice.h"
#include "backends/qt/PdfContent.h"
#include "backends/qt/PdfSink.h"

#include <zel/platform/Exception.h>
#include <zel/platform/SafeFile.h>

#include <QImage>
#include <QPageLayout>
#include <QPdfWriter>

#include <cerrno>

namespace zel::qt {
namespace {

// What the painter of the pages writes into must outlive it, so it is a base of its own, before the pages.
struct PdfFile {
    explicit PdfFile(const FileDeviceOptions& options) : file(options.path), sink(file), writer(&sink) {
        writer.setResolution(kPdfUnitsPerInch);
        const QPageSize size(QSizeF(options.width, options.height), QPageSize::Inch, QString(),
                             QPageSize::ExactMatch);
        writer.setPageLayout(QPageLayout(size, QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
        writer.setTitle(QString::fromStdString(options.title));
        writer.setCreator("Zel");
    }
    SafeFile file;
    PdfSink sink;
    QPdfWriter writer;
};

class PdfDevice : private PdfFile, public PageDevice {
  public:
    explicit PdfDevice(const FileDeviceOptions& options)
        : PdfFile(options), PageDevice(options, CapsOf(options, DT_RASPRINTER, kPdfUnitsPerInch)) {
        Begin(writer);
    }
    void Finish() override {
        sink.TakeRest();
        PageDevice::Finish();
        Check(sink.Complete());
        file.Commit();
    }

  protected:
    // A mark is a form, and all of them are another one, which stands where the writer believes a picture.
    bool DrawAlike(std::span<const MarkPiece> pieces, std::span<const CPoint> places) override {
        constexpr int kSide = 8;
        QImage picture(kSide, kSide, QImage::Format_RGB32);
        picture.fill(Qt::white);
        sink.Take();
        Painter().drawImage(QPointF(0, 0), picture);
        // A picture, and its length.
        const std::vector<int> objects = sink.Taken(2);
        if (objects.empty()) return false;
        const PdfStream mark = FormOf(pieces), all = FormOf(objects[1], ReachOf(pieces), places, kSide);
        sink.WriteStream(objects[0], all.dictionary, all.content);
        sink.WriteStream(objects[1], mark.dictionary, mark.content);
        return true;
    }

  private:
    // The writer itself may not say that the disk is full.
    void Check(bool written) override {
        sink.Check();
        if (!written) ThrowFileError("write", Options().path.c_str(), EIO);
    }
};

}  // namespace

FileFormat PdfFormat() {
    return {.endings = {"pdf"},
            .name = "PDF",
            .pages = true,
            .unitsPerInch = [](const FileDeviceOptions&) { return kPdfUnitsPerInch; },
            .create =
                [](const FileDeviceOptions& options) {
                    EnsureApplication();
                    return std::make_unique<PdfDevice>(options);
                }};
}

}  // namespace zel::qt
