// Drawings as files of other programs.
#pragma once

#include <zel/Error.h>
#include <zel/Zel2Main.h>
#include <zel/platform/FileFormat.h>

#include <functional>
#include <string>
#include <vector>

namespace zel {

// How a drawing is written. With nothing set it fills the whole image or page at its natural size.
struct ExportOptions {
    // Images: pixels per inch, or the width in pixels when that is given (the height follows).
    double dotsPerInch = 150;
    int pixelWidth = 0;
    // The paper, in millimetres; 0: as large as the drawing. A drawing larger than the paper inside its
    // margins is shrunk to fit, a smaller one is put in the middle.
    double paperWidth = 0;
    double paperHeight = 0;
    double margin = 10;  // millimetres, on all sides; only with a paper
    COLORREF background = RGB(255, 255, 255);
    bool transparent = false;   // no background, where the format can
    bool printerTools = false;  // the tools' printer colours instead of those for the screen
    int quality = 90;           // of a JPEG
    // PDF and SVG leave out points of solid lines that lie on the line through others, at 1200 and 1440 units
    // to an inch: nothing that is seen changes. True keeps every point, for programs that read them back.
    bool keepAllPoints = false;
    std::string title;  // for formats that keep one
};

// Sets a paper by its name ("A5" to "A2", "letter", "legal"), upright or lying; false for an unknown name.
bool SetPaper(ExportOptions& options, const std::string& name, bool landscape);

// The formats that Export writes: those of the installed back end (PDF, PNG, JPEG, SVG with zel::qt), Windows
// metafiles, which need no device, and those that the program has added.
std::vector<FileFormat> ExportFormats();
// Adds a format, which from then on stands for its endings. Call before drawing begins and from one thread
// only. Throws Error for a format without an ending or a device.
void AddExportFormat(FileFormat format);
// The format of the ending of `path`. Throws Error that names the known ones when there is none.
FileFormat ExportFormatOf(const std::string& path);

// Writes `drawing` into the file `path`, in the format of its ending (see ExportFormats); .wmf with the
// published placeable header. The file is written beside `path` and renamed over it when it is complete. The
// drawing's mapping and window are as before afterwards.
//
// Throws FileError when the file cannot be written, Error for an ending that is not known, a back end that is
// not installed, or a drawing without a size.
void Export(Zel2Main& drawing, const char* path, const ExportOptions& options = {});

// Told after each page: how many of how many pages are written. An answer of false stops the export.
using ExportProgress = std::function<bool(int done, int pages)>;

// Writes a drawing of several pages: `select(k)` makes it show page `k`, from 0, and each page is drawn when
// its turn comes. A PDF file holds them all and is there only when all are written. Other formats take one
// file a page, the number put before the ending ("report-07.png"), each written whole. Returns false when
// `progress` has asked to stop: the files written so far are removed then. Throws as Export does, and Error
// when there are no pages.
bool ExportPages(Zel2Main& drawing, int pages, const std::function<void(int)>& select, const char* path,
                 const ExportOptions& options = {}, const ExportProgress& progress = {});

}  // namespace zel
