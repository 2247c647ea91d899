// Drawings as files of other programs.
#pragma once

#include <zel/Zel2Main.h>

#include <functional>
#include <string>

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
    // PDF and SVG leave out the points of series that cannot be seen at 1200 dots per inch; with this they
    // keep each.
    bool everyPoint = false;
    int quality = 90;   // of a JPEG
    std::string title;  // for formats that keep one
};

// Sets a paper by its name ("A5" to "A2", "letter", "legal"), upright or lying; false for an unknown name.
bool SetPaper(ExportOptions& options, const std::string& name, bool landscape);

// Writes `drawing` into the file `path`, in the format of its ending: .png, .jpg, .pdf, .svg, .wmf (with the
// published placeable header). The file is written beside `path` and renamed over it when it is complete. The
// drawing's mapping and window are as before afterwards.
//
// Throws CFileException* when the file cannot be written, CNotSupportedException* for an ending that is not
// known or a back end that is not installed, CInvalidArgException* for a drawing without a size.
void Export(Zel2Main& drawing, const char* path, const ExportOptions& options = {});

// Told after each page: how many of how many pages are written. An answer of false stops the export.
using ExportProgress = std::function<bool(int done, int pages)>;

// Writes a drawing of several pages: `select(k)` makes it show page `k`, from 0, and each page is drawn when
// its turn comes. A PDF file holds them all and is there only when all are written. Other formats take one
// file a page, the number put before the ending ("report-07.png"), each written whole. Answers false when
// `progress` has asked to stop: the files written so far are removed then. Throws as Export does, and
// CInvalidArgException* when there are no pages.
bool ExportPages(Zel2Main& drawing, int pages, const std::function<void(int)>& select, const char* path,
                 const ExportOptions& options = {}, const ExportProgress& progress = {});

}  // namespace zel
