// What a program installs so that the library can open windows, images and pages.
#pragma once

#include <zel/platform/GraphicsDevice.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace zel {

class WindowSystem;

// A file that a back end is asked to draw. Lengths are inches on the paper or image.
struct FileDeviceOptions {
    std::string path;    // where the finished file goes
    std::string format;  // lower case: "png", "jpg", "pdf", "svg"
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

// Makes devices (and, with the window layer, windows). The base class is what a program without a back end
// has: measuring works with built-in font metrics, files and windows do not.
class Platform {
  public:
    virtual ~Platform();

    // The installed platform; never null.
    static Platform& Get();
    // Replaces the installed platform. Pass null to go back to the base class. Call before drawing begins and
    // from one thread only.
    static void Install(std::unique_ptr<Platform> platform);

    // A device with the resolution and fonts of the screen on which nothing is seen: for measuring text and
    // for contexts "compatible with the screen".
    virtual std::unique_ptr<GraphicsDevice> CreateScreenCompatibleDevice();

    // The device units in an inch of paper or image that a device for `options` has, before unitsPerInch of
    // the options changes what it reports.
    virtual double UnitsPerInch(const FileDeviceOptions& options);

    // A device that draws the file described by `options`; nothing is written before its Finish().
    // Throws CNotSupportedException* naming the missing back end, or CFileException* when the path is
    // unusable.
    virtual std::unique_ptr<DocumentDevice> CreateFileDevice(const FileDeviceOptions& options);

    // Where marks (GraphicsDevice::Marks) are to be drawn in a file of vectors, in device units and in order,
    // `unitsPerPixel` to a pixel of a screen. They may be moved by a part of such a pixel, and those that
    // would not be seen are left out. Here: all of them.
    virtual std::vector<CPoint> SeenMarks(const GraphicsState& state, std::span<const CPoint> places,
                                          const CRect& box, const MarkPainter& paint, double unitsPerPixel);

    // Where windows come from (borrowed); null where there are none.
    virtual WindowSystem* Windows() { return nullptr; }
};

}  // namespace zel
