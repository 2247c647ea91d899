#include "backends/qt/Application.h"
#include "backends/qt/FileDevices.h"
#include "backends/qt/FileSink.h"
#include "backends/qt/PageDevice.h"

#include <zel/platform/Exception.h>
#include <zel/platform/SafeFile.h>

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
    FileSink sink;
    QPdfWriter writer;
};

class PdfDevice : private PdfFile, public PageDevice {
  public:
    explicit PdfDevice(const FileDeviceOptions& options)
        : PdfFile(options), PageDevice(options, CapsOf(options, DT_RASPRINTER, kPdfUnitsPerInch)) {
        Begin(writer);
    }
    void Finish() override {
        PageDevice::Finish();
        file.Commit();
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
