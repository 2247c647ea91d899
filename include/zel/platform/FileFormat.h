// A format that drawings can be written in.
#pragma once

#include <zel/platform/GraphicsDevice.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zel {

// A file that a back end is asked to draw. Lengths are inches on the paper or image.
struct FileDeviceOptions {
    std::string path;    // where the finished file goes
    std::string format;  // an ending of a format: "png", "jpg", "pdf", "svg"
    double width = 0;    // of the whole page or image
    double height = 0;
    double dotsPerInch = 96;  // pixels per inch of an image; other formats ignore it
    double unitsPerInch = 0;  // device units that the device reports per inch; 0: the format's own choice
    bool opaqueBackground = true;
    COLORREF background = RGB(255, 255, 255);
    int quality = 90;   // of a JPEG, 0 to 100
    std::string title;  // document title, for formats that keep one
    // Formats of vectors leave out points of lines that make no difference at the device's resolution.
    bool keepAllPoints = false;
};

// What a format is called, what it can hold, and what draws it. A back end lists its formats
// (Platform::FileFormats); a program adds its own with zel::AddExportFormat.
struct FileFormat {
    std::vector<std::string> endings{};  // of file names, lower case, without the dot; the usual one first
    std::string name{};                  // for people: "PNG image"
    bool pixels = false;                 // has a number of pixels per inch
    bool pages = false;                  // one file holds several pages
    bool paper = true;                   // can be laid on a paper, with the tools' printer variants
    bool transparent = false;            // can leave the background out
    // The device units in an inch that a device has, before unitsPerInch of the options changes what it
    // reports.
    std::function<double(const FileDeviceOptions&)> unitsPerInch{};
    // Makes a device; nothing is written before its Finish(). Throws CFileException* for an unusable path.
    std::function<std::unique_ptr<DocumentDevice>(const FileDeviceOptions&)> create{};

    bool HasEnding(const std::string& ending) const;
};

// The ending of a file's name, in lower case and without the dot; empty when it has none.
std::string EndingOf(const std::string& path);

}  // namespace zel
