#include "backends/widgets/Printer.h"

#include "backends/qt/PageDevice.h"

#include <zel/platform/Exception.h>

#include <QFile>
#include <QFileInfo>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinterInfo>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <unistd.h>

namespace zel::widgets {
namespace {

SurfaceCaps CapsOf(const QPrinter& printer) {
    const double resolution = printer.resolution();
    const QRectF page = printer.pageRect(QPrinter::DevicePixel);
    const CSize units(static_cast<int>(std::lround(page.width())),
                      static_cast<int>(std::lround(page.height())));
    return {.technology = DT_RASPRINTER,
            .unitsPerInch = resolution,
            .units = units,
            .widthInches = units.cx / resolution,
            .heightInches = units.cy / resolution,
            .bitsPerPixel = 24};
}

// A printer that prints into a file writes beside it first: an old file stays until the new one is whole.
class PrinterDevice : public qt::PageDevice {
  public:
    PrinterDevice(QPrinter& printer, std::unique_ptr<QPrinter> owned)
        : PageDevice({}, CapsOf(printer)), owned_(std::move(owned)), printer_(printer) {
        if (owned_) target_ = printer.outputFileName();
        if (!target_.isEmpty()) {
            CheckTarget();
            printer.setOutputFileName(target_ + ".part");
        }
        Begin(printer);
    }
    ~PrinterDevice() override {
        if (!target_.isEmpty() && !finished_) {
            End();
            QFile::remove(target_ + ".part");
        }
    }

    // The origin is the corner of what can be printed on, which lies within the paper.
    int Caps(int index) const override {
        const QRectF paper = printer_.paperRect(QPrinter::DevicePixel);
        const QRectF page = printer_.pageRect(QPrinter::DevicePixel);
        switch (index) {
            case PHYSICALWIDTH:
                return static_cast<int>(std::lround(paper.width()));
            case PHYSICALHEIGHT:
                return static_cast<int>(std::lround(paper.height()));
            case PHYSICALOFFSETX:
                return static_cast<int>(std::lround(page.left() - paper.left()));
            case PHYSICALOFFSETY:
                return static_cast<int>(std::lround(page.top() - paper.top()));
            default:
                return PageDevice::Caps(index);
        }
    }
    void Finish() override {
        PageDevice::Finish();
        finished_ = true;
        if (target_.isEmpty()) return;
        const std::filesystem::path part = (target_ + ".part").toStdString();
        if (printer_.printerState() == QPrinter::Error) {
            QFile::remove(target_ + ".part");
            ThrowFileError("write", target_.toStdString().c_str(), EIO);
        }
        std::error_code error;
        std::filesystem::rename(part, target_.toStdString(), error);
        if (error) ThrowFileError("write", target_.toStdString().c_str(), error.value());
    }

  private:
    void CheckTarget() const {
        const std::string folder = QFileInfo(target_).absolutePath().toStdString();
        if (access(folder.c_str(), W_OK) != 0) ThrowFileError("write", target_.toStdString().c_str(), errno);
    }
    void Check(bool written) override {
        if (written) return;
        if (!target_.isEmpty()) ThrowFileError("write", target_.toStdString().c_str(), EIO);
        AfxThrowNotSupportedException(("Cannot print on \"" + printer_.printerName().toStdString() +
                                       "\": the printer does not take the pages.")
                                          .c_str());
    }

    std::unique_ptr<QPrinter> owned_;
    QPrinter& printer_;
    QString target_;
    bool finished_ = false;
};

}  // namespace

std::unique_ptr<DocumentDevice> PagesOn(QPrinter& printer) {
    return std::make_unique<PrinterDevice>(printer, nullptr);
}
std::unique_ptr<DocumentDevice> PagesOn(std::unique_ptr<QPrinter> printer) {
    QPrinter& pages = *printer;
    return std::make_unique<PrinterDevice>(pages, std::move(printer));
}

std::unique_ptr<DocumentDevice> OpenPrinter(QWidget* owner, PrintRequest& request) {
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setDocName(QString::fromStdString(request.title));
    printer->setCreator("Zel");
    if (request.direct) {
        if (QPrinterInfo::defaultPrinter().isNull()) {
            AfxThrowNotSupportedException(
                ("Cannot print \"" + request.title + "\": this computer has no printer.").c_str());
        }
        return PagesOn(std::move(printer));
    }
    QPrintDialog dialog(printer.get(), owner);
    dialog.setWindowTitle(QString("Print ") + QString::fromStdString(request.title));
    constexpr UINT kUnknown = 0xFFFF;
    if (request.lastPage != kUnknown && request.lastPage > request.firstPage) {
        dialog.setMinMax(static_cast<int>(request.firstPage), static_cast<int>(request.lastPage));
        dialog.setFromTo(static_cast<int>(request.firstPage), static_cast<int>(request.lastPage));
        dialog.setOption(QAbstractPrintDialog::PrintPageRange);
    }
    if (dialog.exec() != QDialog::Accepted) return nullptr;
    if (dialog.printRange() == QAbstractPrintDialog::PageRange) {
        request.fromPage = static_cast<UINT>(dialog.fromPage());
        request.toPage = static_cast<UINT>(dialog.toPage());
    }
    return PagesOn(std::move(printer));
}

void Preview(QWidget* owner, const std::string& title, const std::function<void(DocumentDevice&)>& draw) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(QString::fromStdString(title));
    QPrintPreviewDialog dialog(&printer, owner);
    dialog.setWindowTitle(QString::fromStdString(title) + " - preview");
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&](QPrinter* pages) { draw(*PagesOn(*pages)); });
    dialog.exec();
}

}  // namespace zel::widgets
